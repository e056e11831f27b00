// ISaveFunction: one entry of a saving section's function lists, a name with a text value.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISAVEFUNCTION_MEMBERS(M)             \
    M(put, Name, (BSTR name))                     \
    M(get, Name, (BSTR* name))                    \
    M(get, Value, (BSTR* value))                  \
    M(put, Value, (BSTR value))                   \
    M(frame_call, Copy, (ISaveFunction* target))  \
    M(frame_get, Modified, (SHORT* modified))     \
    M(frame_put, Modified, (SHORT modified))      \
    M(frame_get, Parent, (IDispatch** parent))    \
    M(frame_put, Parent, (IDispatch* parent))     \
    M(frame_call, Clone, (ISaveFunction** copy))  \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISaveFunction, NVDL_ISAVEFUNCTION_MEMBERS);
