// IFrontend: one acquisition front end of the installation: its type and model, the module it is
// and the address it answers on.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IFRONTEND_MEMBERS(M)                                   \
    M(field_get, Type, (LONG* value))                               \
    M(field_put, Type, (LONG value))                                \
    M(field_get, Model, (LONG* value))                              \
    M(field_put, Model, (LONG value))                               \
    M(field_get, Module, (BSTR* value))                             \
    M(field_put, Module, (BSTR value))                              \
    M(field_get, LogicalAddress, (BSTR* value))                     \
    M(field_put, LogicalAddress, (BSTR value))                      \
    M(frame_call, Copy, (IFrontend* target))                        \
    M(frame_get, Modified, (SHORT* modified))                       \
    M(frame_put, Modified, (SHORT modified))                        \
    M(frame_get, Setup, (IDispatch** setup))                        \
    M(frame_put, Setup, (IDispatch* setup))                         \
    M(frame_call, Clone, (IFrontend** copy))                        \
    M(frame_get, Property, (BSTR name, BSTR* value))                \
    M(frame_put, Property, (BSTR name, BSTR value))                 \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IFrontend, NVDL_IFRONTEND_MEMBERS);
