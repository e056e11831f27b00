// A growable stream in memory, for persistence to and from buffers.
#pragma once

#include <vector>

#include "nvdl/Stream.h"

namespace nvdl {

class MemoryStream final : public IStream {
public:
    // A new stream with one reference, held by the caller; empty, or holding a copy of `bytes`.
    static MemoryStream* create(std::vector<std::uint8_t> bytes = {});

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT Read(void* pv, ULONG cb, ULONG* pcbRead) override;
    HRESULT Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
    HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) override;
    HRESULT SetSize(std::uint64_t newSize) override;
    // Memory has nothing to flush: Commit does nothing and succeeds.
    HRESULT Commit(DWORD flags) override;
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

private:
    explicit MemoryStream(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}
    ~MemoryStream() = default;

    ULONG m_cRef = 1;
    std::vector<std::uint8_t> m_bytes;
    std::uint64_t m_position = 0;
};

}  // namespace nvdl
