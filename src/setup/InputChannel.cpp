#include "setup/InputChannel.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{
    {"nv_bench.input", CLSID_CInputChannel, "Sonvara InputChannel", &CInputChannel::create}};

// Usage, coupling, weighting, input mode and tacho mode in one table. The FIR C-weighting stands
// twice; a search by text finds the first of the two.
constexpr EnumPair kInputChannelEnums[] = {
    {0, u"Inactive"},
    {1, u"Response"},
    {2, u"Excitation"},
    {100, u"AC"},
    {101, u"DC"},
    {105, u"Off"},
    {106, u"Ext A-weighting"},
    {107, u"Ext B-weighting"},
    {108, u"Ext C-weighting"},
    {118, u"Int A-weighting"},
    {119, u"Int B-weighting"},
    {120, u"Int C-weighting"},
    {121, u"Differential"},
    {122, u"Grounded"},
    {200, u"Off"},
    {201, u"Master"},
    {202, u"Tacho"},
    {5121, u"Fir C-weighting"},
    {5121, u"Fir C-weighting"},
    {5122, u"Fir D-weighting"},
    {5123, u"Fir H-weighting"},
    {5124, u"Fir K-weighting"},
};

// Two generations, the tag a long at the head: 196 bytes up to the acquisition scale factor, then
// 628 bytes with the tacho settings after the older record's end.
using R = InputChannelFields;
using namespace record;
constexpr Field<R, 2> kInputChannelFields[] = {
    {text(&R::Name, 100), {4, 4}},
    {i16(&R::Recorded), {104, 104}},
    {i32(&R::Usage), {108, 108}},
    {i32(&R::Coupling), {112, 112}},
    {i32(&R::Differential), {116, 116}},
    {f32(&R::Range), {120, 120}},
    {f32(&R::PreGain), {124, 124}},
    {i32(&R::Weighting), {128, 128}},
    {f32(&R::Offset), {132, 132}},
    {f32(&R::AcqScaleFactor), {136, 136}},
    {i32(&R::Tacho), {-1, 196}},
    {f32(&R::TachoPulses), {-1, 200}},
    {f32(&R::TachoLevel), {-1, 204}},
    {i32(&R::TachoMode), {-1, 208}},
    {text(&R::TachoUnit, 50), {-1, 212}},
};
constexpr section::Record<R, 2> kLayout{
    section::TagForm::Long, 0, {{{19981027, 196}, {19990219, 628}}}, kInputChannelFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<InputChannelFields, 2> CInputChannel::kRecord = kLayout;
const EnumTable CInputChannel::kEnums{kInputChannelEnums};

HRESULT CInputChannel::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
