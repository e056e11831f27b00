// CTrcOctave: the octave-analysis block of a stored setup. Blocks from before the float layout hold
// the start and stop frequencies as whole numbers in the same four bytes; a block is kept in the
// layout it was read in (its version says which), so the frequency accessors look at the version.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct OctaveRecord {
    std::int32_t version = 0;
    std::int32_t Processing = 0;
    std::int32_t StartFrequency = 0, StopFrequency = 0;  // the bits of a float, or a whole number in old blocks
    float IntegrationTime = 0;
    std::int32_t Weighting = 0;
    float ComputeInterval = 0;
    std::int32_t SaveInterval = 0, TimeWeighting = 0, PeakHold = 0;
};

class CTrcOctave final : public TrcFixedSection<OctaveRecord> {
public:
    static constexpr std::int32_t kVersionV1 = kBaseVersion;  // whole-number frequencies
    static constexpr std::int32_t kVersionV2 = 20080319;      // float frequencies
    static constexpr std::int64_t kBlockSize = 2072;

    CTrcOctave();

    static long GetVersionNumberV1() { return kVersionV1; }
    static long GetVersionNumberV2() { return kVersionV2; }

    long GetProcessing() const { return m_block.Processing; }
    void SetProcessing(long value) { m_block.Processing = static_cast<std::int32_t>(value); }
    float GetStartFrequency() const { return frequency(m_block.StartFrequency); }
    void SetStartFrequency(float value) { m_block.StartFrequency = frequencyBits(value); }
    float GetStopFrequency() const { return frequency(m_block.StopFrequency); }
    void SetStopFrequency(float value) { m_block.StopFrequency = frequencyBits(value); }
    float GetIntegrationTime() const { return m_block.IntegrationTime; }
    void SetIntegrationTime(float value) { m_block.IntegrationTime = value; }
    long GetWeighting() const { return m_block.Weighting; }
    void SetWeighting(long value) { m_block.Weighting = static_cast<std::int32_t>(value); }
    float GetComputeInterval() const { return m_block.ComputeInterval; }
    void SetComputeInterval(float value) { m_block.ComputeInterval = value; }
    long GetSaveInterval() const { return m_block.SaveInterval; }
    void SetSaveInterval(long value) { m_block.SaveInterval = static_cast<std::int32_t>(value); }
    long GetTimeWeighting() const { return m_block.TimeWeighting; }
    void SetTimeWeighting(long value) { m_block.TimeWeighting = static_cast<std::int32_t>(value); }
    long GetPeakHold() const { return m_block.PeakHold; }
    void SetPeakHold(long value) { m_block.PeakHold = static_cast<std::int32_t>(value); }

private:
    // The four bytes of a frequency read and written in the layout of the block's version.
    float frequency(std::int32_t bits) const;
    std::int32_t frequencyBits(float value) const;
};

}  // namespace nvdl::trc
