// ISourceChannel: one signal output of the front end: whether it drives, its waveform and level,
// the sine and sweep settings, and the file of an arbitrary waveform.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISOURCECHANNEL_MEMBERS(M)                              \
    M(field_get, Name, (BSTR* value))                               \
    M(field_put, Name, (BSTR value))                                \
    M(field_get, Usage, (LONG* value))                              \
    M(field_put, Usage, (LONG value))                               \
    M(field_get, Mode, (LONG* value))                               \
    M(field_put, Mode, (LONG value))                                \
    M(field_get, Level, (float* value))                             \
    M(field_put, Level, (float value))                              \
    M(field_get, BurstPercent, (LONG* value))                       \
    M(field_put, BurstPercent, (LONG value))                        \
    M(field_get, RampTime, (float* value))                          \
    M(field_put, RampTime, (float value))                           \
    M(field_get, SineFrequency, (float* value))                     \
    M(field_put, SineFrequency, (float value))                      \
    M(field_get, SinePhase, (float* value))                         \
    M(field_put, SinePhase, (float value))                          \
    M(field_get, Bandwidth, (float* value))                         \
    M(field_put, Bandwidth, (float value))                          \
    M(field_get, EndFrequency, (float* value))                      \
    M(field_put, EndFrequency, (float value))                       \
    M(field_get, SweepType, (LONG* value))                          \
    M(field_put, SweepType, (LONG value))                           \
    M(field_get, StartFrequency, (float* value))                    \
    M(field_put, StartFrequency, (float value))                     \
    M(field_get, StartPhase, (float* value))                        \
    M(field_put, StartPhase, (float value))                         \
    M(field_get, Filename, (BSTR* value))                           \
    M(field_put, Filename, (BSTR value))                            \
    M(field_get, SweepRate, (float* value))                         \
    M(field_put, SweepRate, (float value))                          \
    M(field_get, SweepTime, (LONG* value))                          \
    M(field_put, SweepTime, (LONG value))                           \
    M(frame_call, Copy, (ISourceChannel* target))                   \
    M(frame_get, Modified, (SHORT* modified))                       \
    M(frame_put, Modified, (SHORT modified))                        \
    M(frame_get, Setup, (IDispatch** setup))                        \
    M(frame_put, Setup, (IDispatch* setup))                         \
    M(frame_call, Clone, (ISourceChannel** copy))                   \
    M(call, Translate, (LONG code, BSTR* text))                     \
    M(frame_get, Property, (BSTR name, BSTR* value))                \
    M(frame_put, Property, (BSTR name, BSTR value))                 \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISourceChannel, NVDL_ISOURCECHANNEL_MEMBERS);
