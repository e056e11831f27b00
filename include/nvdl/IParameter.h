// IParameter: a free name and a free text value, kept with a measurement, a setup or a project.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Dispatch.h"

struct IParameter : IDispatch {
    static constexpr const IID& iid = IID_IParameter;

    virtual HRESULT put_Name(BSTR name) = 0;
    virtual HRESULT get_Name(BSTR* name) = 0;
    virtual HRESULT get_Value(BSTR* value) = 0;
    virtual HRESULT put_Value(BSTR value) = 0;
    virtual HRESULT Copy(IParameter* target) = 0;
    virtual HRESULT get_Modified(SHORT* modified) = 0;
    virtual HRESULT put_Modified(SHORT modified) = 0;
    virtual HRESULT get_Parent(IDispatch** parent) = 0;
    virtual HRESULT put_Parent(IDispatch* parent) = 0;
    virtual HRESULT Clone(IParameter** copy) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IParameter() = default;
};
