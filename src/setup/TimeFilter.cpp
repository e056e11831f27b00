#include "setup/TimeFilter.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.timefilter", CLSID_CTimeFilter, "Sonvara Time Filter",
                                 &CTimeFilter::create}};

// The tag as text in its 50 bytes, then a body of 64 bytes: the filter, its band, then room.
using R = TimeFilterFields;
using namespace record;
constexpr Field<R, 1> kTimeFilterFields[] = {
    {i32(&R::Type), {50}},
    {f32(&R::StartFrequency), {54}},
    {f32(&R::StopFrequency), {58}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::Text, 0, {{{20030123, 50 + 64}}}, kTimeFilterFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<TimeFilterFields, 1> CTimeFilter::kRecord = kLayout;

}  // namespace nvdl
