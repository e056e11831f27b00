// A fresh directory under the system's temporary directory, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace nvdl::test {

class TempDir {
public:
    TempDir() {
        std::string templ = (std::filesystem::temp_directory_path() / "nvdl-test-XXXXXX").string();
        m_path = ::mkdtemp(templ.data());
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(m_path, ec);
    }
    std::filesystem::path file(const std::string& name) const { return m_path / name; }
    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace nvdl::test
