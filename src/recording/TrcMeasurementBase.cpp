#include "recording/TrcMeasurementBase.h"

#include "recording/TrcFile.h"
#include "recording/TrcSubMeasurements.h"

namespace nvdl::trc {

int CTrcMeasurementBase::Reset(SectionType type) {
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(type);
    m_toc.Init();
    return m_header.Init();
}

int CTrcMeasurementBase::Attach(CTrcFile* file) { return m_data.InternInit(file, this, &m_header); }

std::int64_t CTrcMeasurementBase::GetDataZoneSize() {
    CTrcSubMeasurementsSection* subs = SubMeasurements();
    return m_data.GetSectionSize() + (subs ? subs->GetSectionSize() : 0);
}

int CTrcMeasurementBase::UpdateTocSections() {
    m_toc.Init();
    // The header's entry carries the header size of the list, like this measurement's own entry.
    m_header.SetSectionOffset(GetHeaderOffset());
    m_header.SetHeaderOffset(GetHeaderOffset());
    m_header.SetHeaderSize(GetHeaderSize());
    if (!m_header.UpdateTocSections() || !m_toc.Add(m_header)) return 0;
    m_data.SetSectionOffset(GetDataOffset());
    if (!m_data.UpdateTocSections() || !m_toc.Add(m_data)) return 0;
    CTrcSubMeasurementsSection* subs = SubMeasurements();
    if (!subs) return 1;
    subs->SetSectionOffset(GetDataOffset() + m_data.GetSectionSize());
    return subs->UpdateTocSections() && m_toc.Add(*subs) ? 1 : 0;
}

int CTrcMeasurementBase::Write(CTrcBaseSection* list, CTrcFile* file) {
    if (!list || !list->GetToc() || !file) return 0;
    const TocEntry* entry = EntryIn(*list->GetToc());
    if (!entry || !file->Seek(entry->sectionOffset, 0) || !m_toc.Write(file, this) || !m_header.Write(this, file))
        return 0;
    if (!file->Seek(entry->dataOffset, 0) || !m_data.Write(this, file)) return 0;
    CTrcSubMeasurementsSection* subs = SubMeasurements();
    return !subs || subs->Write(this, file) ? 1 : 0;
}

int CTrcMeasurementBase::Read(CTrcBaseSection* list, CTrcFile* file) {
    if (!list || !list->GetToc() || !file || !EntryAtLeast(*list->GetToc(), kBaseVersion)) return 0;
    const TocEntry& entry = *EntryIn(*list->GetToc());
    if (!file->Seek(entry.sectionOffset, 0) || !m_toc.Read(file) || m_toc.GetCount() < m_parts) return 0;
    SetSectionOffset(entry.sectionOffset);
    // The header stands in the list's header zone: its place is its entry's header offset, which
    // the header takes itself; data and sub-measurements stand where their entries say.
    m_header.TakePlaceFrom(*m_toc.GetItem(0));
    m_data.TakePlaceFrom(*m_toc.GetItem(1));
    CTrcSubMeasurementsSection* subs = SubMeasurements();
    if (subs) subs->TakePlaceFrom(*m_toc.GetItem(2));
    return m_header.Read(this, file) && m_data.Read(this, file) && (!subs || subs->Read(this, file)) ? 1 : 0;
}

}  // namespace nvdl::trc
