// IField: one scalar property of an owner, read and written by name as text. IFields: the list of
// an owner's scalar property names, handing out a field for each.
#pragma once

#include "nvdl/Identifiers.h"
#include "nvdl/Dispatch.h"

struct IField : IDispatch {
    static constexpr const IID& iid = IID_IField;

    virtual HRESULT get_Name(BSTR* name) = 0;
    virtual HRESULT get_Value(BSTR* value) = 0;
    virtual HRESULT put_Value(BSTR value) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;
    virtual HRESULT put_Parent(IDispatch* parent) = 0;
    virtual HRESULT get_Parent(IDispatch** parent) = 0;

protected:
    ~IField() = default;
};

struct IFields : IDispatch {
    static constexpr const IID& iid = IID_IFields;

    virtual HRESULT get_Count(LONG* count) = 0;
    virtual HRESULT get_Item(VARIANT index, IField** field) = 0;
    virtual HRESULT get__NewEnum(IUnknown** enumerator) = 0;
    virtual HRESULT LoadTypeInfo(LCID lcid, ITypeInfo** info) = 0;

protected:
    ~IFields() = default;
};
