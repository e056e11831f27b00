// TrcFixedSection<R>: a section of a recording file that is one fixed block. The block's fields are
// the members of the plain struct R, laid out by a field table that Write and Read both walk; the
// bytes between the fields are reserved and written as zeros. Every block begins with its version,
// set from the class's version at Init. The concrete sections add one Get and Set per field.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/RecordLayout.h"
#include "recording/TrcBaseSection.h"
#include "recording/TrcBlock.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

// What a fixed section is: its table, size, versions, type and name.
template <class R>
struct BlockShape {
    std::span<const record::Field<R, 1>> fields;
    std::int64_t size;
    std::int32_t version;        // the class's version; older entries are refused
    std::int32_t oldestVersion;  // a class of two layouts reads this one to `version`, and nothing newer
    SectionType type;
    const char* name;            // null for sections named by their list
};

// A text field of a block: at most size - 1 characters; null is ignored.
inline void setBlockText(std::string& field, const char* text, std::size_t size) {
    if (!text) return;
    field.assign(text);
    if (field.size() > size - 1) field.resize(size - 1);
}

// The current local time as a date value: days since 30 December 1899.
double currentDate();

template <class R>
class TrcFixedSection : public CTrcBaseSection {
public:
    // Clears the block and the section; the block's version is the class's.
    int Init() {
        CTrcBaseSection::Init();
        SetVersionNumber(m_shape.version);
        SetSectionType(m_shape.type);
        if (m_shape.name) SetSectionName(m_shape.name);
        m_block = R{};
        m_block.version = m_shape.version;
        return 1;
    }

    std::int64_t GetSectionSize() override { return m_shape.size; }

    // Writes the block at the offset of this section's entry in the owner's table (or at its own
    // offset when the owner has no entry for it yet; both are the same after a layout).
    int Write(CTrcBaseSection* owner, CTrcFile* file) {
        if (!owner || !owner->GetToc()) return 0;
        const TocEntry* entry = EntryIn(*owner->GetToc());
        return writeBlockAt(file, entry ? entry->sectionOffset : GetSectionOffset(), m_shape.fields, m_block,
                            static_cast<std::size_t>(m_shape.size));
    }

    // Reads the block from where this section's entry says. An entry older than the class is refused;
    // a class of two layouts also refuses one newer than its current layout.
    int Read(CTrcBaseSection* owner, CTrcFile* file) {
        if (!owner || !owner->GetToc()) return 0;
        const TocEntry* entry = EntryIn(*owner->GetToc());
        const bool twoLayouts = m_shape.oldestVersion != m_shape.version;
        if (!entry || entry->version < m_shape.oldestVersion || (twoLayouts && entry->version > m_shape.version))
            return 0;
        const TocEntry place = *entry;
        Init();
        TakePlaceFrom(place);
        SetSectionType(m_shape.type);
        return readBlockAt(file, place.sectionOffset, m_shape.fields, m_block, static_cast<std::size_t>(m_shape.size));
    }

    int Copy(TrcFixedSection& target) const {
        target.m_block = m_block;
        return 1;
    }

    // The block as a whole, with the table that lays it out (for copying between setups and for
    // checking a block field by field).
    const R& GetBlock() const { return m_block; }
    void SetBlock(const R& block) { m_block = block; }
    std::span<const record::Field<R, 1>> GetFields() const { return m_shape.fields; }

protected:
    explicit TrcFixedSection(const BlockShape<R>& shape) : m_shape(shape) { Init(); }

    const BlockShape<R>& m_shape;
    R m_block;
};

}  // namespace nvdl::trc
