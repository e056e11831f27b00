// The directory of a compound file in memory: its entries, each storage's children in storage
// order, and the sibling trees rebuilt when the directory is written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CompoundFormat.h"

namespace nvdl::cfb {

class Directory {
public:
    static constexpr std::uint32_t kRoot = 0;
    // Storages nest at most this deep; deeper nesting in a file is taken as damage.
    static constexpr std::size_t kMaxDepth = 256;

    // A directory holding only the root.
    Directory();
    // The directory of a file, from its decoded entries. The sibling trees are followed from the
    // root; a reference out of range, an entry reached twice, a root that is not one or nesting
    // deeper than kMaxDepth gives STG_E_DOCFILECORRUPT. Entries no tree reaches become free slots.
    explicit Directory(std::vector<DirEntry> entries);

    std::size_t slotCount() const { return m_entries.size(); }
    DirEntry& entry(std::uint32_t id) { return m_entries[id]; }
    const DirEntry& entry(std::uint32_t id) const { return m_entries[id]; }
    bool isStorage(std::uint32_t id) const;
    // Counts the lives of a slot: it changes when the slot's entry is removed.
    std::uint32_t generation(std::uint32_t id) const { return m_slots[id].generation; }
    const std::vector<std::uint32_t>& children(std::uint32_t storage) const { return m_slots[storage].children; }

    // The child of that name as names compare, or NOSTREAM.
    std::uint32_t find(std::uint32_t storage, std::u16string_view name) const;
    // A new empty child; the name must be valid and not taken. A storage nested deeper than
    // kMaxDepth gives STG_E_INVALIDFUNCTION.
    std::uint32_t add(std::uint32_t storage, std::u16string name, EntryType type);
    // The entry and all entries below it, the entry itself first.
    std::vector<std::uint32_t> subtree(std::uint32_t id) const;
    // Frees the slots of the entry and of everything below it.
    void remove(std::uint32_t id);
    // The new name must be valid and not taken.
    void rename(std::uint32_t id, std::u16string name);

    // The directory as written: balanced red-black sibling trees, free slots blank, padded with
    // blank entries to whole sectors of `sectorSize` bytes.
    std::vector<std::uint8_t> encode(std::size_t sectorSize) const;

private:
    struct Slot {
        std::vector<std::uint32_t> children;  // storage order
        std::uint32_t parent = NOSTREAM;
        std::uint32_t generation = 0;
    };
    void insertChild(std::uint32_t storage, std::uint32_t id);
    void eraseChild(std::uint32_t storage, std::uint32_t id);

    std::vector<DirEntry> m_entries;
    std::vector<Slot> m_slots;
    std::size_t m_freeHint = 1;  // no free slot below it
};

}  // namespace nvdl::cfb
