// The vectors of a stored record longer than one block stay in the stream: the reader has already
// put their position in DataOffset, and only the first block is paged in, from the stream being
// read or from the measurement's backing stream when it has one.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"

namespace nvdl {

HRESULT MeasurementStreamFormat::keepVectorsOnDisk(CMeasurement& m, IStream* stream) {
    return m.InternalReadData(0, m.m_maxBlockSize, stream);
}

}  // namespace nvdl
