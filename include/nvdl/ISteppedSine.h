// ISteppedSine: the stepped-sine section of a setup: the frequency sweep in steps, the settling
// delay and the averaging at each step.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISTEPPEDSINE_MEMBERS(M)                               \
    M(field_get, Name, (BSTR* value))                              \
    M(field_put, Name, (BSTR value))                               \
    M(field_get, FreqStart, (float* value))                        \
    M(field_put, FreqStart, (float value))                         \
    M(field_get, FreqEnd, (float* value))                          \
    M(field_put, FreqEnd, (float value))                           \
    M(field_get, FreqIncr, (float* value))                         \
    M(field_put, FreqIncr, (float value))                          \
    M(field_get, Delay, (float* value))                            \
    M(field_put, Delay, (float value))                             \
    M(field_get, Averaging, (float* value))                        \
    M(field_put, Averaging, (float value))                         \
    M(field_get, Type, (LONG* value))                              \
    M(field_put, Type, (LONG value))                               \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(frame_call, Copy, (ISteppedSine* target))                    \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (ISteppedSine** copy))                    \
    M(call, Translate, (LONG code, BSTR* text))                    \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISteppedSine, NVDL_ISTEPPEDSINE_MEMBERS);
