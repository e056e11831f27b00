#include "recording/TrcShockCapture.h"

#include <algorithm>

namespace nvdl::trc {

namespace {

using namespace record;
using R = ShockCaptureRecord;

constexpr std::uint16_t kLimitCount = R::kRows * R::kColumns;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Activated), {4}},
    {text(&R::Name, 100), {8}},
    {f32(&R::PulsePeak), {108}},
    {f32(&R::PulseDuration), {112}},
    {i32(&R::UpperLimitsCount), {116}},
    {i32(&R::LowerLimitsCount), {120}},
    {f32s(&R::UpperLimits, kLimitCount), {124}},
    {f32s(&R::LowerLimits, kLimitCount), {1660}},
    {i32(&R::RefType), {3196}},
    {f32(&R::LowPassExc), {3200}},
    {f32(&R::LowPassResp), {3204}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcShockCapture::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcShockCapture::kBlockSize, CTrcShockCapture::kVersion,
                               CTrcShockCapture::kVersion, kShockCapture, "SHOCKCAPTURE_SECTION"};

}  // namespace

CTrcShockCapture::CTrcShockCapture() : TrcFixedSection(kShape) {}

void CTrcShockCapture::SetUpperLimits(const float* limits) {
    if (limits) std::copy_n(limits, m_block.UpperLimits.size(), m_block.UpperLimits.begin());
}

void CTrcShockCapture::SetLowerLimits(const float* limits) {
    if (limits) std::copy_n(limits, m_block.LowerLimits.size(), m_block.LowerLimits.begin());
}

}  // namespace nvdl::trc
