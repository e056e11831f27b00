// CTrcStrainChannel: the strain-gage settings of one channel of a stored setup (bridge, excitation,
// gage, calibration).
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct StrainChannelRecord {
    std::int32_t version = 0;
    float MinRange = 0, MaxRange = 0;
    std::int32_t Config = 0, VexSource = 0;
    float VexValue = 0, GageFactor = 0, InitBridgeVoltage = 0, GageResistance = 0, PoissonRatio = 0;
    float LeadWireResistance = 0, Gain = 0, LowPassFilter = 0, Offset = 0;
    std::string CalibrationType;
    double CalibrationDate = 0;
    std::string Comment;
};

class CTrcStrainChannel final : public TrcFixedSection<StrainChannelRecord> {
public:
    static constexpr std::int32_t kVersion = 20071205;
    static constexpr std::int64_t kBlockSize = 2368;

    CTrcStrainChannel();

    float GetMinRange() const { return m_block.MinRange; }
    void SetMinRange(float value) { m_block.MinRange = value; }
    float GetMaxRange() const { return m_block.MaxRange; }
    void SetMaxRange(float value) { m_block.MaxRange = value; }
    long GetConfig() const { return m_block.Config; }
    void SetConfig(long value) { m_block.Config = static_cast<std::int32_t>(value); }
    long GetVexSource() const { return m_block.VexSource; }
    void SetVexSource(long value) { m_block.VexSource = static_cast<std::int32_t>(value); }
    float GetVexValue() const { return m_block.VexValue; }
    void SetVexValue(float value) { m_block.VexValue = value; }
    float GetGageFactor() const { return m_block.GageFactor; }
    void SetGageFactor(float value) { m_block.GageFactor = value; }
    float GetInitBridgeVoltage() const { return m_block.InitBridgeVoltage; }
    void SetInitBridgeVoltage(float value) { m_block.InitBridgeVoltage = value; }
    float GetGageResistance() const { return m_block.GageResistance; }
    void SetGageResistance(float value) { m_block.GageResistance = value; }
    float GetPoissonRatio() const { return m_block.PoissonRatio; }
    void SetPoissonRatio(float value) { m_block.PoissonRatio = value; }
    float GetLeadWireResistance() const { return m_block.LeadWireResistance; }
    void SetLeadWireResistance(float value) { m_block.LeadWireResistance = value; }
    float GetGain() const { return m_block.Gain; }
    void SetGain(float value) { m_block.Gain = value; }
    float GetLowPassFilter() const { return m_block.LowPassFilter; }
    void SetLowPassFilter(float value) { m_block.LowPassFilter = value; }
    float GetOffset() const { return m_block.Offset; }
    void SetOffset(float value) { m_block.Offset = value; }
    const char* GetCalibrationType() const { return m_block.CalibrationType.c_str(); }
    void SetCalibrationType(const char* value) { setBlockText(m_block.CalibrationType, value, 50); }
    double GetCalibrationDate() const { return m_block.CalibrationDate; }
    void SetCalibrationDate(double value) { m_block.CalibrationDate = value; }
    const char* GetComment() const { return m_block.Comment.c_str(); }
    void SetComment(const char* value) { setBlockText(m_block.Comment, value, 200); }
};

}  // namespace nvdl::trc
