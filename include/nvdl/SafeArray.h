// One-dimensional arrays of 32-bit floats, in the shape of the platform's SAFEARRAY.
#pragma once

#include <span>

#include "nvdl/Export.h"
#include "nvdl/Types.h"

NVDL_API_BEGIN

struct SAFEARRAYBOUND {
    ULONG cElements = 0;
    LONG lLbound = 0;
};

struct SAFEARRAY {
    USHORT cDims = 1;
    USHORT fFeatures = 0;
    ULONG cbElements = sizeof(float);
    ULONG cLocks = 0;
    void* pvData = nullptr;
    SAFEARRAYBOUND rgsabound[1];
};

// Creates a vector of `count` zeroed elements; only VT_R4 (4) is supported. Null on failure.
SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG count);
HRESULT SafeArrayDestroy(SAFEARRAY* array);
HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy);
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, unsigned dim, LONG* bound);
HRESULT SafeArrayGetUBound(SAFEARRAY* array, unsigned dim, LONG* bound);
unsigned SafeArrayGetDim(SAFEARRAY* array);

namespace nvdl {

// A new float vector holding a copy of `values`, lower bound 0. Null on failure.
SAFEARRAY* makeFloatArray(std::span<const float> values);
// The elements of a float vector (empty for null).
std::span<float> floatArrayData(SAFEARRAY* array);

}  // namespace nvdl

NVDL_API_END
