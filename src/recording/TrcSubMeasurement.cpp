#include "recording/TrcSubMeasurement.h"

namespace nvdl::trc {

int CTrcSubMeasurementSection::Init(CTrcFile* file, int keep) {
    if (!keep && !(Reset(kSubMeasurementSection) && m_data.Init(file, this))) return 0;
    return Attach(file);
}

}  // namespace nvdl::trc
