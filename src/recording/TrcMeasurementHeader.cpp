#include "recording/TrcMeasurementHeader.h"

#include "recording/TrcBlock.h"
#include "recording/TrcFile.h"

namespace nvdl::trc {

namespace {

using namespace record;
using B = MeasurementHeaderBlock;

constexpr Field<B, 1> kFields[] = {
    {i32(&B::version), {0}},
    {text(&B::Name, 50), {4}},
    {i32(&B::FunctionType), {56}},
    {i16(&B::ResponseChannel), {64}},
    {text(&B::Response, 50), {66}},
    {i16(&B::ReferenceChannel), {116}},
    {text(&B::Reference, 50), {118}},
    {i32(&B::XAxisType), {168}},
    {f32(&B::XStart), {172}},
    {f32(&B::XIncrement), {176}},
    {text(&B::XDimension, 50), {184}},
    {i32(&B::Size), {236}},
    {i32(&B::Complex), {240}},
    {text(&B::YDimension, 50), {248}},
    {i32(&B::AveragingType), {300}},
    {f32(&B::AveragingParameter), {304}},
    {i32(&B::Averages), {308}},
    {f32(&B::Overlap), {312}},
    {i32(&B::WindowType), {316}},
    {f32(&B::WindowParameter), {320}},
    {f64(&B::MeasurementTime), {328}},
    {text(&B::TestId, 50), {336}},
    {text(&B::FunctionQualifier, 50), {386}},
    {text(&B::AcousticWeighting, 50), {436}},
    {text(&B::Environment, 50), {486}},
    {text(&B::UserId, 100), {536}},
    {f32(&B::Order), {640}},
    {f32(&B::RPM), {644}},
    {f32(&B::Z), {648}},
    {f32(&B::BandwidthCorrectionFactor), {660}},
    {i32(&B::Power), {664}},
    {i32(&B::Overload), {668}},
    {text(&B::StorageUnitX, 50), {672}},
    {text(&B::StorageUnitY, 50), {722}},
    {text(&B::ClsidLoader, 50), {2904}},
    {text(&B::ChannelFileID, 50), {2954}},
    {i32(&B::IsUncompleted), {3004}},
    {i32(&B::IsUsefullData), {3008}},
    {f32(&B::CompressionFactor), {3012}},
    {i32(&B::CheckOnUnicId), {3016}},
    {i32(&B::FileSamples), {3020}},
    {text(&B::ZDimension, 50), {3024}},
    {i32(&B::Usage), {3076}},
    {text(&B::SoftwareRevision, 10), {3080}},
};
static_assert(fitsAndDisjoint(std::span<const Field<B, 1>>(kFields), 0, CTrcMeasurementHeaderSection::kBlockSize));

// The table of a header has one entry, the parameter list.
constexpr std::int64_t kTableSize = tocSize(1);

}  // namespace

std::span<const Field<MeasurementHeaderBlock, 1>> measurementHeaderFields() { return kFields; }

int CTrcMeasurementHeaderSection::Init() {
    CTrcBaseSection::Init();
    SetVersionNumber(kVersion);
    SetSectionType(kMeasurementHeaderSection);
    SetSectionName("MEAS_HEADER_SECTION");
    m_block = MeasurementHeaderBlock{};
    m_block.version = kVersion;
    m_toc.Init();
    return m_parameters.Init();
}

void CTrcMeasurementHeaderSection::setText(std::string& field, const char* value, std::size_t size) {
    if (!value) return;
    field = value;
    if (field.size() > size - 1) field.resize(size - 1);
}

bool CTrcMeasurementHeaderSection::HasXTable() const {
    return m_block.XAxisType == 1102 || m_block.XAxisType == 1103 || m_block.XAxisType == 1104;
}

std::int64_t CTrcMeasurementHeaderSection::GetSectionSize() {
    return kBlockSize + kTableSize + m_parameters.GetSectionSize();
}

int CTrcMeasurementHeaderSection::UpdateTocSections() {
    m_toc.Init();
    m_parameters.SetSectionOffset(GetSectionOffset() + kBlockSize + kTableSize);
    if (!m_parameters.UpdateTocSections()) return 0;
    return m_toc.Add(m_parameters);
}

int CTrcMeasurementHeaderSection::Write(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc()) return 0;
    return EntryIn(*owner->GetToc()) ? InternWrite(file) : 0;  // laid out under this owner
}

int CTrcMeasurementHeaderSection::InternWrite(CTrcFile* file) {
    const std::int64_t offset = GetSectionOffset();
    return writeBlockAt(file, offset, measurementHeaderFields(), m_block, kBlockSize) &&
                   file->Seek(offset + kBlockSize, 0) && m_toc.Write(file, this) && m_parameters.Write(this, file)
               ? 1
               : 0;
}

// The place comes from the entry's header offset: the owner keeps the header apart from its
// table, in the zone where the headers of all measurements of a list stand together.
int CTrcMeasurementHeaderSection::Read(CTrcBaseSection* owner, CTrcFile* file) {
    if (!owner || !owner->GetToc() || !EntryAtLeast(*owner->GetToc(), kVersion)) return 0;
    const TocEntry& entry = *EntryIn(*owner->GetToc());
    SetSectionOffset(entry.headerOffset);
    SetHeaderOffset(entry.headerOffset);
    SetHeaderSize(entry.headerSize);
    return InternRead(file);
}

int CTrcMeasurementHeaderSection::InternRead(CTrcFile* file) {
    const std::int64_t offset = GetSectionOffset();
    MeasurementHeaderBlock block;
    if (!readBlockAt(file, offset, measurementHeaderFields(), block, kBlockSize)) return 0;
    // A block older than this layout is refused; a negative size can only come from a damaged file.
    if (block.version < kVersion || block.Size < 0) return 0;
    // The block was read whole, so the offset lies inside the file and the addition cannot overflow.
    if (!file->Seek(offset + kBlockSize, 0) || !m_toc.Read(file) || m_toc.GetCount() < 1) return 0;
    m_block = block;
    m_parameters.Init();
    m_parameters.TakePlaceFrom(*m_toc.GetItem(0));
    return m_parameters.Read(this, file);
}

int CTrcMeasurementHeaderSection::Copy(CTrcMeasurementHeaderSection& target) const {
    if (&target == this) return 1;
    target.m_block = m_block;
    return m_parameters.Copy(target.m_parameters);
}

}  // namespace nvdl::trc
