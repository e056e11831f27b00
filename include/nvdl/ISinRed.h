// ISinRed: the sine-reduction section of a setup: the tacho channel, the frequency span and how it is
// run through, the harmonics to follow, and the window of the reduction.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISINRED_MEMBERS(M)                                    \
    M(field_get, Name, (BSTR* value))                              \
    M(field_put, Name, (BSTR value))                               \
    M(field_get, COLAChannel, (LONG* value))                       \
    M(field_put, COLAChannel, (LONG value))                        \
    M(field_get, NbPulseByRevolution, (float* value))              \
    M(field_put, NbPulseByRevolution, (float value))               \
    M(field_get, StartFreq, (float* value))                        \
    M(field_put, StartFreq, (float value))                         \
    M(field_get, EndFreq, (float* value))                          \
    M(field_put, EndFreq, (float value))                           \
    M(field_get, StartTime, (float* value))                        \
    M(field_put, StartTime, (float value))                         \
    M(field_get, EndTime, (float* value))                          \
    M(field_put, EndTime, (float value))                           \
    M(field_get, StartMode, (LONG* value))                         \
    M(field_put, StartMode, (LONG value))                          \
    M(field_get, EndMode, (LONG* value))                           \
    M(field_put, EndMode, (LONG value))                            \
    M(field_get, IntervalMode, (LONG* value))                      \
    M(field_put, IntervalMode, (LONG value))                       \
    M(field_get, FreqStep, (float* value))                         \
    M(field_put, FreqStep, (float value))                          \
    M(field_get, TimeInterval, (float* value))                     \
    M(field_put, TimeInterval, (float value))                      \
    M(field_get, ConditionsMode, (LONG* value))                    \
    M(field_put, ConditionsMode, (LONG value))                     \
    M(field_get, OrderResolution, (float* value))                  \
    M(field_put, OrderResolution, (float value))                   \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(field_get, Harmonics, (BSTR* value))                         \
    M(field_put, Harmonics, (BSTR value))                          \
    M(field_get, TriggerLevel, (float* value))                     \
    M(field_put, TriggerLevel, (float value))                      \
    M(field_get, FreqPoints, (float* value))                       \
    M(field_put, FreqPoints, (float value))                        \
    M(field_get, FreqMode, (LONG* value))                          \
    M(field_put, FreqMode, (LONG value))                           \
    M(field_get, WindowType, (LONG* value))                        \
    M(field_put, WindowType, (LONG value))                         \
    M(field_get, WindowBandWidthLimit, (float* value))             \
    M(field_put, WindowBandWidthLimit, (float value))              \
    M(frame_call, Copy, (ISinRed* target))                         \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (ISinRed** copy))                         \
    M(call, Translate, (LONG code, BSTR* text))                    \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISinRed, NVDL_ISINRED_MEMBERS);
