// The flat record in which an outside producer hands over a finished measurement in one piece: a
// head of 1,400 bytes at fixed offsets, then a tail of the parameter text (names and values, each
// ended by a zero byte), the X vector on axes that store one, the Y real vector and, when complex,
// the Y imaginary vector, all of `Size` floats. Data blocks hold such records packed, and the
// multi-input analysis reads and writes them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/RecordLayout.h"

namespace nvdl {
class CMeasurement;
}

namespace nvdl::flat {

inline constexpr std::size_t kHeadSize = 1400;

struct Head {
    std::string name, functionType, response, reference, xAxisType;
    std::int16_t responseChannel = 0, referenceChannel = 0;
    float xStart = 0, xIncrement = 0;
    std::int32_t xDimension = 0, size = 0, complex = 0, yDimension = 0;
    std::string averagingType;
    float averagingParameter = 0;
    std::int16_t averages = 0;
    float overlap = 0;
    std::string windowType;
    float windowParameter = 0;
    double measurementTime = 0;
    std::string testId, functionQualifier, acousticWeighting, environment, userId;
    std::int32_t parameterBytes = 0;
    float order = 0, rpm = 0, z = 0;
    std::int32_t zDimension = 0, parameterCount = 0;
    float bandwidthCorrectionFactor = 0;
    std::int32_t power = 0, overload = 0;
    std::string storageUnitX, storageUnitY;
    double rangeMin = 0, rangeMax = 0, overallMin = 0, overallMax = 0, mean = 0, rms = 0, standardDeviation = 0,
           factor = 0, unitOffset = 0;
    float range = 0;
    std::string parameter1, parameter2;  // "name;value"
    std::int32_t usage = 0, isUsefullData = 0;
    std::string extraName, extraValue, loudnessSones, loudnessPhons;
};

// The head's fields at their offsets: one table for the reader and the writer.
std::span<const record::Field<Head, 1>> headFields();

// The head of a record; false when fewer than kHeadSize bytes are available.
bool decodeHead(const std::uint8_t* bytes, std::size_t available, Head& head);
void encodeHead(const Head& head, std::uint8_t* out);

// Whether records of the head's axis store an X vector: "Arbitrary" and "Octaves", ignoring case.
bool storesX(const Head& head);

// A whole record: the head, the parameter pairs of the tail, and the vectors.
struct Record {
    Head head;
    std::vector<std::pair<std::string, std::string>> parameters;
    std::vector<float> x, re, im;
};

// The bytes of a record: the head's Size, Complex, parameter length and count are those of the
// vectors and pairs given; Size is the length of `re`, and X (when the axis stores it) and the
// imaginary part are written at that length.
std::vector<std::uint8_t> writeRecord(const Record& record);

// Reads a whole record; false when any part of it lies beyond `available` or a length is negative.
// `length` receives the record's length in bytes.
bool readRecord(const std::uint8_t* bytes, std::size_t available, Record& record, std::size_t* length = nullptr);

// A measurement as a flat record: its properties, parameters and the samples it holds.
Record recordOf(CMeasurement& m);

}  // namespace nvdl::flat
