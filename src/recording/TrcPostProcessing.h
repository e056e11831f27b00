// CTrcPostProcessing: the replay block of a stored setup: the file replayed and the replayed span.
#pragma once

#include "recording/TrcFixedSection.h"

namespace nvdl::trc {

struct PostProcessingRecord {
    std::int32_t version = 0;
    float ReplayStart = 0, ReplayStop = 0;
    std::string Filename;
    std::int32_t Activated = 0;
};

class CTrcPostProcessing final : public TrcFixedSection<PostProcessingRecord> {
public:
    static constexpr std::int32_t kVersion = kBaseVersion;
    static constexpr std::int64_t kBlockSize = 2364;

    CTrcPostProcessing();

    float GetReplayStart() const { return m_block.ReplayStart; }
    void SetReplayStart(float value) { m_block.ReplayStart = value; }
    float GetReplayStop() const { return m_block.ReplayStop; }
    void SetReplayStop(float value) { m_block.ReplayStop = value; }
    const char* GetFilename() const { return m_block.Filename.c_str(); }
    void SetFilename(const char* value) { setBlockText(m_block.Filename, value, 300); }
    int GetActivated() const { return m_block.Activated; }
    void SetActivated(int value) { m_block.Activated = value; }
};

}  // namespace nvdl::trc
