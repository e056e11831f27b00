// Reader of the stored measurement record from 20021112 on: block 1 (920 bytes), from 20030819
// block 2 with location and paging (656 bytes), from 20071012 block 3 with the writing revision and
// the workspace name (116 bytes); then the vectors and the parameter text.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "platform/DebugTrace.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

void keepIfNotEmpty(std::string& field, std::string text) {
    if (!text.empty()) field = std::move(text);
}

}  // namespace

HRESULT MeasurementStreamFormat::readGeneration8(CMeasurement& m, IStream* stream, LONG helperTag) {
    if (!stream) return E_POINTER;
    if (helperTag != k20021112) return E_FAIL;
    StreamCursor cursor;
    HRESULT h = cursor.open(stream);
    if (FAILED(h)) return h;
    const std::uint64_t start = cursor.position();

    std::uint8_t block1[kBlock1Size], block2[kBlock2Size], block3[kBlock3Size];
    if (FAILED(cursor.read(block1, kBlock1Size))) return E_FAIL;
    MeasurementHeaderRecord header;
    record::decode(headerFields(), kHeader20021112, block1, header);
    const LONG tag = header.tag;
    if (tag < k20021112) {
        DebugTrace(("CMeasurement: a stream of generation " + std::to_string(tag) + " is older than this reader").c_str());
        return E_FAIL;
    }
    const bool hasBlock2 = tag >= k20030819, hasBlock3 = tag >= k20071012;
    MeasurementPagingRecord paging;
    MeasurementOriginRecord origin;
    if (hasBlock2) {
        if (FAILED(cursor.read(block2, kBlock2Size))) return E_FAIL;
        record::decode(pagingFields(), 0, block2, paging);
        if (paging.tag < k20030819) return E_FAIL;
    }
    if (hasBlock3) {
        if (FAILED(cursor.read(block3, kBlock3Size))) return E_FAIL;
        record::decode(originFields(), 0, block3, origin);
        if (origin.tag < k20071012) return E_FAIL;
    }

    // Sizes are checked against the stream before anything is taken over or allocated.
    const LONG storedSize = header.size;
    const LONG storedComplex = header.complex;
    const LONG axis = storedAxis(header.xAxisType);
    const bool imaginary = storedComplex == -1;
    const bool xVector = axisHasXVector(axis);
    const LONG fileSamples = hasBlock2 ? paging.fileSamples : storedSize;
    if (!holdsSamples(cursor, storedSize, 1 + (imaginary ? 1 : 0) + (xVector ? 1 : 0))) return E_FAIL;
    // Without paging the whole record is held in memory, so it must lie in this stream.
    if (fileSamples < 0 || (!m.m_longFileFeature && !holdsSamples(cursor, fileSamples, 1))) return E_FAIL;

    if (hasBlock2) {
        m.m_reservedLong = paging.reservedLong;
        m.m_isUncompleted = paging.isUncompleted;
        m.m_compressionFactor = paging.compressionFactor;
        m.m_isUsefullData = paging.isUsefullData;
        m.m_currentBlock = paging.currentBlock;
        m.m_blockStartOffset = paging.blockStartOffset;
        m.m_firstBlockRead = paging.firstBlockRead;
        // A stored file means the samples lie in another backing store, which the stored strings
        // and flag name. Without one the samples lie in this stream, and the place the file's
        // reader gave (a project file's data storage included) stays: stored names of an earlier
        // place would page from a stream that is no longer there.
        if (!paging.locationFile.empty()) {
            keepIfNotEmpty(m.m_locationSubStorage, paging.locationSubStorage);
            m.m_locationFile = paging.locationFile;
            keepIfNotEmpty(m.m_locationStream, paging.locationStream);
            m.m_locationInDataStorage = paging.locationInDataStorage;
        }
        m.m_dataLoaded = paging.dataLoaded;
    }
    m.m_fileSamples = fileSamples;
    if (hasBlock3) {
        keepIfNotEmpty(m.m_softwareRevision, origin.softwareRevision);
        keepIfNotEmpty(m.m_workspaceName, origin.workspaceName);
    }
    m.m_dataLoaded = 0;
    takeFormatVersion(m, tag);

    if (FAILED(h = applyHeader(m, header, kHeader20021112, true))) return h;

    if (FAILED(h = setDataOffset(m, cursor.position()))) return h;
    const std::int64_t blocks = static_cast<std::int64_t>(kBlock1Size) + (hasBlock2 ? kBlock2Size : 0) +
                                (hasBlock3 ? kBlock3Size : 0);
    const std::uint64_t parametersAt = start + static_cast<std::uint64_t>(ComputeParametersOffset(blocks, storedSize, storedComplex, axis));

    if (FAILED(h = m.put_Size(fileSamples))) return h;
    bool inMemory = true;
    if (m.m_maxBlockSize < fileSamples && storedSize != m.m_maxBlockSize) {
        if (SUCCEEDED(keepVectorsOnDisk(m, stream))) inMemory = false;
        else fallBackToWholeRecord(m, storedSize);
    }
    if (inMemory) {
        if (FAILED(h = cursor.seek(start + static_cast<std::uint64_t>(blocks)))) return h;
        if (FAILED(h = readVectorsIntoMemory(m, cursor, storedSize, imaginary, xVector))) return h;
    }
    if (m.m_longFileFeature && m.m_size > 0) {
        // The overview copies start as the vectors just read, in the copies' own memory.
        m.m_optimizedYReal.assign(m.m_yReal.begin(), m.m_yReal.end());
        m.m_optimizedYImag.assign(m.m_yImag.begin(), m.m_yImag.end());
        m.m_optimizedX.assign(m.m_x.begin(), m.m_x.end());
    }
    return readParameterText(m, cursor, parametersAt, header.parameterTextLength, header.parameterCount);
}

}  // namespace nvdl
