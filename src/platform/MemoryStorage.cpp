#include "platform/MemoryStorage.h"

#include <algorithm>

#include "platform/CompoundError.h"
#include "platform/CompoundName.h"
#include "platform/MemoryTree.h"

namespace nvdl {

using memory_tree::Node;
using memory_tree::Tree;

namespace memory_tree {

void detach(Node& node) {
    node.detached = true;
    for (const std::shared_ptr<Node>& child : node.children) detach(*child);
}

}  // namespace memory_tree

namespace {

constexpr DWORD kAccessMask = 3;

std::u16string_view nameOf(const OLECHAR* name) {
    if (!name) cfb::fail(STG_E_INVALIDPOINTER);
    std::u16string_view view(name);
    if (HRESULT h = cfb::validateName(view); FAILED(h)) cfb::fail(h);
    return view;
}

bool wantsWrite(DWORD mode) {
    DWORD access = mode & kAccessMask;
    if (access == kAccessMask) cfb::fail(STG_E_INVALIDFLAG);
    return access != STGM_READ;
}

auto findIn(Node& parent, std::u16string_view name) {
    return std::find_if(parent.children.begin(), parent.children.end(),
                        [&](const std::shared_ptr<Node>& c) { return cfb::compareNames(c->name, name) == 0; });
}

void insertSorted(Node& parent, std::shared_ptr<Node> child) {
    auto at = std::lower_bound(parent.children.begin(), parent.children.end(), child->name,
                               [](const std::shared_ptr<Node>& c, const std::u16string& name) {
                                   return cfb::compareNames(c->name, name) < 0;
                               });
    parent.children.insert(at, std::move(child));
}

STATSTG describe(const Node& node, bool withName) {
    STATSTG s;
    if (withName) s.name = node.name;
    s.type = node.isStream ? STGTY_STREAM : STGTY_STORAGE;
    s.cbSize = node.isStream ? node.bytes->bytes().size() : 0;
    s.clsid = node.clsid;
    s.stateBits = node.stateBits;
    return s;
}

// A stream of the tree: its own position over the node's bytes, which it keeps alive.
class StreamHandle final : public IStream {
public:
    StreamHandle(std::shared_ptr<Tree> tree, std::shared_ptr<Node> node, bool writable)
        : m_tree(std::move(tree)), m_node(std::move(node)), m_writable(writable) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (riid != IID_IUnknown && riid != IID_IStream && riid != IID_ISequentialStream) return E_NOINTERFACE;
        *ppv = static_cast<IStream*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override {
        ULONG left = --m_cRef;
        if (left == 0) delete this;
        return left;
    }

    HRESULT Read(void* pv, ULONG cb, ULONG* pcbRead) override {
        if (pcbRead) *pcbRead = 0;
        if (m_node->detached) return STG_E_REVERTED;
        ULONG got = 0;
        HRESULT h = atPosition()->Read(pv, cb, &got);
        m_position += got;
        if (pcbRead) *pcbRead = got;
        return h;
    }
    HRESULT Write(const void* pv, ULONG cb, ULONG* pcbWritten) override {
        if (pcbWritten) *pcbWritten = 0;
        if (HRESULT h = checkChange(); FAILED(h)) return h;
        ULONG put = 0;
        HRESULT h = atPosition()->Write(pv, cb, &put);
        m_position += put;
        if (pcbWritten) *pcbWritten = put;
        if (put) m_tree->dirty = true;
        return h;
    }
    HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) override {
        if (m_node->detached) return STG_E_REVERTED;
        // The bytes' own seek checks the origin and the range from this handle's position.
        std::uint64_t moved = 0;
        HRESULT h = atPosition()->Seek(move, origin, &moved);
        if (FAILED(h)) return h;
        m_position = moved;
        if (newPosition) *newPosition = moved;
        return S_OK;
    }
    HRESULT SetSize(std::uint64_t newSize) override {
        if (HRESULT h = checkChange(); FAILED(h)) return h;
        HRESULT h = m_node->bytes->SetSize(newSize);
        if (SUCCEEDED(h)) m_tree->dirty = true;
        return h;
    }
    HRESULT Commit(DWORD) override { return m_node->detached ? STG_E_REVERTED : S_OK; }
    HRESULT Stat(STATSTG* stat, DWORD flags) override {
        if (!stat) return STG_E_INVALIDPOINTER;
        if (m_node->detached) return STG_E_REVERTED;
        *stat = describe(*m_node, !(flags & STATFLAG_NONAME));
        return S_OK;
    }

private:
    ~StreamHandle() = default;

    HRESULT checkChange() const {
        if (m_node->detached) return STG_E_REVERTED;
        return m_writable ? S_OK : STG_E_ACCESSDENIED;
    }
    MemoryStream* atPosition() {
        m_node->bytes->Seek(static_cast<std::int64_t>(m_position), STREAM_SEEK_SET, nullptr);
        return m_node->bytes.get();
    }

    ULONG m_cRef = 1;
    std::shared_ptr<Tree> m_tree;
    std::shared_ptr<Node> m_node;
    bool m_writable;
    std::uint64_t m_position = 0;
};

}  // namespace

MemoryStorage::MemoryStorage(std::shared_ptr<Tree> tree, std::shared_ptr<Node> node, bool writable)
    : m_tree(std::move(tree)), m_node(std::move(node)), m_writable(writable) {}

MemoryStorage::~MemoryStorage() = default;

HRESULT MemoryStorage::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid != IID_IUnknown && riid != IID_IStorage) return E_NOINTERFACE;
    *ppv = static_cast<IStorage*>(this);
    AddRef();
    return S_OK;
}

ULONG MemoryStorage::AddRef() { return ++m_cRef; }

