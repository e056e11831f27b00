#include "recording/TrcProcessing.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = ProcessingRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::MeasurementFunction), {4}},
    {i32(&R::AverageType), {8}},
    {i32(&R::AverageNumber), {12}},
    {i32(&R::MaxAverageNumber), {16}},
    {f32(&R::AverageParameter), {20}},
    {f32(&R::OverlapPercent), {24}},
    {f32(&R::Offset), {28}},
    {i32(&R::NbClasses), {32}},
    {i32(&R::ExtremalClass), {36}},
    {i32(&R::ResponseWindowType), {40}},
    {f32(&R::ResponseWindowParameter), {44}},
    {i32(&R::ExcitationWindowType), {48}},
    {f32(&R::ExcitationWindowParameter), {52}},
    {i32(&R::OverloadAction), {56}},
    {i32(&R::OverloadRetryCount), {60}},
    {i32(&R::DisplayRefreshCount), {64}},
    {i32(&R::RovingMode), {68}},
    {i32(&R::DoubleHitDetectionEnabled), {72}},
    {i32(&R::DoubleHitAutoCorrect), {76}},
    {f32(&R::DoubleHitToleranceFactor), {80}},
    {i32(&R::CorrectDC), {84}},
    {i32(&R::ComputeAverageNumber), {88}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcProcessing::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcProcessing::kBlockSize, CTrcProcessing::kVersion,
                               CTrcProcessing::kVersion, kProcessing, "PROCESSING_SECTION"};

}  // namespace

CTrcProcessing::CTrcProcessing() : TrcFixedSection(kShape) {}

void CTrcProcessing::SetAverageNumber(long value) {
    m_block.AverageNumber = static_cast<std::int32_t>(value);
    if (m_block.MaxAverageNumber == 0 && value > 0) m_block.MaxAverageNumber = m_block.AverageNumber;
    else if (m_block.MaxAverageNumber > value) m_block.MaxAverageNumber = m_block.AverageNumber;
}

}  // namespace nvdl::trc
