// ILine: an edge of a component between two nodes, named by their names.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ILINE_MEMBERS(M)                                    \
    M(field_get, Node1, (BSTR* value))                           \
    M(field_get, Node2, (BSTR* value))                           \
    M(call, Node12, (BSTR node1, BSTR node2))                    \
    M(field_get, Visibility, (SHORT* value))                     \
    M(field_put, Visibility, (SHORT value))                      \
    M(field_get, ColorIndex, (LONG* value))                      \
    M(field_put, ColorIndex, (LONG value))                       \
    M(frame_get, Modified, (SHORT* modified))                    \
    M(frame_put, Modified, (SHORT modified))                     \
    M(frame_get, Parent, (IDispatch** parent))                   \
    M(frame_put, Parent, (IDispatch* parent))                    \
    M(call, Clip, (BSTR format, BSTR* text))                     \
    M(frame_call, Clone, (ILine** copy))                         \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ILine, NVDL_ILINE_MEMBERS);
