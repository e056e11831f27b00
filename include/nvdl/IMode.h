// IMode: one result of a modal analysis: frequency, damping, modal constant, how it was obtained,
// and its shape as lists of complex coefficients at geometry points.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/IField.h"
#include "nvdl/IModeCoeff.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IMODE_MEMBERS(M)                                               \
    M(field_put, Name, (BSTR value))                                        \
    M(field_get, Name, (BSTR* value))                                       \
    M(frame_get, PropertiesCount, (LONG* count))                            \
    M(frame_get, PropertyName, (LONG index, BSTR* name))                    \
    M(get, Description, (BSTR* description))                                \
    M(field_put, Description, (BSTR value))                                 \
    M(field_get, Frequency, (float* value))                                 \
    M(field_put, Frequency, (float value))                                  \
    M(field_get, Damping, (float* value))                                   \
    M(field_put, Damping, (float value))                                    \
    M(field_get, ModalAReal, (float* value))                                \
    M(field_put, ModalAReal, (float value))                                 \
    M(field_get, ModalAImag, (float* value))                                \
    M(field_put, ModalAImag, (float value))                                 \
    M(field_get, Type, (LONG* value))                                       \
    M(put, Type, (VARIANT type))                                            \
    M(field_get, Method, (LONG* value))                                     \
    M(put, Method, (VARIANT method))                                        \
    M(get, Shape, (ICollection** shape))                                    \
    M(get, Participation, (ICollection** participation))                    \
    M(frame_get, Modified, (SHORT* modified))                               \
    M(frame_put, Modified, (SHORT modified))                                \
    M(frame_get, Property, (BSTR name, BSTR* value))                        \
    M(frame_get, Parent, (IDispatch** parent))                              \
    M(frame_put, Parent, (IDispatch* parent))                               \
    M(call, Translate, (LONG code, BSTR* text))                             \
    M(call, Clip, (BSTR format, BSTR* text))                                \
    M(frame_call, Clone, (IMode** copy))                                    \
    M(call, AddShape, (IModeCoeff* coefficient, LONG* index))               \
    M(get, Fields, (IFields** fields))                                      \
    M(get, OrigShape, (ICollection** shape))                                \
    M(get, OrigParticip, (ICollection** participation))                     \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IMode, NVDL_IMODE_MEMBERS);
