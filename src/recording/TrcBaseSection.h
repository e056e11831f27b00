// CTrcBaseSection: what every section of a recording file has: its version, type, index in its
// parent's table, name, absolute offset in the file, and for measurement sections the offsets of
// their header and data. The one virtual operation is the section's size in bytes, children
// included. Sections own their children; the file belongs to the root (CTrc), and a section used
// without a file fails with 0.
#pragma once

#include <cstdint>

#include "recording/TrcFormat.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcTableManagment;
struct TocEntry;

class CTrcBaseSection {
public:
    static constexpr int kNameSize = 32;

    CTrcBaseSection() { Init(); }
    virtual ~CTrcBaseSection() = default;
    CTrcBaseSection(const CTrcBaseSection&) = delete;
    CTrcBaseSection& operator=(const CTrcBaseSection&) = delete;

    virtual std::int64_t GetSectionSize() = 0;
    // The table of a section with children; null for a leaf. Children find their own entry in it.
    virtual CTrcTableManagment* GetToc() { return nullptr; }

    // Clears every field; index and offset become -1 (not yet assigned).
    int Init();

    long GetVersionNumber() const { return m_version; }
    void SetVersionNumber(long version) { m_version = static_cast<std::int32_t>(version); }
    long GetSectionType() const { return m_type; }
    void SetSectionType(long type) { m_type = static_cast<std::int32_t>(type); }
    long GetSectionIndex() const { return m_index; }
    void SetSectionIndex(long index) { m_index = static_cast<std::int32_t>(index); }
    const char* GetSectionName() const { return m_name; }
    void SetSectionName(const char* name);  // ignores null; at most 31 characters
    std::int64_t GetSectionOffset() const { return m_offset; }
    void SetSectionOffset(std::int64_t offset) { m_offset = offset; }
    std::int64_t GetHeaderOffset() const { return m_headerOffset; }
    void SetHeaderOffset(std::int64_t offset) { m_headerOffset = offset; }
    std::int64_t GetHeaderSize() const { return m_headerSize; }
    void SetHeaderSize(std::int64_t size) { m_headerSize = size; }
    std::int64_t GetDataOffset() const { return m_dataOffset; }
    void SetDataOffset(std::int64_t offset) { m_dataOffset = offset; }

    // Takes index, name, offset and type from an entry of the parent's table (how fixed children
    // learn where they stand when their parent is read).
    void TakePlaceFrom(const TocEntry& entry);
    // As TakePlaceFrom, and the version too (how children of lists are made from their entries).
    void TakeEntry(const TocEntry& entry);

protected:
    // This section's entry in its parent's table (found by this section's index), or null.
    const TocEntry* EntryIn(const CTrcTableManagment& parentToc) const;
    // The version rule of readers: the entry must exist and its version may not be below `version`.
    bool EntryAtLeast(const CTrcTableManagment& parentToc, std::int32_t version) const;

private:
    std::int32_t m_version;
    std::int32_t m_type;
    std::int32_t m_index;
    char m_name[kNameSize];
    std::int64_t m_offset;
    std::int64_t m_headerOffset;
    std::int64_t m_headerSize;
    std::int64_t m_dataOffset;
};

}  // namespace nvdl::trc
