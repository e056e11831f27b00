#include "setup/Rpm.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.rpm", CLSID_CRpm, "Sonvara Rpm", &CRpm::create}};

constexpr EnumPair kRpmEnums[] = {
    {1, u"Source"},
    {409, u"Free Run"},
    {410, u"Positive slope"},
    {411, u"Negative slope"},
    {471, u"Ext trigger pos edge"},
    {472, u"Ext trigger neg edge"},
    {550, u"RPM"},
    {551, u"Manual"},
    {560, u"Run Up"},
    {561, u"Run Down"},
    {562, u"Run Up & Down"},
    {563, u"Run Down & Up"},
    {570, u"Start RPM"},
    {571, u"Average RPM"},
    {572, u"RPM By Sample"},
    {580, u"Undefined"},
    {581, u"Square"},
    {582, u"Sine"},
    {825, u"Zone Exit"},
    {826, u"Zone Entry"},
};

// Three generations, the tag a long at the head: 236 bytes, then the trigger (40 more), then the
// rotation method (24 more).
using R = RpmFields;
using namespace record;
constexpr Field<R, 3> kRpmFields[] = {
    {text(&R::Name, 100), {4, 4, 4}},
    {i32(&R::RPMChannel), {104, 104, 104}},
    {f32(&R::NbPulseByRevolution), {108, 108, 108}},
    {f32(&R::StartRPM), {112, 112, 112}},
    {f32(&R::EndRPM), {116, 116, 116}},
    {f32(&R::StartTime), {120, 120, 120}},
    {f32(&R::EndTime), {124, 124, 124}},
    {i32(&R::StartMode), {128, 128, 128}},
    {i32(&R::EndMode), {132, 132, 132}},
    {i32(&R::IntervalMode), {136, 136, 136}},
    {f32(&R::RPMIncrement), {140, 140, 140}},
    {f32(&R::TimeInterval), {144, 144, 144}},
    {i32(&R::ConditionsMode), {148, 148, 148}},
    {i16(&R::RPMRangeEnable), {152, 152, 152}},
    {f32(&R::RPMRange), {156, 156, 156}},
    {i32(&R::SaveRPMAction), {160, 160, 160}},
    {f32(&R::OrderResolution), {164, 164, 164}},
    {i16(&R::Activated), {168, 168, 168}},
    {text(&R::Orders, 64), {172, 172, 172}},
    {i32(&R::TriggerChannel), {-1, 236, 236}},
    {i32(&R::TriggerMode), {-1, 240, 240}},
    {f32(&R::TriggerLevel), {-1, 244, 244}},
    {i32(&R::TriggerSignal), {-1, 248, 248}},
    {f32(&R::TriggerDelay), {-1, 252, 252}},
    {i32(&R::RotateMethod), {-1, -1, 276}},
};
constexpr section::Record<R, 3> kLayout{
    section::TagForm::Long, 0, {{{20021101, 236}, {20040225, 276}, {20060821, 300}}}, kRpmFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<RpmFields, 3> CRpm::kRecord = kLayout;
const EnumTable CRpm::kEnums{kRpmEnums};

HRESULT CRpm::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
