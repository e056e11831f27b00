#include "recording/TrcToc.h"

#include "recording/TrcBaseSection.h"
#include "recording/TrcFile.h"

namespace nvdl::trc {

namespace {

using namespace record;

constexpr Field<TocHead, 1> kHeadFields[] = {
    {i32(&TocHead::version), {0}},
    {i32(&TocHead::count), {4}},
    {i64(&TocHead::size), {8}},
};
static_assert(fitsAndDisjoint(std::span<const Field<TocHead, 1>>(kHeadFields), 0, kTocHeadSize));

constexpr Field<TocEntry, 1> kEntryFields[] = {
    {i32(&TocEntry::version), {0}},
    {i32(&TocEntry::type), {4}},
    {i32(&TocEntry::index), {8}},
    {text(&TocEntry::name, 32), {12}},
    {i64(&TocEntry::sectionOffset), {48}},
    {i64(&TocEntry::sectionSize), {56}},
    {i64(&TocEntry::headerOffset), {64}},
    {i64(&TocEntry::headerSize), {72}},
    {i64(&TocEntry::dataOffset), {80}},
};
static_assert(fitsAndDisjoint(std::span<const Field<TocEntry, 1>>(kEntryFields), 0, kTocEntrySize));

}  // namespace

std::span<const Field<TocHead, 1>> tocHeadFields() { return kHeadFields; }
std::span<const Field<TocEntry, 1>> tocEntryFields() { return kEntryFields; }

int CTrcTableManagment::Init() {
    RemoveAll();
    m_head = TocHead{};
    return 1;
}

int CTrcTableManagment::Add(std::unique_ptr<TocEntry> entry) {
    if (!entry) return 0;
    entry->index = static_cast<std::int32_t>(GenerateID());
    m_entries.push_back(std::move(entry));
    return 1;
}

int CTrcTableManagment::Add(CTrcBaseSection& section) {
    auto entry = std::make_unique<TocEntry>();
    section.SetSectionIndex(GenerateID());
    entry->name = section.GetSectionName();
    entry->sectionOffset = section.GetSectionOffset();
    entry->type = static_cast<std::int32_t>(section.GetSectionType());
    entry->version = static_cast<std::int32_t>(section.GetVersionNumber());
    entry->sectionSize = section.GetSectionSize();
    entry->headerOffset = section.GetHeaderOffset();
    entry->headerSize = section.GetHeaderSize();
    entry->dataOffset = section.GetDataOffset();
    return Add(std::move(entry));
}

TocEntry* CTrcTableManagment::GetItem(long index) {
    return index >= 0 && index < GetCount() ? m_entries[static_cast<std::size_t>(index)].get() : nullptr;
}

const TocEntry* CTrcTableManagment::GetItem(long index) const {
    return index >= 0 && index < GetCount() ? m_entries[static_cast<std::size_t>(index)].get() : nullptr;
}

int CTrcTableManagment::RemoveAll() {
    while (!m_entries.empty()) m_entries.pop_back();
    m_entries.shrink_to_fit();
    return 1;
}

int CTrcTableManagment::Read(CTrcFile* file) {
    if (!file || !file->IsOpened()) return 0;
    Init();
    std::uint8_t bytes[kTocEntrySize];
    if (!file->Read(bytes, kTocHeadSize)) return 0;
    TocHead head;
    decode(tocHeadFields(), 0, bytes, head);
    if (head.version < kBaseVersion) return 0;
    // The count is not trusted: the entries must fit in what is left of the file.
    const std::int64_t left = file->GetFileSize() - file->GetPosition();
    if (head.count < 0 || head.count > left / kTocEntrySize) return 0;
    m_head = head;
    m_head.count = 0;
    for (std::int32_t i = 0; i < head.count; ++i) {
        if (!file->Read(bytes, kTocEntrySize)) return 0;
        auto entry = std::make_unique<TocEntry>();
        decode(tocEntryFields(), 0, bytes, *entry);
        Add(std::move(entry));  // the index field of the file is replaced by the position
    }
    m_head.count = head.count;
    return 1;
}

int CTrcTableManagment::Write(CTrcFile* file, CTrcBaseSection* owner) {
    if (!file || !file->IsOpened() || file->IsReadOnly() || !owner) return 0;
    m_head.size = owner->GetSectionSize();
    m_head.count = static_cast<std::int32_t>(GetCount());
    if (file->GetFileSize() < m_head.size && !file->SetFileSize(m_head.size)) return 0;
    std::uint8_t bytes[kTocEntrySize] = {};
    encode(tocHeadFields(), 0, m_head, bytes);
    if (!file->Write(bytes, kTocHeadSize)) return 0;
    for (const auto& entry : m_entries) {
        std::uint8_t entryBytes[kTocEntrySize] = {};
        encode(tocEntryFields(), 0, *entry, entryBytes);
        if (!file->Write(entryBytes, kTocEntrySize)) return 0;
    }
    return 1;
}

long CTrcTableManagment::Copy(CTrcTableManagment* target) const {
    if (!target) return kGenericFailure;
    if (target == this) return 0;
    target->Init();
    target->m_head = m_head;
    for (const auto& entry : m_entries) target->Add(std::make_unique<TocEntry>(*entry));
    return 0;
}

}  // namespace nvdl::trc
