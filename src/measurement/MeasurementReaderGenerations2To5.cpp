// Readers of the stored measurement record of 19960905 (512 bytes), 19970312, 19970805 and 19970819
// (816 bytes each): one fixed block with enumerations as text, then Y real, Y imaginary when
// complex, X on an axis with an X vector (19970819), and parameters as 200-byte records (19970805 on).
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "platform/LittleEndian.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

struct OldGeneration {
    LONG tag;
    std::size_t blockSize;
    const MeasurementHeaderLayout* layout;
    bool parameters;
    bool xVector;
};

const OldGeneration kGenerations[4] = {
    {k19960905, 512, &kLayoutGeneration2, false, false},
    {k19970312, 816, &kLayoutGeneration3, false, false},
    {k19970805, 816, &kLayoutGeneration4, true, false},
    {k19970819, 816, &kLayoutGeneration4, true, true},
};

constexpr std::size_t kLargestBlock = 816;
constexpr int kSizeField = 324;
constexpr int kComplexField = 328;
constexpr int kAxisField = 208;
constexpr int kParameterCountField = 812;

}  // namespace

HRESULT MeasurementStreamFormat::readGenerations2To5(CMeasurement& m, IStream* stream, int generation, LONG helperTag) {
    if (!stream) return E_POINTER;
    if (generation < 2 || generation > 5) return E_FAIL;
    const OldGeneration& g = kGenerations[generation - 2];
    if (helperTag != g.tag) return E_FAIL;
    StreamCursor cursor;
    HRESULT h = cursor.open(stream);
    if (FAILED(h)) return h;
    std::uint8_t block[kLargestBlock];
    if (FAILED(cursor.read(block, g.blockSize))) return E_FAIL;

    const LONG size = le::i32(block + kSizeField);
    const bool imaginary = le::i32(block + kComplexField) != 0;
    const bool xVector = g.xVector && axisHasXVector(storedAxis(block + kAxisField));
    if (!holdsSamples(cursor, size, 1 + (imaginary ? 1 : 0) + (xVector ? 1 : 0))) return E_FAIL;

    takeFormatVersion(m, g.tag);
    if (FAILED(h = applyHeader(m, block, *g.layout, false))) return h;
    if (FAILED(h = setDataOffset(m, cursor.position()))) return h;
    if (FAILED(h = readVectorsIntoMemory(m, cursor, size, imaginary, xVector))) return h;
    m.m_fileSamples = std::max<LONG>(size, 0);
    if (!g.parameters) return S_OK;
    return readParameterRecords(m, stream, cursor, le::i32(block + kParameterCountField));
}

}  // namespace nvdl
