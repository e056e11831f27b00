// The vectors of a stored record longer than one block stay in the stream: the reader has already
// put their position in DataOffset, and the first block is to be paged in from `stream` by the
// measurement's block reading.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"

namespace nvdl {

HRESULT MeasurementStreamFormat::keepVectorsOnDisk(CMeasurement& m, IStream* stream) {
    return m.InternalReadData(0, m.m_maxBlockSize, stream);
}

}  // namespace nvdl
