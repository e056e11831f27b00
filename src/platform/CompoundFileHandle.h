// The open file beneath a compound file: positioned reads and writes with 64-bit offsets, so that
// no shared file position exists and sectors are fetched only when asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace nvdl::cfb {

class FileHandle {
public:
    enum class Mode { Read, ReadWrite, Create, CreateNew };
    // STG_E_FILENOTFOUND, STG_E_FILEALREADYEXISTS, STG_E_ACCESSDENIED or STG_E_PATHNOTFOUND on failure.
    FileHandle(const std::filesystem::path& path, Mode mode);
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    std::uint64_t size() const;
    // Reads up to `length` bytes at `offset`; bytes past the end of the file read as zero.
    void readAt(std::uint64_t offset, void* buffer, std::size_t length) const;
    // STG_E_MEDIUMFULL when the disk is full, STG_E_WRITEFAULT on other failures.
    void writeAt(std::uint64_t offset, const void* buffer, std::size_t length);
    void truncate(std::uint64_t size);

private:
    int m_fd = -1;
};

}  // namespace nvdl::cfb
