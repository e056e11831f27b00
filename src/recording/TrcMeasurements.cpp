#include "recording/TrcMeasurements.h"

namespace nvdl::trc {

int CTrcMeasurementsSection::Init(CTrcFile* file, CTrcBaseSection* root) {
    Reset(kMeasurementsSection, "MEASUREMENTS_SECTION");
    return Attach(file, root);
}

}  // namespace nvdl::trc
