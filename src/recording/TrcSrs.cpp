#include "recording/TrcSrs.h"

#include <algorithm>

namespace nvdl::trc {

namespace {

using namespace record;
using R = SrsRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Activated), {4}},
    {text(&R::Name, 100), {8}},
    {f32(&R::FreqMin), {108}},
    {f32(&R::FreqMax), {112}},
    {f32(&R::OctaveSpacing), {116}},
    {f32(&R::SDOFDamping), {120}},
    {i32(&R::DCOffset), {124}},
    {i32(&R::Drift), {128}},
    {f32s(&R::Limits, R::kRows * R::kColumns), {132}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcSrs::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcSrs::kBlockSize, CTrcSrs::kVersion, CTrcSrs::kVersion, kSrs,
                               "SRS_SECTION"};

}  // namespace

CTrcSrs::CTrcSrs() : TrcFixedSection(kShape) {}

void CTrcSrs::SetLimits(const float* limits) {
    if (limits) std::copy_n(limits, m_block.Limits.size(), m_block.Limits.begin());
}

}  // namespace nvdl::trc
