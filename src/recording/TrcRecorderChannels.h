// The two views of a recording's scan stream: CTrcRecorderInputSection gives access to the input
// channels' samples and status records, CTrcRecorderTachoSection to the tacho channels'. Both stand
// at the same offset, the start of the stream, since their data are interleaved scan by scan; each
// one's size is its own share of the stream. Their layout is worked out from the recorder's header
// at every call, so a section is usable once its recorder section's header holds the setup.
//
// Channels are named by their 1-based number over all channels of the setup, used or not, with
// the tacho channels numbered behind the inputs: tacho channel k is number (total inputs + k).
#pragma once

#include <cstdint>

#include "recording/TrcBaseSection.h"
#include "recording/TrcScanGeometry.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcRecorderSection;
class CTrcScanInfo;
class ScanStream;

class CTrcRecorderChannelSection : public CTrcBaseSection {
public:
    int Init(CTrcRecorderSection* recorder, CTrcFile* file);

    // The part's share of the stream for all the scans it has room for, status records included;
    // 0 without a recorder section or when the setup describes no stream that fits in a file.
    std::int64_t GetSectionSize() override;
    std::int64_t GetStatusSize();
    long GetDataSize();  // bytes per sample, 2 or 4; 4 without a recorder section
    // The channel's position among the part's used channels, -1 when it is unused or not there.
    long GetChannelIndex(long number);

    // A run of `count` samples of one channel from sample `position` of the recording on. A run
    // that the end of the file cuts short is read as far as the file goes, with success.
    int ReadChannel(long number, std::int64_t position, unsigned char* buffer, std::int64_t count);
    // Writes reach the block of the run's first sample and the next block, no further.
    int WriteChannel(long number, std::int64_t position, const unsigned char* buffer, std::int64_t count);
    int ReadInfo(long scan, long number, CTrcScanInfo& info);
    int WriteInfo(long scan, long number, const CTrcScanInfo& info);
    // The part's samples of one scan (from 1), in one file operation: `count` must be exactly the
    // part's used channels times the blocksize.
    int ReadScan(long scan, unsigned char* buffer, std::int64_t count);
    int WriteScan(long scan, const unsigned char* buffer, std::int64_t count);
    // The stream's layout as the recorder's header tells it now, with the stream at this section's
    // offset, and which part of each scan this section is.
    const ScanGeometry& GetGeometry() { return Geometry(); }
    ScanPart GetPart() const { return m_part; }

protected:
    CTrcRecorderChannelSection(ScanPart part, SectionType type, const char* name);

private:
    // The layout as the recorder's header tells it now, with the stream at this section's offset.
    const ScanGeometry& Geometry();
    const ScanGeometry& SizingGeometry();
    ScanStream Stream();

    ScanPart m_part;
    SectionType m_type;
    const char* m_name;
    CTrcRecorderSection* m_recorder = nullptr;
    CTrcFile* m_file = nullptr;
    ScanGeometry m_geometry;
};

class CTrcRecorderInputSection final : public CTrcRecorderChannelSection {
public:
    CTrcRecorderInputSection()
        : CTrcRecorderChannelSection(ScanPart::Input, kRecorderInputSection, "RECORDER_INPUT_SECTION") {}
};

class CTrcRecorderTachoSection final : public CTrcRecorderChannelSection {
public:
    CTrcRecorderTachoSection()
        : CTrcRecorderChannelSection(ScanPart::Tacho, kRecorderTachoSection, "RECORDER_TACHO_SECTION") {}
};

}  // namespace nvdl::trc
