// CTrcInputChannel: one input channel of a stored setup (usage, range, sensor, calibration and the
// tacho settings of the input). A channel is used when its Usage is not 0. Enumerations hold the
// values of the setup's own enumerations, unchanged.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct InputChannelRecord {
    std::int32_t version = 0;
    std::int32_t Usage = 0, Mode = 0;
    std::string Name;
    std::int32_t Coupling = 0, Differential = 0;
    float Range = 0, PreGain = 0;
    std::int32_t Weighting = 0;
    float Offset = 0;
    std::string SerialNumber, Model;
    float Sensitivity = 0;
    std::string Unit, CalibrationType;
    double CalibrationDate = 0, CalibrationDue = 0;
    std::string Comment;
    std::int32_t Tacho = 0;
    float TachoPulses = 0, TachoLevel = 0;
    std::int32_t TachoMode = 0;
    std::string TachoUnit;
    double DateTime = 0;
};

class CTrcInputChannel final : public TrcFixedSection<InputChannelRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2768;

    CTrcInputChannel();
    int Init();  // as every block, and DateTime becomes the current time

    long GetUsage() const { return m_block.Usage; }
    void SetUsage(long value) { m_block.Usage = static_cast<std::int32_t>(value); }
    long GetMode() const { return m_block.Mode; }
    void SetMode(long value) { m_block.Mode = static_cast<std::int32_t>(value); }
    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setBlockText(m_block.Name, value, 100); }
    long GetCoupling() const { return m_block.Coupling; }
    void SetCoupling(long value) { m_block.Coupling = static_cast<std::int32_t>(value); }
    long GetDifferential() const { return m_block.Differential; }
    void SetDifferential(long value) { m_block.Differential = static_cast<std::int32_t>(value); }
    float GetRange() const { return m_block.Range; }
    void SetRange(float value) { m_block.Range = value; }
    float GetPreGain() const { return m_block.PreGain; }
    void SetPreGain(float value) { m_block.PreGain = value; }
    long GetWeighting() const { return m_block.Weighting; }
    void SetWeighting(long value) { m_block.Weighting = static_cast<std::int32_t>(value); }
    float GetOffset() const { return m_block.Offset; }
    void SetOffset(float value) { m_block.Offset = value; }
    const char* GetSerialNumber() const { return m_block.SerialNumber.c_str(); }
    void SetSerialNumber(const char* value) { setBlockText(m_block.SerialNumber, value, 100); }
    const char* GetModel() const { return m_block.Model.c_str(); }
    void SetModel(const char* value) { setBlockText(m_block.Model, value, 100); }
    float GetSensitivity() const { return m_block.Sensitivity; }
    void SetSensitivity(float value) { m_block.Sensitivity = value; }
    const char* GetUnit() const { return m_block.Unit.c_str(); }
    void SetUnit(const char* value) { setBlockText(m_block.Unit, value, 100); }
    const char* GetCalibrationType() const { return m_block.CalibrationType.c_str(); }
    void SetCalibrationType(const char* value) { setBlockText(m_block.CalibrationType, value, 50); }
    double GetCalibrationDate() const { return m_block.CalibrationDate; }
    void SetCalibrationDate(double value) { m_block.CalibrationDate = value; }
    double GetCalibrationDue() const { return m_block.CalibrationDue; }
    void SetCalibrationDue(double value) { m_block.CalibrationDue = value; }
    const char* GetComment() const { return m_block.Comment.c_str(); }
    void SetComment(const char* value) { setBlockText(m_block.Comment, value, 200); }
    long GetTacho() const { return m_block.Tacho; }
    void SetTacho(long value) { m_block.Tacho = static_cast<std::int32_t>(value); }
    float GetTachoPulses() const { return m_block.TachoPulses; }
    void SetTachoPulses(float value) { m_block.TachoPulses = value; }
    float GetTachoLevel() const { return m_block.TachoLevel; }
    void SetTachoLevel(float value) { m_block.TachoLevel = value; }
    long GetTachoMode() const { return m_block.TachoMode; }
    void SetTachoMode(long value) { m_block.TachoMode = static_cast<std::int32_t>(value); }
    const char* GetTachoUnit() const { return m_block.TachoUnit.c_str(); }
    void SetTachoUnit(const char* value) { setBlockText(m_block.TachoUnit, value, 50); }
    double GetDateTime() const { return m_block.DateTime; }
    void SetDateTime(double value) { m_block.DateTime = value; }
};

}  // namespace nvdl::trc
