// CTrcTableManagment: one table of sections, a 96-byte head and one 168-byte entry per child.
// A table is read from wherever the file stands (its owner knows where that is) and written the
// same way; writing the root table of a new file lengthens the file to the whole tree at once.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/RecordLayout.h"
#include "recording/TrcFormat.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcBaseSection;

// One entry of a table (_stTocSection).
struct TocEntry {
    std::int32_t version = 0;
    std::int32_t type = 0;
    std::int32_t index = 0;       // always the entry's position in its table
    std::string name;             // at most 31 characters
    std::int64_t sectionOffset = 0;
    std::int64_t sectionSize = 0;
    std::int64_t headerOffset = 0;  // measurement sections only
    std::int64_t headerSize = 0;
    std::int64_t dataOffset = 0;
};

// The head of a table.
struct TocHead {
    std::int32_t version = kBaseVersion;
    std::int32_t count = 0;
    std::int64_t size = 0;  // the owning section's size, children included, when written
};

std::span<const record::Field<TocHead, 1>> tocHeadFields();
std::span<const record::Field<TocEntry, 1>> tocEntryFields();

class CTrcTableManagment {
public:
    static constexpr long kGenericFailure = static_cast<long>(0x80004005);

    CTrcTableManagment() { Init(); }
    CTrcTableManagment(const CTrcTableManagment&) = delete;
    CTrcTableManagment& operator=(const CTrcTableManagment&) = delete;

    int Init();  // empties the table; version back to the base version
    int Uninit() { return RemoveAll(); }

    int Add(std::unique_ptr<TocEntry> entry);  // renumbers the entry to its position
    int Add(CTrcBaseSection& section);  // gives the section its index; a snapshot of its offsets, sizes, name
    long GetCount() const { return static_cast<long>(m_entries.size()); }
    TocEntry* GetItem(long index);
    const TocEntry* GetItem(long index) const;
    TocEntry* GetTocSection(long index) { return GetItem(index); }
    int RemoveAll();

    // Reads head and entries at the file's position. Fails for a head older than the base version
    // and for a count that the rest of the file cannot hold.
    int Read(CTrcFile* file);
    // Writes head and entries at the file's position; the head's size is the owner's size, and a
    // file shorter than that is lengthened to it first.
    int Write(CTrcFile* file, CTrcBaseSection* owner);

    void SetVersionNumber(long version) { m_head.version = static_cast<std::int32_t>(version); }
    long GetVersionNumber() const { return m_head.version; }
    // The room of a table of `count` entries; -1 means the current count.
    std::int64_t GetTocSize(long count) const { return tocSize(count == -1 ? GetCount() : count); }
    long GenerateID() const { return GetCount(); }
    long Copy(CTrcTableManagment* target) const;  // 0, or the generic failure code

    const TocHead& head() const { return m_head; }

private:
    TocHead m_head;
    std::vector<std::unique_ptr<TocEntry>> m_entries;
};

}  // namespace nvdl::trc
