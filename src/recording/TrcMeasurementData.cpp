#include "recording/TrcMeasurementData.h"

#include <bit>
#include <vector>

#include "recording/TrcFile.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurementHeader.h"
#include "recording/TrcSubMeasurement.h"

namespace nvdl::trc {

namespace {

constexpr std::int64_t kFloatSize = 4;

// Bulk values are little-endian floats in the file; a big-endian host turns each one around.
void swapFloats(float* values, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        const std::uint32_t v = std::bit_cast<std::uint32_t>(values[i]);
        values[i] = std::bit_cast<float>((v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24));
    }
}

}  // namespace

int CTrcMeasurementCurveSection::InitAs(SectionType type, const char* name) {
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(type);
    SetSectionName(name);
    return 1;
}

CTrcMeasurementHeaderSection* CTrcMeasurementCurveSection::Header() const { return m_data.GetHeader(); }

std::int64_t CTrcMeasurementCurveSection::Locate(bool writing, std::int64_t position, const void* buffer,
                                                 std::int64_t count, std::int64_t floats, bool behind) {
    CTrcMeasurementHeaderSection* header = Header();
    CTrcFile* file = m_data.GetFile();
    if (position < 0 || !buffer || !header || !file || !file->IsOpened()) return -1;
    if (writing ? file->IsReadOnly() : !EntryAtLeast(*m_data.GetToc(), kBaseVersion)) return -1;
    const std::int64_t size = header->GetSize();
    if (count <= 0 || count > size || count > floats || position > floats - count) return -1;
    // An offset at or behind the end of the file is refused; testing the section's own offset first
    // keeps the sum below from overflowing whatever a damaged table says.
    const std::int64_t fileSize = file->GetFileSize();
    if (GetSectionOffset() < 0 || GetSectionOffset() >= fileSize) return -1;
    const std::int64_t offset = GetSectionOffset() + (position + (behind ? size : 0)) * kFloatSize;
    return offset < fileSize ? offset : -1;
}

int CTrcMeasurementCurveSection::ReadFloats(std::int64_t position, float* buffer, std::int64_t count,
                                            std::int64_t floats, bool behind) {
    const std::int64_t offset = Locate(false, position, buffer, count, floats, behind);
    CTrcFile* file = m_data.GetFile();
    if (offset < 0 || !file->Seek(offset, 0) ||
        !file->Read(reinterpret_cast<unsigned char*>(buffer), count * kFloatSize))
        return 0;
    if constexpr (std::endian::native == std::endian::big) swapFloats(buffer, count);
    return 1;
}

int CTrcMeasurementCurveSection::WriteFloats(std::int64_t position, const float* buffer, std::int64_t count,
                                             std::int64_t floats, bool behind) {
    const std::int64_t offset = Locate(true, position, buffer, count, floats, behind);
    CTrcFile* file = m_data.GetFile();
    if (offset < 0 || !file->Seek(offset, 0)) return 0;
    if constexpr (std::endian::native == std::endian::big) {
        std::vector<float> swapped(buffer, buffer + count);
        swapFloats(swapped.data(), count);
        return file->Write(reinterpret_cast<const unsigned char*>(swapped.data()), count * kFloatSize);
    }
    return file->Write(reinterpret_cast<const unsigned char*>(buffer), count * kFloatSize);
}

std::int64_t CTrcMeasurementXDataSection::GetSectionSize() {
    const CTrcMeasurementHeaderSection* header = Header();
    return header && header->HasXTable() ? header->GetSize() * kFloatSize : 0;
}

int CTrcMeasurementXDataSection::Write(std::int64_t position, const float* buffer, std::int64_t count) {
    return WriteFloats(position, buffer, count, GetSectionSize() / kFloatSize, false);
}

int CTrcMeasurementXDataSection::Read(std::int64_t position, float* buffer, std::int64_t count) {
    return ReadFloats(position, buffer, count, GetSectionSize() / kFloatSize, false);
}

std::int64_t CTrcMeasurementYDataSection::GetSectionSize() {
    const CTrcMeasurementHeaderSection* header = Header();
    if (!header) return 0;
    return header->GetSize() * kFloatSize * (header->GetComplex() ? 2 : 1);
}

