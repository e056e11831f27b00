// IThroughput: the recording-to-disk section of a setup: the file to write, automatic numbering of
// successive recordings, the planned length, and the sequencing (period, interval) and location.
// The members that open, read and cut recordings and estimate their size join this list, at their
// places between Activated and Period and between Interval and Location, with the recording loader.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ITHROUGHPUT_MEMBERS(M)                                \
    M(field_get, Filename, (BSTR* value))                          \
    M(field_put, Filename, (BSTR value))                           \
    M(field_get, AutoIncrement, (SHORT* value))                    \
    M(field_put, AutoIncrement, (SHORT value))                     \
    M(field_get, Length, (double* value))                          \
    M(field_put, Length, (double value))                           \
    M(frame_call, Copy, (IThroughput* target))                     \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IThroughput** copy))                     \
    M(field_get, Activated, (SHORT* value))                        \
    M(field_put, Activated, (SHORT value))                         \
    M(field_get, Period, (LONG* value))                            \
    M(field_put, Period, (LONG value))                             \
    M(field_get, Interval, (LONG* value))                          \
    M(field_put, Interval, (LONG value))                           \
    M(field_get, Location, (LONG* value))                          \
    M(field_put, Location, (LONG value))                           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))   \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))

NVDL_INTERFACE(IThroughput, NVDL_ITHROUGHPUT_MEMBERS);
