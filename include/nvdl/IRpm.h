// IRpm: the order-tracking section of a setup: the tacho channel, the RPM span and how it is run
// through, the orders to follow and the trigger.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IRPM_MEMBERS(M)                                       \
    M(field_get, Name, (BSTR* value))                              \
    M(field_put, Name, (BSTR value))                               \
    M(field_get, RPMChannel, (LONG* value))                        \
    M(field_put, RPMChannel, (LONG value))                         \
    M(field_get, NbPulseByRevolution, (float* value))              \
    M(field_put, NbPulseByRevolution, (float value))               \
    M(field_get, StartRPM, (float* value))                         \
    M(field_put, StartRPM, (float value))                          \
    M(field_get, EndRPM, (float* value))                           \
    M(field_put, EndRPM, (float value))                            \
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
    M(field_get, RPMIncrement, (float* value))                     \
    M(field_put, RPMIncrement, (float value))                      \
    M(field_get, TimeInterval, (float* value))                     \
    M(field_put, TimeInterval, (float value))                      \
    M(field_get, ConditionsMode, (LONG* value))                    \
    M(field_put, ConditionsMode, (LONG value))                     \
    M(field_get, RPMRangeEnable, (SHORT* value))                   \
    M(field_put, RPMRangeEnable, (SHORT value))                    \
    M(field_get, RPMRange, (float* value))                         \
    M(field_put, RPMRange, (float value))                          \
    M(field_get, SaveRPMAction, (LONG* value))                     \
    M(field_put, SaveRPMAction, (LONG value))                      \
    M(field_get, OrderResolution, (float* value))                  \
    M(field_put, OrderResolution, (float value))                   \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(field_get, Orders, (BSTR* value))                            \
    M(field_put, Orders, (BSTR value))                             \
    M(field_get, TriggerChannel, (LONG* value))                    \
    M(field_put, TriggerChannel, (LONG value))                     \
    M(field_get, TriggerMode, (LONG* value))                       \
    M(field_put, TriggerMode, (LONG value))                        \
    M(field_get, TriggerLevel, (float* value))                     \
    M(field_put, TriggerLevel, (float value))                      \
    M(field_get, TriggerSignal, (LONG* value))                     \
    M(field_put, TriggerSignal, (LONG value))                      \
    M(field_get, TriggerDelay, (float* value))                     \
    M(field_put, TriggerDelay, (float value))                      \
    M(field_get, RotateMethod, (LONG* value))                      \
    M(field_put, RotateMethod, (LONG value))                       \
    M(frame_call, Copy, (IRpm* target))                            \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IRpm** copy))                            \
    M(call, Translate, (LONG code, BSTR* text))                    \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IRpm, NVDL_IRPM_MEMBERS);
