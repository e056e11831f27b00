#include "recording/TrcRecorderChannels.h"

#include <algorithm>

#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanStream.h"

namespace nvdl::trc {

CTrcRecorderChannelSection::CTrcRecorderChannelSection(ScanPart part, SectionType type, const char* name)
    : m_part(part),
      m_type(type),
      m_name(name) {
    Init(nullptr, nullptr);
}

int CTrcRecorderChannelSection::Init(CTrcRecorderSection* recorder, CTrcFile* file) {
    CTrcBaseSection::Init();
    SetVersionNumber(kBaseVersion);
    SetSectionType(m_type);
    SetSectionName(m_name);
    m_recorder = recorder;
    m_file = file;
    return 1;
}

const ScanGeometry& CTrcRecorderChannelSection::Geometry() {
    if (m_recorder) {
        m_recorder->GetHeader().DescribeScans(m_geometry);
    } else {
        m_geometry = ScanGeometry{};
    }
    m_geometry.streamOffset = GetSectionOffset();
    return m_geometry;
}

ScanStream CTrcRecorderChannelSection::Stream() { return ScanStream(m_file, Geometry(), m_part); }

// Sizes do not depend on where the stream stands: a section not yet placed has its size too.
const ScanGeometry& CTrcRecorderChannelSection::SizingGeometry() {
    Geometry();
    m_geometry.streamOffset = std::max<std::int64_t>(m_geometry.streamOffset, 0);
    return m_geometry;
}

std::int64_t CTrcRecorderChannelSection::GetSectionSize() { return SizingGeometry().sectionSize(m_part); }

std::int64_t CTrcRecorderChannelSection::GetStatusSize() { return SizingGeometry().statusSize(m_part); }

long CTrcRecorderChannelSection::GetDataSize() { return m_recorder ? m_recorder->GetHeader().GetSampleBytes() : 4; }

long CTrcRecorderChannelSection::GetChannelIndex(long number) { return Geometry().channelIndex(m_part, number); }

int CTrcRecorderChannelSection::ReadChannel(long number, std::int64_t position, unsigned char* buffer,
                                            std::int64_t count) {
    return Stream().ReadChannel(number, position, buffer, count);
}

int CTrcRecorderChannelSection::WriteChannel(long number, std::int64_t position, const unsigned char* buffer,
                                             std::int64_t count) {
    return Stream().WriteChannel(number, position, buffer, count);
}

int CTrcRecorderChannelSection::ReadInfo(long scan, long number, CTrcScanInfo& info) {
    return Stream().ReadInfo(scan, number, info);
}

int CTrcRecorderChannelSection::WriteInfo(long scan, long number, const CTrcScanInfo& info) {
    return Stream().WriteInfo(scan, number, info);
}

int CTrcRecorderChannelSection::ReadScan(long scan, unsigned char* buffer, std::int64_t count) {
    return Stream().ReadScan(scan, buffer, count);
}

int CTrcRecorderChannelSection::WriteScan(long scan, const unsigned char* buffer, std::int64_t count) {
    return Stream().WriteScan(scan, buffer, count);
}

}  // namespace nvdl::trc
