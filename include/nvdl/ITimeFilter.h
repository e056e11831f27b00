// ITimeFilter: the time-filter section of a setup: the kind of filter and its band.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ITIMEFILTER_MEMBERS(M)                                \
    M(field_get, Type, (LONG* value))                              \
    M(field_put, Type, (LONG value))                               \
    M(field_get, StartFrequency, (float* value))                   \
    M(field_put, StartFrequency, (float value))                    \
    M(field_get, StopFrequency, (float* value))                    \
    M(field_put, StopFrequency, (float value))                     \
    M(frame_call, Copy, (ITimeFilter* target))                     \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (ITimeFilter** copy))                     \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ITimeFilter, NVDL_ITIMEFILTER_MEMBERS);
