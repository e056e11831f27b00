// The members of every collection interface (IParameters, IMeasurements, ISetups, ...): all of them
// have these members in this order and differ only in their identifier.
#pragma once

#include "nvdl/Dispatch.h"

struct ICollection : IDispatch {
    virtual HRESULT get_Count(LONG* count) = 0;
    virtual HRESULT Add(IDispatch* item, VARIANT* key, VARIANT* before, VARIANT* after, LONG* index) = 0;
    virtual HRESULT Item(VARIANT key, IDispatch** item) = 0;
    virtual HRESULT get__NewEnum(IUnknown** enumerator) = 0;
    virtual HRESULT Remove(VARIANT key) = 0;
    virtual HRESULT Clear() = 0;
    virtual HRESULT Clone(ICollection** copy) = 0;
    virtual HRESULT get_Name(BSTR* name) = 0;
    virtual HRESULT put_Name(BSTR name) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~ICollection() = default;
};
