// IDataBlock: a group of measurements held as one image of packed flat records, at a fixed stride;
// a measurement object is made from a record only when one is asked for.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/IMeasurement.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

struct IDataBlock;

#define NVDL_IDATABLOCK_MEMBERS(M)                                           \
    M(put, Name, (BSTR name))                                                \
    M(get, Name, (BSTR* name))                                               \
    M(get, MeasurementsCount, (LONG* count))                                 \
    M(native, Initialize, (LONG count, const std::uint8_t* records))         \
    M(frame_call, Clone, (IDataBlock** copy))                                \
    M(get, Measurement, (LONG index, IMeasurement** measurement))            \
    M(frame_get, Parent, (IDispatch** parent))                               \
    M(frame_put, Parent, (IDispatch* parent))                                \
    M(frame_get, Modified, (SHORT* modified))                                \
    M(frame_put, Modified, (SHORT modified))                                 \
    M(get, Id, (BSTR* id))                                                   \
    M(call, Init_Create, (LONG count))                                       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IDataBlock, NVDL_IDATABLOCK_MEMBERS);
