#include "platform/CompoundStream.h"

#include <limits>

#include "platform/CompoundError.h"
#include "nvdl/Storage.h"

namespace nvdl {

CompoundStream* CompoundStream::create(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable) {
    return new CompoundStream(std::move(file), id, writable);
}

CompoundStream::CompoundStream(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable)
    : m_file(std::move(file)), m_id(id), m_generation(m_file->directory().generation(id)), m_writable(writable) {}

HRESULT CompoundStream::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid == IID_IUnknown || riid == IID_IStream || riid == IID_ISequentialStream) {
        *ppv = static_cast<IStream*>(this);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

ULONG CompoundStream::AddRef() { return ++m_cRef; }

ULONG CompoundStream::Release() {
    ULONG left = --m_cRef;
    if (left == 0) delete this;
    return left;
}

HRESULT CompoundStream::checkCurrent() const {
    return m_file->directory().generation(m_id) == m_generation ? S_OK : STG_E_REVERTED;
}

HRESULT CompoundStream::Read(void* pv, ULONG cb, ULONG* pcbRead) {
    if (pcbRead) *pcbRead = 0;
    if (!pv && cb) return STG_E_INVALIDPOINTER;
    if (HRESULT h = checkCurrent(); FAILED(h)) return h;
    return cfb::guarded([&] {
        std::size_t n = m_file->read(m_id, m_position, pv, cb);
        m_position += n;
        if (pcbRead) *pcbRead = static_cast<ULONG>(n);
    });
}

HRESULT CompoundStream::Write(const void* pv, ULONG cb, ULONG* pcbWritten) {
    if (pcbWritten) *pcbWritten = 0;
    if (!pv && cb) return STG_E_INVALIDPOINTER;
    if (HRESULT h = checkCurrent(); FAILED(h)) return h;
    if (!m_writable) return STG_E_ACCESSDENIED;
    return cfb::guarded([&] {
        m_file->write(m_id, m_position, pv, cb);
        m_position += cb;
        if (pcbWritten) *pcbWritten = cb;
    });
}

HRESULT CompoundStream::Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) {
    if (HRESULT h = checkCurrent(); FAILED(h)) return h;
    std::uint64_t base;
    switch (origin) {
        case STREAM_SEEK_SET: base = 0; break;
        case STREAM_SEEK_CUR: base = m_position; break;
        case STREAM_SEEK_END: base = m_file->streamSize(m_id); break;
        default: return STG_E_INVALIDFUNCTION;
    }
    constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    std::uint64_t target;
    if (move < 0) {
        auto back = static_cast<std::uint64_t>(-(move + 1)) + 1;
        if (back > base) return STG_E_INVALIDFUNCTION;
        target = base - back;
    } else {
        if (base > kMax || static_cast<std::uint64_t>(move) > kMax - base) return STG_E_INVALIDFUNCTION;
        target = base + static_cast<std::uint64_t>(move);
    }
    m_position = target;
    if (newPosition) *newPosition = m_position;
    return S_OK;
}

HRESULT CompoundStream::SetSize(std::uint64_t newSize) {
    if (HRESULT h = checkCurrent(); FAILED(h)) return h;
    if (!m_writable) return STG_E_ACCESSDENIED;
    return cfb::guarded([&] { m_file->resize(m_id, newSize); });
}

HRESULT CompoundStream::Commit(DWORD) { return checkCurrent(); }

HRESULT CompoundStream::Stat(STATSTG* stat, DWORD flags) {
    if (!stat) return STG_E_INVALIDPOINTER;
    if (HRESULT h = checkCurrent(); FAILED(h)) return h;
    return cfb::guarded([&] {
        const cfb::DirEntry& e = m_file->directory().entry(m_id);
        STATSTG s;
        if (!(flags & STATFLAG_NONAME)) s.name = e.name;
        s.type = STGTY_STREAM;
        s.cbSize = e.size;
        s.clsid = e.clsid;
        s.stateBits = e.stateBits;
        *stat = std::move(s);
    });
}

}  // namespace nvdl
