#include "recording/TrcOutputChannel.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = OutputChannelRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Usage), {4}},
    {text(&R::Name, 50), {8}},
    {i32(&R::Mode), {60}},
    {f32(&R::Level), {64}},
    {i32(&R::BurstPercent), {68}},
    {f32(&R::RampTime), {72}},
    {f32(&R::SineFrequency), {76}},
    {f32(&R::SinePhase), {80}},
    {f32(&R::Bandwidth), {84}},
    {f32(&R::StartPhase), {88}},
    {f32(&R::StartFrequency), {92}},
    {f32(&R::EndFrequency), {96}},
    {i32(&R::SweepType), {100}},
    {text(&R::Filename, 400), {104}},
    {f32(&R::SweepRate), {504}},
    {i32(&R::SweepTime), {508}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcOutputChannel::kBlockSize));

// Named by their list ("OUTPUT%ld").
constexpr BlockShape<R> kShape{kFields, CTrcOutputChannel::kBlockSize, CTrcOutputChannel::kVersion,
                               CTrcOutputChannel::kVersion, kOutputChannel, nullptr};

}  // namespace

CTrcOutputChannel::CTrcOutputChannel() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
