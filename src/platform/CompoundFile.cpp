#include "platform/CompoundFile.h"

#include <algorithm>
#include <limits>

#include "platform/CompoundError.h"

namespace nvdl::cfb {

namespace {

constexpr std::uint64_t divideUp(std::uint64_t value, std::uint64_t unit) {
    return value / unit + (value % unit != 0 ? 1 : 0);
}

// Zeros for clearing reused space; never written to.
constexpr std::size_t kZeroBlock = 64 * 1024;
const std::uint8_t kZeros[kZeroBlock] = {};

}  // namespace

CompoundFile::CompoundFile(const std::filesystem::path& path, FileHandle::Mode mode)
    : m_path(path), m_file(path, mode), m_writable(mode != FileHandle::Mode::Read) {}

std::shared_ptr<CompoundFile> CompoundFile::create(const std::filesystem::path& path, bool replace,
                                                   bool largeSectors) {
    std::shared_ptr<CompoundFile> file(
        new CompoundFile(path, replace ? FileHandle::Mode::Create : FileHandle::Mode::CreateNew));
    file->m_sectorShift = largeSectors ? 12 : 9;
    file->m_groupMode = !largeSectors;
    file->m_placements[Directory::kRoot] = Placement{};
    file->m_dirty = true;
    file->commit();
    return file;
}

std::shared_ptr<CompoundFile> CompoundFile::open(const std::filesystem::path& path, bool writable) {
    std::shared_ptr<CompoundFile> file(
        new CompoundFile(path, writable ? FileHandle::Mode::ReadWrite : FileHandle::Mode::Read));
    file->load();
    return file;
}

CompoundFile::~CompoundFile() {
    try {
        commit();
    } catch (...) {
        // Nothing can be reported from here; commit() before the last release reports failures.
    }
}

std::uint32_t CompoundFile::createElement(std::uint32_t storage, std::u16string name, EntryType type) {
    if (!m_writable) fail(STG_E_ACCESSDENIED);
    std::uint32_t id = m_dir.add(storage, std::move(name), type);
    m_placements[id] = Placement{};
    m_dirty = true;
    return id;
}

void CompoundFile::destroyElement(std::uint32_t id) {
    if (!m_writable) fail(STG_E_ACCESSDENIED);
    for (std::uint32_t k : m_dir.subtree(id)) {
        if (m_dir.entry(k).type == EntryType::Stream) setChainLength(k, 0);
        m_placements.erase(k);
    }
    m_dir.remove(id);
    m_dirty = true;
}

void CompoundFile::renameElement(std::uint32_t id, std::u16string name) {
    if (!m_writable) fail(STG_E_ACCESSDENIED);
    m_dir.rename(id, std::move(name));
    m_dirty = true;
}

void CompoundFile::setClass(std::uint32_t id, const CLSID& clsid) {
    if (!m_writable) fail(STG_E_ACCESSDENIED);
    m_dir.entry(id).clsid = clsid;
    m_dirty = true;
}

bool CompoundFile::inMiniStream(std::uint32_t id, std::uint64_t size) const {
    return id != Directory::kRoot && size < kMiniStreamCutoff;
}

std::uint64_t CompoundFile::sectorsFor(std::uint64_t size, bool mini) const {
    if (mini) return divideUp(size, kMiniSectorSize);
    std::uint64_t sectors = divideUp(size, sectorSize());
    return m_groupMode ? divideUp(sectors, 8) * 8 : sectors;
}

CompoundFile::Placement& CompoundFile::placementOf(std::uint32_t id) {
    auto it = m_placements.find(id);
    if (it != m_placements.end()) return it->second;
    // Chains are checked when the file is opened; here they are only followed again.
    const DirEntry& e = m_dir.entry(id);
    Placement p;
    p.mini = inMiniStream(id, e.size);
    if ((e.size > 0 || id == Directory::kRoot) && e.startSector != ENDOFCHAIN)
        p.chain = (p.mini ? m_miniFat : m_fat).walk(e.startSector);
    return m_placements.emplace(id, std::move(p)).first->second;
}

void CompoundFile::setChainLength(std::uint32_t id, std::uint64_t sectors) {
    Placement& p = placementOf(id);
    AllocationTable& table = p.mini ? m_miniFat : m_fat;
    DirEntry& e = m_dir.entry(id);
    if (sectors < p.chain.length()) {
        p.chain.truncate(sectors, [&](std::uint32_t s) { table.set(s, FREESECT); });
        if (sectors == 0)
            e.startSector = ENDOFCHAIN;
        else
            table.set(p.chain.back(), ENDOFCHAIN);
        return;
    }
    if (sectors == p.chain.length()) return;
    auto link = [&](std::uint32_t s) {
        if (p.chain.length() == 0)
            e.startSector = s;
        else
            table.set(p.chain.back(), s);
        p.chain.push(s);
    };
    bool groups = !p.mini && m_groupMode;
    while (p.chain.length() < sectors) {
        if (groups) {
            std::uint32_t first = m_fat.allocateGroup();
            for (std::uint32_t i = 0; i < 8; ++i) link(first + i);
        } else {
            link(table.allocate());
        }
    }
    if (p.mini) growMiniStream();
}

void CompoundFile::growMiniStream() {
    std::uint64_t bytes = static_cast<std::uint64_t>(m_miniFat.size()) * kMiniSectorSize;
    DirEntry& root = m_dir.entry(Directory::kRoot);
    if (bytes <= root.size) return;
    root.size = bytes;
    setChainLength(Directory::kRoot, sectorsFor(bytes, false));
}

void CompoundFile::makeRoomFor(std::uint64_t size) {
    if (m_sectorShift == 9 && size > kMaxSmallSectorStreamSize) {
        if (!m_groupMode) fail(STG_E_MEDIUMFULL);
        convertToLargeSectors();
    }
    if (divideUp(size, sectorSize()) > MAXREGSECT) fail(STG_E_MEDIUMFULL);
}

void CompoundFile::reallocate(std::uint32_t id, std::uint64_t size) {
    DirEntry& e = m_dir.entry(id);
    if (size == e.size) return;
    if (!m_writable) fail(STG_E_ACCESSDENIED);
    makeRoomFor(size);
    Placement& p = placementOf(id);
    bool mini = inMiniStream(id, size);
    if (mini != p.mini) {
        // Crossing the cutoff moves the stream between the mini stream and the file; at most
        // the cutoff's worth of bytes is kept.
        std::vector<std::uint8_t> kept(static_cast<std::size_t>(std::min(size, e.size)));
        transfer(id, 0, kept.data(), kept.size(), false);
        setChainLength(id, 0);
        p.mini = mini;
        setChainLength(id, sectorsFor(size, mini));
        e.size = size;
        transfer(id, 0, kept.data(), kept.size(), true);
    } else {
        setChainLength(id, sectorsFor(size, mini));
        e.size = size;
    }
    m_dirty = true;
}

void CompoundFile::resize(std::uint32_t id, std::uint64_t size) {
    std::uint64_t old = streamSize(id);
    reallocate(id, size);
    if (size > old) zeroRange(id, old, size);
}

std::size_t CompoundFile::read(std::uint32_t id, std::uint64_t position, void* buffer, std::size_t length) {
    std::uint64_t size = streamSize(id);
    if (position >= size) return 0;
    std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(length, size - position));
    transfer(id, position, static_cast<std::uint8_t*>(buffer), n, false);
    return n;
}

