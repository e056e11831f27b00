#include "recording/TrcParameters.h"

#include <cstdio>

#include "recording/TrcFile.h"

namespace nvdl::trc {

namespace {

using namespace record;

struct ParameterRecord {
    std::int32_t version = 0;
    std::string name, value;
};

// Offsets of the two layouts: [0] the current one, [1] the old one.
constexpr Field<ParameterRecord, 2> kParameterFields[] = {
    {i32(&ParameterRecord::version), {0, 0}},
    {text(&ParameterRecord::name, 150), {4, -1}},
    {text(&ParameterRecord::value, 256), {154, -1}},
};
constexpr Field<ParameterRecord, 2> kOldParameterFields[] = {
    {i32(&ParameterRecord::version), {-1, 0}},
    {text(&ParameterRecord::name, 100), {-1, 4}},
    {text(&ParameterRecord::value, 256), {-1, 104}},
};
constexpr std::span<const Field<ParameterRecord, 2>> kCurrent(kParameterFields);
constexpr std::span<const Field<ParameterRecord, 2>> kOld(kOldParameterFields);
static_assert(fitsAndDisjoint(kCurrent, 0, CTrcParameterSection::kRecordSize));
static_assert(fitsAndDisjoint(kOld, 1, CTrcParameterSection::kRecordSize));

std::string limited(const char* text, std::size_t size) {
    std::string s(text);
    if (s.size() > size - 1) s.resize(size - 1);
    return s;
}

}  // namespace

int CTrcParameterSection::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersionV2);
    SetSectionType(kParameterSection);
    m_name.clear();
    m_value.clear();
    return 1;
}

void CTrcParameterSection::SetName(const char* name) {
    if (name) m_name = limited(name, kNameSize);
}

void CTrcParameterSection::SetValue(const char* value) {
    if (value) m_value = limited(value, kValueSize);
}

int CTrcParameterSection::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    const ParameterRecord record{kVersionV2, m_name, m_value};
    const std::int64_t offset = entry ? entry->sectionOffset : GetSectionOffset();
    std::vector<std::uint8_t> bytes(kRecordSize, 0);
    encode(kCurrent, 0, record, bytes.data());
    return file && file->IsOpened() && !file->IsReadOnly() && file->Seek(offset, 0) &&
                   file->Write(bytes.data(), kRecordSize)
               ? 1
               : 0;
}

int CTrcParameterSection::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry || entry->version < kVersionV1 || entry->version > kVersionV2) return 0;
    std::vector<std::uint8_t> bytes(kRecordSize);
    if (!file->IsOpened() || !file->Seek(entry->sectionOffset, 0) || !file->Read(bytes.data(), kRecordSize)) return 0;
    const std::int32_t version = static_cast<std::int32_t>(le::u32(bytes.data()));
    if (version < kVersionV1 || version > kVersionV2) return 0;
    ParameterRecord record;
    if (version < kVersionV2) decode(kOld, 1, bytes.data(), record);
    else decode(kCurrent, 0, bytes.data(), record);
    const std::int32_t index = static_cast<std::int32_t>(GetSectionIndex());
    Init();
    SetSectionIndex(index);
    SetSectionOffset(entry->sectionOffset);
    SetSectionName(entry->name.c_str());
    SetName(record.name.c_str());
    SetValue(record.value.c_str());
    return 1;
}

int CTrcParameterSection::Copy(CTrcParameterSection& target) const {
    target.m_name = m_name;
    target.m_value = m_value;
    return 1;
}

int CTrcParametersSection::Init() {
    RemoveAll();
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(kParametersSection);
    SetSectionName("PARAMETERS_SECTION");
    m_toc.Init();
    return 1;
}

int CTrcParametersSection::Add(std::unique_ptr<CTrcParameterSection> parameter) {
    if (!parameter) return 0;
    m_items.push_back(std::move(parameter));
    return 1;
}

CTrcParameterSection* CTrcParametersSection::GetItem(long index) const {
    return index >= 0 && index < GetCount() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

int CTrcParametersSection::RemoveAll() {
    while (!m_items.empty()) m_items.pop_back();
    return 1;
}

std::int64_t CTrcParametersSection::GetSectionSize() {
    return tocSize(GetCount()) + CTrcParameterSection::kRecordSize * GetCount();
}

int CTrcParametersSection::UpdateTocSections() {
    std::int64_t offset = GetSectionOffset() + tocSize(GetCount());
    m_toc.Init();
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        CTrcParameterSection& parameter = *m_items[i];
        char name[CTrcBaseSection::kNameSize];
        std::snprintf(name, sizeof name, "PARAMETER%ld", static_cast<long>(i + 1));
        parameter.SetSectionName(name);
        parameter.SetSectionOffset(offset);
        m_toc.Add(parameter);
        offset += parameter.GetSectionSize();
    }
    return 1;
}

int CTrcParametersSection::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file || !file->IsOpened() || file->IsReadOnly()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry) return 0;
    if (entry->sectionSize > 0 && entry->sectionSize > GetSectionSize()) return 0;  // shrunk since the layout
    if (!file->Seek(GetSectionOffset(), 0) || !m_toc.Write(file, this)) return 0;
    for (const auto& parameter : m_items)
        if (!parameter->Write(this, file)) return 0;
    return 1;
}

int CTrcParametersSection::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file || !file->IsOpened()) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry || entry->version < kBaseVersion) return 0;
    if (!file->Seek(entry->sectionOffset, 0)) return 0;
    RemoveAll();
    SetSectionOffset(entry->sectionOffset);
    if (!m_toc.Read(file)) return 0;
    for (long i = 0; i < m_toc.GetCount(); ++i) {
        auto parameter = std::make_unique<CTrcParameterSection>();
        parameter->TakeEntry(*m_toc.GetItem(i));
        if (!parameter->Read(this, file)) return 0;
        m_items.push_back(std::move(parameter));
    }
    return 1;
}

int CTrcParametersSection::Copy(CTrcParametersSection& target) const {
    if (&target == this) return 1;
    target.RemoveAll();
    for (const auto& parameter : m_items) {
        auto copy = std::make_unique<CTrcParameterSection>();
        parameter->Copy(*copy);
        target.m_items.push_back(std::move(copy));
    }
    return 1;
}

}  // namespace nvdl::trc
