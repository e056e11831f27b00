// CLayout: one screen arrangement of the client program, kept in a project. The model knows its name,
// whether it is the default one, and a tree of components in memory (INVRootStorage) that the
// client fills and reads and that the layout only keeps, copies and persists.
//
// A layout persists as a storage: the stream "Layout" with a record of 122 bytes and, when the tree
// has contents, the storage "Components" that the tree writes itself (project/LayoutPersist.cpp).
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "frame/PersistCompanion.h"
#include "nvdl/ILayout.h"
#include "nvdl/INVRootStorage.h"
#include "nvdl/Persist.h"

namespace nvdl {

class CLayout;

struct LayoutFields {
    std::string Name;
    std::int16_t Default = 0;
};

// The record stream and the components storage.
class CLayoutPersistStorage final : public CStoragePersistCompanion<CLayout> {
public:
    using CStoragePersistCompanion::CStoragePersistCompanion;
    HRESULT Load(IStorage* storage) override;
    HRESULT Save(IStorage* storage, int sameStorage) override;
};

class CLayout final : public CObjectFrame<CLayout, ILayout> {
public:
    static constexpr const char* kClassName = "CLayout";
    static constexpr const CLSID& kClassId = CLSID_CLayout;
    static constexpr IID kModifiedParents[] = {IID_IProject};

    static IDispatch* create() { return (new CLayout)->dispatch(); }
    CLayout() : CObjectFrame(IID_ILayout) {}

    NVDL_IMPLEMENTS(NVDL_ILAYOUT_MEMBERS)

    // Name and Default through the setters, the source's components copied deep into the target's
    // own tree, then Modified.
    static HRESULT Copy(ILayout* source, ILayout* target);

    LayoutFields m_fields;

private:
    friend class CLayoutPersistStorage;

    HRESULT queryCompanion(REFIID riid, void** ppv) override;
    // The tree, made on first need.
    HRESULT components(INVRootStorage** tree);

    CLayoutPersistStorage m_persist{*this};
    ComPtr<INVRootStorage> m_components;
};

}  // namespace nvdl
