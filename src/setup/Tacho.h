// CTacho: the tachometer section of a setup, a record holding its name.
#pragma once

#include <string>

#include "nvdl/ITacho.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct TachoFields {
    std::string Name = "Tacho";
};

class CTacho final : public CSectionFrame<CTacho, ITacho, TachoFields> {
public:
    static constexpr const char* kClassName = "CTacho";
    static constexpr const CLSID& kClassId = CLSID_CTacho;
    static const section::Record<TachoFields, 1> kRecord;

    static IDispatch* create() { return (new CTacho)->dispatch(); }
    CTacho() : CSectionFrame(IID_ITacho) {}

    NVDL_IMPLEMENTS(NVDL_ITACHO_MEMBERS)
};

}  // namespace nvdl
