#include "setup/ShockCapture.h"

#include <algorithm>

#include "frame/ClassTable.h"
#include "nvdl/SafeArray.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.ShockCapture", CLSID_CShockCapture, "Sonvara ShockCapture",
                                 &CShockCapture::create}};

// One generation, the tag a long at the head: the plain values and the two counts in 136 bytes.
using R = ShockCaptureFields;
using namespace record;
constexpr Field<R, 1> kShockCaptureFields[] = {
    {text(&R::Name, 100), {4}},
    {f32(&R::PulsePeak), {104}},
    {f32(&R::PulseDuration), {108}},
    {i16(&R::Activated), {112}},
    {i32(&R::RefType), {116}},
    {f32(&R::LowPassExc), {120}},
    {f32(&R::LowPassResp), {124}},
    {i32(&R::UpperLimitsCount), {128}},
    {i32(&R::LowerLimitsCount), {132}},
};
constexpr section::Record<R, 1> kLayout{section::TagForm::Long, 0, {{{20070509, 136}}}, kShockCaptureFields};
static_assert(section::wellFormed(kLayout));

}  // namespace

const section::Record<ShockCaptureFields, 1> CShockCapture::kRecord = kLayout;
// No texts are known for this section's values (RefType is the caller's): every code answers empty.
const EnumTable CShockCapture::kEnums{std::span<const EnumPair>{}};

HRESULT CShockCapture::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

// The values of the array fill the room from its start and the rest of the room is cleared; an array
// longer than the room is refused and the profile stays as it was.
HRESULT CShockCapture::setLimits(LimitValues& room, std::int32_t& count, SAFEARRAY* limits) {
    if (!limits) return E_POINTER;
    if (SafeArrayGetDim(limits) != 1 || limits->cbElements != sizeof(float)) return E_INVALIDARG;
    const std::span<const float> values = floatArrayData(limits);
    if (values.size() > room.size()) return E_INVALIDARG;
    room.fill(0.0f);
    std::copy(values.begin(), values.end(), room.begin());
    count = static_cast<std::int32_t>(values.size());
    return static_cast<IShockCapture*>(this)->put_Modified(1);
}

HRESULT CShockCapture::setCount(std::int32_t& count, LONG value) {
    if (value < 0 || static_cast<std::size_t>(value) > kLimitRoom) return E_INVALIDARG;
    count = value;
    return static_cast<IShockCapture*>(this)->put_Modified(1);
}

namespace {

HRESULT giveLimits(const LimitValues& room, std::int32_t count, SAFEARRAY** limits) {
    if (!limits) return E_POINTER;
    *limits = makeFloatArray(std::span<const float>(room.data(), static_cast<std::size_t>(count)));
    return *limits ? S_OK : E_OUTOFMEMORY;
}

HRESULT giveBounds(LONG* rows, LONG* columns) {
    if (!rows || !columns) return E_POINTER;
    *rows = kLimitRows;
    *columns = kLimitColumns;
    return S_OK;
}

}  // namespace

HRESULT CShockCapture::SetUpperLimits(SAFEARRAY* limits) {
    return setLimits(m_fields.UpperLimits, m_fields.UpperLimitsCount, limits);
}
HRESULT CShockCapture::GetUpperLimits(SAFEARRAY** limits) {
    return giveLimits(m_fields.UpperLimits, m_fields.UpperLimitsCount, limits);
}
HRESULT CShockCapture::get_UpperLimitsCount(LONG* count) { return field::give(m_fields.UpperLimitsCount, count); }
HRESULT CShockCapture::put_UpperLimitsCount(LONG count) { return setCount(m_fields.UpperLimitsCount, count); }
HRESULT CShockCapture::GetUpperLimitBounds(LONG* rows, LONG* columns) { return giveBounds(rows, columns); }

HRESULT CShockCapture::SetLowerLimits(SAFEARRAY* limits) {
    return setLimits(m_fields.LowerLimits, m_fields.LowerLimitsCount, limits);
}
HRESULT CShockCapture::GetLowerLimits(SAFEARRAY** limits) {
    return giveLimits(m_fields.LowerLimits, m_fields.LowerLimitsCount, limits);
}
HRESULT CShockCapture::get_LowerLimitsCount(LONG* count) { return field::give(m_fields.LowerLimitsCount, count); }
HRESULT CShockCapture::put_LowerLimitsCount(LONG count) { return setCount(m_fields.LowerLimitsCount, count); }
HRESULT CShockCapture::GetLowerLimitBounds(LONG* rows, LONG* columns) { return giveBounds(rows, columns); }

}  // namespace nvdl
