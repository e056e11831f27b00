// The enumeration of modes and their coefficients: directions of a coefficient, the type of a mode
// and the method by which it was found, in one table shared by CMode and CModeCoeff.
#pragma once

#include "frame/EnumTable.h"
#include "nvdl/Variant.h"

namespace nvdl {

inline constexpr LONG kNoDirection = 1500;  // outside the table: a coefficient with no direction
inline constexpr LONG kUnknownModeType = 1600;
inline constexpr LONG kUnknownModeMethod = 1700;

const EnumTable& modeEnumTable();

// The code that a client's value stands for: a number as it is, or, when the value is no number, a
// text of the table. An unknown text is E_INVALIDARG; other conversion failures are passed on.
HRESULT modeCodeOf(const VARIANT& value, LONG& code);

// The text of a code for a clip insert: empty for a code outside the table.
std::string modeCodeText(LONG code);

}  // namespace nvdl
