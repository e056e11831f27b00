#include "platform/CompoundChain.h"

#include <algorithm>
#include <limits>

#include "platform/CompoundError.h"
#include "platform/CompoundFormat.h"

namespace nvdl::cfb {

void SectorChain::push(std::uint32_t sector) {
    if (!m_extents.empty()) {
        Extent& last = m_extents.back();
        if (last.count < std::numeric_limits<std::uint32_t>::max() &&
            static_cast<std::uint64_t>(last.first) + last.count == sector) {
            ++last.count;
            ++m_length;
            return;
        }
    }
    m_extents.push_back({m_length, sector, 1});
    ++m_length;
}

std::size_t SectorChain::extentOf(std::uint64_t index) const {
    auto it = std::upper_bound(m_extents.begin(), m_extents.end(), index,
                               [](std::uint64_t i, const Extent& e) { return i < e.index; });
    return static_cast<std::size_t>(it - m_extents.begin()) - 1;
}

std::uint32_t SectorChain::locate(std::uint64_t index, std::uint64_t& run) const {
    const Extent& e = m_extents[extentOf(index)];
    std::uint64_t skip = index - e.index;
    run = e.count - skip;
    return e.first + static_cast<std::uint32_t>(skip);
}

AllocationTable::AllocationTable(std::vector<std::uint32_t> entries) : m_entries(std::move(entries)) {}

bool AllocationTable::isFree(std::size_t sector) const {
    return sector >= m_entries.size() || m_entries[sector] == FREESECT;
}

std::uint32_t AllocationTable::next(std::uint32_t sector) const {
    return sector < m_entries.size() ? m_entries[sector] : FREESECT;
}

void AllocationTable::set(std::uint32_t sector, std::uint32_t value) {
    if (sector >= m_entries.size()) m_entries.resize(static_cast<std::size_t>(sector) + 1, FREESECT);
    m_entries[sector] = value;
    if (value == FREESECT) {
        m_freeHint = std::min<std::size_t>(m_freeHint, sector);
        if (sector >= 7) m_groupHint = std::min<std::size_t>(m_groupHint, (sector - 7) / 8);
    }
}

std::uint32_t AllocationTable::allocate() {
    std::size_t s = m_freeHint;
    while (s < m_entries.size() && m_entries[s] != FREESECT) ++s;
    if (s > MAXREGSECT) fail(STG_E_MEDIUMFULL);
    m_freeHint = s + 1;
    set(static_cast<std::uint32_t>(s), ENDOFCHAIN);
    return static_cast<std::uint32_t>(s);
}

std::uint32_t AllocationTable::allocateGroup() {
    std::size_t g = m_groupHint;
    for (;; ++g) {
        std::size_t first = 8 * g + 7;
        if (first + 7 > MAXREGSECT) fail(STG_E_MEDIUMFULL);
        bool free = true;
        for (std::size_t i = 0; i < 8 && free; ++i) free = isFree(first + i);
        if (free) break;
    }
    m_groupHint = g + 1;
    std::uint32_t first = static_cast<std::uint32_t>(8 * g + 7);
    for (std::uint32_t i = 0; i < 8; ++i) set(first + i, ENDOFCHAIN);
    return first;
}

void AllocationTable::trimTrailingFree() {
    while (!m_entries.empty() && m_entries.back() == FREESECT) m_entries.pop_back();
    m_freeHint = std::min(m_freeHint, m_entries.size());
}

SectorChain AllocationTable::walk(std::uint32_t first, std::uint32_t limit, std::vector<bool>& seen) const {
    SectorChain chain;
    for (std::uint32_t s = first; s != ENDOFCHAIN; s = m_entries[s]) {
        if (s >= limit || s >= m_entries.size() || s >= seen.size() || seen[s]) fail(STG_E_DOCFILECORRUPT);
        seen[s] = true;
        chain.push(s);
    }
    return chain;
}

SectorChain AllocationTable::walk(std::uint32_t first) const {
    SectorChain chain;
    for (std::uint32_t s = first; s != ENDOFCHAIN; s = m_entries[s]) {
        if (s >= m_entries.size() || chain.length() >= m_entries.size()) fail(STG_E_DOCFILECORRUPT);
        chain.push(s);
    }
    return chain;
}

}  // namespace nvdl::cfb