void CompoundFile::write(std::uint32_t id, std::uint64_t position, const void* buffer, std::size_t length) {
    if (!m_writable) fail(STG_E_ACCESSDENIED);
    if (length == 0) return;
    if (position > std::numeric_limits<std::uint64_t>::max() - length) fail(STG_E_MEDIUMFULL);
    std::uint64_t end = position + length;
    std::uint64_t old = streamSize(id);
    if (end > old) {
        reallocate(id, end);
        if (position > old) zeroRange(id, old, position);
    }
    // The bytes only travel to the file; the buffer is not changed.
    transfer(id, position, static_cast<std::uint8_t*>(const_cast<void*>(buffer)), length, true);
    m_dirty = true;
}

void CompoundFile::transfer(std::uint32_t id, std::uint64_t position, std::uint8_t* data, std::size_t length,
                            bool toFile) {
    Placement& p = placementOf(id);
    const unsigned shift = p.mini ? kMiniSectorShift : m_sectorShift;
    const std::uint64_t unit = std::uint64_t{1} << shift;
    while (length > 0) {
        std::uint64_t run;
        std::uint32_t sector = p.chain.locate(position >> shift, run);
        std::uint64_t within = position & (unit - 1);
        std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(length, run * unit - within));
        std::uint64_t where = (static_cast<std::uint64_t>(sector) << shift) + within;
        if (p.mini)
            transfer(Directory::kRoot, where, data, n, toFile);
        else if (toFile)
            writeFile(sectorOffset(sector) + within, data, n);
        else
            m_file.readAt(sectorOffset(sector) + within, data, n);
        position += n;
        data += n;
        length -= n;
    }
}

void CompoundFile::zeroRange(std::uint32_t id, std::uint64_t from, std::uint64_t to) {
    Placement& p = placementOf(id);
    const unsigned shift = p.mini ? kMiniSectorShift : m_sectorShift;
    const std::uint64_t unit = std::uint64_t{1} << shift;
    while (from < to) {
        std::uint64_t run;
        std::uint32_t sector = p.chain.locate(from >> shift, run);
        std::uint64_t within = from & (unit - 1);
        std::uint64_t n = std::min(to - from, run * unit - within);
        if (!p.mini) {
            // Space never written before reads as zero already: only reused space is cleared.
            std::uint64_t offset = sectorOffset(sector) + within;
            if (offset >= m_fileEnd) {
                from += n;
                continue;
            }
            n = std::min(n, m_fileEnd - offset);
        }
        n = std::min<std::uint64_t>(n, kZeroBlock);
        transfer(id, from, const_cast<std::uint8_t*>(kZeros), static_cast<std::size_t>(n), true);
        from += n;
    }
}

void CompoundFile::writeFile(std::uint64_t offset, const void* data, std::size_t length) {
    m_file.writeAt(offset, data, length);
    m_fileEnd = std::max(m_fileEnd, offset + length);
}

}  // namespace nvdl::cfb
