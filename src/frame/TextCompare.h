// Comparison of 16-bit texts ignoring case, as names in collections are compared.
#pragma once

#include <string_view>

namespace nvdl {

char16_t foldCase(char16_t c);
bool equalsIgnoringCase(std::u16string_view a, std::u16string_view b);

}  // namespace nvdl
