// The root of a storage tree in memory, and the factory of such trees.
#include <new>

#include "platform/MemoryStorage.h"
#include "platform/MemoryTree.h"
#include "platform/StorageCopy.h"

namespace nvdl {

using memory_tree::Node;
using memory_tree::Tree;

namespace {

// A storage on a node outside the tree, to build new contents in before they replace the old.
class LooseStorage final : public MemoryStorage {
public:
    explicit LooseStorage(std::shared_ptr<Node> node) : MemoryStorage(std::make_shared<Tree>(), std::move(node), true) {}
};

}  // namespace

HRESULT CreateNVRootStorage(INVRootStorage** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    try {
        *out = MemoryRootStorage::create();
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

MemoryRootStorage* MemoryRootStorage::create() { return new MemoryRootStorage; }

MemoryRootStorage::MemoryRootStorage() : MemoryStorage(std::make_shared<Tree>(), std::make_shared<Node>(), true) {}

HRESULT MemoryRootStorage::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid == IID_INVRootStorage) *ppv = static_cast<INVRootStorage*>(this);
    else if (riid == IID_IPersistStorage || riid == IID_IPersist) *ppv = static_cast<IPersistStorage*>(this);
    else return MemoryStorage::QueryInterface(riid, ppv);
    AddRef();
    return S_OK;
}

HRESULT MemoryRootStorage::HasContents(SHORT* has) {
    if (!has) return E_POINTER;
    *has = m_node->children.empty() ? 0 : -1;
    return S_OK;
}

HRESULT MemoryRootStorage::CopyFrom(INVRootStorage* source) {
    if (!source) return E_POINTER;
    if (source == static_cast<INVRootStorage*>(this)) return S_OK;
    IStorage* from = nullptr;
    HRESULT h = source->QueryInterface(IID_IStorage, reinterpret_cast<void**>(&from));
    if (FAILED(h)) return h;
    h = replaceContents(from);
    from->Release();
    if (SUCCEEDED(h)) m_tree->dirty = true;
    return h;
}

HRESULT MemoryRootStorage::Clear() {
    if (!m_node->children.empty()) m_tree->dirty = true;
    for (const std::shared_ptr<Node>& child : m_node->children) memory_tree::detach(*child);
    m_node->children.clear();
    return S_OK;
}

HRESULT MemoryRootStorage::GetClassID(CLSID* clsid) {
    if (!clsid) return E_POINTER;
    *clsid = m_node->clsid;
    return S_OK;
}

HRESULT MemoryRootStorage::IsDirty() { return m_tree->dirty ? S_OK : S_FALSE; }

HRESULT MemoryRootStorage::InitNew(IStorage*) {
    Clear();
    m_node->clsid = CLSID{};
    m_tree->dirty = false;
    return S_OK;
}

HRESULT MemoryRootStorage::Load(IStorage* storage) {
    if (!storage) return E_POINTER;
    HRESULT h = replaceContents(storage);
    if (SUCCEEDED(h)) m_tree->dirty = false;
    return h;
}

HRESULT MemoryRootStorage::Save(IStorage* storage, int) {
    if (!storage) return E_POINTER;
    HRESULT h = copyStorageTree(static_cast<IStorage*>(this), storage);
    if (SUCCEEDED(h)) m_tree->dirty = false;
    return h;
}

HRESULT MemoryRootStorage::replaceContents(IStorage* from) {
    auto fresh = std::make_shared<Node>();
    IStorage* into = new LooseStorage(fresh);
    HRESULT h = copyStorageTree(from, into);
    into->Release();
    if (FAILED(h)) {
        memory_tree::detach(*fresh);
        return h;
    }
    for (const std::shared_ptr<Node>& child : m_node->children) memory_tree::detach(*child);
    m_node->children = std::move(fresh->children);
    m_node->clsid = fresh->clsid;
    return S_OK;
}

}  // namespace nvdl
