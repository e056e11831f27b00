// Readers of the stored measurement record of 19990222 (848 bytes) and 19991006 (856 bytes): the
// leading tag and block 1 of today up to the generation's end, without Overload and Usage; the
// vectors; the parameters as text pairs.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "platform/LittleEndian.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

constexpr std::size_t kBlockSize6 = 848;
constexpr std::size_t kBlockSize7 = 856;
constexpr int kTagField = 0;
constexpr int kSizeField = 328;
constexpr int kComplexField = 332;
constexpr int kAxisField = 212;
constexpr int kParameterTextLengthField = 820;
constexpr int kParameterCountField = 840;

}  // namespace

HRESULT MeasurementStreamFormat::readGenerations6And7(CMeasurement& m, IStream* stream, int generation, LONG helperTag) {
    if (!stream) return E_POINTER;
    if (helperTag != (generation == 6 ? k19990222 : k19991006)) return E_FAIL;
    const std::size_t blockSize = generation == 6 ? kBlockSize6 : kBlockSize7;
    StreamCursor cursor;
    HRESULT h = cursor.open(stream);
    if (FAILED(h)) return h;
    const std::uint64_t start = cursor.position();
    std::uint8_t block[kBlockSize7];
    if (FAILED(cursor.read(block, blockSize))) return E_FAIL;

    const LONG size = le::i32(block + kSizeField);
    const LONG complex = le::i32(block + kComplexField);
    const LONG axis = storedAxis(block + kAxisField);
    const bool imaginary = complex != 0, xVector = axisHasXVector(axis);
    if (!holdsSamples(cursor, size, 1 + (imaginary ? 1 : 0) + (xVector ? 1 : 0))) return E_FAIL;

    takeFormatVersion(m, le::i32(block + kTagField));
    if (FAILED(h = applyHeader(m, block, generation == 6 ? kLayoutGeneration6 : kLayoutGeneration7, false))) return h;
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
    return readParameterText(m, cursor, parametersAt, le::i32(block + kParameterTextLengthField),
                             le::i32(block + kParameterCountField));
}

}  // namespace nvdl
