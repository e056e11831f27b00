// CTrcSteppedSine: the stepped-sine block of a stored setup: the frequency steps and their timing.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct SteppedSineRecord {
    std::int32_t version = 0;
    std::int32_t Activated = 0;
    std::string Name;
    float FreqStart = 0, FreqEnd = 0, FreqIncr = 0, Delay = 0, Averaging = 0;
    std::int32_t Type = 0;
};

class CTrcSteppedSine final : public TrcFixedSection<SteppedSineRecord> {
public:
    static constexpr std::int32_t kVersion = 20070330;
    static constexpr std::int64_t kBlockSize = 2180;

    CTrcSteppedSine();

    int GetActivated() const { return m_block.Activated; }
    void SetActivated(int value) { m_block.Activated = value; }
    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setBlockText(m_block.Name, value, 100); }
    float GetFreqStart() const { return m_block.FreqStart; }
    void SetFreqStart(float value) { m_block.FreqStart = value; }
    float GetFreqEnd() const { return m_block.FreqEnd; }
    void SetFreqEnd(float value) { m_block.FreqEnd = value; }
    float GetFreqIncr() const { return m_block.FreqIncr; }
    void SetFreqIncr(float value) { m_block.FreqIncr = value; }
    float GetDelay() const { return m_block.Delay; }
    void SetDelay(float value) { m_block.Delay = value; }
    float GetAveraging() const { return m_block.Averaging; }
    void SetAveraging(float value) { m_block.Averaging = value; }
    long GetType() const { return m_block.Type; }
    void SetType(long value) { m_block.Type = static_cast<std::int32_t>(value); }
};

}  // namespace nvdl::trc
