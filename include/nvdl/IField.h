// IField: one scalar property of an owner, read and written by name as text. IFields: the list of
// an owner's scalar property names, handing out a field for each.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Members.h"

#define NVDL_IFIELD_MEMBERS(M) \
    M(get, Name, (BSTR* name))                                   \
    M(get, Value, (BSTR* value))                                 \
    M(put, Value, (BSTR value))                                  \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info)) \
    M(put, Parent, (IDispatch* parent))                          \
    M(get, Parent, (IDispatch** parent))

NVDL_INTERFACE(IField, NVDL_IFIELD_MEMBERS);

#define NVDL_IFIELDS_MEMBERS(M) \
    M(get, Count, (LONG* count))                                            \
    M(get, Item, (VARIANT index, IField** field), id(DISPID_VALUE))         \
    M(get, _NewEnum, (IUnknown** enumerator), id(DISPID_NEWENUM), hidden()) \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

NVDL_INTERFACE(IFields, NVDL_IFIELDS_MEMBERS);
