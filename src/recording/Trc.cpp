#include "recording/Trc.h"

#include "recording/TrcFile.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupsSection.h"
#include "recording/TrcTestDefinition.h"

namespace nvdl::trc {

namespace {
constexpr long kTopSections = 4;
}

CTrc::CTrc() { Init(); }

CTrc::~CTrc() { Close(); }

int CTrc::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(kTrcRoot);
    SetSectionOffset(0);
    m_testDefinition.reset();
    m_setups.reset();
    m_recorder.reset();
    m_measurements.reset();
    m_file = std::make_unique<CTrcFile>();
    m_testDefinition = std::make_unique<CTrcTestDefSection>();
    m_testDefinition->Init(m_file.get(), this);
    m_setups = std::make_unique<CTrcSetupsSection>();
    m_setups->Init(m_file.get(), this);
    m_measurements = std::make_unique<CTrcMeasurementsSection>();
    m_measurements->Init(m_file.get(), this);
    m_recorder = std::make_unique<CTrcRecorderSection>();
    m_recorder->Init(m_file.get(), this);
    m_toc.Init();
    m_toc.Add(*m_setups);
    m_toc.Add(*m_recorder);
    m_toc.Add(*m_measurements);
    m_toc.Add(*m_testDefinition);
    return 1;
}

CTrcBaseSection& CTrc::topSection(long index) {
    switch (index) {
    case 0: return *m_setups;
    case 1: return *m_recorder;
    case 2: return *m_measurements;
    default: return *m_testDefinition;
    }
}

int CTrc::IsOpened() const { return m_file && m_file->IsOpened(); }

const char* CTrc::GetFilename() const { return m_file ? m_file->GetFilename() : nullptr; }

std::int64_t CTrc::GetSectionSize() {
    return m_toc.GetTocSize(-1) + m_setups->GetSectionSize() + m_measurements->GetSectionSize() +
           m_recorder->GetSectionSize() + m_testDefinition->GetSectionSize();
}

int CTrc::UpdateTocSizesAndOffsets() {
    std::int64_t offset = GetSectionOffset() + m_toc.GetTocSize(-1);
    for (long i = 0; i < m_toc.GetCount() && i < kTopSections; ++i) {
        CTrcBaseSection& section = topSection(i);
        TocEntry* entry = m_toc.GetItem(i);
        const std::int64_t size = section.GetSectionSize();
        entry->sectionOffset = offset;
        entry->sectionSize = size;
        section.SetSectionOffset(offset);
        const int updated = i == 0   ? m_setups->UpdateTocSections()
                            : i == 1 ? m_recorder->UpdateTocSections()
                            : i == 2 ? m_measurements->UpdateTocSections()
                                     : m_testDefinition->UpdateTocSections();
        if (!updated) return 0;
        offset += size;
    }
    return 1;
}

int CTrc::Create(const char* name) {
    if (!m_file->Create(name, kBaseVersion)) return 0;
    return UpdateTocSizesAndOffsets() && m_file->Seek(GetSectionOffset(), 0) && m_toc.Write(m_file.get(), this);
}

int CTrc::Open(const char* name) {
    if (IsOpened()) Close();  // sections read from another file must not be taken for this one's
    if (!m_file->Open(name)) return 0;
    if (m_file->GetFileVersion() < kBaseVersion) return 0;
    // A root table that cannot be read leaves the sections without entries: each of them then
    // fails its own Read.
    if (!m_toc.Read(m_file.get())) m_toc.Init();
    for (long i = 0; i < m_toc.GetCount() && i < kTopSections; ++i) topSection(i).TakePlaceFrom(*m_toc.GetItem(i));
    return 1;
}

int CTrc::Close() {
    if (!m_file) return 0;
    if (!m_file->IsOpened()) return 1;
    if (!m_file->IsReadOnly() && m_file->Seek(GetSectionOffset(), 0)) m_toc.Write(m_file.get(), this);
    m_file->Close();
    return Init();
}

}  // namespace nvdl::trc
