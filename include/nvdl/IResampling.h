// IResampling: the resampling section of a setup: whether it runs, the new sample frequency and the
// block size.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IRESAMPLING_MEMBERS(M)                                \
    M(field_get, Active, (SHORT* value))                           \
    M(field_put, Active, (SHORT value))                            \
    M(field_get, SampleFrequency, (float* value))                  \
    M(field_put, SampleFrequency, (float value))                   \
    M(field_get, Blocksize, (LONG* value))                         \
    M(field_put, Blocksize, (LONG value))                          \
    M(frame_call, Copy, (IResampling* target))                     \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IResampling** copy))                     \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IResampling, NVDL_IRESAMPLING_MEMBERS);
