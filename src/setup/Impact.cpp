#include "setup/Impact.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.Impact", CLSID_CImpact, "Sonvara Impact", &CImpact::create}};

// One generation: the tag as a text of 50 bytes, then the flag.
using R = ImpactFields;
using namespace record;
constexpr Field<R, 1> kImpactFields[] = {
    {i16(&R::Activated), {50}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::Text, 0, {{{20030703, 52}}}, kImpactFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<ImpactFields, 1> CImpact::kRecord = kLayout;

}  // namespace nvdl
