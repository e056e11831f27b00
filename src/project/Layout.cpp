#include "project/Layout.h"

#include "frame/ClassTable.h"

namespace nvdl {

namespace {

const ClassRegistration g_class{{"nv_bench.Layout", CLSID_CLayout, "Sonvara Layout", &CLayout::create}};

// The components tree of a layout, through its interface.
ComPtr<INVRootStorage> treeOf(ILayout* layout) {
    ComPtr<IUnknown> components;
    if (FAILED(layout->get_Components(components.out()))) return {};
    return ComPtr<INVRootStorage>::query(components.get());
}

}  // namespace

HRESULT CLayout::queryCompanion(REFIID riid, void** ppv) {
    if (riid == IID_IPersistStorage || riid == IID_IPersist) {
        *ppv = static_cast<IPersistStorage*>(&m_persist);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

HRESULT CLayout::components(INVRootStorage** tree) {
    if (!m_components) {
        HRESULT h = CreateNVRootStorage(m_components.out());
        if (FAILED(h)) return h;
    }
    *tree = ComPtr<INVRootStorage>::share(m_components.get()).release();
    return S_OK;
}

// The default flag is a choice among the project's layouts, not a change of this one.
HRESULT CLayout::put_Default(SHORT value) {
    m_fields.Default = value;
    return S_OK;
}

HRESULT CLayout::get_Components(IUnknown** components) {
    if (!components) return E_POINTER;
    *components = nullptr;
    INVRootStorage* tree = nullptr;
    HRESULT h = this->components(&tree);
    if (SUCCEEDED(h)) *components = tree;
    return h;
}

// Empties the tree that clients may still hold and starts a new one.
HRESULT CLayout::Clean() {
    if (m_components) {
        SHORT has = 0;
        if (SUCCEEDED(m_components->HasContents(&has)) && has) m_components->Clear();
        m_components.reset();
    }
    return SUCCEEDED(CreateNVRootStorage(m_components.out())) ? S_OK : E_FAIL;
}

HRESULT CLayout::Copy(ILayout* source, ILayout* target) {
    Bstr name;
    if (SUCCEEDED(source->get_Name(name.out())) && name.get()) target->put_Name(name.get());
    SHORT isDefault = 0;
    if (SUCCEEDED(source->get_Default(&isDefault))) target->put_Default(isDefault);
    // Each layout keeps a tree of its own: the target's takes a copy of the source's.
    ComPtr<INVRootStorage> from = treeOf(source);
    ComPtr<INVRootStorage> into = from ? treeOf(target) : ComPtr<INVRootStorage>();
    if (into) into->CopyFrom(from.get());
    SHORT modified = 0;
    if (SUCCEEDED(source->get_Modified(&modified))) target->put_Modified(modified);
    return S_OK;
}

}  // namespace nvdl
