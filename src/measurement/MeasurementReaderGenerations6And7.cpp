// Readers of the stored measurement record of 19990222 (848 bytes) and 19991006 (856 bytes): the
// leading tag and block 1 of today up to the generation's end, without Overload and Usage; the
// vectors; the parameters as text pairs.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

constexpr std::size_t kLargestBlock = kHeaderSize[kHeader19991006];

}  // namespace

HRESULT MeasurementStreamFormat::readGenerations6And7(CMeasurement& m, IStream* stream, int generation, LONG helperTag) {
    if (!stream) return E_POINTER;
    if (helperTag != (generation == 6 ? k19990222 : k19991006)) return E_FAIL;
    const HeaderLayout layout = generation == 6 ? kHeader19990222 : kHeader19991006;
    const std::size_t blockSize = kHeaderSize[layout];
    StreamCursor cursor;
    HRESULT h = cursor.open(stream);
    if (FAILED(h)) return h;
    const std::uint64_t start = cursor.position();
    std::uint8_t block[kLargestBlock];
    if (FAILED(cursor.read(block, blockSize))) return E_FAIL;
    MeasurementHeaderRecord header;
    record::decode(headerFields(), layout, block, header);

    const LONG size = header.size;
    const LONG complex = header.complex;
    const LONG axis = storedAxis(header.xAxisType);
    const bool imaginary = complex != 0, xVector = axisHasXVector(axis);
    if (!holdsSamples(cursor, size, 1 + (imaginary ? 1 : 0) + (xVector ? 1 : 0))) return E_FAIL;

    takeFormatVersion(m, header.tag);
    if (FAILED(h = applyHeader(m, header, layout, false))) return h;
    if (FAILED(h = setDataOffset(m, cursor.position()))) return h;
    const std::uint64_t parametersAt =
        start + static_cast<std::uint64_t>(ComputeParametersOffset(static_cast<std::int64_t>(blockSize), size, complex, axis));

    if (FAILED(h = m.put_Size(size))) return h;
    m.m_dataLoaded = 0;
    bool inMemory = true;
    // From 19991006 a record longer than a block may stay in the stream and be paged.
    if (generation == 7 && m.m_maxBlockSize < size) {
        if (SUCCEEDED(keepVectorsOnDisk(m, stream))) inMemory = false;
        else fallBackToWholeRecord(m, size);
    }
    if (inMemory && FAILED(h = readVectorsIntoMemory(m, cursor, size, imaginary, xVector))) return h;
    if (generation == 7) m.GenerateOptimizedArray();
    return readParameterText(m, cursor, parametersAt, header.parameterTextLength, header.parameterCount);
}

}  // namespace nvdl
