// CObjectCollection: the one collection class of the object model. It is embedded in its owner and
// shares the owner's life; it knows its items only through their late-bound members (Name, Id,
// Parent, Setup, Modified, FullPathName) and switches a few rules on the class of its items.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "frame/ObjectFrame.h"
#include "nvdl/ICollection.h"

namespace nvdl {

struct CCollectionEntry {
    virtual ~CCollectionEntry() = default;
    IDispatch* m_pItem = nullptr;  // one counted reference
};

class CObjectCollection final : public CObjectFrame<CObjectCollection, ICollection> {
public:
    // An embedded collection: its reference operations go to its owner once it has one.
    explicit CObjectCollection(const IID& iid);
    ~CObjectCollection() override;

    ULONG AddRef() override;
    ULONG Release() override;

    NVDL_IMPLEMENTS(NVDL_ICOLLECTION_MEMBERS)

    // For the owner.
    void SetOwner(IDispatch* owner);
    void SetItemClass(const CLSID& itemClass);
    IDispatch* GetOwner();
    void SetParentOnAdd(bool setParent) { m_bSetParent = setParent; }
    // The item at a position, without a reference of its own, or null.
    IDispatch* itemAt(std::size_t index) const;
    std::size_t size() const { return m_items.size(); }
    // Adds a clone of every item of the other collection, as Clone does; items that give no clone
    // are skipped.
    HRESULT AddClonesOf(const CObjectCollection& source);

private:
    // A heap collection made by Clone: counted as any object, freed by its last Release.
    struct Detached {};
    CObjectCollection(const IID& iid, Detached);

    bool isItemClass(const CLSID& clsid) const { return m_itemClass == clsid; }
    bool keyedById() const;
    bool nameIsFree() const;  // items whose names may repeat at insertion
    HRESULT MakeUniqueName(std::u16string& name);
    HRESULT addParameter(IDispatch*& item, const std::u16string& name, bool& merged);
    HRESULT addSaveFunction(IDispatch* item, const std::u16string& name, bool& merged);
    void NormaliseCreator(IDispatch* setup);
    HRESULT attachToOwner(IDispatch* item, bool& attached);
    // The text an item is looked up by: Id or Name.
    bool itemKeyText(IDispatch* item, std::u16string& text) const;
    LONG findByText(std::u16string_view text, bool ignoreCase) const;
    void SetOwnerModified(SHORT flag);
    void writeRemoveDiagnostic(ULONG countLeft) const;

    IID m_iid;
    std::set<std::string> m_nameIndex;      // lower-cased parameter names
    std::set<std::string> m_functionIndex;  // lower-cased save function names
    CLSID m_itemClass{};
    WeakParent m_owner;
    bool m_hasOwner = false;
    bool m_detached = false;
    bool m_bSetParent = true;
    std::string m_sName;
    std::vector<CCollectionEntry*> m_items;
};

// Registers the collection interfaces (IParameters, IMeasurements, ...) in the type library.
void registerCollectionInterfaces();

}  // namespace nvdl
