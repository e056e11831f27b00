// CProcessing: what a setup computes from the data it takes, a record of plain values. Its
// enumeration texts are its own (overload action, extremal class, roving mode) and those of the
// measurement's functions, averagings and windows, which its values name.
#pragma once

#include "frame/EnumTable.h"
#include "nvdl/IProcessing.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct ProcessingFields {
    std::int32_t MeasurementFunction = 1001;
    std::int32_t AverageType = 1201;
    std::int32_t AverageNumber = 100;
    float AverageParameter = 10.0f;
    float OverlapPercent = 0.0f;
    float Offset = 0.0f;
    std::int32_t NbClasses = 101;
    std::int32_t ExtremalClass = 2000;
    std::int32_t ResponseWindowType = 1302;
    float ResponseWindowParameter = 1.0f;
    std::int32_t ExcitationWindowType = 1302;
    float ExcitationWindowParameter = 10.0f;
    std::int32_t OverloadAction = 0;
    std::int32_t OverloadRetryCount = 0;
    std::int32_t DisplayRefreshCount = 0;
    std::int32_t RovingMode = 3000;
    std::int16_t DoubleHitDetectionEnabled = 0;
    std::int16_t DoubleHitAutoCorrect = 0;
    float DoubleHitToleranceFactor = 0.2f;
    std::int16_t CorrectDC = 0;
    std::int32_t ComputeAverageNumber = 100;
    std::int32_t AverageCalculation = 0;
    std::int16_t RealTime = -1;
};

class CProcessing final : public CSectionFrame<CProcessing, IProcessing, ProcessingFields> {
public:
    static constexpr const char* kClassName = "CProcessing";
    static constexpr const CLSID& kClassId = CLSID_CProcessing;
    static const section::Record<ProcessingFields, 2> kRecord;

    static IDispatch* create() { return (new CProcessing)->dispatch(); }
    CProcessing() : CSectionFrame(IID_IProcessing) {}

    NVDL_IMPLEMENTS(NVDL_IPROCESSING_MEMBERS)

    // The class's own rows merged with the measurement's, sorted by code; made on first use.
    static const EnumTable& enums();
};

}  // namespace nvdl
