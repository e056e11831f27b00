#include "recording/TrcSubMeasurements.h"

#include "recording/TrcMeasurement.h"

namespace nvdl::trc {

int CTrcSubMeasurementsSection::Init(CTrcFile* file, CTrcMeasurementSection* owner, int keep) {
    if (!keep) Reset(kSubMeasurementsSection, "SUBMEASUREMENTS_SECTION");
    return Attach(file, owner);
}

}  // namespace nvdl::trc
