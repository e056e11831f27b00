// Shared pieces of the paging tests: settings for long records, a generated backing stream, and
// loading a stored record the way a workspace does.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "../platform/EnvGuard.h"
#include "measurement/Measurement.h"
#include "nvdl/Persist.h"
#include "platform/Registry.h"

namespace nvdl::test {

// The sample at `index` of every generated record: deterministic, varied, and cheap.
inline float sampleValue(std::int64_t index) {
    return static_cast<float>((static_cast<std::uint64_t>(index) * 2654435761u) % 1000003u) * 0.001f - 500.0f;
}

// Settings for paging: long records on, a chosen block size, no unit service.
class PagingSettings : public ::testing::Test {
protected:
    void useSettings(long maxBlockSize, bool longFileFeature = true) {
        dir_ = std::filesystem::temp_directory_path() /
               ("nvdl_paging_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_);
        std::filesystem::path file = dir_ / "registry.txt";
        std::ofstream(file) << "[HKEY_CURRENT_USER\\" << registry::kSettingsKey << "]\n"
                            << "\"MaxBlockSize\"=\"" << maxBlockSize << "\"\n"
                            << "\"LongFileFeature\"=\"" << (longFileFeature ? 1 : 0) << "\"\n";
        env_.set("NVDL_REGISTRY", file.string());
        env_.set("NVDL_UNIT_SERVICE", "0");
    }
    void TearDown() override {
        env_.restore();
        if (!dir_.empty()) std::filesystem::remove_all(dir_);
    }

    std::filesystem::path dir_;
    EnvGuard env_;
};

// A read-only stream of a stored header followed by generated samples, never held in memory.
class GeneratedStream final : public IStream {
public:
    GeneratedStream(std::vector<std::uint8_t> header, std::int64_t samples)
        : m_header(std::move(header)), m_size(m_header.size() + static_cast<std::uint64_t>(samples) * 4) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid != IID_IUnknown && riid != IID_IStream) return E_NOINTERFACE;
        *ppv = this;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++m_cRef; }
    ULONG Release() override { return --m_cRef; }  // lives on the test's stack

    HRESULT Read(void* pv, ULONG cb, ULONG* pcbRead) override {
        auto* out = static_cast<std::uint8_t*>(pv);
        std::uint64_t n = std::min<std::uint64_t>(cb, m_size > m_position ? m_size - m_position : 0);
        for (std::uint64_t i = 0; i < n;) {
            std::uint64_t p = m_position + i;
            if (p < m_header.size()) {
                out[i++] = m_header[p];
                continue;
            }
            std::uint64_t offset = p - m_header.size();
            std::uint32_t bits = std::bit_cast<std::uint32_t>(sampleValue(static_cast<std::int64_t>(offset / 4)));
            out[i++] = static_cast<std::uint8_t>(bits >> (8 * (offset % 4)));
        }
        m_position += n;
        m_bytesRead += n;
        m_largestRead = std::max<std::uint64_t>(m_largestRead, cb);
        if (pcbRead) *pcbRead = static_cast<ULONG>(n);
        return S_OK;
    }
    HRESULT Write(const void*, ULONG, ULONG*) override { return STG_E_ACCESSDENIED; }
    HRESULT Seek(std::int64_t move, DWORD origin, std::uint64_t* newPosition) override {
        std::int64_t base = origin == STREAM_SEEK_SET ? 0 : origin == STREAM_SEEK_CUR ? static_cast<std::int64_t>(m_position)
                                                                                      : static_cast<std::int64_t>(m_size);
        if (base + move < 0) return STG_E_INVALIDFUNCTION;
        m_position = static_cast<std::uint64_t>(base + move);
        if (newPosition) *newPosition = m_position;
        return S_OK;
    }
    HRESULT SetSize(std::uint64_t) override { return STG_E_ACCESSDENIED; }
    HRESULT Commit(DWORD) override { return S_OK; }
    HRESULT Stat(STATSTG* stat, DWORD) override {
        *stat = STATSTG{};
        stat->cbSize = m_size;
        return S_OK;
    }

    std::uint64_t bytesRead() const { return m_bytesRead; }
    std::uint64_t largestRead() const { return m_largestRead; }

private:
    ULONG m_cRef = 1;
    std::vector<std::uint8_t> m_header;
    std::uint64_t m_size;
    std::uint64_t m_position = 0;
    std::uint64_t m_bytesRead = 0, m_largestRead = 0;
};

// Reads a stored record into a measurement through its standard stream persistence.
inline HRESULT loadRecord(CMeasurement* m, IStream* stream) {
    IPersistStream* persist = nullptr;
    HRESULT h = m->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist));
    if (FAILED(h)) return h;
    h = persist->Load(stream);
    persist->Release();
    return h;
}

// The extremes of each chunk of `chunkSize` samples, as the overview picture holds them.
inline std::vector<float> expectedEnvelope(std::int64_t chunks, std::int64_t chunkSize) {
    std::vector<float> picture;
    for (std::int64_t c = 0; c < chunks; ++c) {
        float lo = 2147483648.0f, hi = -2147483648.0f;
        for (std::int64_t i = c * chunkSize; i < (c + 1) * chunkSize; ++i) {
            lo = std::min(lo, sampleValue(i));
            hi = std::max(hi, sampleValue(i));
        }
        picture.push_back(lo);
        picture.push_back(hi);
    }
    return picture;
}

}  // namespace nvdl::test
