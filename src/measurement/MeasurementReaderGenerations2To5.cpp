// Readers of the stored measurement record of 19960905 (512 bytes), 19970312, 19970805 and 19970819
// (816 bytes each): one fixed block with enumerations as text, then Y real, Y imaginary when
// complex, X on an axis with an X vector (19970819), and parameters as 200-byte records (19970805 on).
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

struct OldGeneration {
    LONG tag;
    HeaderLayout layout;
    bool parameters;
    bool xVector;
};

const OldGeneration kGenerations[4] = {
    {k19960905, kHeader19960905, false, false},
    {k19970312, kHeader19970312, false, false},
    {k19970805, kHeader19970805, true, false},
    {k19970819, kHeader19970805, true, true},
};

constexpr std::size_t kLargestBlock = 816;

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
    if (FAILED(cursor.read(block, kHeaderSize[g.layout]))) return E_FAIL;
    MeasurementHeaderRecord header;
    record::decode(headerFields(), g.layout, block, header);

    const LONG size = header.size;
    const bool imaginary = header.complex != 0;
    const bool xVector = g.xVector && axisHasXVector(storedAxis(header.xAxisType));
    if (!holdsSamples(cursor, size, 1 + (imaginary ? 1 : 0) + (xVector ? 1 : 0))) return E_FAIL;

    takeFormatVersion(m, g.tag);
    if (FAILED(h = applyHeader(m, header, g.layout, false))) return h;
    if (FAILED(h = setDataOffset(m, cursor.position()))) return h;
    if (FAILED(h = readVectorsIntoMemory(m, cursor, size, imaginary, xVector))) return h;
    m.m_fileSamples = std::max<LONG>(size, 0);
    if (!g.parameters) return S_OK;
    return readParameterRecords(m, stream, cursor, header.parameterCount);
}

}  // namespace nvdl
