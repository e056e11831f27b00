#include "recording/TrcSaving.h"

#include "recording/TrcFile.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = SavingRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::SaveToDisk), {4}},
    {i32(&R::EveryAverages), {8}},
    {i32(&R::DelayTime), {12}},
    {i32(&R::CreateTimeHistory), {16}},
    {i32(&R::SaveTimeHistoryToDisk), {20}},
    {i32(&R::SaveTimeHistoryToWorkspace), {24}},
    {i32(&R::SaveBlockDataToWorkspace), {28}},
    {i32(&R::SaveBlockDataToDisk), {32}},
    {f32(&R::Percentile), {36}},
};
static_assert(fitsAndDisjoint(std::span<const Field<R, 1>>(kFields), 0, CTrcSaving::kBlockSize));

constexpr BlockShape<R> kShape{kFields, CTrcSaving::kBlockSize, CTrcSaving::kVersion, CTrcSaving::kVersion,
                               kSaving, "SAVING_SECTION"};

}  // namespace

CTrcSaving::CTrcSaving() : TrcFixedSection(kShape) {}

int CTrcSaving::Init() {
    TrcFixedSection::Init();
    m_toc.Init();
    m_measFunctions.Init();
    m_timeHistoryFunctions.Init();
    return 1;
}

std::int64_t CTrcSaving::GetSectionSize() {
    return kBlockSize + tocSize(kListCount) + m_measFunctions.GetSectionSize() +
           m_timeHistoryFunctions.GetSectionSize();
}

int CTrcSaving::UpdateTocSections() {
    std::int64_t offset = GetSectionOffset() + kBlockSize + tocSize(kListCount);
    m_toc.Init();
    for (CTrcParametersSection* list : {&m_measFunctions, &m_timeHistoryFunctions}) {
        list->SetSectionOffset(offset);
        list->UpdateTocSections();
        m_toc.Add(*list);
        offset += list->GetSectionSize();
    }
    return 1;
}

int CTrcSaving::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!TrcFixedSection::Write(owner, file)) return 0;
    if (!file->Seek(GetSectionOffset() + kBlockSize, 0) || !m_toc.Write(file, this)) return 0;
    return m_measFunctions.Write(this, file) && m_timeHistoryFunctions.Write(this, file) ? 1 : 0;
}

int CTrcSaving::Read(CTrcBaseSection* owner, CTrcFile* file) {
    m_measFunctions.Init();
    m_timeHistoryFunctions.Init();
    m_toc.Init();
    if (!TrcFixedSection::Read(owner, file) || m_block.version < kVersion) return 0;
    if (!file->Seek(GetSectionOffset() + kBlockSize, 0) || !m_toc.Read(file)) return 0;
    // Lists missing from the table stay empty: the time-history list came after the first.
    CTrcParametersSection* lists[kListCount] = {&m_measFunctions, &m_timeHistoryFunctions};
    for (long i = 0; i < kListCount && i < m_toc.GetCount(); ++i) {
        lists[i]->TakePlaceFrom(*m_toc.GetItem(i));
        lists[i]->SetSectionType(kParametersSection);
        if (!lists[i]->Read(this, file)) return 0;
    }
    return 1;
}

int CTrcSaving::Copy(CTrcSaving& target) const {
    TrcFixedSection::Copy(target);
    return m_measFunctions.Copy(target.m_measFunctions) && m_timeHistoryFunctions.Copy(target.m_timeHistoryFunctions)
               ? 1
               : 0;
}

}  // namespace nvdl::trc
