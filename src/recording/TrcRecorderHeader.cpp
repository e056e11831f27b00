#include "recording/TrcRecorderHeader.h"

#include <new>

#include "recording/TrcBlock.h"
#include "recording/TrcFile.h"
#include "recording/TrcScanGeometry.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = RecorderHeaderRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},          {i32(&R::Enabled), {4}},        {i32(&R::DataSize), {8}},
    {f64(&R::AcquisitionTime), {16}}, {f32(&R::ScalingFactor), {24}},
};
constexpr std::span<const Field<R, 1>> kTable(kFields);
static_assert(fitsAndDisjoint(kTable, 0, CTrcRecorderSectionHeader::kBlockSize));

// Behind the block stands the table of the one setup.
constexpr std::int64_t kSetupStart = CTrcRecorderSectionHeader::kBlockSize + tocSize(1);

}  // namespace

CTrcRecorderSectionHeader::CTrcRecorderSectionHeader() { Init(); }

CTrcRecorderSectionHeader::~CTrcRecorderSectionHeader() = default;

int CTrcRecorderSectionHeader::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kRecorderSectionHeader);
    SetSectionName("RECORDER_HEADER_SECTION");
    m_block = RecorderHeaderRecord{};
    m_block.version = kVersion;
    m_toc.Init();
    m_lastOwner = nullptr;
    m_lastFile = nullptr;
    m_setup.reset(new (std::nothrow) CTrcSetupSection);
    return m_setup ? 1 : 0;
}

int CTrcRecorderSectionHeader::Uninit() {
    m_toc.Init();
    return m_setup->Uninit();
}

std::int64_t CTrcRecorderSectionHeader::GetSectionSize() { return kSetupStart + m_setup->GetSectionSize(); }

int CTrcRecorderSectionHeader::UpdateTocSections() {
    m_setup->SetSectionOffset(GetSectionOffset() + kSetupStart);
    m_setup->UpdateTocSections();
    m_toc.Init();
    return m_toc.Add(*m_setup);
}

int CTrcRecorderSectionHeader::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file) return 0;
    m_lastOwner = owner;
    m_lastFile = file;
    if (!writeBlockAt(file, GetSectionOffset(), kTable, m_block, kBlockSize)) return 0;
    if (!file->Seek(GetSectionOffset() + kBlockSize, 0) || !m_toc.Write(file, this)) return 0;
    return m_setup->Write(this, file);
}

int CTrcRecorderSectionHeader::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file) return 0;
    m_lastOwner = owner;
    m_lastFile = file;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry || entry->version < kVersion) return 0;
    const std::int64_t offset = entry->sectionOffset;
    RecorderHeaderRecord block;
    if (!readBlockAt(file, offset, kTable, block, kBlockSize) || block.version < kVersion) return 0;
    m_block = block;
    SetSectionOffset(offset);
    if (!file->Seek(offset + kBlockSize, 0) || !m_toc.Read(file)) return 0;
    const TocEntry* setup = m_toc.GetItem(0);
    if (!setup) return 0;
    m_setup->TakePlaceFrom(*setup);
    return m_setup->Read(this, file);
}

int CTrcRecorderSectionHeader::Update() { return m_lastOwner ? Write(m_lastOwner, m_lastFile) : 0; }

int CTrcRecorderSectionHeader::Copy(CTrcRecorderSectionHeader& target) const {
    if (&target == this) return 1;
    target.m_block = m_block;
    return m_setup->Copy(*target.m_setup);
}

void CTrcRecorderSectionHeader::DescribeScans(ScanGeometry& into) {
    CTrcSetupSection& setup = *m_setup;
    CTrcInputChannels& inputs = setup.GetInputs();
    CTrcTachoChannels& tachos = setup.GetTachos();
    into.sampleBytes = GetSampleBytes();
    into.blocksize = setup.GetAcquisition().GetBlocksize();
    into.usedInputs = inputs.GetUsedChannels();
    into.usedTachos = tachos.GetUsedChannels();
    into.scans = setup.GetProcessing().GetAverageNumber();
    into.maxScans = setup.GetProcessing().GetMaxAverageNumber();
    // The flags are refreshed in place: once their room is there, no call allocates.
    into.inputUsed.resize(static_cast<std::size_t>(inputs.GetTotalChannels()));
    for (long i = 0; i < inputs.GetTotalChannels(); ++i)
        into.inputUsed[static_cast<std::size_t>(i)] = inputs.GetItem(i)->GetUsage() != 0;
    into.tachoUsed.resize(static_cast<std::size_t>(tachos.GetTotalChannels()));
    for (long i = 0; i < tachos.GetTotalChannels(); ++i)
        into.tachoUsed[static_cast<std::size_t>(i)] = tachos.GetItem(i)->GetActivated() != 0;
}

}  // namespace nvdl::trc
