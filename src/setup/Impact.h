// CImpact: the impact-test section of a setup, a record holding its Activated flag.
#pragma once

#include "nvdl/IImpact.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct ImpactFields {
    std::int16_t Activated = 0;
};

class CImpact final : public CSectionFrame<CImpact, IImpact, ImpactFields> {
public:
    static constexpr const char* kClassName = "CImpact";
    static constexpr const CLSID& kClassId = CLSID_CImpact;
    static const section::Record<ImpactFields, 1> kRecord;

    static IDispatch* create() { return (new CImpact)->dispatch(); }
    CImpact() : CSectionFrame(IID_IImpact) {}

    NVDL_IMPLEMENTS(NVDL_IIMPACT_MEMBERS)
};

}  // namespace nvdl
