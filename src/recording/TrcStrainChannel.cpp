#include "recording/TrcStrainChannel.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = StrainChannelRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {f32(&R::MinRange), {4}},
    {f32(&R::MaxRange), {8}},
    {i32(&R::Config), {12}},
    {i32(&R::VexSource), {16}},
    {f32(&R::VexValue), {20}},
    {f32(&R::GageFactor), {24}},
    {f32(&R::InitBridgeVoltage), {28}},
    {f32(&R::GageResistance), {32}},
    {f32(&R::PoissonRatio), {36}},
    {f32(&R::LeadWireResistance), {40}},
    {f32(&R::Gain), {44}},
    {f32(&R::LowPassFilter), {48}},
    {f32(&R::Offset), {52}},
    {text(&R::CalibrationType, 50), {56}},
    {f64(&R::CalibrationDate), {112}},
    {text(&R::Comment, 200), {120}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcStrainChannel::kBlockSize));

// Named by their list ("STRAIN%ld").
constexpr BlockShape<R> kShape{kFields, CTrcStrainChannel::kBlockSize, CTrcStrainChannel::kVersion,
                               CTrcStrainChannel::kVersion, kStrainChannel, nullptr};

}  // namespace

CTrcStrainChannel::CTrcStrainChannel() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
