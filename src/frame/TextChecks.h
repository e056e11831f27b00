// Checks on texts handed in by clients.
#pragma once

#include <string>
#include <string_view>

#include "nvdl/Types.h"

namespace nvdl {

// True for a text that is empty after trimming white space at both ends, and for a missing one.
bool IsBlankString(BSTR text);
std::string trimmed(std::string_view text);

}  // namespace nvdl
