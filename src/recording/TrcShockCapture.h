// CTrcShockCapture: the shock-capture block of a stored setup: the reference pulse and its upper
// and lower limit tables of 128 rows of 3 floats, of which the counts say how many rows are used.
#pragma once

#include <vector>

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct ShockCaptureRecord {
    static constexpr long kRows = 128, kColumns = 3;
    std::int32_t version = 0;
    std::int32_t Activated = 0;
    std::string Name;
    float PulsePeak = 0, PulseDuration = 0;
    std::int32_t UpperLimitsCount = 0, LowerLimitsCount = 0;
    std::vector<float> UpperLimits = std::vector<float>(kRows * kColumns);
    std::vector<float> LowerLimits = std::vector<float>(kRows * kColumns);
    std::int32_t RefType = 0;
    float LowPassExc = 0, LowPassResp = 0;
};

class CTrcShockCapture final : public TrcFixedSection<ShockCaptureRecord> {
public:
    static constexpr std::int32_t kVersion = 20070509;
    static constexpr std::int64_t kBlockSize = 5244;

    CTrcShockCapture();

    int GetActivated() const { return m_block.Activated; }
    void SetActivated(int value) { m_block.Activated = value; }
    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setBlockText(m_block.Name, value, 100); }
    float GetPulsePeak() const { return m_block.PulsePeak; }
    void SetPulsePeak(float value) { m_block.PulsePeak = value; }
    float GetPulseDuration() const { return m_block.PulseDuration; }
    void SetPulseDuration(float value) { m_block.PulseDuration = value; }
    long GetUpperLimitsCount() const { return m_block.UpperLimitsCount; }
    void SetUpperLimitsCount(long value) { m_block.UpperLimitsCount = static_cast<std::int32_t>(value); }
    long GetLowerLimitsCount() const { return m_block.LowerLimitsCount; }
    void SetLowerLimitsCount(long value) { m_block.LowerLimitsCount = static_cast<std::int32_t>(value); }
    long GetRefType() const { return m_block.RefType; }
    void SetRefType(long value) { m_block.RefType = static_cast<std::int32_t>(value); }
    float GetLowPassExc() const { return m_block.LowPassExc; }
    void SetLowPassExc(float value) { m_block.LowPassExc = value; }
    float GetLowPassResp() const { return m_block.LowPassResp; }
    void SetLowPassResp(float value) { m_block.LowPassResp = value; }

    // The whole tables, row by row; the setters copy 128 x 3 floats.
    const float* GetUpperLimits() const { return m_block.UpperLimits.data(); }
    void SetUpperLimits(const float* limits);
    const float* GetLowerLimits() const { return m_block.LowerLimits.data(); }
    void SetLowerLimits(const float* limits);
    void GetUpperLimitBounds(long& rows, long& columns) const { bounds(rows, columns); }
    void GetLowerLimitBounds(long& rows, long& columns) const { bounds(rows, columns); }

private:
    static void bounds(long& rows, long& columns) {
        rows = ShockCaptureRecord::kRows;
        columns = ShockCaptureRecord::kColumns;
    }
};

}  // namespace nvdl::trc
