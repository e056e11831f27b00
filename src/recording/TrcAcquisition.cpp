#include "recording/TrcAcquisition.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = AcquisitionRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {f32(&R::SampleFrequency), {4}},
    {f32(&R::CenterFrequency), {8}},
    {i32(&R::TriggerMode), {12}},
    {i32(&R::TriggerChannel), {16}},
    {f32(&R::TriggerLevel), {20}},
    {f32(&R::TriggerDelay), {24}},
    {i32(&R::Blocksize), {28}},
    {i32(&R::GapFree), {32}},
    {f32(&R::AutoRangePercent), {36}},
    {i32(&R::ArmMode), {40}},
    {i32(&R::ComputationBlocksize), {44}},
    {i32(&R::AcquisitionBlocksize), {48}},
    {i32(&R::DigitalAC), {52}},
    {i32(&R::DataFormat), {56}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcAcquisition::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcAcquisition::kBlockSize, CTrcAcquisition::kVersion,
                           CTrcAcquisition::kVersion, kAcquisition, "ACQUISITION_SECTION"};

}  // namespace

CTrcAcquisition::CTrcAcquisition() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
