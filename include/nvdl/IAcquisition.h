// IAcquisition: how a setup takes its data: the sampling rate, the trigger and the block sizes.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IACQUISITION_MEMBERS(M)                                      \
    M(field_get, SampleFrequency, (float* value))                         \
    M(put, SampleFrequency, (float value))                                \
    M(field_get, CenterFrequency, (float* value))                         \
    M(field_put, CenterFrequency, (float value))                          \
    M(field_get, TriggerMode, (LONG* value))                              \
    M(field_put, TriggerMode, (LONG value))                               \
    M(field_get, TriggerChannel, (LONG* value))                           \
    M(field_put, TriggerChannel, (LONG value))                            \
    M(field_get, TriggerLevel, (float* value))                            \
    M(field_put, TriggerLevel, (float value))                             \
    M(field_get, TriggerDelay, (float* value))                            \
    M(field_put, TriggerDelay, (float value))                             \
    M(field_get, AutoRangePercent, (float* value))                        \
    M(field_put, AutoRangePercent, (float value))                         \
    M(field_get, Blocksize, (LONG* value))                                \
    M(field_put, Blocksize, (LONG value))                                 \
    M(field_get, ArmMode, (LONG* value))                                  \
    M(field_put, ArmMode, (LONG value))                                   \
    M(frame_call, Copy, (IAcquisition* target))                           \
    M(frame_get, Modified, (SHORT* modified))                             \
    M(frame_put, Modified, (SHORT modified))                              \
    M(frame_get, Property, (BSTR name, BSTR* value))                      \
    M(frame_get, Setup, (IDispatch** setup))                              \
    M(frame_put, Setup, (IDispatch* setup))                               \
    M(call, Translate, (LONG code, BSTR* text))                           \
    M(frame_call, Clone, (IAcquisition** copy))                           \
    M(field_get, GapFree, (SHORT* value))                                 \
    M(field_put, GapFree, (SHORT value))                                  \
    M(get, ComputationBlocksize, (LONG* value))                           \
    M(put, ComputationBlocksize, (LONG value))                            \
    M(field_get, DigitalAC, (SHORT* value))                               \
    M(field_put, DigitalAC, (SHORT value))                                \
    M(field_get, AcquisitionBlocksize, (LONG* value))                     \
    M(field_put, AcquisitionBlocksize, (LONG value))                      \
    M(call, ComputeBlocksCount, (LONG blocks, float overlap, LONG* result)) \
    M(field_get, DataFormat, (LONG* value))                               \
    M(put, DataFormat, (LONG value))                                      \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))         \
    M(field_get, Name, (BSTR* value))                                     \
    M(field_put, Name, (BSTR value))

NVDL_INTERFACE(IAcquisition, NVDL_IACQUISITION_MEMBERS);
