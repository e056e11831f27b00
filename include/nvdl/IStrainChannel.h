// IStrainChannel: a strain-gauge bridge on an input: its range, bridge configuration and
// excitation, the gauge's properties and calibration.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISTRAINCHANNEL_MEMBERS(M)                              \
    M(field_get, MinRange, (float* value))                          \
    M(field_put, MinRange, (float value))                           \
    M(field_get, MaxRange, (float* value))                          \
    M(field_put, MaxRange, (float value))                           \
    M(field_get, Config, (LONG* value))                             \
    M(field_put, Config, (LONG value))                              \
    M(field_get, VexSource, (LONG* value))                          \
    M(field_put, VexSource, (LONG value))                           \
    M(field_get, VexValue, (float* value))                          \
    M(field_put, VexValue, (float value))                           \
    M(field_get, GageFactor, (float* value))                        \
    M(field_put, GageFactor, (float value))                         \
    M(field_get, InitBridgeVoltage, (float* value))                 \
    M(field_put, InitBridgeVoltage, (float value))                  \
    M(field_get, GageResistance, (float* value))                    \
    M(field_put, GageResistance, (float value))                     \
    M(field_get, PoissonRatio, (float* value))                      \
    M(field_put, PoissonRatio, (float value))                       \
    M(field_get, LeadWireResistance, (float* value))                \
    M(field_put, LeadWireResistance, (float value))                 \
    M(field_get, Gain, (float* value))                              \
    M(field_put, Gain, (float value))                               \
    M(field_get, LowPassFilter, (float* value))                     \
    M(field_put, LowPassFilter, (float value))                      \
    M(field_get, Offset, (float* value))                            \
    M(field_put, Offset, (float value))                             \
    M(field_get, CalibrationDate, (double* value))                  \
    M(field_put, CalibrationDate, (double value))                   \
    M(field_get, Comment, (BSTR* value))                            \
    M(field_put, Comment, (BSTR value))                             \
    M(field_get, CalibrationType, (BSTR* value))                    \
    M(field_put, CalibrationType, (BSTR value))                     \
    M(frame_call, Copy, (IStrainChannel* target))                   \
    M(frame_get, Modified, (SHORT* modified))                       \
    M(frame_put, Modified, (SHORT modified))                        \
    M(frame_get, Setup, (IDispatch** setup))                        \
    M(frame_put, Setup, (IDispatch* setup))                         \
    M(frame_call, Clone, (IStrainChannel** copy))                   \
    M(call, Translate, (LONG code, BSTR* text))                     \
    M(frame_get, Property, (BSTR name, BSTR* value))                \
    M(frame_put, Property, (BSTR name, BSTR value))                 \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IStrainChannel, NVDL_ISTRAINCHANNEL_MEMBERS);
