#include "recording/TrcOctave.h"

#include <bit>
#include <cmath>

namespace nvdl::trc {

namespace {

using namespace record;
using R = OctaveRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Processing), {4}},
    {i32(&R::StartFrequency), {8}},
    {i32(&R::StopFrequency), {12}},
    {f32(&R::IntegrationTime), {16}},
    {i32(&R::Weighting), {20}},
    {f32(&R::ComputeInterval), {24}},
    {i32(&R::SaveInterval), {28}},
    {i32(&R::TimeWeighting), {32}},
    {i32(&R::PeakHold), {36}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcOctave::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcOctave::kBlockSize, CTrcOctave::kVersionV2, CTrcOctave::kVersionV1,
                               kOctave, "OCTAVE_SECTION"};

}  // namespace

CTrcOctave::CTrcOctave() : TrcFixedSection(kShape) {}

float CTrcOctave::frequency(std::int32_t bits) const {
    return m_block.version < kVersionV2 ? static_cast<float>(bits) : std::bit_cast<float>(bits);
}

std::int32_t CTrcOctave::frequencyBits(float value) const {
    if (m_block.version >= kVersionV2) return std::bit_cast<std::int32_t>(value);
    // An old block stays old: its frequencies are whole numbers.
    if (!(std::fabs(value) < 2.0e9f)) return 0;
    return static_cast<std::int32_t>(std::lround(value));
}

}  // namespace nvdl::trc
