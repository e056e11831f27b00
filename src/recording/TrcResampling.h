// CTrcResampling: the resampling block of a stored setup.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct ResamplingRecord {
    std::int32_t version = 0;
    std::int32_t Activated = 0;
    float SampleFrequency = 0;
    std::int32_t Blocksize = 0;
};

class CTrcResampling final : public TrcFixedSection<ResamplingRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2064;

    CTrcResampling();

    int GetActivated() const { return m_block.Activated; }
    void SetActivated(int value) { m_block.Activated = value; }
    float GetSampleFrequency() const { return m_block.SampleFrequency; }
    void SetSampleFrequency(float value) { m_block.SampleFrequency = value; }
    long GetBlocksize() const { return m_block.Blocksize; }
    void SetBlocksize(long value) { m_block.Blocksize = static_cast<std::int32_t>(value); }
};

}  // namespace nvdl::trc
