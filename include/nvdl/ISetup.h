// ISetup: the complete description of one measurement task: which channels, how to acquire, what to
// compute, what to save. A setup is a container of sections, each an object of its own kind that the
// setup owns, and of named collections of channels, transducers and parameters.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISETUP_MEMBERS(M)                                      \
    M(field_put, Name, (BSTR value))                                       \
    M(field_get, Name, (BSTR* value))                                      \
    M(field_put, Creator, (BSTR value))                                 \
    M(field_get, Creator, (BSTR* value))                                \
    M(get, Parameters, (ICollection** parameters))                  \
    M(get, Transducers, (ICollection** transducers))                \
    M(get, InputChannels, (ICollection** channels))                 \
    M(get, Acquisition, (IDispatch** section))                      \
    M(get, SourceChannels, (ICollection** channels))                \
    M(get, Tacho, (IDispatch** section))                            \
    M(get, Rpm, (IDispatch** section))                              \
    M(get, SinRed, (IDispatch** section))                           \
    M(get, SRS, (IDispatch** section))                              \
    M(get, SteppedSine, (IDispatch** section))                      \
    M(get, Processing, (IDispatch** section))                       \
    M(get, Saving, (IDispatch** section))                           \
    M(frame_get, Modified, (SHORT* modified))                       \
    M(frame_put, Modified, (SHORT modified))                        \
    M(frame_put, Property, (BSTR name, BSTR value))                 \
    M(frame_get, Property, (BSTR name, BSTR* value))                \
    M(frame_get, Parent, (IDispatch** parent))                      \
    M(frame_put, Parent, (IDispatch* parent))                       \
    M(frame_call, Copy, (ISetup* target))                           \
    M(frame_call, Clone, (ISetup** copy))                           \
    M(call, Load, (BSTR path))                                      \
    M(call, Save, (BSTR path))                                      \
    M(field_put, DataMode, (LONG value))                                   \
    M(field_get, DataMode, (LONG* value))                                  \
    M(get, Throughput, (IDispatch** section))                       \
    M(get, Octave, (IDispatch** section))                           \
    M(get, Frontends, (ICollection** frontends))                    \
    M(get, TimeFilter, (IDispatch** section))                       \
    M(field_get, Default, (SHORT* value))                                 \
    M(put, Default, (SHORT value))                                  \
    M(get, Impact, (IDispatch** section))                           \
    M(get, Resampling, (IDispatch** section))                       \
    M(get, PostProcessing, (IDispatch** section))                   \
    M(field_put, WorkspacePrefixName, (BSTR value))                      \
    M(field_get, WorkspacePrefixName, (BSTR* value))                     \
    M(field_get, GroupDataInSameWs, (SHORT* value))                       \
    M(put, GroupDataInSameWs, (SHORT value))                        \
    M(call, Translate, (LONG code, BSTR* text))                     \
    M(get, Id, (BSTR* id))                                          \
    M(field_get, GroupChannels, (SHORT* value))                           \
    M(put, GroupChannels, (SHORT value))                            \
    M(field_put, ParametersLayout, (BSTR value))                         \
    M(field_get, ParametersLayout, (BSTR* value))                        \
    M(get, ShockCapture, (IDispatch** section))                     \
    M(get, StrainChannels, (ICollection** channels))                \
    M(field_get, GroupFunctions, (SHORT* value))                          \
    M(put, GroupFunctions, (SHORT value))                           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISetup, NVDL_ISETUP_MEMBERS);
