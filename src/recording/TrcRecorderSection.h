// CTrcRecorderSection: the raw time history of a recording. A table of three entries (the header,
// the input view and the tacho view of the scan stream), the header with the setup, then the scan
// stream itself, whose layout is worked out from that setup and never stored. The section can only
// move data once the setup is known: in a new file after the setup has been applied, in an existing
// one after Read.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "recording/TrcBaseSection.h"
#include "recording/TrcRecorderChannels.h"
#include "recording/TrcRecorderHeader.h"
#include "recording/TrcScanGeometry.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;
class CTrcScanInfo;

class CTrcRecorderSection final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    // What every status record reads as in a file whose writer never filled them.
    static constexpr float kUnrecordedRange = 10.0f;

    CTrcRecorderSection();
    ~CTrcRecorderSection() override;

    // `root` is the section whose table holds this section's entry.
    int Init(CTrcFile* file, CTrcBaseSection* root);

    // Writes the table and the header with its setup; the scans are written through the views.
    int Write();
    // Reads the table, the header and the setup, once: after a successful Read it is not read again.
    int Read();
    int IsRead() const { return m_isRead; }

    CTrcRecorderSectionHeader& GetHeader() { return *m_header; }
    CTrcRecorderInputSection& GetInputSection() { return *m_input; }
    CTrcRecorderTachoSection& GetTachoSection() { return *m_tacho; }
    CTrcTableManagment* GetToc() override { return &m_toc; }
    std::int64_t GetSectionSize() override;
    // Places the header behind the table, and both views behind the header, and rebuilds the table.
    int UpdateTocSections();

    // One whole scan (from 1) with its status records: `count` must be all used channels times the
    // blocksize; the inputs' samples come first in `buffer`, then the tachos'. `infos` takes one
    // record per used channel, inputs first, and has room for `infoCount`.
    int ReadScan(long scan, unsigned char* buffer, std::int64_t count, long infoCount, CTrcScanInfo* infos);

private:
    CTrcFile* m_file = nullptr;
    CTrcBaseSection* m_root = nullptr;
    CTrcTableManagment m_toc;
    std::unique_ptr<CTrcRecorderSectionHeader> m_header;
    std::unique_ptr<CTrcRecorderInputSection> m_input;
    std::unique_ptr<CTrcRecorderTachoSection> m_tacho;
    int m_isRead = 0;
    bool m_noStatusRecords = false;
    ScanGeometry m_geometry;            // of the last ReadScan
    std::vector<unsigned char> m_scan;  // one scan as it stands in the file
};

}  // namespace nvdl::trc
