// CFrontend: one acquisition front end of the installation, a record of plain values. A setup
// does not keep its front ends in its storage; the record serves Copy, Clone and a stream of its
// own.
#pragma once

#include <string>

#include "nvdl/IFrontend.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct FrontendFields {
    std::int32_t Type = 440;
    std::int32_t Model = 0;
    std::string Module;
    std::string LogicalAddress;
};

class CFrontend final : public CSectionFrame<CFrontend, IFrontend, FrontendFields> {
public:
    static constexpr const char* kClassName = "CFrontend";
    static constexpr const CLSID& kClassId = CLSID_CFrontend;
    static const section::Record<FrontendFields, 1> kRecord;

    static IDispatch* create() { return (new CFrontend)->dispatch(); }
    CFrontend() : CSectionFrame(IID_IFrontend) {}

    NVDL_IMPLEMENTS(NVDL_IFRONTEND_MEMBERS)
};

}  // namespace nvdl
