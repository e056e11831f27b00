// ITacho: the tachometer section of a setup, known by its name.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ITACHO_MEMBERS(M)                                     \
    M(field_get, Name, (BSTR* value))                              \
    M(field_put, Name, (BSTR value))                               \
    M(frame_call, Copy, (ITacho* target))                          \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (ITacho** copy))                          \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITacho, NVDL_ITACHO_MEMBERS);
