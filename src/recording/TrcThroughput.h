// CTrcThroughput: the throughput (recording to disk) block of a stored setup: the file, its length
// in seconds, and the sequencing of recordings as a period and an interval.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct ThroughputRecord {
    std::int32_t version = 0;
    std::string Filename;
    std::int32_t AutoIncrement = 0;
    double Length = 0;
    std::int32_t Activated = 0, SequencingPeriod = 0, SequencingInterval = 0;
};

class CTrcThroughput final : public TrcFixedSection<ThroughputRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2472;

    CTrcThroughput();

    const char* GetFilename() const { return m_block.Filename.c_str(); }
    void SetFilename(const char* value) { setBlockText(m_block.Filename, value, 400); }
    int GetAutoIncrement() const { return m_block.AutoIncrement; }
    void SetAutoIncrement(int value) { m_block.AutoIncrement = value; }
    double GetLength() const { return m_block.Length; }
    void SetLength(double value) { m_block.Length = value; }
    int GetActivated() const { return m_block.Activated; }
    void SetActivated(int value) { m_block.Activated = value; }
    void GetSequencing(long& period, long& interval) const {
        period = m_block.SequencingPeriod;
        interval = m_block.SequencingInterval;
    }
    void SetSequencing(long period, long interval) {
        m_block.SequencingPeriod = static_cast<std::int32_t>(period);
        m_block.SequencingInterval = static_cast<std::int32_t>(interval);
    }
};

}  // namespace nvdl::trc
