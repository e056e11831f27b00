// CSteppedSine: the stepped-sine section of a setup, a record of plain values. It has no texts for
// its codes: Translate answers an empty text for every one.
#pragma once

#include <string>

#include "frame/EnumTable.h"
#include "nvdl/ISteppedSine.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct SteppedSineFields {
    std::string Name = "SteppedSine";
    float FreqStart = 10.0f;
    float FreqEnd = 500.0f;
    float FreqIncr = 5.0f;
    float Delay = 1.0f;
    float Averaging = 4.0f;
    std::int32_t Type = 0;
    std::int16_t Activated = 0;
};

class CSteppedSine final : public CSectionFrame<CSteppedSine, ISteppedSine, SteppedSineFields> {
public:
    static constexpr const char* kClassName = "CSteppedSine";
    static constexpr const CLSID& kClassId = CLSID_CSteppedSine;
    static const section::Record<SteppedSineFields, 1> kRecord;
    static const EnumTable kEnums;

    static IDispatch* create() { return (new CSteppedSine)->dispatch(); }
    CSteppedSine() : CSectionFrame(IID_ISteppedSine) {}

    NVDL_IMPLEMENTS(NVDL_ISTEPPEDSINE_MEMBERS)
};

}  // namespace nvdl
