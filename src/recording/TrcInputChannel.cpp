#include "recording/TrcInputChannel.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = InputChannelRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Usage), {4}},
    {i32(&R::Mode), {8}},
    {text(&R::Name, 100), {12}},
    {i32(&R::Coupling), {112}},
    {i32(&R::Differential), {116}},
    {f32(&R::Range), {120}},
    {f32(&R::PreGain), {124}},
    {i32(&R::Weighting), {128}},
    {f32(&R::Offset), {132}},
    {text(&R::SerialNumber, 100), {136}},
    {text(&R::Model, 100), {236}},
    {f32(&R::Sensitivity), {336}},
    {text(&R::Unit, 100), {340}},
    {text(&R::CalibrationType, 50), {440}},
    {f64(&R::CalibrationDate), {496}},
    {f64(&R::CalibrationDue), {504}},
    {text(&R::Comment, 200), {512}},
    {i32(&R::Tacho), {712}},
    {f32(&R::TachoPulses), {716}},
    {f32(&R::TachoLevel), {720}},
    {i32(&R::TachoMode), {724}},
    {text(&R::TachoUnit, 50), {728}},
    {f64(&R::DateTime), {784}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcInputChannel::kBlockSize));

// Named by their list ("INPUT%ld").
constexpr BlockShape<R> kShape{kFields, CTrcInputChannel::kBlockSize, CTrcInputChannel::kVersion,
                               CTrcInputChannel::kVersion, kInputChannel, nullptr};

}  // namespace

CTrcInputChannel::CTrcInputChannel() : TrcFixedSection(kShape) { Init(); }

int CTrcInputChannel::Init() {
    TrcFixedSection::Init();
    m_block.DateTime = currentDate();
    return 1;
}

}  // namespace nvdl::trc
