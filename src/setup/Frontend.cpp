#include "setup/Frontend.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.Frontend", CLSID_CFrontend, "Sonvara Frontend", &CFrontend::create}};

// One record of 208 bytes without a tag: type and model, then the module and the address.
using R = FrontendFields;
using namespace record;
constexpr Field<R, 1> kFrontendFields[] = {
    {i32(&R::Type), {0}},
    {i32(&R::Model), {4}},
    {text(&R::Module, 100), {8}},
    {text(&R::LogicalAddress, 100), {108}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::None, 0, {{{0, 208}}}, kFrontendFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<FrontendFields, 1> CFrontend::kRecord = kLayout;

}  // namespace nvdl
