// Writing the tables of a compound file: directory, mini FAT, FAT, DIFAT and header, and the change
// from 512-byte to 4096-byte sectors.
#include <algorithm>

#include "platform/CompoundError.h"
#include "platform/CompoundFile.h"

namespace nvdl::cfb {

namespace {

std::vector<std::uint8_t> encodeTable(const std::vector<std::uint32_t>& entries, std::size_t sectorCount,
                                      std::size_t sectorSize) {
    std::vector<std::uint8_t> bytes(sectorCount * sectorSize);
    for (std::size_t i = 0; i < bytes.size() / 4; ++i)
        store32(bytes.data() + 4 * i, i < entries.size() ? entries[i] : FREESECT);
    return bytes;
}

}  // namespace

std::vector<std::uint32_t> CompoundFile::allocateMetadataChain(std::size_t sectors) {
    std::vector<std::uint32_t> chain;
    for (std::size_t i = 0; i < sectors; ++i) {
        std::uint32_t s = m_fat.allocate();
        if (!chain.empty()) m_fat.set(chain.back(), s);
        chain.push_back(s);
    }
    return chain;
}

void CompoundFile::writeSectors(const std::vector<std::uint32_t>& sectors, const std::vector<std::uint8_t>& bytes) {
    // Runs of consecutive sectors go out in one write.
    for (std::size_t i = 0; i < sectors.size();) {
        std::size_t n = 1;
        while (i + n < sectors.size() && sectors[i + n] == sectors[i] + n) ++n;
        writeFile(sectorOffset(sectors[i]), bytes.data() + i * sectorSize(), n * sectorSize());
        i += n;
    }
}

void CompoundFile::commit() {
    if (!m_writable || !m_dirty) return;
    const std::size_t sectorBytes = sectorSize();
    const std::size_t perSector = sectorBytes / 4;

    // The mini stream ends after its last used mini sector.
    m_miniFat.trimTrailingFree();
    DirEntry& root = m_dir.entry(Directory::kRoot);
    root.size = static_cast<std::uint64_t>(m_miniFat.size()) * kMiniSectorSize;
    setChainLength(Directory::kRoot, sectorsFor(root.size, false));

    // The tables are placed anew: the lowest free sectors, the old places included.
    for (auto* list : {&m_directorySectors, &m_miniFatSectors, &m_fatSectors, &m_difatSectors}) {
        for (std::uint32_t s : *list) m_fat.set(s, FREESECT);
        list->clear();
    }
    m_fat.trimTrailingFree();

    std::vector<std::uint8_t> directory = m_dir.encode(sectorBytes);
    m_directorySectors = allocateMetadataChain(directory.size() / sectorBytes);
    const std::size_t miniFatSectorCount = (m_miniFat.size() + perSector - 1) / perSector;
    m_miniFatSectors = allocateMetadataChain(miniFatSectorCount);

    // FAT sectors cover every sector, themselves and the DIFAT sectors included; 109 are listed in
    // the header, the rest in DIFAT sectors of perSector - 1 entries each.
    for (;;) {
        std::size_t fatNeeded = (m_fat.size() + perSector - 1) / perSector;
        std::size_t difatNeeded =
            fatNeeded > kHeaderDifatSlots ? (fatNeeded - kHeaderDifatSlots + perSector - 2) / (perSector - 1) : 0;
        if (m_fatSectors.size() < fatNeeded) {
            std::uint32_t s = m_fat.allocate();
            m_fat.set(s, FATSECT);
            m_fatSectors.push_back(s);
        } else if (m_difatSectors.size() < difatNeeded) {
            std::uint32_t s = m_fat.allocate();
            m_fat.set(s, DIFSECT);
            m_difatSectors.push_back(s);
        } else {
            break;
        }
    }

    writeSectors(m_directorySectors, directory);
    writeSectors(m_miniFatSectors, encodeTable(m_miniFat.entries(), miniFatSectorCount, sectorBytes));
    writeSectors(m_fatSectors, encodeTable(m_fat.entries(), m_fatSectors.size(), sectorBytes));

    Header header;
    header.majorVersion = m_sectorShift == 12 ? 4 : 3;
    header.sectorShift = m_sectorShift;
    header.directorySectorCount =
        m_sectorShift == 12 ? static_cast<std::uint32_t>(m_directorySectors.size()) : 0;
    header.fatSectorCount = static_cast<std::uint32_t>(m_fatSectors.size());
    header.firstDirectorySector = m_directorySectors.front();
    header.firstMiniFatSector = m_miniFatSectors.empty() ? ENDOFCHAIN : m_miniFatSectors.front();
    header.miniFatSectorCount = static_cast<std::uint32_t>(m_miniFatSectors.size());
    header.firstDifatSector = m_difatSectors.empty() ? ENDOFCHAIN : m_difatSectors.front();
    header.difatSectorCount = static_cast<std::uint32_t>(m_difatSectors.size());
    for (std::size_t i = 0; i < kHeaderDifatSlots && i < m_fatSectors.size(); ++i) header.difat[i] = m_fatSectors[i];

    std::vector<std::uint8_t> difat(sectorBytes);
    std::size_t listed = kHeaderDifatSlots;
    for (std::size_t d = 0; d < m_difatSectors.size(); ++d) {
        for (std::size_t i = 0; i + 1 < perSector; ++i, ++listed)
            store32(difat.data() + 4 * i, listed < m_fatSectors.size() ? m_fatSectors[listed] : FREESECT);
        store32(difat.data() + 4 * (perSector - 1),
                d + 1 < m_difatSectors.size() ? m_difatSectors[d + 1] : ENDOFCHAIN);
        writeFile(sectorOffset(m_difatSectors[d]), difat.data(), difat.size());
    }

    // The header goes last: until it is written the file on disk keeps its former tables.
    std::vector<std::uint8_t> headerBytes(sectorBytes);
    encodeHeader(header, headerBytes.data());
    writeFile(0, headerBytes.data(), headerBytes.size());

    const std::uint64_t end = sectorOffset(static_cast<std::uint32_t>(m_fat.size()));
    m_file.truncate(end);
    m_fileEnd = end;
    m_dirty = false;
}

void CompoundFile::convertToLargeSectors() {
    // Every chain outside the mini stream is a list of aligned groups of eight 512-byte sectors;
    // group g, sectors 8g+7 to 8g+14, is byte for byte the 4096-byte sector g.
    AllocationTable large;
    auto regroup = [&](std::uint32_t id) {
        Placement& p = placementOf(id);
        if (p.mini || p.chain.length() == 0) return;
        SectorChain chain;
        for (std::uint64_t i = 0; i < p.chain.length(); i += 8) {
            std::uint64_t run;
            std::uint32_t s = p.chain.locate(i, run);
            if (s < 7 || (s - 7) % 8 != 0 || run < 8) fail(E_UNEXPECTED);
            std::uint32_t g = (s - 7) / 8;
            large.set(g, ENDOFCHAIN);
            if (chain.length() > 0)
                large.set(chain.back(), g);
            else
                m_dir.entry(id).startSector = g;
            chain.push(g);
        }
        p.chain = std::move(chain);
    };
    for (std::uint32_t id = 0; id < m_dir.slotCount(); ++id) {
        EntryType t = m_dir.entry(id).type;
        if (t == EntryType::Root || t == EntryType::Stream) regroup(id);
    }
    // The former tables are not carried over; the next commit writes them in the new form.
    m_fat = std::move(large);
    m_directorySectors.clear();
    m_miniFatSectors.clear();
    m_fatSectors.clear();
    m_difatSectors.clear();
    m_sectorShift = 12;
    m_groupMode = false;
    m_dirty = true;
}

}  // namespace nvdl::cfb
