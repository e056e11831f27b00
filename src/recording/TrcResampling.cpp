#include "recording/TrcResampling.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = ResamplingRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Activated), {4}},
    {f32(&R::SampleFrequency), {8}},
    {i32(&R::Blocksize), {12}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcResampling::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcResampling::kBlockSize, CTrcResampling::kVersion,
                               CTrcResampling::kVersion, kResampling, "RESAMPLING_SECTION"};

}  // namespace

CTrcResampling::CTrcResampling() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
