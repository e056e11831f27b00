#include "recording/TrcSteppedSine.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = SteppedSineRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Activated), {4}},
    {text(&R::Name, 100), {8}},
    {f32(&R::FreqStart), {108}},
    {f32(&R::FreqEnd), {112}},
    {f32(&R::FreqIncr), {116}},
    {f32(&R::Delay), {120}},
    {f32(&R::Averaging), {124}},
    {i32(&R::Type), {128}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcSteppedSine::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcSteppedSine::kBlockSize, CTrcSteppedSine::kVersion,
                               CTrcSteppedSine::kVersion, kSteppedSine, "STEPPEDSINE_SECTION"};

}  // namespace

CTrcSteppedSine::CTrcSteppedSine() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
