#include "setup/StrainChannel.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{
    {"nv_bench.strain", CLSID_CStrainChannel, "Sonvara StrainChannel", &CStrainChannel::create}};

constexpr EnumPair kStrainChannelEnums[] = {
    {0, u""},
    {10183, u"Full Bridge I"},
    {10184, u"Full Bridge II"},
    {10185, u"Full Bridge III"},
    {10188, u"Half Bridge I"},
    {10189, u"Half Bridge II"},
    {10271, u"Quarter Bridge I"},
    {10272, u"Quarter Bridge II"},
};

// One record of 100 bytes without a tag: the numbers, the calibration date, then the two texts in
// what is left (a calibration type of up to 11 characters, a comment of up to 27).
using R = StrainChannelFields;
using namespace record;
constexpr Field<R, 1> kStrainChannelFields[] = {
    {f32(&R::MinRange), {0}},
    {f32(&R::MaxRange), {4}},
    {i32(&R::Config), {8}},
    {i32(&R::VexSource), {12}},
    {f32(&R::VexValue), {16}},
    {f32(&R::GageFactor), {20}},
    {f32(&R::InitBridgeVoltage), {24}},
    {f32(&R::GageResistance), {28}},
    {f32(&R::PoissonRatio), {32}},
    {f32(&R::LeadWireResistance), {36}},
    {f32(&R::Gain), {40}},
    {f32(&R::LowPassFilter), {44}},
    {f32(&R::Offset), {48}},
    {f64(&R::CalibrationDate), {52}},
    {text(&R::CalibrationType, 12), {60}},
    {text(&R::Comment, 28), {72}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::None, 0, {{{0, 100}}}, kStrainChannelFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<StrainChannelFields, 1> CStrainChannel::kRecord = kLayout;
const EnumTable CStrainChannel::kEnums{kStrainChannelEnums};

HRESULT CStrainChannel::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
