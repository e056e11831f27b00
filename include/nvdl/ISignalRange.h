// ISignalRange: the statistics of a signal as measured during acquisition, in the unit of the
// storage; each measurement carries one. The members stand in the interface's slot order.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISIGNALRANGE_MEMBERS(M) \
    M(get, Min, (double* v))                                     \
    M(put, Min, (double v))                                      \
    M(get, Max, (double* v))                                     \
    M(put, Max, (double v))                                      \
    M(get, OverallMin, (double* v))                              \
    M(put, OverallMin, (double v))                               \
    M(get, OverallMax, (double* v))                              \
    M(put, OverallMax, (double v))                               \
    M(get, Mean, (double* v))                                    \
    M(put, Mean, (double v))                                     \
    M(get, Rms, (double* v))                                     \
    M(put, Rms, (double v))                                      \
    M(get, StandardDeviation, (double* v))                       \
    M(put, StandardDeviation, (double v))                        \
    M(get, Factor, (double* v))                                  \
    M(put, Factor, (double v))                                   \
    M(get, UnitOffset, (double* v))                              \
    M(put, UnitOffset, (double v))                               \
    M(get, Range, (float* v))                                    \
    M(put, Range, (float v))                                     \
    /* Copies this range's values into the target. */            \
    M(call, Copy, (ISignalRange* target))                        \
    M(frame_get, Modified, (SHORT* v))                           \
    M(put, Modified, (SHORT v))                                  \
    M(get, Measurement, (IDispatch** v))                         \
    M(put, Measurement, (IDispatch* v))                          \
    M(call, Clone, (ISignalRange** copy))                        \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info)) \
    M(frame_get, Property, (BSTR name, BSTR* value))             \
    M(frame_put, Property, (BSTR name, BSTR value))

NVDL_INTERFACE(ISignalRange, NVDL_ISIGNALRANGE_MEMBERS);
