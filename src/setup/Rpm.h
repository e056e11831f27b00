// CRpm: the order-tracking section of a setup, a record of plain values with its enumerations.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/IRpm.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct RpmFields {
    std::string Name = "Rpm";
    std::int32_t RPMChannel = 0;
    float NbPulseByRevolution = 2.0f;
    float StartRPM = 1000.0f;
    float EndRPM = 6000.0f;
    float StartTime = 0.0f;
    float EndTime = 300.0f;
    std::int32_t StartMode = 550;
    std::int32_t EndMode = 550;
    std::int32_t IntervalMode = 550;
    float RPMIncrement = 20.0f;
    float TimeInterval = 1.0f;
    std::int32_t ConditionsMode = 560;
    std::int16_t RPMRangeEnable = 0;
    float RPMRange = 10.0f;
    std::int32_t SaveRPMAction = 572;
    float OrderResolution = 0.4f;
    std::int16_t Activated = 0;
    std::string Orders;
    std::int32_t TriggerChannel = 0;
    std::int32_t TriggerMode = 409;
    float TriggerLevel = 1.0f;
    std::int32_t TriggerSignal = 580;
    float TriggerDelay = 0.0f;
    std::int32_t RotateMethod = 0;
};

class CRpm final : public CSectionFrame<CRpm, IRpm, RpmFields> {
public:
    static constexpr const char* kClassName = "CRpm";
    static constexpr const CLSID& kClassId = CLSID_CRpm;
    static const section::Record<RpmFields, 3> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CRpm)->dispatch(); }
    CRpm() : CSectionFrame(IID_IRpm) {}

    NVDL_IMPLEMENTS(NVDL_IRPM_MEMBERS)
};

}  // namespace nvdl
