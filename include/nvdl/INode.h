// INode: a named point of a component, with its orientation and the master nodes that a slave
// node follows.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_INODE_MEMBERS(M)                                    \
    M(field_get, Name, (BSTR* value))                            \
    M(field_put, Name, (BSTR value))                             \
    M(get, FullName, (BSTR* name))                               \
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
    M(field_get, Highlight, (SHORT* value))                      \
    M(field_put, Highlight, (SHORT value))                       \
    M(field_get, SlaveNode, (SHORT* value))                      \
    M(field_put, SlaveNode, (SHORT value))                       \
    M(field_get, MasterNode1, (BSTR* value))                     \
    M(field_put, MasterNode1, (BSTR value))                      \
    M(field_get, MasterNode2, (BSTR* value))                     \
    M(field_put, MasterNode2, (BSTR value))                      \
    M(frame_get, Modified, (SHORT* modified))                    \
    M(frame_put, Modified, (SHORT modified))                     \
    M(frame_get, Parent, (IDispatch** parent))                   \
    M(frame_put, Parent, (IDispatch* parent))                    \
    M(call, Translate, (LONG code, BSTR* text))                  \
    M(call, Clip, (BSTR format, BSTR* text))                     \
    M(frame_call, Clone, (INode** copy))                         \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info)) \
    M(put, Coordinate, (float x, float y, float z))              \
    M(put, Orientation, (float x, float y, float z))             \
    M(field_get, ColorIndex, (LONG* value))                      \
    M(field_put, ColorIndex, (LONG value))                       \
    M(frame_get, Property, (BSTR name, BSTR* value))

NVDL_INTERFACE(INode, NVDL_INODE_MEMBERS);
