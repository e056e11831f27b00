#include "recording/TrcBaseSection.h"

#include <cstring>

#include "recording/TrcToc.h"

namespace nvdl::trc {

int CTrcBaseSection::Init() {
    m_version = 0;
    m_type = 0;
    m_index = -1;
    std::memset(m_name, 0, sizeof m_name);
    m_offset = -1;
    m_headerOffset = 0;
    m_headerSize = 0;
    m_dataOffset = 0;
    return 1;
}

void CTrcBaseSection::SetSectionName(const char* name) {
    if (!name) return;
    std::strncpy(m_name, name, kNameSize - 1);
    m_name[kNameSize - 1] = 0;
}

void CTrcBaseSection::TakePlaceFrom(const TocEntry& entry) {
    SetSectionIndex(entry.index);
    SetSectionName(entry.name.c_str());
    SetSectionOffset(entry.sectionOffset);
    SetSectionType(entry.type);
}

void CTrcBaseSection::TakeEntry(const TocEntry& entry) {
    TakePlaceFrom(entry);
    SetVersionNumber(entry.version);
}

const TocEntry* CTrcBaseSection::EntryIn(const CTrcTableManagment& parentToc) const {
    return parentToc.GetItem(m_index);
}

bool CTrcBaseSection::EntryAtLeast(const CTrcTableManagment& parentToc, std::int32_t version) const {
    const TocEntry* entry = EntryIn(parentToc);
    return entry && entry->version >= version;
}

}  // namespace nvdl::trc
