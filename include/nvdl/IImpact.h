// IImpact: the impact-test section of a setup: whether the impact test is on.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IIMPACT_MEMBERS(M)                                    \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(frame_call, Copy, (IImpact* target))                         \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IImpact** copy))                         \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IImpact, NVDL_IIMPACT_MEMBERS);
