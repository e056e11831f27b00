// Reading an existing compound file: every count, sector number and chain is checked against the
// size of the file before it is used, so a damaged or hostile file ends in a status code.
#include <algorithm>

#include "platform/CompoundError.h"
#include "platform/CompoundFile.h"

namespace nvdl::cfb {

namespace {

constexpr std::uint64_t divideUp(std::uint64_t value, std::uint64_t unit) {
    return value / unit + (value % unit != 0 ? 1 : 0);
}

std::vector<std::uint32_t> sectorsOf(const SectorChain& chain) {
    std::vector<std::uint32_t> out;
    chain.forEachRun(0, [&](std::uint32_t first, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) out.push_back(first + i);
    });
    return out;
}

std::vector<std::uint32_t> decodeTable(const std::vector<std::uint8_t>& bytes) {
    std::vector<std::uint32_t> entries(bytes.size() / 4);
    for (std::size_t i = 0; i < entries.size(); ++i) entries[i] = load32(bytes.data() + 4 * i);
    return entries;
}

}  // namespace

std::vector<std::uint8_t> CompoundFile::readChain(const SectorChain& chain) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(chain.length()) * sectorSize());
    std::size_t at = 0;
    chain.forEachRun(0, [&](std::uint32_t first, std::uint32_t count) {
        std::size_t n = static_cast<std::size_t>(count) * sectorSize();
        m_file.readAt(sectorOffset(first), bytes.data() + at, n);
        at += n;
    });
    return bytes;
}

std::vector<std::uint32_t> CompoundFile::loadFatSectorList(const Header& header, std::uint32_t limit,
                                                           std::vector<bool>& seen) {
    const std::size_t perSector = sectorSize() / 4;
    const std::size_t count = header.fatSectorCount;
    if (count > limit || header.difatSectorCount > limit) fail(STG_E_DOCFILECORRUPT);
    std::vector<std::uint32_t> list(header.difat, header.difat + std::min(count, kHeaderDifatSlots));
    std::vector<std::uint8_t> sector(sectorSize());
    // Each DIFAT sector lists perSector - 1 FAT sectors and ends with the next DIFAT sector.
    for (std::uint32_t s = header.firstDifatSector; list.size() < count;) {
        if (s >= limit || seen[s]) fail(STG_E_DOCFILECORRUPT);
        seen[s] = true;
        m_difatSectors.push_back(s);
        m_file.readAt(sectorOffset(s), sector.data(), sector.size());
        for (std::size_t i = 0; i + 1 < perSector && list.size() < count; ++i)
            list.push_back(load32(sector.data() + 4 * i));
        s = load32(sector.data() + 4 * (perSector - 1));
    }
    for (std::uint32_t s : list) {
        if (s >= limit || seen[s]) fail(STG_E_DOCFILECORRUPT);
        seen[s] = true;
    }
    return list;
}

void CompoundFile::load() {
    const std::uint64_t fileSize = m_file.size();
    if (fileSize < sizeof kSignature) fail(STG_E_FILEALREADYEXISTS);
    std::uint8_t headerBytes[kHeaderSize];
    m_file.readAt(0, headerBytes, kHeaderSize);
    Header header;
    decodeHeader(headerBytes, header);
    if (fileSize < kHeaderSize) fail(STG_E_INVALIDHEADER);
    m_sectorShift = header.sectorShift;
    const std::uint64_t sectorBytes = sectorSize();

    // Only sectors that start inside the file exist; a short last sector reads as zero-padded.
    const std::uint64_t inFile = fileSize > sectorBytes ? divideUp(fileSize - sectorBytes, sectorBytes) : 0;
    const auto limit = static_cast<std::uint32_t>(std::min<std::uint64_t>(inFile, std::uint64_t{MAXREGSECT} + 1));
    std::vector<bool> seen(limit);

    m_fatSectors = loadFatSectorList(header, limit, seen);
    std::vector<std::uint32_t> fat;
    {
        SectorChain fatChain;
        for (std::uint32_t s : m_fatSectors) fatChain.push(s);
        fat = decodeTable(readChain(fatChain));
    }
    if (fat.size() > limit) fat.resize(limit);  // entries past the end of the file describe nothing
    m_fat = AllocationTable(std::move(fat));

    SectorChain directoryChain = m_fat.walk(header.firstDirectorySector, limit, seen);
    if (directoryChain.length() == 0) fail(STG_E_DOCFILECORRUPT);
    m_directorySectors = sectorsOf(directoryChain);
    {
        std::vector<std::uint8_t> bytes = readChain(directoryChain);
        std::vector<DirEntry> entries(bytes.size() / kDirEntrySize);
        for (std::size_t i = 0; i < entries.size(); ++i)
            entries[i] = decodeDirEntry(bytes.data() + i * kDirEntrySize, m_sectorShift == 12);
        m_dir = Directory(std::move(entries));
    }

    SectorChain miniFatChain;
    if (header.firstMiniFatSector != ENDOFCHAIN) miniFatChain = m_fat.walk(header.firstMiniFatSector, limit, seen);
    m_miniFatSectors = sectorsOf(miniFatChain);
    std::vector<std::uint32_t> miniFat = decodeTable(readChain(miniFatChain));

    // The mini stream is the root's chain; mini sectors exist as far as both its size and its chain reach.
    const DirEntry& root = m_dir.entry(Directory::kRoot);
    Placement rootPlacement;
    if (root.startSector != ENDOFCHAIN) rootPlacement.chain = m_fat.walk(root.startSector, limit, seen);
    if (rootPlacement.chain.length() < divideUp(root.size, sectorBytes)) fail(STG_E_DOCFILECORRUPT);
    const std::uint64_t miniSectors =
        std::min(divideUp(root.size, kMiniSectorSize), rootPlacement.chain.length() * (sectorBytes / kMiniSectorSize));
    if (miniFat.size() > miniSectors) miniFat.resize(static_cast<std::size_t>(miniSectors));
    const auto miniLimit = static_cast<std::uint32_t>(miniFat.size());
    m_miniFat = AllocationTable(std::move(miniFat));
    m_placements[Directory::kRoot] = std::move(rootPlacement);

    std::vector<bool> seenMini(miniLimit);
    for (std::uint32_t id = 1; id < m_dir.slotCount(); ++id) {
        const DirEntry& e = m_dir.entry(id);
        if (e.type != EntryType::Stream) continue;
        Placement p;
        p.mini = inMiniStream(id, e.size);
        if (e.size > 0) {
            if (p.mini) {
                p.chain = m_miniFat.walk(e.startSector, miniLimit, seenMini);
                if (p.chain.length() < divideUp(e.size, kMiniSectorSize)) fail(STG_E_DOCFILECORRUPT);
            } else {
                p.chain = m_fat.walk(e.startSector, limit, seen);
                if (p.chain.length() < divideUp(e.size, sectorBytes)) fail(STG_E_DOCFILECORRUPT);
            }
        }
        m_placements[id] = std::move(p);
    }

    m_fileEnd = fileSize;
    m_groupMode = m_writable && m_sectorShift == 9 && chainsAreAlignedGroups();
}

bool CompoundFile::chainsAreAlignedGroups() {
    bool aligned = true;
    for (const auto& [id, p] : m_placements) {
        if (p.mini) continue;
        p.chain.forEachRun(0, [&](std::uint32_t first, std::uint32_t count) {
            aligned = aligned && first % 8 == 7 && count % 8 == 0;
        });
    }
    return aligned;
}

}  // namespace nvdl::cfb
