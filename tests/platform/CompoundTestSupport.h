// Helpers of the compound-file tests: owning references, the content rule shared with
// cfb_oracle.py, whole-stream reads and writes, and the independent readers and writers.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/CodePage.h"
#include "nvdl/Storage.h"

namespace nvdl::test {

constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kWrite = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
using Bytes = std::vector<std::uint8_t>;

// Holds one reference and releases it.
template <class T>
class Ref {
public:
    Ref() = default;
    Ref(const Ref&) = delete;
    Ref& operator=(const Ref&) = delete;
    ~Ref() { reset(); }
    T** out() {
        reset();
        return &m_p;
    }
    T* get() const { return m_p; }
    T* operator->() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }
    void reset() {
        if (m_p) m_p->Release();
        m_p = nullptr;
    }
    friend void swap(Ref& a, Ref& b) noexcept { std::swap(a.m_p, b.m_p); }

private:
    T* m_p = nullptr;
};

// Test parameter of the compound-file suites: whether files start with 4096-byte sectors.
inline std::string sectorSizeName(const ::testing::TestParamInfo<bool>& info) { return info.param ? "Large" : "Small"; }

// The bytes of a test stream at `path`: a sequence that does not repeat within 64 KiB, so that
// sectors in the wrong order show.
inline Bytes content(const std::string& path, std::size_t size) {
    unsigned seed = 0;
    for (unsigned char c : path) seed += c;
    seed %= 251;
    Bytes out(size);
    for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<std::uint8_t>(seed + i * 131 + (i >> 8));
    return out;
}

inline std::u16string u16(const std::string& text) { return utf8ToUtf16(text); }

inline void writeAll(IStream* s, const Bytes& bytes) {
    ULONG written = 0;
    ASSERT_EQ(s->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
    ASSERT_EQ(written, bytes.size());
}

inline Bytes readAll(IStream* s) {
    STATSTG st;
    EXPECT_EQ(s->Stat(&st, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(s->Seek(0, STREAM_SEEK_SET, nullptr), S_OK);
    Bytes out(static_cast<std::size_t>(st.cbSize));
    ULONG got = 0;
    EXPECT_EQ(s->Read(out.data(), static_cast<ULONG>(out.size()), &got), S_OK);
    EXPECT_EQ(got, out.size());
    return out;
}

// Creates (or replaces) stream `name` of `parent` holding `bytes`.
inline void putStream(IStorage* parent, const std::u16string& name, const Bytes& bytes) {
    Ref<IStream> s;
    ASSERT_EQ(parent->CreateStream(name.c_str(), kCreate, 0, 0, s.out()), S_OK);
    writeAll(s.get(), bytes);
}

// The whole of stream `name` of `parent`.
inline Bytes getStream(IStorage* parent, const std::u16string& name) {
    Ref<IStream> s;
    EXPECT_EQ(parent->OpenStream(name.c_str(), nullptr, kRead, 0, s.out()), S_OK);
    return s ? readAll(s.get()) : Bytes{};
}

// A tree by path ('/' for the root, names joined by '/'): kind, size and class identifier (or '-').
struct Element {
    std::string kind;
    std::uint64_t size = 0;
    std::string clsid;
    friend bool operator==(const Element&, const Element&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Element& e) {
        return out << e.kind << " " << e.size << " " << e.clsid;
    }
};
using Manifest = std::map<std::string, Element>;

// Runs the oracle script of this folder; returns its exit status and its standard output.
inline int runOracle(const std::string& arguments, std::string& output) {
    const char* source = std::getenv("NVDL_SOURCE_DIR");
    std::string script = std::string(source ? source : ".") + "/tests/platform/cfb_oracle.py";
    FILE* pipe = ::popen(("/usr/bin/python3 " + script + " " + arguments).c_str(), "r");
    if (!pipe) return -1;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
    int status = ::pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline std::string quoted(const std::filesystem::path& p) { return "'" + p.string() + "'"; }

// Writes the oracle's reference tree with libgsf; its manifest.
inline Manifest writeWithLibgsf(const std::filesystem::path& file, bool largeSectors) {
    std::string text;
    EXPECT_EQ(runOracle("gsf-write " + quoted(file) + (largeSectors ? " 4096" : " 512"), text), 0);
    Manifest m;
    std::istringstream in(text);
    for (std::string path, kind, size, clsid; std::getline(in, path, '\t');) {
        std::getline(in, kind, '\t');
        std::getline(in, size, '\t');
        std::getline(in, clsid);
        m[path] = {kind, std::stoull(size), clsid};
    }
    return m;
}

// What olefile finds wrong in `file` against `expected`; empty when they agree.
inline std::string olefileComplaints(const std::filesystem::path& file, const Manifest& expected) {
    const std::filesystem::path manifest = file.string() + ".manifest";
    {
        std::ofstream out(manifest);
        for (const auto& [path, e] : expected)
            out << path << '\t' << e.kind << '\t' << e.size << '\t' << e.clsid << '\n';
    }
    std::string report;
    int status = runOracle("olefile-check " + quoted(file) + " " + quoted(manifest), report);
    return status == 0 ? "" : report + "olefile-check exit status " + std::to_string(status);
}

}  // namespace nvdl::test
