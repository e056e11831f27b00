// The stored measurement record: the writer of the newest generation, the readers of every
// generation, and what they share. Internal to the measurement's persistence; a friend of
// CMeasurement for the paging and location fields that have no property.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "measurement/MeasurementHeaderRecord.h"
#include "measurement/MeasurementPersistHelpers.h"
#include "nvdl/Dispatch.h"
#include "nvdl/Stream.h"

namespace nvdl {

// Sequential reading with the stream's length in view: every read and every size taken from the
// stream is checked against what the stream holds before anything is allocated.
class StreamCursor {
public:
    // Takes the present position and the length (Stat) of the stream.
    HRESULT open(IStream* stream);

    std::uint64_t position() const { return m_position; }
    std::uint64_t length() const { return m_length; }
    std::uint64_t remaining() const { return m_length > m_position ? m_length - m_position : 0; }
    bool holds(std::uint64_t bytes) const { return bytes <= remaining(); }

    // Exactly `size` bytes, else E_FAIL.
    HRESULT read(std::uint8_t* into, std::size_t size);
    // `count` little-endian floats; E_FAIL when the stream does not hold them.
    HRESULT readFloats(std::size_t count, std::vector<float>& into);
    // Up to `size` bytes, as many as the stream holds.
    HRESULT readAtMost(std::size_t size, std::vector<std::uint8_t>& into);
    HRESULT seek(std::uint64_t position);

private:
    IStream* m_stream = nullptr;
    std::uint64_t m_position = 0;
    std::uint64_t m_length = 0;
};

// Byte offset of the parameter text in a record whose fixed blocks are `header` bytes long: 0 for a
// negative size or no header, else the header and the vectors stored behind it.
std::int64_t ComputeParametersOffset(std::int64_t header, LONG size, LONG complex, LONG axis);

struct MeasurementStreamFormat {
    static constexpr std::size_t kBlock1Size = kHeaderSize[kHeader20021112];
    static constexpr std::size_t kBlock2Size = kPagingSize;
    static constexpr std::size_t kBlock3Size = kOriginSize;
    static constexpr std::size_t kParameterTextLimit = 9999;

    // Writes the record of generation 20071012.
    static HRESULT write(CMeasurement& m, IStream* stream);
    // The paging and location block of a measurement as it stands, without the tag and the counts
    // that the writer of the block decides.
    static MeasurementPagingRecord pagingRecord(const CMeasurement& m);

    static HRESULT readGeneration1(CMeasurement& m, IStream* stream, LONG helperTag);
    static HRESULT readGenerations2To5(CMeasurement& m, IStream* stream, int generation, LONG helperTag);
    static HRESULT readGenerations6And7(CMeasurement& m, IStream* stream, int generation, LONG helperTag);
    static HRESULT readGeneration8(CMeasurement& m, IStream* stream, LONG helperTag);

    // --- Shared by the readers ---

    // The header fields of a generation 2 or later block, through the setters. With
    // `strictDimensions` a dimension index that the unit table does not have gives E_FAIL; without,
    // it leaves no dimension.
    static HRESULT applyHeader(CMeasurement& m, const MeasurementHeaderRecord& header, HeaderLayout layout,
                               bool strictDimensions);
    // A dimension by its index in the units table. Without a unit service no dimension is set and
    // the index is not checked.
    static HRESULT setDimensionByIndex(IDispatch*& slot, LONG index, bool strict);
    // The Y dimension by index; the name found is also the text handed to YArray with the vectors.
    static HRESULT setYDimensionByIndex(CMeasurement& m, LONG index, bool strict);
    // Hands vectors read from a stream to the measurement: Y through YArray, X (when given)
    // through put_XArray. The stored StorageUnitY stands. Sets DataLoaded.
    static HRESULT feedVectors(CMeasurement& m, std::vector<float>& re, const std::vector<float>* im,
                               const std::vector<float>* x);
    // Reads `size` samples of Y real, of Y imaginary with `imaginary` and of X with `xVector` from
    // the cursor, and feeds them.
    static HRESULT readVectorsIntoMemory(CMeasurement& m, StreamCursor& cursor, LONG size, bool imaginary, bool xVector);
    // Vectors stay on disk: a record longer than one block is not read into memory; its position is
    // already in DataOffset and the first block is paged in from the stream. A failure makes the
    // reader fall back to the whole record in memory.
    static HRESULT keepVectorsOnDisk(CMeasurement& m, IStream* stream);
    // The whole record in memory after a failed page-in: a plain, complete picture of `size` samples.
    static void fallBackToWholeRecord(CMeasurement& m, LONG size);
    // Parameters as text pairs ("name\0value\0" each) at `offset`, `length` bytes, `count` pairs.
    static HRESULT readParameterText(CMeasurement& m, StreamCursor& cursor, std::uint64_t offset, LONG length, LONG count);
    // Parameters as 200-byte records, read by the parameter's own stream persistence.
    static HRESULT readParameterRecords(CMeasurement& m, IStream* stream, StreamCursor& cursor, LONG count);
    // S_FALSE, and nothing added, for a blank name.
    static HRESULT addParameter(CMeasurement& m, const std::string& name, const std::string& value);
    static void takeFormatVersion(CMeasurement& m, LONG tag);
    // The data offset of a reader: the cursor's position, which must fit the field.
    static HRESULT setDataOffset(CMeasurement& m, std::uint64_t position);
    // The code of a stored X axis text; -1 for a text the table does not have.
    static LONG storedAxis(const std::string& text);
    // Whether a stream holds `size` samples for each vector stored (1 to 3) behind the cursor.
    static bool holdsSamples(const StreamCursor& cursor, LONG size, int vectors);
};

}  // namespace nvdl
