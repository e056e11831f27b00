// Reader of the stored measurement record from 20021112 on: block 1 (920 bytes), from 20030819
// block 2 with location and paging (656 bytes), from 20071012 block 3 with the writing revision and
// the workspace name (116 bytes); then the vectors and the parameter text.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "platform/DebugTrace.h"
#include "platform/LittleEndian.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

constexpr int kTagField = 0;
constexpr int kSizeField = 328;
constexpr int kComplexField = 332;
constexpr int kAxisField = 212;
constexpr int kParameterTextLengthField = 820;
constexpr int kParameterCountField = 840;

// Block 2.
constexpr int kReservedLong = 4;
constexpr int kIsUncompleted = 8;
constexpr int kCompressionFactor = 12;
constexpr int kIsUsefullData = 16;
constexpr int kCurrentBlock = 20;
constexpr int kBlockStartOffset = 24;
constexpr int kFirstBlockRead = 28;
constexpr int kLocationSubStorage = 32;
constexpr int kLocationFile = 132;
constexpr int kLocationStream = 532;
constexpr int kLocationInDataStorage = 632;
constexpr int kFileSamples = 636;
constexpr int kDataLoaded = 652;

// Block 3.
constexpr int kSoftwareRevision = 4;
constexpr int kWorkspaceName = 14;

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
    const LONG tag = le::i32(block1 + kTagField);
    if (tag < k20021112) {
        DebugTrace(("CMeasurement: a stream of generation " + std::to_string(tag) + " is older than this reader").c_str());
        return E_FAIL;
    }
    const bool hasBlock2 = tag >= k20030819, hasBlock3 = tag >= k20071012;
    if (hasBlock2 && (FAILED(cursor.read(block2, kBlock2Size)) || le::i32(block2 + kTagField) < k20030819)) return E_FAIL;
    if (hasBlock3 && (FAILED(cursor.read(block3, kBlock3Size)) || le::i32(block3 + kTagField) < k20071012)) return E_FAIL;

    // Sizes are checked against the stream before anything is taken over or allocated.
    const LONG storedSize = le::i32(block1 + kSizeField);
    const LONG storedComplex = le::i32(block1 + kComplexField);
    const LONG axis = storedAxis(block1 + kAxisField);
    const bool imaginary = storedComplex == -1;
    const bool xVector = axisHasXVector(axis);
    const LONG fileSamples = hasBlock2 ? le::i32(block2 + kFileSamples) : storedSize;
    if (!holdsSamples(cursor, storedSize, 1 + (imaginary ? 1 : 0) + (xVector ? 1 : 0))) return E_FAIL;
    // Without paging the whole record is held in memory, so it must lie in this stream.
    if (fileSamples < 0 || (!m.m_longFileFeature && !holdsSamples(cursor, fileSamples, 1))) return E_FAIL;

    if (hasBlock2) {
        const std::uint8_t* b = block2;
        m.m_reservedLong = le::i32(b + kReservedLong);
        m.m_isUncompleted = le::i32(b + kIsUncompleted);
        m.m_compressionFactor = le::f32(b + kCompressionFactor);
        m.m_isUsefullData = le::i32(b + kIsUsefullData);
        m.m_currentBlock = le::i32(b + kCurrentBlock);
        m.m_blockStartOffset = le::i32(b + kBlockStartOffset);
        m.m_firstBlockRead = le::i32(b + kFirstBlockRead);
        keepIfNotEmpty(m.m_locationSubStorage, le::text(b + kLocationSubStorage, 100));
        keepIfNotEmpty(m.m_locationFile, le::text(b + kLocationFile, 400));
        keepIfNotEmpty(m.m_locationStream, le::text(b + kLocationStream, 100));
        m.m_locationInDataStorage = le::i16(b + kLocationInDataStorage);
        m.m_dataLoaded = le::i32(b + kDataLoaded);
    }
    m.m_fileSamples = fileSamples;
    if (hasBlock3) {
        keepIfNotEmpty(m.m_softwareRevision, le::text(block3 + kSoftwareRevision, 10));
        keepIfNotEmpty(m.m_workspaceName, le::text(block3 + kWorkspaceName, 100));
    }
    m.m_dataLoaded = 0;
    takeFormatVersion(m, tag);

    if (FAILED(h = applyHeader(m, block1, kLayoutGeneration8, true))) return h;

    if (FAILED(h = setDataOffset(m, cursor.position()))) return h;
    const std::int64_t header = static_cast<std::int64_t>(kBlock1Size) + (hasBlock2 ? kBlock2Size : 0) +
                                (hasBlock3 ? kBlock3Size : 0);
    const std::uint64_t parametersAt = start + static_cast<std::uint64_t>(ComputeParametersOffset(header, storedSize, storedComplex, axis));

    if (FAILED(h = m.put_Size(fileSamples))) return h;
    bool inMemory = true;
    if (m.m_maxBlockSize < fileSamples && storedSize != m.m_maxBlockSize) {
        if (SUCCEEDED(keepVectorsOnDisk(m, stream))) inMemory = false;
        else fallBackToWholeRecord(m, storedSize);
    }
    if (inMemory) {
        if (FAILED(h = cursor.seek(start + static_cast<std::uint64_t>(header)))) return h;
        if (FAILED(h = readVectorsIntoMemory(m, cursor, storedSize, imaginary, xVector))) return h;
    }
    if (m.m_longFileFeature && m.m_size > 0) {
        // The overview copies start as the vectors just read, in the copies' own memory.
        m.m_optimizedYReal.assign(m.m_yReal.begin(), m.m_yReal.end());
        m.m_optimizedYImag.assign(m.m_yImag.begin(), m.m_yImag.end());
        m.m_optimizedX.assign(m.m_x.begin(), m.m_x.end());
    }
    return readParameterText(m, cursor, parametersAt, le::i32(block1 + kParameterTextLengthField),
                             le::i32(block1 + kParameterCountField));
}

}  // namespace nvdl
