#include "recording/TrcPostProcessing.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = PostProcessingRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {f32(&R::ReplayStart), {4}},
    {f32(&R::ReplayStop), {8}},
    {text(&R::Filename, 300), {12}},
    {i32(&R::Activated), {312}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcPostProcessing::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcPostProcessing::kBlockSize, CTrcPostProcessing::kVersion,
                               CTrcPostProcessing::kVersion, kPostProcessing, "POSTPROCESSING_SECTION"};

}  // namespace

CTrcPostProcessing::CTrcPostProcessing() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
