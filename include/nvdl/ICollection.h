// The members of every collection interface (IParameters, IMeasurements, ISetups, ...): all of them
// have these members in this order and differ only in their identifier.
#pragma once

#include "nvdl/Members.h"

#define NVDL_ICOLLECTION_MEMBERS(M)                                                                 \
    M(get, Count, (LONG* count))                                                                    \
    M(call, Add, (IDispatch* item, VARIANT* key, VARIANT* before, VARIANT* after, LONG* index),      \
      optional("key"), optional("before"), optional("after"))                                       \
    M(call, Item, (VARIANT key, IDispatch** item), id(DISPID_VALUE))                                \
    M(get, _NewEnum, (IUnknown** enumerator), id(DISPID_NEWENUM), hidden())                         \
    M(call, Remove, (VARIANT key))                                                                  \
    M(call, Clear, ())                                                                              \
    M(call, Clone, (ICollection** copy))                                                            \
    M(get, Name, (BSTR* name))                                                                      \
    M(put, Name, (BSTR name))                                                                       \
    M(native_frame, LoadTypeInfo, (LCID lcid, ITypeInfo** info))

// One struct for every collection interface: each object answers to its own identifier.
struct ICollection : IDispatch {
    NVDL_INTERFACE_BODY(ICollection, NVDL_ICOLLECTION_MEMBERS)
};
