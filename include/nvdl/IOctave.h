// IOctave: the octave-analysis section of a setup: the band span, the weightings, the integration
// and save intervals, and the block size an octave analysis of a given duration needs.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IOCTAVE_MEMBERS(M)                                    \
    M(field_get, Processing, (LONG* value))                        \
    M(field_put, Processing, (LONG value))                         \
    M(field_get, StartFrequency, (float* value))                   \
    M(field_put, StartFrequency, (float value))                    \
    M(field_get, StopFrequency, (float* value))                    \
    M(field_put, StopFrequency, (float value))                     \
    M(field_get, IntegrationTime, (float* value))                  \
    M(field_put, IntegrationTime, (float value))                   \
    M(field_get, Weighting, (LONG* value))                         \
    M(field_put, Weighting, (LONG value))                          \
    M(field_get, SaveInterval, (LONG* value))                      \
    M(field_put, SaveInterval, (LONG value))                       \
    M(field_get, ComputeInterval, (float* value))                  \
    M(field_put, ComputeInterval, (float value))                   \
    M(field_get, TimeWeighting, (LONG* value))                     \
    M(field_put, TimeWeighting, (LONG value))                      \
    M(field_get, PeakHold, (LONG* value))                          \
    M(field_put, PeakHold, (LONG value))                           \
    M(get, OctaveTimeBlockSize, (IDispatch* setup, float time, LONG* result)) \
    M(frame_call, Copy, (IOctave* target))                         \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (IOctave** copy))                         \
    M(frame_get, Property, (BSTR name, BSTR* value))               \
    M(frame_put, Property, (BSTR name, BSTR value))                \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IOctave, NVDL_IOCTAVE_MEMBERS);
