// CStrainChannel: a strain-gauge bridge on an input, a record of plain values with its bridge
// configuration table.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/IStrainChannel.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct StrainChannelFields {
    float MinRange = -0.25f;
    float MaxRange = 0.25f;
    std::int32_t Config = 10183;
    std::int32_t VexSource = 10200;
    float VexValue = 2.5f;
    float GageFactor = 0.1f;
    float InitBridgeVoltage = 0.0f;
    float GageResistance = 120.0f;
    float PoissonRatio = 0.3f;
    float LeadWireResistance = 0.0f;
    float Gain = 0.0f;
    float LowPassFilter = 0.0f;
    float Offset = 0.0f;
    double CalibrationDate = 0.0;
    std::string Comment;
    std::string CalibrationType = "EU/V";
};

class CStrainChannel final : public CSectionFrame<CStrainChannel, IStrainChannel, StrainChannelFields> {
public:
    static constexpr const char* kClassName = "CStrainChannel";
    static constexpr const CLSID& kClassId = CLSID_CStrainChannel;
    static const section::Record<StrainChannelFields, 1> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CStrainChannel)->dispatch(); }
    CStrainChannel() : CSectionFrame(IID_IStrainChannel) {}

    NVDL_IMPLEMENTS(NVDL_ISTRAINCHANNEL_MEMBERS)
};

}  // namespace nvdl
