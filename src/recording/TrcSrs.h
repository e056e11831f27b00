// CTrcSrs: the shock response spectrum block of a stored setup, with its limit table of 128 rows
// of 4 floats.
#pragma once

#include <vector>

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct SrsRecord {
    static constexpr long kRows = 128, kColumns = 4;
    std::int32_t version = 0;
    std::int32_t Activated = 0;
    std::string Name;
    float FreqMin = 0, FreqMax = 0, OctaveSpacing = 0, SDOFDamping = 0;
    std::int32_t DCOffset = 0, Drift = 0;
    std::vector<float> Limits = std::vector<float>(kRows * kColumns);
};

class CTrcSrs final : public TrcFixedSection<SrsRecord> {
public:
    static constexpr std::int32_t kVersion = 20070301;
    static constexpr std::int64_t kBlockSize = 4228;

    CTrcSrs();

    int GetActivated() const { return m_block.Activated; }
    void SetActivated(int value) { m_block.Activated = value; }
    const char* GetName() const { return m_block.Name.c_str(); }
    void SetName(const char* value) { setBlockText(m_block.Name, value, 100); }
    float GetFreqMin() const { return m_block.FreqMin; }
    void SetFreqMin(float value) { m_block.FreqMin = value; }
    float GetFreqMax() const { return m_block.FreqMax; }
    void SetFreqMax(float value) { m_block.FreqMax = value; }
    float GetOctaveSpacing() const { return m_block.OctaveSpacing; }
    void SetOctaveSpacing(float value) { m_block.OctaveSpacing = value; }
    float GetSDOFDamping() const { return m_block.SDOFDamping; }
    void SetSDOFDamping(float value) { m_block.SDOFDamping = value; }
    int GetDCOffset() const { return m_block.DCOffset; }
    void SetDCOffset(int value) { m_block.DCOffset = value; }
    int GetDrift() const { return m_block.Drift; }
    void SetDrift(int value) { m_block.Drift = value; }

    // The whole table, row by row; SetLimits copies 128 x 4 floats.
    const float* GetLimits() const { return m_block.Limits.data(); }
    void SetLimits(const float* limits);
    void GetLimitBounds(long& rows, long& columns) const {
        rows = SrsRecord::kRows;
        columns = SrsRecord::kColumns;
    }
};

}  // namespace nvdl::trc
