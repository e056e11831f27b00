#include "setup/SteppedSine.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{
    {"nv_bench.SteppedSine", CLSID_CSteppedSine, "Sonvara SteppedSine", &CSteppedSine::create}};

// One generation without a tag, 128 bytes; the last two are reserved and written as zeros.
using R = SteppedSineFields;
using namespace record;
constexpr Field<R, 1> kSteppedSineFields[] = {
    {text(&R::Name, 100), {0}},
    {f32(&R::FreqStart), {100}},
    {f32(&R::FreqEnd), {104}},
    {f32(&R::FreqIncr), {108}},
    {f32(&R::Delay), {112}},
    {f32(&R::Averaging), {116}},
    {i32(&R::Type), {120}},
    {i16(&R::Activated), {124}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::None, 0, {{{0, 128}}}, kSteppedSineFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<SteppedSineFields, 1> CSteppedSine::kRecord = kLayout;
const EnumTable CSteppedSine::kEnums{std::span<const EnumPair>{}};

HRESULT CSteppedSine::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
