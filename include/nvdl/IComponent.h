// IComponent: one part of a geometry, placed and turned in the geometry's frame, holding its own
// nodes, lines and triangles.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ICOMPONENT_MEMBERS(M)                               \
    M(field_get, Name, (BSTR* value))                            \
    M(field_put, Name, (BSTR value))                             \
    M(get, FullName, (BSTR* name))                               \
    M(field_get, Visibility, (SHORT* value))                     \
    M(field_put, Visibility, (SHORT value))                      \
    M(field_get, ColorIndex, (LONG* value))                      \
    M(field_put, ColorIndex, (LONG value))                       \
    M(field_get, Highlight, (SHORT* value))                      \
    M(field_put, Highlight, (SHORT value))                       \
    M(field_get, DrawSolid, (SHORT* value))                      \
    M(field_put, DrawSolid, (SHORT value))                       \
    M(field_get, ShowLabel, (SHORT* value))                      \
    M(field_put, ShowLabel, (SHORT value))                       \
    M(field_get, X, (float* value))                              \
    M(field_put, X, (float value))                               \
    M(field_get, Y, (float* value))                              \
    M(field_put, Y, (float value))                               \
    M(field_get, Z, (float* value))                              \
    M(field_put, Z, (float value))                               \
    M(call, XYZ, (float x, float y, float z))                    \
    M(field_get, RotationX, (float* value))                      \
    M(field_put, RotationX, (float value))                       \
    M(field_get, RotationY, (float* value))                      \
    M(field_put, RotationY, (float value))                       \
    M(field_get, RotationZ, (float* value))                      \
    M(field_put, RotationZ, (float value))                       \
    M(call, RotationXYZ, (float x, float y, float z))            \
    M(field_get, CoordinateType, (LONG* value))                  \
    M(put, CoordinateType, (VARIANT value))                      \
    M(get, Nodes, (ICollection** nodes))                         \
    M(get, Lines, (ICollection** lines))                         \
    M(get, Triangles, (ICollection** triangles))                 \
    M(frame_get, Modified, (SHORT* modified))                    \
    M(frame_put, Modified, (SHORT modified))                     \
    M(frame_get, Parent, (IDispatch** parent))                   \
    M(frame_put, Parent, (IDispatch* parent))                    \
    M(call, Translate, (LONG code, BSTR* text))                  \
    M(call, Clip, (BSTR format, BSTR* text))                     \
    M(frame_call, Clone, (IComponent** copy))                    \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info)) \
    M(frame_get, Property, (BSTR name, BSTR* value))

NVDL_INTERFACE(IComponent, NVDL_ICOMPONENT_MEMBERS);
