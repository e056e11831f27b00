#include "recording/TrcTestDefinition.h"

#include <algorithm>
#include <cstring>

#include "recording/TrcBlock.h"
#include "recording/TrcFile.h"

namespace nvdl::trc {

namespace {

using H = CTrcTestDefSectionHeader::Block;
using namespace record;

constexpr Field<H, 1> kHeaderFields[] = {
    {i32(&H::version), {0}},
    {text(&H::filename, 100), {4}},
    {i32(&H::dataSize), {104}},
};
constexpr std::span<const Field<H, 1>> kHeaderTable(kHeaderFields);
static_assert(fitsAndDisjoint(kHeaderTable, 0, CTrcTestDefSectionHeader::kBlockSize));

}  // namespace

int CTrcTestDefSectionHeader::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kTestDefSectionHeader);
    SetSectionName("TESTDEF_HEADER_SECTION");
    m_block = Block{};
    m_toc.Init();
    return 1;
}

void CTrcTestDefSectionHeader::SetFilename(const char* name) {
    if (!name) return;
    m_block.filename.assign(name, std::min(std::strlen(name), kFilenameSize - 1));
}

int CTrcTestDefSectionHeader::GetFilename(char* target, unsigned long length) const {
    if (!target || length == 0) return 0;
    const std::size_t n = std::min<std::size_t>(m_block.filename.size(), length - 1);
    std::memcpy(target, m_block.filename.data(), n);
    target[n] = 0;
    return 1;
}

int CTrcTestDefSectionHeader::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    if (!entry) return 0;
    m_lastOwner = owner;
    m_lastFile = file;
    m_toc.Init();
    return writeBlockAt(file, entry->sectionOffset, kHeaderTable, m_block, kBlockSize) && m_toc.Write(file, this);
}

int CTrcTestDefSectionHeader::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file) return 0;
    if (!EntryAtLeast(*owner->GetToc(), kVersion)) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    m_lastOwner = owner;
    m_lastFile = file;
    SetSectionOffset(entry->sectionOffset);
    Block block;
    if (!readBlockAt(file, entry->sectionOffset, kHeaderTable, block, kBlockSize) || block.version < kVersion)
        return 0;
    m_block = block;
    return m_toc.Read(file);
}

int CTrcTestDefSectionHeader::Update() { return Write(m_lastOwner, m_lastFile); }

int CTrcTestDefSectionData::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kTestDefSectionData);
    SetSectionName("TESTDEF_DATA_SECTION");
    return 1;
}

std::int64_t CTrcTestDefSectionData::GetSectionSize() { return m_owner.GetHeader().GetDataSize(); }

bool CTrcTestDefSectionData::spanInside(std::int64_t position, std::int64_t size) {
    return m_owner.GetFile() && position >= 0 && size > 0 && GetSectionOffset() >= 0 &&
           size <= GetSectionSize() - position;
}

int CTrcTestDefSectionData::Write(std::int64_t position, const unsigned char* buffer, std::int64_t size) {
    CTrcFile* file = m_owner.GetFile();
    return spanInside(position, size) && file->Seek(GetSectionOffset() + position, 0) && file->Write(buffer, size);
}

int CTrcTestDefSectionData::Read(std::int64_t position, unsigned char* buffer, std::int64_t size) {
    CTrcFile* file = m_owner.GetFile();
    return spanInside(position, size) && file->Seek(GetSectionOffset() + position, 0) && file->Read(buffer, size);
}

int CTrcTestDefSection::Init(CTrcFile* file, CTrcBaseSection* root) {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kTestDefSection);
    SetSectionName("TESTDEF_SECTION");
    m_file = file;
    m_root = root;
    m_read = 0;
    m_header.Init();
    m_data.Init();
    m_toc.Init();
    m_toc.Add(m_header);
    m_toc.Add(m_data);
    return 1;
}

std::int64_t CTrcTestDefSection::GetSectionSize() {
    return tocSize(2) + m_header.GetSectionSize() + m_data.GetSectionSize();
}

int CTrcTestDefSection::UpdateTocSections() {
    const std::int64_t headerOffset = GetSectionOffset() + tocSize(2);
    m_toc.Init();
    m_header.SetSectionOffset(headerOffset);
    m_toc.Add(m_header);
    m_data.SetSectionOffset(headerOffset + m_header.GetSectionSize());
    m_toc.Add(m_data);
    return 1;
}

int CTrcTestDefSection::Write() {
    if (!m_file || !m_root || !m_root->GetToc() || !m_file->IsOpened() || m_file->IsReadOnly()) return 0;
    const TocEntry* entry = EntryIn(*m_root->GetToc());
    if (!entry || (entry->sectionSize > 0 && entry->sectionSize > GetSectionSize())) return 0;
    return m_file->Seek(GetSectionOffset(), 0) && m_toc.Write(m_file, this) && m_header.Write(this, m_file);
}

int CTrcTestDefSection::Read() {
    if (m_read) return 1;
    if (!m_file || !m_root || !m_root->GetToc() || !EntryAtLeast(*m_root->GetToc(), kVersion)) return 0;
    const TocEntry* entry = EntryIn(*m_root->GetToc());
    if (!m_file->Seek(entry->sectionOffset, 0) || !m_toc.Read(m_file)) return 0;
    SetSectionOffset(entry->sectionOffset);
    if (const TocEntry* header = m_toc.GetItem(0)) m_header.TakePlaceFrom(*header);
    if (const TocEntry* data = m_toc.GetItem(1)) m_data.TakePlaceFrom(*data);
    if (!m_header.Read(this, m_file)) return 0;
    m_read = 1;
    return 1;
}

}  // namespace nvdl::trc
