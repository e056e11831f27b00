// ISaving: which results of a run a setup keeps and where: two lists of save functions, for the
// results and for the time histories, and the switches of disk and workspace.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ISAVING_MEMBERS(M)                                    \
    M(get, MeasFunctions, (ICollection** value))                   \
    M(field_get, SaveToDisk, (SHORT* value))                       \
    M(field_put, SaveToDisk, (SHORT value))                        \
    M(field_get, EveryAverages, (SHORT* value))                    \
    M(field_put, EveryAverages, (SHORT value))                     \
    M(field_get, DelayTime, (LONG* value))                         \
    M(field_put, DelayTime, (LONG value))                          \
    M(field_get, CreateTimeHistory, (SHORT* value))                \
    M(field_put, CreateTimeHistory, (SHORT value))                 \
    M(get, TimeHistoryFunctions, (ICollection** value))            \
    M(field_get, SaveTimeHistoryToDisk, (SHORT* value))            \
    M(field_put, SaveTimeHistoryToDisk, (SHORT value))             \
    M(field_get, SaveTimeHistoryToWorkspace, (SHORT* value))       \
    M(field_put, SaveTimeHistoryToWorkspace, (SHORT value))        \
    M(field_get, SaveBlockDataToWorkspace, (SHORT* value))         \
    M(field_put, SaveBlockDataToWorkspace, (SHORT value))          \
    M(field_get, SaveBlockDataToDisk, (SHORT* value))              \
    M(field_put, SaveBlockDataToDisk, (SHORT value))               \
    M(field_get, Percentile, (float* value))                       \
    M(field_put, Percentile, (float value))                        \
    M(frame_call, Copy, (ISaving* target))                         \
    M(frame_get, Modified, (SHORT* modified))                      \
    M(frame_put, Modified, (SHORT modified))                       \
    M(frame_get, Setup, (IDispatch** setup))                       \
    M(frame_put, Setup, (IDispatch* setup))                        \
    M(frame_call, Clone, (ISaving** copy))                         \
    M(call, Translate, (LONG code, BSTR* text))                    \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ISaving, NVDL_ISAVING_MEMBERS);
