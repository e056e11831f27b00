// Reads a units file into a table.
//
// The file is UTF-8 text (a leading byte-order mark is allowed), one entry per line:
//
//   # a comment (a line whose first non-blank character is '#'); blank lines are ignored
//   [Acceleration]  1 -2 0 0 0 0 0 0 0 0        a dimension: its name in brackets, then its ten
//                                                base exponents in the order of IUnitService.h,
//                                                then optionally the word "unknown"
//   m/s²   1                                     a unit of the dimension above: a name without
//   g      9.80665                               blanks, its factor (not 0), optionally its offset
//   °C     1   273.15                            (base value = factor * value + offset)
//
// The first unit of a dimension is its default unit. A dimension's index is its position among
// the dimensions of the file, counted from 0; measurement files keep that index, so a table may
// only grow at its end. Names are kept in the system code page; a character it lacks reads '?'.
// A line that is not one of these (a bad number, a missing or extra field, an exponent outside
// -32768..32767, a unit before the first dimension, a second dimension of the same name together
// with its units, a line longer than 1,000 bytes) is skipped and named in the trace.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "project/units/UnitTable.h"

namespace nvdl::units {

// Files larger than this are refused whole.
inline constexpr std::size_t kMaxUnitsFileBytes = 4u << 20;

struct UnitsFileContent {
    std::shared_ptr<UnitTable> table;
    std::size_t skippedLines = 0;
};

// Parses the text of a units file; `source` names it in traces.
UnitsFileContent parseUnitsText(std::string_view utf8, std::string_view source);

// Reads the file at a UTF-8 path. A null table when the file cannot be read, is larger than
// kMaxUnitsFileBytes or holds no dimension.
UnitsFileContent readUnitsFile(const std::string& utf8Path);

}  // namespace nvdl::units
