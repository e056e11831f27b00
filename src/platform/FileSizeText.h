// A size in bytes as the dialogs show it: kilobytes below a megabyte, megabytes below a gigabyte,
// gigabytes above, with two decimals (truncated) and the user's separators, e.g. "1.234,56 GB".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nvdl {

// With the separators "sThousand" and "sDecimal" under the current user's
// "Control Panel\International" key; "," and "." when they are not set.
std::string fileSizeText(std::uint64_t bytes);
std::string fileSizeText(std::uint64_t bytes, std::string_view thousands, std::string_view decimal);

}  // namespace nvdl
