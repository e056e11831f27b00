// CTrcSubMeasurementsSection: the list of a stored measurement's sub-measurements. It stands in its
// measurement's data zone, directly behind the measurement's data, and has the same three zones as
// the list of measurements: main tables, headers, data.
#pragma once

#include "recording/TrcMeasurementList.h"
#include "recording/TrcSubMeasurement.h"

namespace nvdl::trc {

// Built once, in the list's own source file.
extern template class CTrcMeasurementList<CTrcSubMeasurementSection>;

class CTrcMeasurementSection;

class CTrcSubMeasurementsSection final : public CTrcMeasurementList<CTrcSubMeasurementSection> {
public:
    CTrcSubMeasurementsSection() { Init(nullptr, nullptr, 0); }

    // A list under a measurement; with `keep` non-zero only the file and the owner are replaced and
    // the sub-measurements stay.
    int Init(CTrcFile* file, CTrcMeasurementSection* owner, int keep);
};

}  // namespace nvdl::trc