ULONG MemoryStorage::Release() {
    ULONG left = --m_cRef;
    if (left == 0) delete this;
    return left;
}

void MemoryStorage::checkUsable(bool change) const {
    if (m_node->detached) cfb::fail(STG_E_REVERTED);
    if (change && !m_writable) cfb::fail(STG_E_ACCESSDENIED);
}

std::shared_ptr<Node> MemoryStorage::createChild(const OLECHAR* name, DWORD mode, bool stream) {
    checkUsable(true);
    std::u16string_view view = nameOf(name);
    if (auto existing = findIn(*m_node, view); existing != m_node->children.end()) {
        if (!(mode & STGM_CREATE)) cfb::fail(STG_E_FILEALREADYEXISTS);
        memory_tree::detach(**existing);
        m_node->children.erase(existing);
    }
    auto child = std::make_shared<Node>();
    child->name = std::u16string(view);
    child->isStream = stream;
    if (stream) child->bytes.reset(MemoryStream::create());
    insertSorted(*m_node, child);
    m_tree->dirty = true;
    return child;
}

std::shared_ptr<Node> MemoryStorage::openChild(const OLECHAR* name, DWORD mode, bool stream, bool& writable) const {
    checkUsable(false);
    if (mode & STGM_CREATE) cfb::fail(STG_E_INVALIDFLAG);
    writable = wantsWrite(mode);
    auto found = findIn(*m_node, nameOf(name));
    if (found == m_node->children.end() || (*found)->isStream != stream) cfb::fail(STG_E_FILENOTFOUND);
    if (writable && !m_writable) cfb::fail(STG_E_ACCESSDENIED);
    return *found;
}

HRESULT MemoryStorage::CreateStream(const OLECHAR* name, DWORD mode, DWORD, DWORD, IStream** stream) {
    if (!stream) return STG_E_INVALIDPOINTER;
    *stream = nullptr;
    return cfb::guarded([&] { *stream = new StreamHandle(m_tree, createChild(name, mode, true), true); });
}

HRESULT MemoryStorage::OpenStream(const OLECHAR* name, void* reserved1, DWORD mode, DWORD, IStream** stream) {
    if (!stream) return STG_E_INVALIDPOINTER;
    *stream = nullptr;
    if (reserved1) return STG_E_INVALIDPARAMETER;
    return cfb::guarded([&] {
        bool writable;
        std::shared_ptr<Node> node = openChild(name, mode, true, writable);
        *stream = new StreamHandle(m_tree, std::move(node), writable);
    });
}

HRESULT MemoryStorage::CreateStorage(const OLECHAR* name, DWORD mode, DWORD, DWORD, IStorage** storage) {
    if (!storage) return STG_E_INVALIDPOINTER;
    *storage = nullptr;
    return cfb::guarded([&] { *storage = new MemoryStorage(m_tree, createChild(name, mode, false), true); });
}

HRESULT MemoryStorage::OpenStorage(const OLECHAR* name, IStorage* priority, DWORD mode, void* exclude, DWORD,
                                   IStorage** storage) {
    if (!storage) return STG_E_INVALIDPOINTER;
    *storage = nullptr;
    if (priority || exclude) return STG_E_INVALIDPARAMETER;
    return cfb::guarded([&] {
        bool writable;
        std::shared_ptr<Node> node = openChild(name, mode, false, writable);
        *storage = new MemoryStorage(m_tree, std::move(node), writable);
    });
}

HRESULT MemoryStorage::Commit(DWORD) {
    return cfb::guarded([&] { checkUsable(false); });
}

HRESULT MemoryStorage::EnumElements(std::vector<STATSTG>* elements) {
    if (!elements) return STG_E_INVALIDPOINTER;
    return cfb::guarded([&] {
        checkUsable(false);
        std::vector<STATSTG> out;
        out.reserve(m_node->children.size());
        for (const std::shared_ptr<Node>& child : m_node->children) out.push_back(describe(*child, true));
        *elements = std::move(out);
    });
}

HRESULT MemoryStorage::DestroyElement(const OLECHAR* name) {
    return cfb::guarded([&] {
        checkUsable(true);
        auto found = findIn(*m_node, nameOf(name));
        if (found == m_node->children.end()) cfb::fail(STG_E_FILENOTFOUND);
        memory_tree::detach(**found);
        m_node->children.erase(found);
        m_tree->dirty = true;
    });
}

HRESULT MemoryStorage::RenameElement(const OLECHAR* oldName, const OLECHAR* newName) {
    return cfb::guarded([&] {
        checkUsable(true);
        auto found = findIn(*m_node, nameOf(oldName));
        std::u16string_view view = nameOf(newName);
        if (found == m_node->children.end()) cfb::fail(STG_E_FILENOTFOUND);
        auto other = findIn(*m_node, view);
        if (other != m_node->children.end() && other != found) cfb::fail(STG_E_FILEALREADYEXISTS);
        std::shared_ptr<Node> child = *found;
        m_node->children.erase(found);
        child->name = std::u16string(view);
        insertSorted(*m_node, std::move(child));
        m_tree->dirty = true;
    });
}

HRESULT MemoryStorage::SetClass(REFCLSID clsid) {
    return cfb::guarded([&] {
        checkUsable(true);
        m_node->clsid = clsid;
        m_tree->dirty = true;
    });
}

HRESULT MemoryStorage::Stat(STATSTG* stat, DWORD flags) {
    if (!stat) return STG_E_INVALIDPOINTER;
    return cfb::guarded([&] {
        checkUsable(false);
        *stat = describe(*m_node, !(flags & STATFLAG_NONAME));
    });
}

}  // namespace nvdl
