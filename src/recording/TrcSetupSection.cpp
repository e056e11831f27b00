#include "recording/TrcSetupSection.h"

#include <new>
#include <utility>

#include "recording/TrcFile.h"

namespace nvdl::trc {

namespace {

using namespace record;
using R = SetupRecord;

constexpr Field<R, 1> kFields[] = {
    {i32(&R::version), {0}},
    {i32(&R::Default), {4}},
    {text(&R::Name, 100), {8}},
    {i32(&R::GroupDataInSameWs), {108}},
    {i32(&R::GroupChannels), {112}},
    {text(&R::WorkspacePrefixName, 60), {116}},
    {text(&R::ParametersLayout, 60), {176}},
    {text(&R::Creator, 60), {236}},
    {i32(&R::GroupFunctions), {296}},
};
constexpr std::span<const Field<R, 1>> kTable(kFields);
static_assert(fitsAndDisjoint(kTable, 0, CTrcSetupSection::kBlockSize));

// Where the first subsection starts: behind the block and the room of 14 entries, not 15.
constexpr std::int64_t kSubsectionsStart = CTrcSetupSection::kBlockSize + tocSize(CTrcSetupSection::kTocRoom);

template <class T>
bool make(std::unique_ptr<T>& section) {
    section.reset(new (std::nothrow) T);
    return section != nullptr;
}

template <class Tuple, std::size_t... I>
bool copyEach(const Tuple& from, const Tuple& to, std::index_sequence<I...>) {
    return ((std::get<I>(from).Copy(std::get<I>(to)) != 0) && ...);
}

}  // namespace

CTrcSetupSection::CTrcSetupSection() { Init(); }

CTrcSetupSection::~CTrcSetupSection() = default;

int CTrcSetupSection::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kSetupSection);
    m_block = SetupRecord{};
    m_block.version = kVersion;
    m_toc.Init();
    return make(m_parameters) && make(m_inputs) && make(m_outputs) && make(m_acquisition) && make(m_tachos) &&
                   make(m_throughput) && make(m_processing) && make(m_postProcessing) && make(m_octave) &&
                   make(m_resampling) && make(m_saving) && make(m_srs) && make(m_steppedSine) &&
                   make(m_shockCapture) && make(m_strains)
               ? 1
               : 0;
}

int CTrcSetupSection::Uninit() {
    m_toc.Init();
    return ForEachSubsection([](auto& section) { return section.Init() != 0; }) ? 1 : 0;
}

std::int64_t CTrcSetupSection::GetSectionSize() {
    std::int64_t size = kSubsectionsStart;
    ForEachSubsection([&](auto& section) {
        size += section.GetSectionSize();
        return true;
    });
    return size;
}

int CTrcSetupSection::UpdateTocSections() {
    std::int64_t offset = GetSectionOffset() + kSubsectionsStart;
    m_toc.Init();
    ForEachSubsection([&](auto& section) {
        section.SetSectionOffset(offset);
        if constexpr (requires { section.UpdateTocSections(); }) section.UpdateTocSections();
        m_toc.Add(section);
        offset += section.GetSectionSize();
        return true;
    });
    return 1;
}

int CTrcSetupSection::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc()) return 0;
    return InternWrite(file);
}

int CTrcSetupSection::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    return entry ? InternRead(*entry, file) : 0;
}

// The block, then the table of 15 entries into the room of 14, then the subsections, of which the
// parameters list (first behind the room) overwrites the entry that ran over.
int CTrcSetupSection::InternWrite(CTrcFile* file) {
    if (!writeBlockAt(file, GetSectionOffset(), kTable, m_block, kBlockSize)) return 0;
    if (!file->Seek(GetSectionOffset() + kBlockSize, 0) || !m_toc.Write(file, this)) return 0;
    return ForEachSubsection([&](auto& section) { return section.Write(this, file) != 0; }) ? 1 : 0;
}

int CTrcSetupSection::InternRead(const TocEntry& entry, CTrcFile* file) {
    if (entry.version < kVersion) return 0;
    m_toc.Init();
    SetSectionOffset(entry.sectionOffset);
    if (!readBlockAt(file, entry.sectionOffset, kTable, m_block, kBlockSize)) return 0;
    if (!file->Seek(entry.sectionOffset + kBlockSize, 0) || !m_toc.Read(file)) return 0;
    const long count = m_toc.GetCount();
    if (count < kAlwaysRead) return 0;

    long index = 0;
    ForEachSubsection([&](auto& section) {
        if (const TocEntry* place = m_toc.GetItem(index++)) section.TakePlaceFrom(*place);
        return true;
    });
    // Subsections that came later than the file are left at their defaults.
    index = 0;
    return ForEachSubsection([&](auto& section) {
               if (index++ >= count) return section.Init() != 0;
               return section.Read(this, file) != 0;
           })
               ? 1
               : 0;
}

int CTrcSetupSection::Copy(CTrcSetupSection& target) const {
    if (&target == this) return 1;
    target.m_block = m_block;
    return copyEach(Subsections(), target.Subsections(), std::make_index_sequence<kSubsections>{}) ? 1 : 0;
}

}  // namespace nvdl::trc
