// ILayout: one screen arrangement of the client program. The model knows its name, whether it is
// the default one, and an opaque tree of components (an INVRootStorage) that the client fills and
// reads; the layout keeps that tree and persists it without looking inside.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_ILAYOUT_MEMBERS(M)                                  \
    M(field_get, Name, (BSTR* value))                            \
    M(field_put, Name, (BSTR value))                             \
    M(field_get, Default, (SHORT* value))                        \
    M(put, Default, (SHORT value))                               \
    M(frame_get, Modified, (SHORT* modified))                    \
    M(frame_put, Modified, (SHORT modified))                     \
    M(frame_put, Property, (BSTR name, BSTR value))              \
    M(frame_get, Property, (BSTR name, BSTR* value))             \
    M(frame_get, Parent, (IDispatch** parent))                   \
    M(frame_put, Parent, (IDispatch* parent))                    \
    M(frame_call, Copy, (ILayout* target))                       \
    M(frame_call, Clone, (ILayout** copy))                       \
    M(get, Components, (IUnknown** components))                  \
    M(call, Clean, ())                                           \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(ILayout, NVDL_ILAYOUT_MEMBERS);
