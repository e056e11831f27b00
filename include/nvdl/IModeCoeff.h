// IModeCoeff: one complex coefficient of a mode shape at a point of a geometry, named by its
// component and node, with the direction of the motion.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IMODECOEFF_MEMBERS(M)                                          \
    M(field_get, Component, (BSTR* value))                                  \
    M(field_put, Component, (BSTR value))                                   \
    M(field_get, Node, (BSTR* value))                                       \
    M(field_put, Node, (BSTR value))                                        \
    M(field_get, Direction, (LONG* value))                                  \
    M(put, Direction, (VARIANT direction))                                  \
    M(call, Location, (BSTR component, BSTR node, VARIANT direction))       \
    M(field_get, Real, (float* value))                                      \
    M(field_put, Real, (float value))                                       \
    M(field_get, Imaginary, (float* value))                                 \
    M(field_put, Imaginary, (float value))                                  \
    M(call, SetAmplitudePhase, (float amplitude, float phase))              \
    M(call, Amplitude, (float* amplitude))                                  \
    M(call, Phase, (float* phase))                                          \
    M(frame_get, Modified, (SHORT* modified))                               \
    M(frame_put, Modified, (SHORT modified))                                \
    M(frame_get, Parent, (IDispatch** parent))                              \
    M(frame_put, Parent, (IDispatch* parent))                               \
    M(frame_get, Property, (BSTR name, BSTR* value))                        \
    M(call, Translate, (LONG code, BSTR* text))                             \
    M(call, Clip, (BSTR format, BSTR* text))                                \
    M(frame_call, Clone, (IModeCoeff** copy))                               \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IModeCoeff, NVDL_IMODECOEFF_MEMBERS);
