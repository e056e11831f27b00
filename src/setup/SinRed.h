// CSinRed: the sine-reduction section of a setup, a record of plain values with the texts of its
// interval and conditions modes.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/ISinRed.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct SinRedFields {
    std::string Name = "SinRed";
    std::int32_t COLAChannel = 0;
    float NbPulseByRevolution = 1.0f;
    float StartFreq = 20.0f;
    float EndFreq = 2000.0f;
    float StartTime = 0.0f;
    float EndTime = 300.0f;
    std::int32_t StartMode = 550;
    std::int32_t EndMode = 550;
    std::int32_t IntervalMode = 550;
    float FreqStep = 5.0f;
    float TimeInterval = 1.0f;
    std::int32_t ConditionsMode = 560;
    float OrderResolution = 0.2f;
    std::int16_t Activated = 0;
    std::string Harmonics;
    float TriggerLevel = 0.001f;
    float FreqPoints = 1024.0f;
    std::int32_t FreqMode = 0;
    std::int32_t WindowType = 1300;
    float WindowBandWidthLimit = 0.25f;
};

class CSinRed final : public CSectionFrame<CSinRed, ISinRed, SinRedFields> {
public:
    static constexpr const char* kClassName = "CSinRed";
    static constexpr const CLSID& kClassId = CLSID_CSinRed;
    static const section::Record<SinRedFields, 4> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CSinRed)->dispatch(); }
    CSinRed() : CSectionFrame(IID_ISinRed) {}

    NVDL_IMPLEMENTS(NVDL_ISINRED_MEMBERS)
};

}  // namespace nvdl
