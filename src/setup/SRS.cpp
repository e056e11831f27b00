#include "setup/SRS.h"

#include <algorithm>

#include "frame/ClassTable.h"
#include "nvdl/SafeArray.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.SRS", CLSID_CSRS, "Sonvara SRS", &CSRS::create}};

}  // namespace

const EnumTable CSRS::kEnums{std::span<const EnumPair>{}};

HRESULT CSRS::SetLimits(SAFEARRAY* limits) {
    if (!limits) return E_INVALIDARG;
    const std::span<const float> values = floatArrayData(limits);
    if (values.size() > m_fields.Limits.size()) return E_INVALIDARG;
    auto end = std::copy(values.begin(), values.end(), m_fields.Limits.begin());
    std::fill(end, m_fields.Limits.end(), 0.0f);
    return static_cast<ISRS*>(this)->put_Modified(1);
}

HRESULT CSRS::GetLimits(SAFEARRAY** limits) {
    if (!limits) return E_POINTER;
    *limits = makeFloatArray(m_fields.Limits);
    return *limits ? S_OK : E_OUTOFMEMORY;
}

HRESULT CSRS::GetLimitBounds(LONG* lower, LONG* upper) {
    if (!lower || !upper) return E_POINTER;
    *lower = 0;
    *upper = static_cast<LONG>(m_fields.Limits.size()) - 1;
    return S_OK;
}

HRESULT CSRS::Translate(LONG code, BSTR* text) { return kEnums.translate(code, text); }

}  // namespace nvdl
