// Helpers of the compound-file tests: owning references, temporary files, the content rule shared
// with cfb_oracle.py, and whole-stream reads and writes.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <sys/wait.h>
#include <utility>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/CodePage.h"
#include "platform/Storage.h"

namespace nvdl::test {

// Holds one reference and releases it.
template <class T>
class Ref {
public:
    Ref() = default;
    Ref(const Ref&) = delete;
    Ref& operator=(const Ref&) = delete;
    Ref(Ref&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept {
        swap(*this, other);
        return *this;
    }
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

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
public:
    TempDir() {
        std::string templ = (std::filesystem::temp_directory_path() / "nvdl-cfb-XXXXXX").string();
        m_path = ::mkdtemp(templ.data());
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    std::filesystem::path file(const std::string& name) const { return m_path / name; }

private:
    std::filesystem::path m_path;
};

// The bytes of a test stream at `path`: a sequence that does not repeat within 64 KiB, so that
// sectors in the wrong order show.
inline std::vector<std::uint8_t> content(const std::string& path, std::size_t size) {
    unsigned seed = 0;
    for (unsigned char c : path) seed += c;
    seed %= 251;
    std::vector<std::uint8_t> out(size);
    for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<std::uint8_t>(seed + i * 131 + (i >> 8));
    return out;
}

inline std::u16string u16(const std::string& text) { return utf8ToUtf16(text); }

inline void writeAll(IStream* s, const std::vector<std::uint8_t>& bytes) {
    ULONG written = 0;
    ASSERT_EQ(s->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written), S_OK);
    ASSERT_EQ(written, bytes.size());
}

inline std::vector<std::uint8_t> readAll(IStream* s) {
    STATSTG st;
    EXPECT_EQ(s->Stat(&st, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(s->Seek(0, STREAM_SEEK_SET, nullptr), S_OK);
    std::vector<std::uint8_t> out(static_cast<std::size_t>(st.cbSize));
    ULONG got = 0;
    EXPECT_EQ(s->Read(out.data(), static_cast<ULONG>(out.size()), &got), S_OK);
    EXPECT_EQ(got, out.size());
    return out;
}

// Runs the oracle script of this folder; returns its exit status and its standard output.
inline int runOracle(const std::string& arguments, std::string* output = nullptr) {
    const char* source = std::getenv("NVDL_SOURCE_DIR");
    std::string script = std::string(source ? source : ".") + "/tests/platform/cfb_oracle.py";
    std::string command = "/usr/bin/python3 " + script + " " + arguments;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe) return -1;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        if (output) output->append(buffer, n);
    int status = ::pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline std::string quoted(const std::filesystem::path& p) { return "'" + p.string() + "'"; }

}  // namespace nvdl::test
