// CTimeFilter: the time-filter section of a setup, a record of plain values.
#pragma once

#include "nvdl/ITimeFilter.h"
#include "setup/SectionFrame.h"

namespace nvdl {

struct TimeFilterFields {
    std::int32_t Type = 0;
    float StartFrequency = 0.0f;
    float StopFrequency = 0.0f;
};

class CTimeFilter final : public CSectionFrame<CTimeFilter, ITimeFilter, TimeFilterFields> {
public:
    static constexpr const char* kClassName = "CTimeFilter";
    static constexpr const CLSID& kClassId = CLSID_CTimeFilter;
    static const section::Record<TimeFilterFields, 1> kRecord;

    static IDispatch* create() { return (new CTimeFilter)->dispatch(); }
    CTimeFilter() : CSectionFrame(IID_ITimeFilter) {}

    NVDL_IMPLEMENTS(NVDL_ITIMEFILTER_MEMBERS)
};

}  // namespace nvdl
