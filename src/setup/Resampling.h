// CResampling: the resampling section of a setup, a record of plain values.
#pragma once

#include "nvdl/IResampling.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct ResamplingFields {
    std::int16_t Active = 0;
    float SampleFrequency = 0.0f;
    std::int32_t Blocksize = 0;
};

class CResampling final : public CSectionFrame<CResampling, IResampling, ResamplingFields> {
public:
    static constexpr const char* kClassName = "CResampling";
    static constexpr const CLSID& kClassId = CLSID_CResampling;
    static const section::Record<ResamplingFields, 1> kRecord;

    static IDispatch* create() { return (new CResampling)->dispatch(); }
    CResampling() : CSectionFrame(IID_IResampling) {}

    NVDL_IMPLEMENTS(NVDL_IRESAMPLING_MEMBERS)
};

}  // namespace nvdl
