// Element names of a compound file: what is allowed, and how names are compared.
#pragma once

#include <string_view>

#include "nvdl/HResult.h"

namespace nvdl::cfb {

// S_OK for a usable name: 1 to 31 UTF-16 units, none of them NUL, '/', '\\', ':' or '!'.
// STG_E_INVALIDNAME otherwise.
HRESULT validateName(std::u16string_view name);

// Simple upper-case mapping of one UTF-16 unit, as names are compared: covers the Latin (ASCII,
// Latin-1, Latin Extended-A), Greek and Cyrillic letters and the fullwidth Latin forms.
char16_t upperCase(char16_t c);

// The order of names among the children of a storage: the shorter name first, names of equal
// length by their upper-cased units. Negative, zero or positive; zero means the same name.
int compareNames(std::u16string_view a, std::u16string_view b);

}  // namespace nvdl::cfb
