// IParameter: a free name and a free text value, kept with a measurement, a setup or a project.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IPARAMETER_MEMBERS(M)                \
    M(put, Name, (BSTR name))                     \
    M(get, Name, (BSTR* name))                   \
    M(get, Value, (BSTR* value))                 \
    M(put, Value, (BSTR value))                   \
    M(frame_call, Copy, (IParameter* target))    \
    M(frame_get, Modified, (SHORT* modified))    \
    M(frame_put, Modified, (SHORT modified))      \
    M(frame_get, Parent, (IDispatch** parent))   \
    M(frame_put, Parent, (IDispatch* parent))    \
    M(frame_call, Clone, (IParameter** copy))    \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IParameter, NVDL_IPARAMETER_MEMBERS);
