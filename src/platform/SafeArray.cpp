#include "nvdl/SafeArray.h"

#include <cstdlib>
#include <new>
#include <cstring>

#include "nvdl/HResult.h"

namespace {
constexpr VARTYPE kVtR4 = 4;
constexpr ULONG kMaxElements = 0x7FFFFFFFu / sizeof(float);
}  // namespace

SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG count) {
    if (vt != kVtR4 || count > kMaxElements) return nullptr;
    auto* array = new (std::nothrow) SAFEARRAY;
    if (!array) return nullptr;
    array->rgsabound[0] = {count, lowerBound};
    if (count) {
        array->pvData = std::calloc(count, sizeof(float));
        if (!array->pvData) {
            delete array;
            return nullptr;
        }
    }
    return array;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
    if (!array) return S_OK;
    if (array->cLocks) return hr(0x8002000D);  // DISP_E_ARRAYISLOCKED
    std::free(array->pvData);
    delete array;
    return S_OK;
}

HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy) {
    if (!copy) return E_POINTER;
    *copy = nullptr;
    if (!source) return S_OK;
    SAFEARRAY* result = SafeArrayCreateVector(kVtR4, source->rgsabound[0].lLbound, source->rgsabound[0].cElements);
    if (!result) return E_OUTOFMEMORY;
    if (source->rgsabound[0].cElements)
        std::memcpy(result->pvData, source->pvData, source->rgsabound[0].cElements * sizeof(float));
    *copy = result;
    return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
    if (!array || !data) return E_INVALIDARG;
    ++array->cLocks;
    *data = array->pvData;
    return S_OK;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
    if (!array) return E_INVALIDARG;
    if (array->cLocks == 0) return E_UNEXPECTED;
    --array->cLocks;
    return S_OK;
}

HRESULT SafeArrayGetLBound(SAFEARRAY* array, unsigned dim, LONG* bound) {
    if (!array || !bound) return E_INVALIDARG;
    if (dim != 1) return DISP_E_BADINDEX;
    *bound = array->rgsabound[0].lLbound;
    return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, unsigned dim, LONG* bound) {
    if (!array || !bound) return E_INVALIDARG;
    if (dim != 1) return DISP_E_BADINDEX;
    *bound = array->rgsabound[0].lLbound + static_cast<LONG>(array->rgsabound[0].cElements) - 1;
    return S_OK;
}

unsigned SafeArrayGetDim(SAFEARRAY* array) { return array ? array->cDims : 0; }

namespace nvdl {

SAFEARRAY* makeFloatArray(std::span<const float> values) {
    if (values.size() > kMaxElements) return nullptr;
    SAFEARRAY* array = SafeArrayCreateVector(kVtR4, 0, static_cast<ULONG>(values.size()));
    if (array && !values.empty()) std::memcpy(array->pvData, values.data(), values.size_bytes());
    return array;
}

std::span<float> floatArrayData(SAFEARRAY* array) {
    if (!array || !array->pvData) return {};
    return {static_cast<float*>(array->pvData), array->rgsabound[0].cElements};
}

}  // namespace nvdl
