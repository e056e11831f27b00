// CTrcOutputChannel: one source (output) channel of a stored setup: its signal, level, sweep and
// the file it plays. A channel is used when its Usage is not 0.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct OutputChannelRecord {
    std::int32_t version = 0;
    std::int32_t Usage = 0;
    std::string Name;
    std::int32_t Mode = 0;
    float Level = 0;
    std::int32_t BurstPercent = 0;
    float RampTime = 0, SineFrequency = 0, SinePhase = 0, Bandwidth = 0, StartPhase = 0;
    float StartFrequency = 0, EndFrequency = 0;
    std::int32_t SweepType = 0;
    std::string Filename;
    float SweepRate = 0;
    std::int32_t SweepTime = 0;
};

class CTrcOutputChannel final : public TrcFixedSection<OutputChannelRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2136;

    CTrcOutputChannel();

    long GetUsage() const { return m_block.Usage; }
    void SetUsage(long value) { m_block.Usage = static_cast<std::int32_t>(value); }
    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setBlockText(m_block.Name, value, 50); }
    long GetMode() const { return m_block.Mode; }
    void SetMode(long value) { m_block.Mode = static_cast<std::int32_t>(value); }
    float GetLevel() const { return m_block.Level; }
    void SetLevel(float value) { m_block.Level = value; }
    long GetBurstPercent() const { return m_block.BurstPercent; }
    void SetBurstPercent(long value) { m_block.BurstPercent = static_cast<std::int32_t>(value); }
    float GetRampTime() const { return m_block.RampTime; }
    void SetRampTime(float value) { m_block.RampTime = value; }
    float GetSineFrequency() const { return m_block.SineFrequency; }
    void SetSineFrequency(float value) { m_block.SineFrequency = value; }
    float GetSinePhase() const { return m_block.SinePhase; }
    void SetSinePhase(float value) { m_block.SinePhase = value; }
    float GetBandwidth() const { return m_block.Bandwidth; }
    void SetBandwidth(float value) { m_block.Bandwidth = value; }
    float GetStartPhase() const { return m_block.StartPhase; }
    void SetStartPhase(float value) { m_block.StartPhase = value; }
    float GetStartFrequency() const { return m_block.StartFrequency; }
    void SetStartFrequency(float value) { m_block.StartFrequency = value; }
    float GetEndFrequency() const { return m_block.EndFrequency; }
    void SetEndFrequency(float value) { m_block.EndFrequency = value; }
    long GetSweepType() const { return m_block.SweepType; }
    void SetSweepType(long value) { m_block.SweepType = static_cast<std::int32_t>(value); }
    const char* GetFilename() const { return m_block.Filename.c_str(); }
    void SetFilename(const char* value) { setBlockText(m_block.Filename, value, 400); }
    float GetSweepRate() const { return m_block.SweepRate; }
    void SetSweepRate(float value) { m_block.SweepRate = value; }
    long GetSweepTime() const { return m_block.SweepTime; }
    void SetSweepTime(long value) { m_block.SweepTime = static_cast<std::int32_t>(value); }
};

}  // namespace nvdl::trc
