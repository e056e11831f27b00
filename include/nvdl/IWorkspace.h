// IWorkspace: the container of one set of results (measurements, modes, geometries, acquisition
// setups, data blocks), held by a project or living alone as a workspace file.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IWORKSPACE_MEMBERS(M)                                                                        \
    M(get, Name, (BSTR* name))                                                                            \
    M(put, Name, (BSTR name))                                                                             \
    M(get, Measurements, (ICollection** measurements))                                                    \
    M(get, Modes, (ICollection** modes))                                                                  \
    M(get, Geometries, (ICollection** geometries))                                                        \
    M(get, Setups, (ICollection** setups))                                                                \
    M(frame_get, Modified, (SHORT* modified))                                                             \
    M(frame_put, Modified, (SHORT modified))                                                              \
    M(frame_get, Property, (BSTR name, BSTR* value))                                                      \
    M(frame_get, Parent, (IDispatch** parent))                                                            \
    M(frame_put, Parent, (IDispatch* parent))                                                             \
    M(field_get, FullPathName, (BSTR* value))                                                             \
    M(put, FullPathName, (BSTR path))                                                                     \
    M(call, Save, (BSTR file, VARIANT loader), optional("loader"))                                        \
    M(call, Load, (BSTR file, VARIANT loader), optional("loader"))                                        \
    M(put, LoadUnits, (SHORT loadUnits))                                                                  \
    M(frame_call, Clone, (IWorkspace** copy))                                                             \
    M(field_get, OriginFile, (BSTR* value))                                                               \
    M(put, OriginFile, (BSTR file))                                                                       \
    M(field_get, OriginTime, (BSTR* value))                                                               \
    M(put, OriginTime, (BSTR time))                                                                       \
    M(field_get, Default, (SHORT* value))                                                                 \
    M(put, Default, (SHORT value))                                                                        \
    M(call, StoreMeasurementsToFile, (BSTR file, LONG format, LONG blockSize, float interval,             \
                                      SHORT dateFlag, LONG count, VARIANT* channels, VARIANT* gains))     \
    M(get, DataBlocks, (ICollection** dataBlocks))                                                        \
    M(field_get, ShmLink, (BSTR* value))                                                                  \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IWorkspace, NVDL_IWORKSPACE_MEMBERS);
