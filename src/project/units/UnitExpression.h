// Unit expressions: a unit text made of the table's units with products ("*" or "·"), quotients
// ("/"), powers ("^2", "^-1", "²", "³") and parentheses, such as "N*m", "m/s^3", "(m/s²)²/Hz".
// Text is 8-bit in the system code page. Offsets of the units play no part.
#pragma once

#include <optional>
#include <string_view>

#include "project/units/UnitTable.h"

namespace nvdl::units {

struct ExpressionValue {
    Exponents exponents{};
    double factor = 1.0;  // base value = factor * value
};

// Nothing when the text is not such an expression, names a unit the table lacks or one of an
// unknown dimension, nests parentheses more than 16 deep, is longer than 200 characters or takes an
// exponent out of the 16-bit range.
std::optional<ExpressionValue> evaluateUnitExpression(const UnitTable& table, std::string_view text);

}  // namespace nvdl::units
