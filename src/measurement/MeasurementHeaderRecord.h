// The fixed blocks of the stored measurement record, declared once: what each field holds, its type
// and size, and where each generation keeps it. Every generation's reader, the record writer and the
// block writer go through these tables.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/RecordLayout.h"

namespace nvdl {

// Block 1, the header: descriptive properties as stored (enumerations as their texts, dimensions as
// their index in the units table).
struct MeasurementHeaderRecord {
    std::int32_t tag = 0;
    std::string name, functionType, response, reference, xAxisType, storageUnitX, storageUnitY, averagingType,
        windowType, testId, functionQualifier, acousticWeighting, environment, userId;
    std::int16_t responseChannel = 0, referenceChannel = 0, averages = 0;
    float xStart = 0, xIncrement = 0, averagingParameter = 0, overlap = 0, windowParameter = 0, order = 0, rpm = 0,
          z = 0, bandwidthCorrectionFactor = 0;
    std::int32_t xDimension = 0, size = 0, complex = 0, yDimension = 0, zDimension = 0, parameterTextLength = 0,
                 parameterCount = 0, power = 0, overload = 0, usage = 0;
    double measurementTime = 0;
};

// The layouts of block 1, oldest first: 19960905 (512 bytes); 19970312 (816 bytes, with the texts
// TestId to UserId); 19970805 and 19970819 (816 bytes, with the parameter count); 19990222 (848
// bytes, from here on behind a leading tag); 19991006 (856 bytes); 20021112 on (920 bytes).
enum HeaderLayout : std::size_t {
    kHeader19960905,
    kHeader19970312,
    kHeader19970805,
    kHeader19990222,
    kHeader19991006,
    kHeader20021112,
    kHeaderLayouts
};
inline constexpr std::size_t kHeaderSize[kHeaderLayouts] = {512, 816, 816, 848, 856, 920};

using HeaderField = record::Field<MeasurementHeaderRecord, kHeaderLayouts>;
std::span<const HeaderField> headerFields();

// Block 2 (from 20030819, 656 bytes): paging and location.
struct MeasurementPagingRecord {
    std::int32_t tag = 0, reservedLong = 0, isUncompleted = 0, isUsefullData = 0, currentBlock = 0,
                 blockStartOffset = 0, firstBlockRead = 0, fileSamples = 0, longFileFeature = 0, dataOffset = 0,
                 dataLoaded = 0;
    float compressionFactor = 0;
    std::string locationSubStorage, locationFile, locationStream;
    std::int16_t locationInDataStorage = 0;
};
inline constexpr std::size_t kPagingSize = 656;
using PagingField = record::Field<MeasurementPagingRecord, 1>;
std::span<const PagingField> pagingFields();

// Block 3 (from 20071012, 116 bytes): the revision that wrote the record and the workspace's name.
struct MeasurementOriginRecord {
    std::int32_t tag = 0;
    std::string softwareRevision, workspaceName;
};
inline constexpr std::size_t kOriginSize = 116;
using OriginField = record::Field<MeasurementOriginRecord, 1>;
std::span<const OriginField> originFields();

}  // namespace nvdl
