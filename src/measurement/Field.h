// CField: a view, by name, of one scalar property of an owner, read and written as text through
// late binding. CFields: the names of an owner's scalar properties, handing out a field for each.
#pragma once

#include <string>
#include <vector>

#include "frame/ObjectFrame.h"
#include "platform/ComPtr.h"
#include "nvdl/IField.h"

namespace nvdl {

class CField final : public CObjectFrame<CField, IField> {
public:
    static constexpr IID kModifiedParents[] = {IID_IMeasurement, IID_ISetup, IID_ISaving};

    // A field of `owner` (counted) for the property `name` of the owner's interface `ownerInterface`.
    static CField* create(IDispatch* owner, const IID& ownerInterface, std::string name);
    ~CField() override;

    NVDL_IMPLEMENTS(NVDL_IFIELD_MEMBERS)

private:
    CField(IDispatch* owner, const IID& ownerInterface, std::string name);
    HRESULT resolveMember();
    HRESULT resolvePutType();
    // The owner; it is counted, so it stays readable while the field lives.
    IDispatch* readableOwner();

    std::string m_name;
    ComPtr<IDispatch> m_owner;  // counted: the subject of a field must stay alive
    IID m_ownerInterface;
    DISPID m_dispid = -1;
    VARTYPE m_valueType = VT_UNKNOWN;  // unresolved until the first put
};

class CFields final : public CObjectFrame<CFields, IFields> {
public:
    static CFields* create();

    NVDL_IMPLEMENTS(NVDL_IFIELDS_MEMBERS)

    void SetOwner(IDispatch* owner);
    void SetInterface(const GUID& ownerInterface) { m_ownerInterface = ownerInterface; }
    // Lists the scalar properties of the owner's interface; fills only an empty list.
    HRESULT Load(ITypeLib* library, IDispatch* owner);
    // Removes the first name equal to `name`, case ignored.
    void Remove(std::string_view name);
    // Adds a name at the end, for an owner that lists its fields itself.
    void Append(std::string name) { m_names.push_back(std::move(name)); }
    const std::vector<std::string>& names() const { return m_names; }

private:
    CFields();

    WeakParent m_owner;  // uncounted: the owner keeps its list, not the other way round
    IID m_ownerInterface{};
    std::vector<std::string> m_names;
};

}  // namespace nvdl
