#include "setup/SourceChannel.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{
    {"nv_bench.source", CLSID_CSourceChannel, "Sonvara SourceChannel", &CSourceChannel::create}};

constexpr EnumPair kSourceChannelEnums[] = {
    {0, u"Inactive"},
    {1, u"Active"},
    {170, u"Sine"},
    {171, u"Burst Sine"},
    {172, u"Random"},
    {173, u"Burst Random"},
    {174, u"Zoomed Random"},
    {175, u"Zoomed Burst Random"},
    {176, u"Arbitrary"},
    {177, u"Burst Arbitrary"},
    {270, u"Triangle"},
    {271, u"Square"},
    {272, u"Chirp"},
    {273, u"DC"},
    {274, u"Stepped Sine"},
    {275, u"Periodic Random"},
    {276, u"Sine Sweep"},
    {277, u"Linear"},
    {278, u"Logarithmic"},
};

// Three generations, the tag a long at the head of each: 132 bytes up to the sine phase; 344 with
// the sweep band and the waveform file (tag 20051221); 808 with the sweep rate and time (tag
// 20060810). The oldest form has no date of its own: every tag from 0 up to the day before the
// first date names it, and a negative one is refused.
using R = SourceChannelFields;
using namespace record;
constexpr Field<R, 3> kSourceChannelFields[] = {
    {text(&R::Name, 100), {4, 4, 4}},
    {i32(&R::Usage), {104, 104, 104}},
    {i32(&R::Mode), {108, 108, 108}},
    {f32(&R::Level), {112, 112, 112}},
    {i32(&R::BurstPercent), {116, 116, 116}},
    {f32(&R::RampTime), {120, 120, 120}},
    {f32(&R::SineFrequency), {124, 124, 124}},
    {f32(&R::SinePhase), {128, 128, 128}},
    {f32(&R::Bandwidth), {-1, 132, 132}},
    {f32(&R::EndFrequency), {-1, 136, 136}},
    {i32(&R::SweepType), {-1, 140, 140}},
    {f32(&R::StartFrequency), {-1, 144, 144}},
    {f32(&R::StartPhase), {-1, 148, 148}},
    {text(&R::Filename, 192), {-1, 152, 152}},
    {f32(&R::SweepRate), {-1, -1, 344}},
    {i32(&R::SweepTime), {-1, -1, 348}},
};
constexpr section::Record<R, 3> kLayout{
    section::TagForm::Long, 0, {{{0, 132}, {20051221, 344}, {20060810, 808}}}, kSourceChannelFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<SourceChannelFields, 3> CSourceChannel::kRecord = kLayout;
const EnumTable CSourceChannel::kEnums{kSourceChannelEnums};

HRESULT CSourceChannel::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
