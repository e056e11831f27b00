// Sector chains and the allocation tables that link them (the FAT over file sectors, the mini FAT
// over the 64-byte sectors of the mini stream).
#pragma once

#include <cstdint>
#include <vector>

namespace nvdl::cfb {

// The sectors of one chain, in chain order, kept as runs of consecutive sector numbers so that
// contiguous data maps to few positioned reads.
class SectorChain {
public:
    std::uint64_t length() const { return m_length; }
    std::uint32_t back() const { return m_extents.back().first + m_extents.back().count - 1; }
    void push(std::uint32_t sector);
    // The sector at chain position `index` (< length); `run` gets how many sectors from it on are
    // consecutive on disk, itself included.
    std::uint32_t locate(std::uint64_t index, std::uint64_t& run) const;
    // Keeps the first `length` sectors; calls drop(sector) for each one removed.
    template <class Drop>
    void truncate(std::uint64_t length, Drop drop);
    // Calls visit(first, count) for the runs from chain position `from` to the end.
    template <class Visit>
    void forEachRun(std::uint64_t from, Visit visit) const;

private:
    struct Extent {
        std::uint64_t index;  // chain position of `first`
        std::uint32_t first;
        std::uint32_t count;
    };
    std::size_t extentOf(std::uint64_t index) const;

    std::vector<Extent> m_extents;
    std::uint64_t m_length = 0;
};

// A table of next-sector links. Sectors beyond the stored entries are free.
class AllocationTable {
public:
    AllocationTable() = default;
    explicit AllocationTable(std::vector<std::uint32_t> entries);

    std::size_t size() const { return m_entries.size(); }
    const std::vector<std::uint32_t>& entries() const { return m_entries; }
    std::uint32_t next(std::uint32_t sector) const;
    void set(std::uint32_t sector, std::uint32_t value);

    // The lowest free sector, or a new one at the end, marked as the end of a chain.
    // STG_E_MEDIUMFULL when no sector number is left.
    std::uint32_t allocate();
    // Eight consecutive free sectors s..s+7 with s % 8 == 7, each marked as the end of a chain;
    // returns s. In a file of 512-byte sectors such a group is exactly one 4096-byte sector.
    std::uint32_t allocateGroup();
    // Drops free entries at the end.
    void trimTrailingFree();

    // The chain from `first` to its end in a table read from a file: every sector must be below
    // `limit` and not yet marked in `seen` (which catches loops and chains sharing sectors).
    // STG_E_DOCFILECORRUPT otherwise.
    SectorChain walk(std::uint32_t first, std::uint32_t limit, std::vector<bool>& seen) const;
    // The chain from `first` in a table already checked; a loop still gives STG_E_DOCFILECORRUPT.
    SectorChain walk(std::uint32_t first) const;

private:
    bool isFree(std::size_t sector) const;

    std::vector<std::uint32_t> m_entries;
    std::size_t m_freeHint = 0;   // no free sector below it
    std::size_t m_groupHint = 0;  // no free group below it
};

template <class Drop>
void SectorChain::truncate(std::uint64_t length, Drop drop) {
    if (length >= m_length) return;
    forEachRun(length, [&](std::uint32_t first, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) drop(first + i);
    });
    while (!m_extents.empty() && m_extents.back().index >= length) m_extents.pop_back();
    if (!m_extents.empty()) {
        Extent& last = m_extents.back();
        if (last.index + last.count > length) last.count = static_cast<std::uint32_t>(length - last.index);
    }
    m_length = length;
}

template <class Visit>
void SectorChain::forEachRun(std::uint64_t from, Visit visit) const {
    if (from >= m_length) return;
    std::size_t i = extentOf(from);
    std::uint32_t skip = static_cast<std::uint32_t>(from - m_extents[i].index);
    visit(m_extents[i].first + skip, m_extents[i].count - skip);
    for (++i; i < m_extents.size(); ++i) visit(m_extents[i].first, m_extents[i].count);
}

}  // namespace nvdl::cfb
