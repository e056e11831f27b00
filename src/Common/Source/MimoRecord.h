// Flat measurement records as the multi-input analysis reads and makes them: finding the value
// vectors of a record, reading one value, and cloning a record with another size.
//
// The analysis carries an X vector in front of the values of every record whose X axis text is
// "Arbitrary", "Octaves" or "Categories" (compared without regard to case), for reading and for
// cloning alike.
#pragma once

#include <complex>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "measurement/FlatRecord.h"

namespace nvdl::mimo {

// An input record: bytes owned by the caller.
using RecordView = std::span<const std::uint8_t>;
// An output record: bytes owned by the analysis.
using RecordBytes = std::vector<std::uint8_t>;

// The axis texts for which a record carries an X vector.
inline constexpr const char* kAxisTexts[] = {"Arbitrary", "Octaves", "Categories"};

bool carriesXVector(const flat::Head& head);

// Where the parts of a record lie. `values` is the head's Size when all the record's vectors lie
// within its bytes, otherwise 0: a damaged record reads as one without values.
struct RecordLayout {
    flat::Head head;
    std::size_t parameterOffset = flat::kHeadSize;
    std::size_t xOffset = 0, realOffset = 0, imagOffset = 0;
    bool hasX = false, complex = false;
    std::int32_t values = 0;
};

// The layout of a record; nothing when its head or its parameter text cannot be read.
std::optional<RecordLayout> locate(RecordView record);

// The value at `index` (0 <= index < layout.values); the imaginary part is 0 for a real record.
std::complex<double> valueAt(RecordView record, const RecordLayout& layout, std::int32_t index);

// A new record from `source`: the head and the parameter text are copied, Size becomes `size`
// (-1: the source's), Complex is set or cleared, the value area is zeroed and the source's values
// (and X values) are copied as far as both sizes reach. Nothing when the source cannot be read or
// `size` is below -1.
std::optional<RecordBytes> CloneRecord(RecordView source, std::int32_t size, bool complex);

// Rewrites the head of a record made by CloneRecord (whose byte length stays right as long as Size
// and Complex are not changed).
void rewriteHead(RecordBytes& record, const flat::Head& head);

// Writes value `index` of a record made by CloneRecord; the imaginary part only when it is complex.
void putValue(RecordBytes& record, const RecordLayout& layout, std::int32_t index, std::complex<double> value);

}  // namespace nvdl::mimo
