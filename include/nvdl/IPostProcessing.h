// IPostProcessing: the post-processing section of a setup: the replay of a recording, its span, where
// the recording is and how it is read.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IPOSTPROCESSING_MEMBERS(M)                            \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(field_get, ReplayStart, (float* value))                      \
    M(field_put, ReplayStart, (float value))                       \
    M(field_get, ReplayStop, (float* value))                       \
    M(field_put, ReplayStop, (float value))                        \
    M(field_get, Filename, (BSTR* value))                          \
    M(field_put, Filename, (BSTR value))                           \
    M(field_get, Location, (LONG* value))                          \
    M(field_put, Location, (LONG value))                           \
    M(field_get, N2216ReadMode, (LONG* value))                     \
    M(field_put, N2216ReadMode, (LONG value))                      \
    M(frame_call, Copy, (IPostProcessing* target))                 \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IPostProcessing** copy))                 \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IPostProcessing, NVDL_IPOSTPROCESSING_MEMBERS);
