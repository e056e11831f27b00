// What the geometry classes share: the enumeration of coordinate systems and directions, the
// coordinate type taken as a code or as its text, and Clip's handling of a missing format.
#pragma once

#include <span>
#include <string>

#include "frame/EnumTable.h"
#include "nvdl/Variant.h"
#include "platform/MessageFormat.h"

namespace nvdl::geometry {

inline constexpr LONG kRectangular = 1401;

const EnumTable& enums();

// The text of a code, 8-bit; empty for a code outside the table.
std::string enumText(LONG code);

// A code given as a number, or as a text of the table. A value that is no number is taken as text;
// a text outside the table is E_INVALIDARG; any other failed conversion is returned as it is.
HRESULT coordinateTypeOf(const VARIANT& value, LONG& code);

// The fields rendered through the format; no format gives an empty text.
HRESULT clipFields(BSTR format, std::span<const MessageArg> fields, BSTR* text);

// A coordinate truncated to an integer, as Clip passes it.
inline std::int32_t truncated(float value) { return static_cast<std::int32_t>(value); }

}  // namespace nvdl::geometry
