// CTrcAcquisition: the acquisition block of a stored setup (sample rate, trigger, block sizes).
// Enumerations hold the values of the setup's own enumerations, unchanged.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct AcquisitionRecord {
    std::int32_t version = 0;
    float SampleFrequency = 0, CenterFrequency = 0;
    std::int32_t TriggerMode = 0, TriggerChannel = 0;
    float TriggerLevel = 0, TriggerDelay = 0;
    std::int32_t Blocksize = 0, GapFree = 0;
    float AutoRangePercent = 0;
    std::int32_t ArmMode = 0, ComputationBlocksize = 0, AcquisitionBlocksize = 0, DigitalAC = 0, DataFormat = 0;
};

class CTrcAcquisition final : public TrcFixedSection<AcquisitionRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2104;

    CTrcAcquisition();

    float GetSampleFrequency() const { return m_block.SampleFrequency; }
    void SetSampleFrequency(float value) { m_block.SampleFrequency = value; }
    float GetCenterFrequency() const { return m_block.CenterFrequency; }
    void SetCenterFrequency(float value) { m_block.CenterFrequency = value; }
    long GetTriggerMode() const { return m_block.TriggerMode; }
    void SetTriggerMode(long value) { m_block.TriggerMode = static_cast<std::int32_t>(value); }
    long GetTriggerChannel() const { return m_block.TriggerChannel; }
    void SetTriggerChannel(long value) { m_block.TriggerChannel = static_cast<std::int32_t>(value); }
    float GetTriggerLevel() const { return m_block.TriggerLevel; }
    void SetTriggerLevel(float value) { m_block.TriggerLevel = value; }
    float GetTriggerDelay() const { return m_block.TriggerDelay; }
    void SetTriggerDelay(float value) { m_block.TriggerDelay = value; }
    long GetBlocksize() const { return m_block.Blocksize; }
    void SetBlocksize(long value) { m_block.Blocksize = static_cast<std::int32_t>(value); }
    int GetGapFree() const { return m_block.GapFree; }
    void SetGapFree(int value) { m_block.GapFree = value; }
    float GetAutoRangePercent() const { return m_block.AutoRangePercent; }
    void SetAutoRangePercent(float value) { m_block.AutoRangePercent = value; }
    long GetArmMode() const { return m_block.ArmMode; }
    void SetArmMode(long value) { m_block.ArmMode = static_cast<std::int32_t>(value); }
    long GetComputationBlocksize() const { return m_block.ComputationBlocksize; }
    void SetComputationBlocksize(long value) { m_block.ComputationBlocksize = static_cast<std::int32_t>(value); }
    long GetAcquisitionBlocksize() const { return m_block.AcquisitionBlocksize; }
    void SetAcquisitionBlocksize(long value) { m_block.AcquisitionBlocksize = static_cast<std::int32_t>(value); }
    int GetDigitalAC() const { return m_block.DigitalAC; }
    void SetDigitalAC(int value) { m_block.DigitalAC = value; }
    long GetDataFormat() const { return m_block.DataFormat; }
    void SetDataFormat(long value) { m_block.DataFormat = static_cast<std::int32_t>(value); }
};

}  // namespace nvdl::trc
