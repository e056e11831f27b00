#include "setup/SinRed.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.SinRed", CLSID_CSinRed, "Sonvara SinRed", &CSinRed::create}};

// The interval modes (StartMode, EndMode, IntervalMode) and the conditions modes. FreqMode and
// WindowType are plain numbers whose meaning the caller holds.
constexpr EnumPair kSinRedEnums[] = {
    {550, u"RPM"},
    {551, u"Manual"},
    {560, u"Run Up"},
    {561, u"Run Down"},
    {562, u"Run Up & Down"},
    {563, u"Run Down & Up"},
};

// Four generations, the tag a long at the head, in three sizes: the first two tags share the record
// of 224 bytes that ends with the harmonics; 20061220 adds 24 bytes (the trigger level and the
// frequency points and mode, then room), 20070404 adds 284 (the window, then room).
using R = SinRedFields;
using namespace record;
constexpr Field<R, 4> kSinRedFields[] = {
    {text(&R::Name, 100), {4, 4, 4, 4}},
    {i32(&R::COLAChannel), {104, 104, 104, 104}},
    {f32(&R::NbPulseByRevolution), {108, 108, 108, 108}},
    {f32(&R::StartFreq), {112, 112, 112, 112}},
    {f32(&R::EndFreq), {116, 116, 116, 116}},
    {f32(&R::StartTime), {120, 120, 120, 120}},
    {f32(&R::EndTime), {124, 124, 124, 124}},
    {i32(&R::StartMode), {128, 128, 128, 128}},
    {i32(&R::EndMode), {132, 132, 132, 132}},
    {i32(&R::IntervalMode), {136, 136, 136, 136}},
    {f32(&R::FreqStep), {140, 140, 140, 140}},
    {f32(&R::TimeInterval), {144, 144, 144, 144}},
    {i32(&R::ConditionsMode), {148, 148, 148, 148}},
    {f32(&R::OrderResolution), {152, 152, 152, 152}},
    {i16(&R::Activated), {156, 156, 156, 156}},
    {text(&R::Harmonics, 64), {160, 160, 160, 160}},
    {f32(&R::TriggerLevel), {-1, -1, 224, 224}},
    {f32(&R::FreqPoints), {-1, -1, 228, 228}},
    {i32(&R::FreqMode), {-1, -1, 232, 232}},
    {i32(&R::WindowType), {-1, -1, -1, 248}},
    {f32(&R::WindowBandWidthLimit), {-1, -1, -1, 252}},
};
constexpr section::Record<R, 4> kLayout{
    section::TagForm::Long,
    0,
    {{{20060822, 224}, {20060922, 224}, {20061220, 248}, {20070404, 532}}},
    kSinRedFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<SinRedFields, 4> CSinRed::kRecord = kLayout;
const EnumTable CSinRed::kEnums{kSinRedEnums};

HRESULT CSinRed::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
