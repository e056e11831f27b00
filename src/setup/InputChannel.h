// CInputChannel: one physical input of the front end, a record of plain values with its
// enumerations, and the three members over the user-defined FIR weighting file.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/IInputChannel.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct InputChannelFields {
    std::string Name = "InputChannel";
    std::int16_t Recorded = 0;
    std::int32_t Usage = 0;
    std::int32_t Coupling = 100;
    std::int32_t Differential = 122;
    float Range = 10.0f;
    float PreGain = 1.0f;
    std::int32_t Weighting = 105;
    float Offset = 0.0f;
    float AcqScaleFactor = 1.0f;
    std::int32_t Tacho = 0;
    float TachoPulses = 1.0f;
    float TachoLevel = 1.0f;
    std::int32_t TachoMode = 0;
    std::string TachoUnit = "RPM";
};

class CInputChannel final : public CSectionFrame<CInputChannel, IInputChannel, InputChannelFields> {
public:
    static constexpr const char* kClassName = "CInputChannel";
    static constexpr const CLSID& kClassId = CLSID_CInputChannel;
    static const section::Record<InputChannelFields, 2> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CInputChannel)->dispatch(); }
    CInputChannel() : CSectionFrame(IID_IInputChannel) {}

    NVDL_IMPLEMENTS(NVDL_IINPUTCHANNEL_MEMBERS)
};

}  // namespace nvdl
