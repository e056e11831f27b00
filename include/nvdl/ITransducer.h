// ITransducer: the sensor on an input: what it is, how it is fed, its sensitivity and unit, and
// when it was calibrated and is due again.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ITRANSDUCER_MEMBERS(M)                                    \
    M(field_get, SerialNumber, (BSTR* value))                          \
    M(field_put, SerialNumber, (BSTR value))                           \
    M(field_get, Model, (BSTR* value))                                 \
    M(field_put, Model, (BSTR value))                                  \
    M(field_get, InputMode, (LONG* value))                             \
    M(field_put, InputMode, (LONG value))                              \
    M(field_get, Sensitivity, (float* value))                          \
    M(field_put, Sensitivity, (float value))                           \
    M(field_get, Unit, (BSTR* value))                                  \
    M(field_put, Unit, (BSTR value))                                   \
    M(field_get, CalibrationType, (BSTR* value))                       \
    M(field_put, CalibrationType, (BSTR value))                        \
    M(frame_call, Copy, (ITransducer* target))                         \
    M(frame_get, Modified, (SHORT* modified))                          \
    M(frame_put, Modified, (SHORT modified))                           \
    M(frame_get, Property, (BSTR name, BSTR* value))                   \
    M(frame_put, Property, (BSTR name, BSTR value))                    \
    M(call, Translate, (LONG code, BSTR* text))                        \
    M(frame_get, Setup, (IDispatch** setup))                           \
    M(frame_put, Setup, (IDispatch* setup))                            \
    M(frame_call, Clone, (ITransducer** copy))                         \
    M(field_get, CalibrationDate, (DATE* value), typed(VT_DATE))       \
    M(field_put, CalibrationDate, (DATE value), typed(VT_DATE))        \
    M(field_get, CalibrationDue, (DATE* value), typed(VT_DATE))        \
    M(field_put, CalibrationDue, (DATE value), typed(VT_DATE))         \
    M(field_get, Comment, (BSTR* value))                               \
    M(field_put, Comment, (BSTR value))                                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITransducer, NVDL_ITRANSDUCER_MEMBERS);
