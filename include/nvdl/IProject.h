// IProject: the top of the object tree, one document of the suite: its workspaces, screen layouts,
// setups and associated documents, kept in one project file that stays locked while it is open.
#pragma once

#include "nvdl/ICollection.h"
#include "nvdl/Identifiers.h"
#include "nvdl/IWorkspace.h"
#include "nvdl/Members.h"

struct IProject;

#define NVDL_IPROJECT_MEMBERS(M)                                                 \
    M(get, Workspaces, (ICollection** workspaces))                               \
    M(get, ActiveWorkspace, (IWorkspace** workspace))                            \
    M(frame_get, Property, (BSTR name, BSTR* value))                             \
    M(frame_get, Modified, (SHORT* modified))                                    \
    M(frame_put, Modified, (SHORT modified))                                     \
    M(get, FullPathName, (BSTR* path))                                           \
    M(put, FullPathName, (BSTR path))                                            \
    M(call, Save, (BSTR file))                                                   \
    M(call, Load, (BSTR file))                                                   \
    M(frame_call, Copy, (IProject* target))                                      \
    M(call, Close, ())                                                           \
    M(get, Layouts, (ICollection** layouts))                                     \
    M(get, Setups, (ICollection** setups))                                       \
    M(call, Convert, (BSTR source, BSTR target, LONG* count))                      \
    M(get, Master, (SHORT* master), typed(VT_BOOL))                              \
    M(put, Master, (SHORT master), typed(VT_BOOL))                               \
    M(call, Lock, (BSTR file, SHORT* locked))                                     \
    M(get, AssociatedDocuments, (ICollection** documents))                       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IProject, NVDL_IPROJECT_MEMBERS);
