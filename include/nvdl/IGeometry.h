// IGeometry: the wire-frame picture of a test object, a named list of components.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/IField.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IGEOMETRY_MEMBERS(M)                                \
    M(field_get, Name, (BSTR* value))                            \
    M(field_put, Name, (BSTR value))                             \
    M(field_get, CoordinateType, (LONG* value))                  \
    M(put, CoordinateType, (VARIANT value))                      \
    M(get, Components, (ICollection** components))               \
    M(frame_get, Parent, (IDispatch** parent))                   \
    M(frame_put, Parent, (IDispatch* parent))                    \
    M(call, Translate, (LONG code, BSTR* text))                  \
    M(call, Clip, (BSTR format, BSTR* text))                     \
    M(frame_get, Modified, (SHORT* modified))                    \
    M(frame_put, Modified, (SHORT modified))                     \
    M(frame_call, Clone, (IGeometry** copy))                     \
    M(get, Fields, (IFields** fields))                           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info)) \
    M(frame_get, Property, (BSTR name, BSTR* value))

NVDL_INTERFACE(IGeometry, NVDL_IGEOMETRY_MEMBERS);
