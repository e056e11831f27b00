#include "recording/TrcMeasurement.h"

namespace nvdl::trc {

int CTrcMeasurementSection::Init(CTrcFile* file, int keep) {
    if (!keep && !(Reset(kMeasurementSection) && m_data.Init(file, this))) return 0;
    return Attach(file) && m_subs.Init(file, this, keep) ? 1 : 0;
}

}  // namespace nvdl::trc
