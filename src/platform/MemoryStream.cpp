#include "platform/MemoryStream.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <limits>

namespace nvdl {

MemoryStream* MemoryStream::create(std::vector<std::uint8_t> bytes) { return new MemoryStream(std::move(bytes)); }

HRESULT MemoryStream::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (riid == IID_IUnknown || riid == IID_IStream || riid == IID_ISequentialStream) {
        *ppv = static_cast<IStream*>(this);
        AddRef();
        return S_OK;
    }
    return E_NOINTERFACE;
}

ULONG MemoryStream::AddRef() { return ++m_cRef; }

ULONG MemoryStream::Release() {
    ULONG left = --m_cRef;
    if (left == 0) delete this;
    return left;
}

HRESULT MemoryStream::Read(void* pv, ULONG cb, ULONG* pcbRead) {
    if (!pv && cb) return STG_E_INVALIDPOINTER;
    std::uint64_t available = m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
    ULONG n = static_cast<ULONG>(std::min<std::uint64_t>(cb, available));
    if (n) std::memcpy(pv, m_bytes.data() + m_position, n);
    m_position += n;
    if (pcbRead) *pcbRead = n;
    return S_OK;
}

HRESULT MemoryStream::Write(const void* pv, ULONG cb, ULONG* pcbWritten) {
    if (!pv && cb) return STG_E_INVALIDPOINTER;
    std::uint64_t end = m_position + cb;
    if (end > m_bytes.max_size()) return STG_E_MEDIUMFULL;
    try {
        if (end > m_bytes.size()) m_bytes.resize(end);
    } catch (const std::bad_alloc&) {
        return STG_E_MEDIUMFULL;
    }
    if (cb) std::memcpy(m_bytes.data() + m_position, pv, cb);
    m_position = end;
    if (pcbWritten) *pcbWritten = cb;
    return S_OK;
}

HRESULT MemoryStream::Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) {
    std::int64_t base;
    switch (origin) {
        case STREAM_SEEK_SET: base = 0; break;
        case STREAM_SEEK_CUR: base = static_cast<std::int64_t>(m_position); break;
        case STREAM_SEEK_END: base = static_cast<std::int64_t>(m_bytes.size()); break;
        default: return STG_E_INVALIDFUNCTION;
    }
    if ((move < 0 && base < -move) || (move > 0 && base > std::numeric_limits<std::int64_t>::max() - move))
        return STG_E_INVALIDFUNCTION;
    m_position = static_cast<std::uint64_t>(base + move);
    if (newPosition) *newPosition = m_position;
    return S_OK;
}

HRESULT MemoryStream::SetSize(std::uint64_t newSize) {
    try {
        m_bytes.resize(newSize);
    } catch (const std::exception&) {
        return STG_E_MEDIUMFULL;
    }
    return S_OK;
}

HRESULT MemoryStream::Commit(DWORD) { return S_OK; }

HRESULT MemoryStream::Stat(STATSTG* stat, DWORD) {
    if (!stat) return STG_E_INVALIDPOINTER;
    *stat = STATSTG{};
    stat->type = STGTY_STREAM;
    stat->cbSize = m_bytes.size();
    return S_OK;
}

}  // namespace nvdl
