// A stream of a compound file, as the IStream of the runtime.
#pragma once

#include <memory>

#include "platform/CompoundFile.h"
#include "nvdl/Stream.h"

namespace nvdl {

class CompoundStream final : public IStream {
public:
    // A new object with one reference, held by the caller. Writes need `writable`.
    static CompoundStream* create(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable);

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT Read(void* pv, ULONG cb, ULONG* pcbRead) override;
    HRESULT Write(const void* pv, ULONG cb, ULONG* pcbWritten) override;
    HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) override;
    HRESULT SetSize(std::uint64_t newSize) override;
    // Data is written through at once: nothing is pending in a stream.
    HRESULT Commit(DWORD flags) override;
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

private:
    CompoundStream(std::shared_ptr<cfb::CompoundFile> file, std::uint32_t id, bool writable);
    ~CompoundStream() = default;
    // STG_E_REVERTED once the stream was destroyed or replaced.
    HRESULT checkCurrent() const;

    ULONG m_cRef = 1;
    std::shared_ptr<cfb::CompoundFile> m_file;
    std::uint32_t m_id;
    std::uint32_t m_generation;
    bool m_writable;
    std::uint64_t m_position = 0;
};

}  // namespace nvdl
