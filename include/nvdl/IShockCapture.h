// IShockCapture: the shock-capture section of a setup: the nominal pulse, the upper and lower limit
// profiles that a captured shock must stay between, the reference and the low-pass filters.
// A limit profile is a fixed room of floats (rows of three values) of which the first `...Count`
// are in use; the Set/Get members take and give the values in use as a one-dimensional float array,
// and Get...LimitBounds tells the room's rows and columns.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"
#include "nvdl/SafeArray.h"

#define NVDL_ISHOCKCAPTURE_MEMBERS(M)                              \
    M(field_get, Name, (BSTR* value))                              \
    M(field_put, Name, (BSTR value))                               \
    M(call, SetUpperLimits, (SAFEARRAY* limits))                   \
    M(call, GetUpperLimits, (SAFEARRAY** limits))                  \
    M(get, UpperLimitsCount, (LONG* count))                        \
    M(put, UpperLimitsCount, (LONG count))                         \
    M(call, GetUpperLimitBounds, (LONG* rows, LONG* columns))      \
    M(call, SetLowerLimits, (SAFEARRAY* limits))                   \
    M(call, GetLowerLimits, (SAFEARRAY** limits))                  \
    M(get, LowerLimitsCount, (LONG* count))                        \
    M(put, LowerLimitsCount, (LONG count))                         \
    M(call, GetLowerLimitBounds, (LONG* rows, LONG* columns))      \
    M(field_get, PulsePeak, (float* value))                        \
    M(field_put, PulsePeak, (float value))                         \
    M(field_get, PulseDuration, (float* value))                    \
    M(field_put, PulseDuration, (float value))                     \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(field_get, RefType, (LONG* value))                           \
    M(field_put, RefType, (LONG value))                            \
    M(field_get, LowPassExc, (float* value))                       \
    M(field_put, LowPassExc, (float value))                        \
    M(field_get, LowPassResp, (float* value))                      \
    M(field_put, LowPassResp, (float value))                       \
    M(frame_call, Copy, (IShockCapture* target))                   \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IShockCapture** copy))                   \
    M(call, Translate, (LONG code, BSTR* text))                    \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IShockCapture, NVDL_ISHOCKCAPTURE_MEMBERS);
