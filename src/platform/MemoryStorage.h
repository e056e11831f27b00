// A storage tree in memory: storages and streams by name, in the order and with the name rules of a
// compound file's storages. Each opened storage or stream is a handle of its own on a shared node,
// so that it stays valid while it is held; an element destroyed or replaced leaves its handles
// answering STG_E_REVERTED. Every change through any handle marks the tree dirty.
#pragma once

#include <memory>

#include "nvdl/INVRootStorage.h"
#include "nvdl/Persist.h"
#include "nvdl/Storage.h"

namespace nvdl {

namespace memory_tree {
struct Node;
struct Tree;
}  // namespace memory_tree

// A storage of the tree.
class MemoryStorage : public IStorage {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT CreateStream(const OLECHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                         IStream** stream) override;
    HRESULT OpenStream(const OLECHAR* name, void* reserved1, DWORD mode, DWORD reserved2, IStream** stream) override;
    HRESULT CreateStorage(const OLECHAR* name, DWORD mode, DWORD reserved1, DWORD reserved2,
                          IStorage** storage) override;
    HRESULT OpenStorage(const OLECHAR* name, IStorage* priority, DWORD mode, void* exclude, DWORD reserved,
                        IStorage** storage) override;
    // Memory has nothing to write out: succeeds while the storage exists.
    HRESULT Commit(DWORD flags) override;
    HRESULT EnumElements(std::vector<STATSTG>* elements) override;
    HRESULT DestroyElement(const OLECHAR* name) override;
    HRESULT RenameElement(const OLECHAR* oldName, const OLECHAR* newName) override;
    HRESULT SetClass(REFCLSID clsid) override;
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

protected:
    MemoryStorage(std::shared_ptr<memory_tree::Tree> tree, std::shared_ptr<memory_tree::Node> node, bool writable);
    virtual ~MemoryStorage();

    // Throws STG_E_REVERTED when the storage is gone and, with `change`, STG_E_ACCESSDENIED when it
    // was opened for reading.
    void checkUsable(bool change) const;

    std::shared_ptr<memory_tree::Tree> m_tree;
    std::shared_ptr<memory_tree::Node> m_node;

private:
    std::shared_ptr<memory_tree::Node> createChild(const OLECHAR* name, DWORD mode, bool stream);
    std::shared_ptr<memory_tree::Node> openChild(const OLECHAR* name, DWORD mode, bool stream, bool& writable) const;

    ULONG m_cRef = 1;
    bool m_writable;
};

// The root of a tree: the storage itself, the tree's own members and its persistence.
class MemoryRootStorage final : public MemoryStorage, public INVRootStorage, public IPersistStorage {
public:
    // A new empty tree with one reference, held by the caller.
    static MemoryRootStorage* create();

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return MemoryStorage::AddRef(); }
    ULONG Release() override { return MemoryStorage::Release(); }

    HRESULT HasContents(SHORT* has) override;
    HRESULT CopyFrom(INVRootStorage* source) override;
    HRESULT Clear() override;

    // The class identifier the root storage carries.
    HRESULT GetClassID(CLSID* clsid) override;
    // S_OK when the tree changed since it was created, loaded or saved; S_FALSE otherwise.
    HRESULT IsDirty() override;
    // Starts an empty tree; the storage is not kept.
    HRESULT InitNew(IStorage* storage) override;
    // Replaces the tree by a copy of the storage's whole tree; on a failure the tree is unchanged.
    HRESULT Load(IStorage* storage) override;
    // Writes the whole tree into the storage, replacing elements of the same names there.
    HRESULT Save(IStorage* storage, int sameStorage) override;
    // No storage is kept between calls: nothing to finish or let go.
    HRESULT SaveCompleted(IStorage*) override { return S_OK; }
    HRESULT HandsOffStorage() override { return S_OK; }

private:
    MemoryRootStorage();
    ~MemoryRootStorage() override = default;

    // Copies the storage's tree into a fresh node and, when that succeeds, makes it the root's contents.
    HRESULT replaceContents(IStorage* from);
};

}  // namespace nvdl