std::int64_t CTrcMeasurementYDataSection::Floats() {
    const CTrcMeasurementHeaderSection* header = Header();
    const std::int64_t floats = GetSectionSize() / kFloatSize;
    return header && header->GetComplex() ? floats / 2 : floats;
}

int CTrcMeasurementYDataSection::WriteReal(std::int64_t position, const float* buffer, std::int64_t count) {
    return WriteFloats(position, buffer, count, Floats(), false);
}

int CTrcMeasurementYDataSection::ReadReal(std::int64_t position, float* buffer, std::int64_t count) {
    return ReadFloats(position, buffer, count, Floats(), false);
}

int CTrcMeasurementYDataSection::WriteImag(std::int64_t position, const float* buffer, std::int64_t count) {
    return WriteFloats(position, buffer, count, Floats(), true);
}

int CTrcMeasurementYDataSection::ReadImag(std::int64_t position, float* buffer, std::int64_t count) {
    return ReadFloats(position, buffer, count, Floats(), true);
}

int CTrcMeasurementDataSection::Reset(CTrcFile* file, CTrcBaseSection* parent, CTrcMeasurementHeaderSection* header) {
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(kMeasurementDataSection);
    SetSectionName("MEAS_DATA_SECTION");
    m_toc.Init();
    m_x.Init();
    m_y.Init();
    InternInit(file, parent, header);
    return parent ? 1 : 0;
}

int CTrcMeasurementDataSection::Init(CTrcFile* file, CTrcMeasurementSection* parent) {
    return Reset(file, parent, parent ? &parent->GetHeader() : nullptr);
}

int CTrcMeasurementDataSection::Init(CTrcFile* file, CTrcSubMeasurementSection* parent) {
    return Reset(file, parent, parent ? &parent->GetHeader() : nullptr);
}

int CTrcMeasurementDataSection::InternInit(CTrcFile* file, CTrcBaseSection* parent,
                                           CTrcMeasurementHeaderSection* header) {
    m_file = file;
    m_parent = parent;
    m_header = header;
    return 1;
}

std::int64_t CTrcMeasurementDataSection::GetSectionSize() {
    return tocSize(2) + m_x.GetSectionSize() + m_y.GetSectionSize();
}

int CTrcMeasurementDataSection::UpdateTocSections() {
    m_toc.Init();
    m_x.SetSectionOffset(GetSectionOffset() + tocSize(2));
    m_y.SetSectionOffset(m_x.GetSectionOffset() + m_x.GetSectionSize());
    return m_toc.Add(m_x) && m_toc.Add(m_y) ? 1 : 0;
}

int CTrcMeasurementDataSection::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file) return 0;
    const TocEntry* entry = EntryIn(*owner->GetToc());
    return entry && file->Seek(entry->sectionOffset, 0) ? InternWrite(file) : 0;
}

int CTrcMeasurementDataSection::InternWrite(CTrcFile* file) {
    if (!file || !m_header || !m_toc.Write(file, this)) return 0;
    if (m_header->GetSize() == 0) return 1;
    const std::int64_t x = m_x.GetSectionSize();
    if (x > 0 && !(file->Seek(m_x.GetSectionOffset(), 0) && file->WriteDummyData(x))) return 0;
    return file->Seek(m_y.GetSectionOffset(), 0) && file->WriteDummyData(m_y.GetSectionSize()) ? 1 : 0;
}

int CTrcMeasurementDataSection::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !file || !EntryAtLeast(*owner->GetToc(), kBaseVersion)) return 0;
    const TocEntry& entry = *EntryIn(*owner->GetToc());
    if (!file->Seek(entry.sectionOffset, 0)) return 0;
    SetSectionOffset(entry.sectionOffset);
    return InternRead(file);
}

int CTrcMeasurementDataSection::InternRead(CTrcFile* file) {
    if (!file || !m_toc.Read(file) || m_toc.GetCount() < 2) return 0;
    m_x.TakePlaceFrom(*m_toc.GetItem(0));
    m_y.TakePlaceFrom(*m_toc.GetItem(1));
    return 1;
}

}  // namespace nvdl::trc
