// IThroughput: the recording-to-disk section of a setup: the file to write, automatic numbering of
// successive recordings, the planned length, and the sequencing (period, interval) and location.
// It is also the script's door to recordings: it opens one and reads it scan by scan, reads a channel
// of a recording into a measurement, cuts a span into a new recording, and estimates the room a
// recording needs and the room free on a disk.
#pragma once

#include "nvdl/IMeasurement.h"
#include "nvdl/ISetup.h"
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
    /* Opens a recording: its sample format (16 or 32 bits) and scaling factor. */ \
    M(call, Open, (BSTR filename, LONG* bits, float* scaling, LONG* result)) \
    /* -1 when a recording is open, else 0; the call itself always answers E_FAIL. */ \
    M(get, IsOpened, (SHORT* opened))                              \
    /* The two scan reads fill arrays of the caller's (channel numbers, samples, statuses, */ \
    /* ranges), which a late-bound call cannot pass: they have no late-bound form. */ \
    M(native, ReadScan, (LONG channels, const LONG* numbers, LONG blocksize, float* data, LONG* status, float* range, LONG* result)) \
    M(native, ReadRPMScan, (LONG blocksize, float* data, LONG* result)) \
    M(call, Close, (LONG* result))                                 \
    M(get, ThroughputSetup, (ISetup** setup))                      \
    M(call, Cut, (BSTR input, BSTR output, float start, float stop, LONG* result)) \
    M(call, ReadMeasurement, (BSTR filename, LONG channel, IMeasurement** measurement, LONG* result)) \
    M(field_get, Period, (LONG* value))                            \
    M(field_put, Period, (LONG value))                             \
    M(field_get, Interval, (LONG* value))                          \
    M(field_put, Interval, (LONG value))                           \
    M(call, EstimatedFileSize, (ISetup* setup, LONG count, BSTR* text)) \
    M(call, FreeDiskSize, (BSTR path, BSTR* text))                 \
    M(field_get, Location, (LONG* value))                          \
    M(field_put, Location, (LONG value))                           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))   \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))

NVDL_INTERFACE(IThroughput, NVDL_ITHROUGHPUT_MEMBERS);
