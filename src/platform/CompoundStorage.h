// A storage of a compound file, as the IStorage of the runtime.
#pragma once

#include <memory>

#include "platform/CompoundFile.h"
#include "nvdl/Storage.h"

namespace nvdl {

class CompoundStorage final : public IStorage {
public:
    // A new object with one reference, held by the caller. Changes need `writable`.
    static CompoundStorage* create(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable);

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
    HRESULT Commit(DWORD flags) override;
    HRESULT EnumElements(std::vector<STATSTG>* elements) override;
    HRESULT DestroyElement(const OLECHAR* name) override;
    HRESULT RenameElement(const OLECHAR* oldName, const OLECHAR* newName) override;
    HRESULT SetClass(REFCLSID clsid) override;
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

private:
    CompoundStorage(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable);
    ~CompoundStorage() = default;

    // Checks that the storage still exists (else STG_E_REVERTED) and, with `change`, that it may be changed.
    void checkUsable(bool change) const;
    // The child of that name, or NOSTREAM; the name is checked first.
    std::uint32_t findChild(const OLECHAR* name) const;
    // Creates a child, replacing one of the same name when `mode` has STGM_CREATE.
    std::uint32_t createChild(const OLECHAR* name, DWORD mode, cfb::EntryType type);
    // The child to open, which must be of `type`; `mode` tells whether it is to be changed.
    std::uint32_t openChild(const OLECHAR* name, DWORD mode, cfb::EntryType type, bool& writable) const;

    ULONG m_cRef = 1;
    std::shared_ptr<cfb::CompoundFile> m_file;
    std::uint32_t m_id;
    std::uint32_t m_generation;
    bool m_writable;
};

}  // namespace nvdl
