// IInputChannel: one physical input of the front end: whether it is recorded and what for, its
// coupling, range and weighting, its tacho settings, and the user-defined FIR weighting that all
// channels of the installation share.
#pragma once

#include "nvdl/IMeasurement.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IINPUTCHANNEL_MEMBERS(M)                                                 \
    M(field_get, Name, (BSTR* value))                                                 \
    M(field_put, Name, (BSTR value))                                                  \
    M(field_get, Recorded, (SHORT* value))                                            \
    M(field_put, Recorded, (SHORT value))                                             \
    M(field_get, Usage, (LONG* value))                                                \
    M(field_put, Usage, (LONG value))                                                 \
    M(field_get, Coupling, (LONG* value))                                             \
    M(field_put, Coupling, (LONG value))                                              \
    M(field_get, Differential, (LONG* value))                                         \
    M(field_put, Differential, (LONG value))                                          \
    M(field_get, Range, (float* value))                                               \
    M(field_put, Range, (float value))                                                \
    M(field_get, PreGain, (float* value))                                             \
    M(field_put, PreGain, (float value))                                              \
    M(field_get, Weighting, (LONG* value))                                            \
    M(field_put, Weighting, (LONG value))                                             \
    M(field_get, Offset, (float* value))                                              \
    M(field_put, Offset, (float value))                                               \
    M(call, Translate, (LONG code, BSTR* text))                                       \
    M(frame_call, Copy, (IInputChannel* target))                                      \
    M(frame_get, Modified, (SHORT* modified))                                         \
    M(frame_put, Modified, (SHORT modified))                                          \
    M(frame_get, Property, (BSTR name, BSTR* value))                                  \
    M(frame_put, Property, (BSTR name, BSTR value))                                   \
    M(frame_get, Setup, (IDispatch** setup))                                          \
    M(frame_put, Setup, (IDispatch* setup))                                           \
    M(frame_call, Clone, (IInputChannel** copy))                                      \
    M(field_get, AcqScaleFactor, (float* value))                                      \
    M(field_put, AcqScaleFactor, (float value))                                       \
    M(field_get, Tacho, (LONG* value))                                                \
    M(field_put, Tacho, (LONG value))                                                 \
    M(field_get, TachoPulses, (float* value))                                         \
    M(field_put, TachoPulses, (float value))                                          \
    M(field_get, TachoLevel, (float* value))                                          \
    M(field_put, TachoLevel, (float value))                                           \
    M(field_get, TachoMode, (LONG* value))                                            \
    M(field_put, TachoMode, (LONG value))                                             \
    M(field_get, TachoUnit, (BSTR* value))                                            \
    M(field_put, TachoUnit, (BSTR value))                                             \
    M(call, DeleteFIRUserWeightingData, (SHORT* result))                              \
    M(call, CreateFIRUserWeightingData, (IMeasurement* measurement, SHORT* result))   \
    M(call, SearchFIRUserWeightingData, (SHORT* result))                              \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IInputChannel, NVDL_IINPUTCHANNEL_MEMBERS);
