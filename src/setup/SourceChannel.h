// CSourceChannel: one signal output of the front end, a record of plain values with its
// enumerations.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/ISourceChannel.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct SourceChannelFields {
    std::string Name = "SourceChannel";
    std::int32_t Usage = 0;
    std::int32_t Mode = 172;
    float Level = 1.0f;
    std::int32_t BurstPercent = 50;
    float RampTime = 0.0f;
    float SineFrequency = 1000.0f;
    float SinePhase = 0.0f;
    float Bandwidth = 0.0f;
    float EndFrequency = 2000.0f;
    std::int32_t SweepType = 277;
    float StartFrequency = 20.0f;
    float StartPhase = 1000.0f;
    std::string Filename;
    float SweepRate = 2.0f;
    std::int32_t SweepTime = 2100;
};

class CSourceChannel final : public CSectionFrame<CSourceChannel, ISourceChannel, SourceChannelFields> {
public:
    static constexpr const char* kClassName = "CSourceChannel";
    static constexpr const CLSID& kClassId = CLSID_CSourceChannel;
    static const section::Record<SourceChannelFields, 3> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CSourceChannel)->dispatch(); }
    CSourceChannel() : CSectionFrame(IID_ISourceChannel) {}

    NVDL_IMPLEMENTS(NVDL_ISOURCECHANNEL_MEMBERS)
};

}  // namespace nvdl
