// CField: a view, by name, of one scalar property of an owner, read and written as text through
// late binding. CFields: the names of an owner's scalar properties, handing out a field for each.
#pragma once

#include <string>
#include <vector>

#include "frame/ObjectFrame.h"
#include "nvdl/IField.h"

namespace nvdl {

class CField final : public CObjectFrame<IField> {
public:
    // A field of `owner` (counted) for the property `name` of the owner's interface `ownerInterface`.
    static CField* create(IDispatch* owner, const IID& ownerInterface, std::string name);
    ~CField() override;

    HRESULT get_Name(BSTR* name) override;
    HRESULT get_Value(BSTR* value) override;
    HRESULT put_Value(BSTR value) override;
    HRESULT put_Parent(IDispatch* parent) override;
    HRESULT get_Parent(IDispatch** parent) override;

private:
    CField(IDispatch* owner, const IID& ownerInterface, std::string name);
    HRESULT resolveMember();
    HRESULT resolvePutType();
    // The owner; it is counted, so it stays readable while the field lives.
    IDispatch* readableOwner();

    std::string m_name;
    IDispatch* m_owner = nullptr;  // counted: the subject of a field must stay alive
    IID m_ownerInterface;
    DISPID m_dispid = -1;
    VARTYPE m_valueType = VT_UNKNOWN;  // unresolved until the first put
};

class CFields final : public CObjectFrame<IFields> {
public:
    static CFields* create();

    HRESULT get_Count(LONG* count) override;
    HRESULT get_Item(VARIANT index, IField** field) override;
    HRESULT get__NewEnum(IUnknown** enumerator) override;

    void SetOwner(IDispatch* owner);
    void SetInterface(const GUID& ownerInterface) { m_ownerInterface = ownerInterface; }
    // Lists the scalar properties of the owner's interface; fills only an empty list.
    HRESULT Load(ITypeLib* library, IDispatch* owner);
    // Removes the first name equal to `name`, case ignored.
    void Remove(std::string_view name);
    const std::vector<std::string>& names() const { return m_names; }

private:
    CFields();

    WeakParent m_owner;  // uncounted: the owner keeps its list, not the other way round
    IID m_ownerInterface{};
    std::vector<std::string> m_names;
};

}  // namespace nvdl
