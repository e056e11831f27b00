#include "setup/Transducer.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.transducer", CLSID_CTransducer, "Sonvara Transducer", &CTransducer::create}};

constexpr EnumPair kTransducerEnums[] = {
    {0, u""},
    {130, u"Voltage"},
    {131, u"ICP\u00AE"},
    {132, u"Charge"},
    {133, u"Microphone"},
    {134, u"200V Microphone"},
    {135, u"Tacho"},
    {136, u"Strain"},
};

// One record of 568 bytes without a tag; the dates lie on an 8-byte boundary.
using R = TransducerFields;
using namespace record;
constexpr Field<R, 1> kTransducerFields[] = {
    {text(&R::SerialNumber, 100), {0}},
    {text(&R::Model, 100), {100}},
    {i32(&R::InputMode), {200}},
    {f32(&R::Sensitivity), {204}},
    {text(&R::Unit, 100), {208}},
    {text(&R::CalibrationType, 50), {308}},
    {f64(&R::CalibrationDate), {360}},
    {f64(&R::CalibrationDue), {368}},
    {text(&R::Comment, 192), {376}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::None, 0, {{{0, 568}}}, kTransducerFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<TransducerFields, 1> CTransducer::kRecord = kLayout;
const EnumTable CTransducer::kEnums{kTransducerEnums};

HRESULT CTransducer::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
