// CTrcSaving: the saving block of a stored setup, followed by a table of two entries and the two
// parameter lists of the functions saved: MeasFunctions, then TimeHistoryFunctions. A setup from
// before the time-history list has a table of one entry and reads with that list empty.
#pragma once

#include "recording/TrcFixedSection.h"
#include "recording/TrcParameters.h"

namespace nvdl::trc {

struct SavingRecord {
    std::int32_t version = 0;
    std::int32_t SaveToDisk = 0, EveryAverages = 0, DelayTime = 0, CreateTimeHistory = 0;
    std::int32_t SaveTimeHistoryToDisk = 0, SaveTimeHistoryToWorkspace = 0;
    std::int32_t SaveBlockDataToWorkspace = 0, SaveBlockDataToDisk = 0;
    float Percentile = 0;
};

class CTrcSaving final : public TrcFixedSection<SavingRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2064;
    static constexpr long kListCount = 2;

    CTrcSaving();
    int Init();  // the block, the table and both lists emptied

    int GetSaveToDisk() const { return m_block.SaveToDisk; }
    void SetSaveToDisk(int value) { m_block.SaveToDisk = value; }
    int GetEveryAverages() const { return m_block.EveryAverages; }
    void SetEveryAverages(int value) { m_block.EveryAverages = value; }
    long GetDelayTime() const { return m_block.DelayTime; }
    void SetDelayTime(long value) { m_block.DelayTime = static_cast<std::int32_t>(value); }
    int GetCreateTimeHistory() const { return m_block.CreateTimeHistory; }
    void SetCreateTimeHistory(int value) { m_block.CreateTimeHistory = value; }
    int GetSaveTimeHistoryToDisk() const { return m_block.SaveTimeHistoryToDisk; }
    void SetSaveTimeHistoryToDisk(int value) { m_block.SaveTimeHistoryToDisk = value; }
    int GetSaveTimeHistoryToWorkspace() const { return m_block.SaveTimeHistoryToWorkspace; }
    void SetSaveTimeHistoryToWorkspace(int value) { m_block.SaveTimeHistoryToWorkspace = value; }
    int GetSaveBlockDataToWorkspace() const { return m_block.SaveBlockDataToWorkspace; }
    void SetSaveBlockDataToWorkspace(int value) { m_block.SaveBlockDataToWorkspace = value; }
    int GetSaveBlockDataToDisk() const { return m_block.SaveBlockDataToDisk; }
    void SetSaveBlockDataToDisk(int value) { m_block.SaveBlockDataToDisk = value; }
    float GetPercentile() const { return m_block.Percentile; }
    void SetPercentile(float value) { m_block.Percentile = value; }

    CTrcParametersSection& GetMeasFunctions() { return m_measFunctions; }
    CTrcParametersSection& GetTimeHistoryFunctions() { return m_timeHistoryFunctions; }

    std::int64_t GetSectionSize() override;
    CTrcTableManagment* GetToc() override { return &m_toc; }
    // Places both lists behind the block and the table, and rebuilds the table.
    int UpdateTocSections();

    int Write(CTrcBaseSection* owner, CTrcFile* file);
    int Read(CTrcBaseSection* owner, CTrcFile* file);
    int Copy(CTrcSaving& target) const;

private:
    CTrcTableManagment m_toc;
    CTrcParametersSection m_measFunctions, m_timeHistoryFunctions;
};

}  // namespace nvdl::trc
