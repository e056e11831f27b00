#include "recording/TrcRecorderSection.h"

#include <cstring>
#include <new>

#include "recording/TrcFile.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::trc {

namespace {

constexpr long kEntries = 3;  // header, input view, tacho view

template <class T>
bool make(std::unique_ptr<T>& section) {
    if (!section) section.reset(new (std::nothrow) T);
    return section != nullptr;
}

}  // namespace

CTrcRecorderSection::CTrcRecorderSection() { Init(nullptr, nullptr); }

CTrcRecorderSection::~CTrcRecorderSection() = default;

int CTrcRecorderSection::Init(CTrcFile* file, CTrcBaseSection* root) {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kRecorderSection);
    SetSectionName("RECORDER_SECTION");
    m_file = file;
    m_root = root;
    m_toc.Init();
    m_isRead = 0;
    m_noStatusRecords = false;
    if (!make(m_header) || !make(m_input) || !make(m_tacho)) return 0;
    return m_header->Init() && m_input->Init(this, file) && m_tacho->Init(this, file) ? 1 : 0;
}

int CTrcRecorderSection::Write() {
    if (!m_file || !m_file->IsOpened() || m_file->IsReadOnly()) return 0;
    if (!m_file->Seek(GetSectionOffset(), 0) || !m_toc.Write(m_file, this)) return 0;
    return m_header->Write(this, m_file);
}

int CTrcRecorderSection::Read() {
    if (m_isRead) return 1;
    if (!m_file || !m_file->IsOpened() || !m_root || !m_root->GetToc()) return 0;
    const TocEntry* entry = EntryIn(*m_root->GetToc());
    if (!entry || entry->version < kVersion) return 0;
    const std::int64_t offset = entry->sectionOffset;
    if (!m_file->Seek(offset, 0) || !m_toc.Read(m_file) || m_toc.GetCount() < kEntries) return 0;
    SetSectionOffset(offset);
    m_header->TakePlaceFrom(*m_toc.GetItem(0));
    m_input->TakePlaceFrom(*m_toc.GetItem(1));
    m_tacho->TakePlaceFrom(*m_toc.GetItem(2));
    m_isRead = m_header->Read(this, m_file);
    return m_isRead;
}

std::int64_t CTrcRecorderSection::GetSectionSize() {
    std::int64_t size = tocSize(kEntries) + m_header->GetSectionSize();
    if (__builtin_add_overflow(size, m_input->GetSectionSize(), &size) ||
        __builtin_add_overflow(size, m_tacho->GetSectionSize(), &size))
        return 0;
    return size;
}

int CTrcRecorderSection::UpdateTocSections() {
    m_header->SetSectionOffset(GetSectionOffset() + tocSize(kEntries));
    m_header->UpdateTocSections();
    m_toc.Init();
    m_toc.Add(*m_header);
    // Both views start where the stream starts: they share its scans.
    const std::int64_t stream = m_header->GetSectionOffset() + m_header->GetSectionSize();
    m_input->SetSectionOffset(stream);
    m_toc.Add(*m_input);
    m_tacho->SetSectionOffset(stream);
    m_toc.Add(*m_tacho);
    return 1;
}

int CTrcRecorderSection::ReadScan(long scan, unsigned char* buffer, std::int64_t count, long infoCount,
                                  CTrcScanInfo* infos) {
    if (!m_file || !m_file->IsOpened() || !buffer || !infos) return 0;
    ScanGeometry& g = m_geometry;
    m_header->DescribeScans(g);
    g.streamOffset = m_input->GetSectionOffset();
    if (!g.bounded() || scan < 1 || scan > g.scans || g.blocksize < 1 || g.sampleBytes < 1) return 0;
    const std::int64_t inputs = g.usedInputs, channels = g.usedInputs + g.usedTachos;
    if (channels < 1 || count != channels * g.blocksize || infoCount < channels) return 0;
    const std::int64_t offset = g.scanOffset(scan), stride = g.stride();
    if (offset + stride > m_file->GetFileSize()) return 0;
    m_scan.resize(static_cast<std::size_t>(stride));
    if (!m_file->Seek(offset, 0) || !m_file->Read(m_scan.data(), stride)) return 0;

    const unsigned char* bytes = m_scan.data();
    const std::int64_t inputBytes = inputs * g.blockBytes(), tachoBytes = g.usedTachos * g.blockBytes();
    std::memcpy(buffer, bytes, static_cast<std::size_t>(inputBytes));
    std::memcpy(buffer + inputBytes, bytes + g.samplesAt(ScanPart::Tacho), static_cast<std::size_t>(tachoBytes));

    // The inputs' records are taken from behind all samples of the scan, which is their place only
    // in a recording without tachos; with tachos they come from inside the tacho samples. Kept
    // exactly so: this is how whole scans of every existing recording have been read back.
    for (std::int64_t i = 0; i < inputs; ++i)
        infos[i].Decode(bytes + channels * g.blockBytes() + i * ScanGeometry::kInfoBytes);
    for (std::int64_t i = 0; i < g.usedTachos; ++i)
        infos[inputs + i].Decode(bytes + g.infosAt(ScanPart::Tacho) + i * ScanGeometry::kInfoBytes);

    // A writer that never filled the status records shows in the first record of any scan but the
    // last (which may still be being written). Once seen, the section knows it for good and hands
    // out a fixed record for every channel instead of what the file holds.
    if (infos[0].GetVersionNumber() != kBaseVersion && scan <= g.scans - 1 && g.scans >= 2) m_noStatusRecords = true;
    if (m_noStatusRecords) {
        for (std::int64_t i = 0; i < channels; ++i) {
            infos[i].SetVersionNumber(kBaseVersion);
            infos[i].SetStatus(kStatusNormal);
            infos[i].SetRange(kUnrecordedRange);
        }
    }
    return 1;
}

}  // namespace nvdl::trc
