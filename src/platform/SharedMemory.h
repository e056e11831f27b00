// A block of named shared memory that other processes open by the same name. The name is 8-bit
// text of 1 to 250 characters; the system name is "/nvdl." and the text with '/' and '%' escaped.
// The process that created a name removes it when it closes the block, so the name lives as long as
// its creator; a process that only opened the block leaves the name alone.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nvdl {

class CShmBlock {
public:
    static constexpr std::size_t kMaxNameLength = 250;

    CShmBlock() = default;
    CShmBlock(const CShmBlock&) = delete;
    CShmBlock& operator=(const CShmBlock&) = delete;
    ~CShmBlock() { Close(); }

    // Closes any earlier mapping, then creates the named block (or opens it when it exists) with at
    // least `size` bytes and maps `size` bytes of it.
    bool Create(std::string_view name, std::size_t size);
    // Maps `size` bytes of an existing block; fails when the block is smaller.
    bool Open(std::string_view name, std::size_t size);
    bool IsOpen() const { return m_view != nullptr; }
    // Clears the whole block, then copies `length` bytes, 1 to the size.
    bool Write(const void* data, std::size_t length);
    // Copies `length` bytes from `offset` in the block into a buffer of `bufferSize` bytes.
    bool Read(void* buffer, std::size_t bufferSize, std::size_t offset, std::size_t length) const;
    void Close();
    std::size_t GetSize() const { return m_size; }

    // The system name of a block name, empty when the name is not a valid one.
    static std::string systemName(std::string_view name);

private:
    bool map(std::string_view name, std::size_t size, bool create);

    void* m_view = nullptr;
    std::size_t m_size = 0;
    std::string m_ownedName;  // the system name this block created, removed on Close
};

// The named record of a link: 150 bytes holding 8-bit text and zeros. The block of a link text is
// named by the text followed by "0".
inline constexpr std::size_t kShmRecordSize = 150;
std::string shmRecordName(std::string_view link);
// The text in the record of `link` up to its first zero, or empty when there is no such record.
std::string readShmRecord(std::string_view link);

}  // namespace nvdl
