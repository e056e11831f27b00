#include "recording/TrcThroughput.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = ThroughputRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {text(&R::Filename, 400), {4}},
    {i32(&R::AutoIncrement), {404}},
    {f64(&R::Length), {408}},
    {i32(&R::Activated), {416}},
    {i32(&R::SequencingPeriod), {420}},
    {i32(&R::SequencingInterval), {424}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcThroughput::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcThroughput::kBlockSize, CTrcThroughput::kVersion,
                               CTrcThroughput::kVersion, kThroughput, "THROUGHPUT_SECTION"};

}  // namespace

CTrcThroughput::CTrcThroughput() : TrcFixedSection(kShape) {}

}  // namespace nvdl::trc
