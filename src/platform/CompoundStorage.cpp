#include "platform/CompoundStorage.h"

#include "platform/CompoundError.h"
#include "platform/CompoundName.h"
#include "platform/CompoundStream.h"

namespace nvdl {

namespace {

constexpr DWORD kAccessMask = 3;

std::u16string_view nameOf(const OLECHAR* name) {
    if (!name) cfb::fail(STG_E_INVALIDPOINTER);
    std::u16string_view view(name);
    if (HRESULT h = cfb::validateName(view); FAILED(h)) cfb::fail(h);
    return view;
}

// Whether `mode` asks for changes; an access value beyond read-write is an error.
bool wantsWrite(DWORD mode) {
    DWORD access = mode & kAccessMask;
    if (access == kAccessMask) cfb::fail(STG_E_INVALIDFLAG);
    return access != STGM_READ;
}

STATSTG describe(const cfb::DirEntry& e, bool withName) {
    STATSTG s;
    if (withName) s.name = e.name;
    bool stream = e.type == cfb::EntryType::Stream;
    s.type = stream ? STGTY_STREAM : STGTY_STORAGE;
    s.cbSize = stream ? e.size : 0;
    s.clsid = e.clsid;
    s.stateBits = e.stateBits;
    return s;
}

}  // namespace

CompoundStorage* CompoundStorage::create(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable) {
    return new CompoundStorage(std::move(file), id, writable);
}

CompoundStorage::CompoundStorage(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable)
    : m_file(std::move(file)), m_id(id), m_generation(m_file->directory().generation(id)), m_writable(writable) {}

HRESULT CompoundStorage::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid == IID_IUnknown || riid == IID_IStorage) {
        *ppv = static_cast<IStorage*>(this);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

ULONG CompoundStorage::AddRef() { return ++m_cRef; }

ULONG CompoundStorage::Release() {
    ULONG left = --m_cRef;
    if (left == 0) delete this;
    return left;
}

void CompoundStorage::checkUsable(bool change) const {
    if (m_file->directory().generation(m_id) != m_generation) cfb::fail(STG_E_REVERTED);
    if (change && !m_writable) cfb::fail(STG_E_ACCESSDENIED);
}

std::uint32_t CompoundStorage::findChild(const OLECHAR* name) const {
    return m_file->directory().find(m_id, nameOf(name));
}

std::uint32_t CompoundStorage::createChild(const OLECHAR* name, DWORD mode, cfb::EntryType type) {
    checkUsable(true);
    std::u16string_view view = nameOf(name);
    std::uint32_t existing = m_file->directory().find(m_id, view);
    if (existing != cfb::NOSTREAM) {
        if (!(mode & STGM_CREATE)) cfb::fail(STG_E_FILEALREADYEXISTS);
        m_file->destroyElement(existing);
    }
    return m_file->createElement(m_id, std::u16string(view), type);
}

std::uint32_t CompoundStorage::openChild(const OLECHAR* name, DWORD mode, cfb::EntryType type,
                                         bool& writable) const {
    checkUsable(false);
    if (mode & STGM_CREATE) cfb::fail(STG_E_INVALIDFLAG);
    writable = wantsWrite(mode);
    std::uint32_t id = findChild(name);
    if (id == cfb::NOSTREAM || m_file->directory().entry(id).type != type) cfb::fail(STG_E_FILENOTFOUND);
    if (writable && !m_writable) cfb::fail(STG_E_ACCESSDENIED);
    return id;
}

HRESULT CompoundStorage::CreateStream(const OLECHAR* name, DWORD mode, DWORD, DWORD, IStream** stream) {
    if (!stream) return STG_E_INVALIDPOINTER;
    *stream = nullptr;
    return cfb::guarded([&] {
        std::uint32_t id = createChild(name, mode, cfb::EntryType::Stream);
        *stream = CompoundStream::create(m_file, id, true);
    });
}

HRESULT CompoundStorage::OpenStream(const OLECHAR* name, void* reserved1, DWORD mode, DWORD, IStream** stream) {
    if (!stream) return STG_E_INVALIDPOINTER;
    *stream = nullptr;
    if (reserved1) return STG_E_INVALIDPARAMETER;
    return cfb::guarded([&] {
        bool writable;
        std::uint32_t id = openChild(name, mode, cfb::EntryType::Stream, writable);
        *stream = CompoundStream::create(m_file, id, writable);
    });
}

HRESULT CompoundStorage::CreateStorage(const OLECHAR* name, DWORD mode, DWORD, DWORD, IStorage** storage) {
    if (!storage) return STG_E_INVALIDPOINTER;
    *storage = nullptr;
    return cfb::guarded([&] {
        std::uint32_t id = createChild(name, mode, cfb::EntryType::Storage);
        *storage = CompoundStorage::create(m_file, id, true);
    });
}

HRESULT CompoundStorage::OpenStorage(const OLECHAR* name, IStorage* priority, DWORD mode, void* exclude, DWORD,
                                     IStorage** storage) {
    if (!storage) return STG_E_INVALIDPOINTER;
    *storage = nullptr;
    if (priority || exclude) return STG_E_INVALIDPARAMETER;
    return cfb::guarded([&] {
        bool writable;
        std::uint32_t id = openChild(name, mode, cfb::EntryType::Storage, writable);
        *storage = CompoundStorage::create(m_file, id, writable);
    });
}

HRESULT CompoundStorage::Commit(DWORD) {
    return cfb::guarded([&] {
        checkUsable(false);
        if (m_id == cfb::Directory::kRoot && m_writable) m_file->commit();
    });
}

HRESULT CompoundStorage::EnumElements(std::vector<STATSTG>* elements) {
    if (!elements) return STG_E_INVALIDPOINTER;
    return cfb::guarded([&] {
        checkUsable(false);
        const cfb::Directory& dir = m_file->directory();
        std::vector<STATSTG> out;
        out.reserve(dir.children(m_id).size());
        for (std::uint32_t k : dir.children(m_id)) out.push_back(describe(dir.entry(k), true));
        *elements = std::move(out);
    });
}

HRESULT CompoundStorage::DestroyElement(const OLECHAR* name) {
    return cfb::guarded([&] {
        checkUsable(true);
        std::uint32_t id = findChild(name);
        if (id == cfb::NOSTREAM) cfb::fail(STG_E_FILENOTFOUND);
        m_file->destroyElement(id);
    });
}

HRESULT CompoundStorage::RenameElement(const OLECHAR* oldName, const OLECHAR* newName) {
    return cfb::guarded([&] {
        checkUsable(true);
        std::uint32_t id = findChild(oldName);
        std::u16string_view view = nameOf(newName);
        if (id == cfb::NOSTREAM) cfb::fail(STG_E_FILENOTFOUND);
        std::uint32_t other = m_file->directory().find(m_id, view);
        if (other != cfb::NOSTREAM && other != id) cfb::fail(STG_E_FILEALREADYEXISTS);
        m_file->renameElement(id, std::u16string(view));
    });
}

HRESULT CompoundStorage::SetClass(REFCLSID clsid) {
    return cfb::guarded([&] {
        checkUsable(true);
        m_file->setClass(m_id, clsid);
    });
}

HRESULT CompoundStorage::Stat(STATSTG* stat, DWORD flags) {
    if (!stat) return STG_E_INVALIDPOINTER;
    return cfb::guarded([&] {
        checkUsable(false);
        bool withName = !(flags & STATFLAG_NONAME);
        STATSTG s = describe(m_file->directory().entry(m_id), withName);
        // The root is known by the path of its file.
        if (withName && m_id == cfb::Directory::kRoot) s.name = m_file->path().u16string();
        *stat = std::move(s);
    });
}

}  // namespace nvdl
