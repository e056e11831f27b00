// CTrcMeasurementsSection: the computed measurements of a recording, one of the four sections under
// the root of the file. See CTrcMeasurementList for the layout and the lazy reading.
#pragma once

#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurementList.h"

namespace nvdl::trc {

// Built once, in the list's own source file.
extern template class CTrcMeasurementList<CTrcMeasurementSection>;

class CTrcMeasurementsSection final : public CTrcMeasurementList<CTrcMeasurementSection> {
public:
    CTrcMeasurementsSection() { Init(nullptr, nullptr); }

    // A fresh, empty list whose entry is in the root's table.
    int Init(CTrcFile* file, CTrcBaseSection* root);
};

}  // namespace nvdl::trc
