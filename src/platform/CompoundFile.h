// One open compound file: its allocation tables, its directory, and the bytes of its streams.
// Stream data is read and written in place with positioned file access; the tables and the
// directory live in memory and reach the file on commit().
//
// Files written here start with 512-byte sectors unless asked for 4096-byte sectors. While a file
// of 512-byte sectors is written, every chain outside the mini stream is built from aligned groups of
// eight sectors, each exactly one 4096-byte sector of the larger form; so when a stream outgrows
// what 512-byte sectors may hold the file changes form by rewriting only its tables.
//
// An object of this class is used by one thread at a time; separate files share nothing.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/CompoundChain.h"
#include "platform/CompoundDirectory.h"
#include "platform/CompoundFileHandle.h"

namespace nvdl::cfb {

class CompoundFile {
public:
    // A new file holding an empty root, already complete on disk. With `replace` an existing file
    // is overwritten, else it gives STG_E_FILEALREADYEXISTS.
    static std::shared_ptr<CompoundFile> create(const std::filesystem::path& path, bool replace, bool largeSectors);
    // An existing file. Every table, chain and directory tree is checked here, before any use.
    static std::shared_ptr<CompoundFile> open(const std::filesystem::path& path, bool writable);

    // Commits pending changes of a writable file; a failure there cannot be reported, so callers
    // that care commit first.
    ~CompoundFile();
    CompoundFile(const CompoundFile&) = delete;
    CompoundFile& operator=(const CompoundFile&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    bool writable() const { return m_writable; }
    std::size_t sectorSize() const { return std::size_t{1} << m_sectorShift; }
    const Directory& directory() const { return m_dir; }

    // Elements. The storage must be one, the name valid and free; the file writable.
    std::uint32_t createElement(std::uint32_t storage, std::u16string name, EntryType type);
    void destroyElement(std::uint32_t id);
    void renameElement(std::uint32_t id, std::u16string name);
    void setClass(std::uint32_t id, const CLSID& clsid);

    // Stream data. A read past the end gives fewer bytes (the count is returned).
    std::uint64_t streamSize(std::uint32_t id) const { return m_dir.entry(id).size; }
    std::size_t read(std::uint32_t id, std::uint64_t position, void* buffer, std::size_t length);
    // Writes, growing the stream; a gap between the old end and `position` reads as zero.
    void write(std::uint32_t id, std::uint64_t position, const void* buffer, std::size_t length);
    // New bytes read as zero.
    void resize(std::uint32_t id, std::uint64_t size);

    // Writes the directory, the allocation tables and the header, and cuts free sectors off the end.
    void commit();

private:
    // Where a stream's sectors are: in the mini stream (64-byte sectors) or in the file.
    struct Placement {
        bool mini = false;
        SectorChain chain;
    };

    CompoundFile(const std::filesystem::path& path, FileHandle::Mode mode);
    void load();
    std::vector<std::uint32_t> loadFatSectorList(const Header& header, std::uint32_t limit,
                                                 std::vector<bool>& seen);
    std::vector<std::uint8_t> readChain(const SectorChain& chain);
    bool chainsAreAlignedGroups();

    bool inMiniStream(std::uint32_t id, std::uint64_t size) const;
    std::uint64_t sectorsFor(std::uint64_t size, bool mini) const;
    Placement& placementOf(std::uint32_t id);
    void setChainLength(std::uint32_t id, std::uint64_t sectors);
    void growMiniStream();
    void reallocate(std::uint32_t id, std::uint64_t size);
    void makeRoomFor(std::uint64_t size);
    void transfer(std::uint32_t id, std::uint64_t position, std::uint8_t* data, std::size_t length, bool toFile);
    void zeroRange(std::uint32_t id, std::uint64_t from, std::uint64_t to);
    std::uint64_t sectorOffset(std::uint32_t sector) const {
        return (static_cast<std::uint64_t>(sector) + 1) << m_sectorShift;
    }
    void writeFile(std::uint64_t offset, const void* data, std::size_t length);

    std::vector<std::uint32_t> allocateMetadataChain(std::size_t sectors);
    void writeSectors(const std::vector<std::uint32_t>& sectors, const std::vector<std::uint8_t>& bytes);
    void convertToLargeSectors();

    std::filesystem::path m_path;
    FileHandle m_file;
    bool m_writable = false;
    bool m_dirty = false;
    std::uint16_t m_sectorShift = 9;
    bool m_groupMode = false;     // chains outside the mini stream are aligned groups of eight
    std::uint64_t m_fileEnd = 0;  // nothing was ever written at or after this offset
    AllocationTable m_fat;
    AllocationTable m_miniFat;
    Directory m_dir;
    std::unordered_map<std::uint32_t, Placement> m_placements;
    // Sectors of the tables as last written; freed and chosen anew by each commit.
    std::vector<std::uint32_t> m_directorySectors;
    std::vector<std::uint32_t> m_miniFatSectors;
    std::vector<std::uint32_t> m_fatSectors;
    std::vector<std::uint32_t> m_difatSectors;
};

}  // namespace nvdl::cfb
