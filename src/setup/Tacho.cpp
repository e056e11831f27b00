#include "setup/Tacho.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.tacho", CLSID_CTacho, "Sonvara Tacho", &CTacho::create}};

// One generation without a tag: the name, 100 bytes.
using R = TachoFields;
using namespace record;
constexpr Field<R, 1> kTachoFields[] = {
    {text(&R::Name, 100), {0}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::None, 0, {{{0, 100}}}, kTachoFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<TachoFields, 1> CTacho::kRecord = kLayout;

}  // namespace nvdl
