// CThroughput as a section of a setup: the settings of a recording to disk, a record of plain values.
#pragma once

#include <string>

#include "nvdl/IThroughput.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct ThroughputFields {
    std::string Filename;
    std::int16_t AutoIncrement = 0;
    double Length = 0.0;
    std::int16_t Activated = 0;
    std::int32_t Period = 0;
    std::int32_t Interval = 0;
    std::int32_t Location = 0;
};

class CThroughput final : public CSectionFrame<CThroughput, IThroughput, ThroughputFields> {
public:
    static constexpr const char* kClassName = "CThroughput";
    static constexpr const CLSID& kClassId = CLSID_CThroughput;
    static const section::Record<ThroughputFields, 4> kRecord;

    static IDispatch* create() { return (new CThroughput)->dispatch(); }
    CThroughput() : CSectionFrame(IID_IThroughput) {}

    NVDL_IMPLEMENTS(NVDL_ITHROUGHPUT_MEMBERS)
};

}  // namespace nvdl
