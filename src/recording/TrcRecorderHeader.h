// CTrcRecorderSectionHeader: the head of a recording's raw data, a 2080-byte block (whether the file
// holds a recording, the sample format, and two values kept for the user) followed by a table of one
// entry and the setup the recording was taken with. The scan stream's whole layout follows from this
// header: the sample format from the block, everything else from the setup.
#pragma once

#include <cstdint>
#include <memory>

#include "recording/TrcBaseSection.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcToc.h"

namespace nvdl::trc {

class CTrcFile;
struct ScanGeometry;

enum eDataSize : std::int32_t {
    kDataSizeInt16 = 0,  // signed 16-bit samples in full-scale units
    kDataSizeFloat = 2,  // 32-bit float samples; any other non-zero value reads as float too
};

struct RecorderHeaderRecord {
    std::int32_t version = 0;
    std::int32_t Enabled = 0;
    std::int32_t DataSize = kDataSizeFloat;
    double AcquisitionTime = 0;
    float ScalingFactor = 0;
};

class CTrcRecorderSectionHeader final : public CTrcBaseSection {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2080;

    CTrcRecorderSectionHeader();
    ~CTrcRecorderSectionHeader() override;

    // Clears the block (Enabled 0, float samples) and makes a fresh setup; 0 if it cannot be made.
    int Init();
    int Uninit();

    long GetEnabled() const { return m_block.Enabled; }
    void SetEnabled(long value) { m_block.Enabled = static_cast<std::int32_t>(value); }
    long GetDataSize() const { return m_block.DataSize; }
    void SetDataSize(long value) { m_block.DataSize = static_cast<std::int32_t>(value); }
    double GetAcquisitionTime() const { return m_block.AcquisitionTime; }
    void SetAcquisitionTime(double value) { m_block.AcquisitionTime = value; }
    float GetScalingFactor() const { return m_block.ScalingFactor; }
    void SetScalingFactor(float value) { m_block.ScalingFactor = value; }
    // Bytes per sample: 2 for 16-bit samples, else 4.
    long GetSampleBytes() const { return m_block.DataSize == kDataSizeInt16 ? 2 : 4; }

    CTrcSetupSection& GetSetup() { return *m_setup; }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // Gives the setup its place behind the block and the table, lays it out and rebuilds the table.
    int UpdateTocSections();

    // `owner` is the recorder section, whose table holds this header's entry.
    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    // Writes again with the owner and file of the last Read or Write.
    int Update();
    int Copy(CTrcRecorderSectionHeader& target) const;

    // The scan stream's layout as this header and its setup tell it now, all but the stream's offset.
    void DescribeScans(ScanGeometry& into);

private:
    RecorderHeaderRecord m_block;
    CTrcTableManagment m_toc;
    std::unique_ptr<CTrcSetupSection> m_setup;
    CTrcBaseSection* m_lastOwner = nullptr;
    CTrcFile* m_lastFile = nullptr;
};

}  // namespace nvdl::trc
