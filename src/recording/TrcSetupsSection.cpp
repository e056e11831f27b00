#include "recording/TrcSetupsSection.h"

#include <cstdio>

#include "recording/TrcFile.h"

namespace nvdl::trc {

int CTrcSetupsSection::Init(CTrcFile* file, CTrcBaseSection* root) {
    RemoveAll();
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kSetupsSection);
    SetSectionName("SETUPS_SECTION");
    m_toc.Init();
    m_file = file;
    m_root = root;
    m_read = 0;
    return 1;
}

int CTrcSetupsSection::Add(std::unique_ptr<CTrcSetupSection> setup) {
    if (!setup) return 0;
    m_items.push_back(std::move(setup));
    return 1;
}

CTrcSetupSection* CTrcSetupsSection::GetItem(long index) const {
    return index >= 0 && index < GetCount() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

int CTrcSetupsSection::RemoveAll() {
    while (!m_items.empty()) m_items.pop_back();
    return 1;
}

std::int64_t CTrcSetupsSection::GetSectionSize() {
    std::int64_t size = tocSize(GetCount());
    for (const auto& setup : m_items) size += setup->GetSectionSize();
    return size;
}

int CTrcSetupsSection::UpdateTocSections() {
    std::int64_t offset = GetSectionOffset() + tocSize(GetCount());
    m_toc.Init();
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        CTrcSetupSection& setup = *m_items[i];
        char name[CTrcBaseSection::kNameSize];
        std::snprintf(name, sizeof name, "SETUP%ld", static_cast<long>(i + 1));
        setup.SetSectionName(name);
        setup.SetSectionOffset(offset);
        setup.UpdateTocSections();
        m_toc.Add(setup);
        offset += setup.GetSectionSize();
    }
    return 1;
}

int CTrcSetupsSection::Write() {
    if (!m_file || !m_file->IsOpened() || m_file->IsReadOnly()) return 0;
    if (!m_file->Seek(GetSectionOffset(), 0) || !m_toc.Write(m_file, this)) return 0;
    for (const auto& setup : m_items)
        if (!setup->Write(this, m_file)) return 0;
    return 1;
}

int CTrcSetupsSection::Read() {
    if (m_read) return 1;
    if (!m_file || !m_file->IsOpened() || !m_root || !m_root->GetToc()) return 0;
    const TocEntry* entry = EntryIn(*m_root->GetToc());
    if (!entry || entry->version < kVersion) return 0;
    RemoveAll();
    SetSectionOffset(entry->sectionOffset);
    if (!m_file->Seek(entry->sectionOffset, 0) || !m_toc.Read(m_file)) return 0;
    for (long i = 0; i < m_toc.GetCount(); ++i) {
        auto setup = std::make_unique<CTrcSetupSection>();
        setup->SetSectionIndex(i);
        if (!setup->Read(this, m_file)) return 0;  // the setup that failed is dropped here
        setup->TakePlaceFrom(*m_toc.GetItem(i));
        m_items.push_back(std::move(setup));
    }
    m_read = 1;
    return 1;
}

}  // namespace nvdl::trc
