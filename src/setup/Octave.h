// COctave: the octave-analysis section of a setup, a record of plain values, and the block size
// that an octave analysis of a given duration needs on a given setup.
#pragma once

#include "nvdl/IOctave.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct OctaveFields {
    std::int32_t Processing = 0;
    float StartFrequency = 20.0f;
    float StopFrequency = 10000.0f;
    float IntegrationTime = 0.1f;
    std::int32_t Weighting = 105;
    std::int32_t SaveInterval = 0;
    float ComputeInterval = 0.1f;
    std::int32_t TimeWeighting = 0;
    std::int32_t PeakHold = 0;
};

class COctave final : public CSectionFrame<COctave, IOctave, OctaveFields> {
public:
    static constexpr const char* kClassName = "COctave";
    static constexpr const CLSID& kClassId = CLSID_COctave;
    static const section::Record<OctaveFields, 3> kRecord;

    static IDispatch* create() { return (new COctave)->dispatch(); }
    COctave() : CSectionFrame(IID_IOctave) {}

    NVDL_IMPLEMENTS(NVDL_IOCTAVE_MEMBERS)

private:
    // The smallest block that holds the octave span of the setup's octave section: 2 to the power
    // of its octave count less one; 0 when the section cannot be read or its span is not usable.
    static LONG GetMinOctaveBlocksize(IDispatch* setup);
};

}  // namespace nvdl
