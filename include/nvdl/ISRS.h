// ISRS: the shock-response-spectrum section of a setup: the frequency span and its spacing, the
// damping of the single-degree-of-freedom oscillators, the offset and drift corrections, and the
// limit curve as a fixed array of floats.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISRS_MEMBERS(M)                                       \
    M(field_get, Name, (BSTR* value))                              \
    M(field_put, Name, (BSTR value))                               \
    M(call, SetLimits, (SAFEARRAY* limits))                        \
    M(call, GetLimits, (SAFEARRAY** limits))                       \
    M(call, GetLimitBounds, (LONG* lower, LONG* upper))            \
    M(field_get, FreqMin, (float* value))                          \
    M(field_put, FreqMin, (float value))                           \
    M(field_get, FreqMax, (float* value))                          \
    M(field_put, FreqMax, (float value))                           \
    M(field_get, OctaveSpacing, (float* value))                    \
    M(field_put, OctaveSpacing, (float value))                     \
    M(field_get, SDOFDamping, (float* value))                      \
    M(field_put, SDOFDamping, (float value))                       \
    M(field_get, DCOffset, (SHORT* value))                         \
    M(field_put, DCOffset, (SHORT value))                          \
    M(field_get, Drift, (SHORT* value))                            \
    M(field_put, Drift, (SHORT value))                             \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(frame_call, Copy, (ISRS* target))                            \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (ISRS** copy))                            \
    M(call, Translate, (LONG code, BSTR* text))                    \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISRS, NVDL_ISRS_MEMBERS);
