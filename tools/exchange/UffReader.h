// Reads an ASCII universal file: datasets 58, 15, 2411, 82, 55 and 164 into plain values; other
// datasets are skipped whole. The reader takes what writers put in optional fields: blank fields,
// either exponent letter (E or D, upper or lower case), fields run together at their fixed widths,
// trailing blanks and CRLF line ends. Every count in the file is checked against what the rest of
// its dataset can hold, so a damaged file gives an error naming the line, never a large allocation.
#pragma once

#include <string>
#include <string_view>

#include "exchange/UffModel.h"

namespace nvdl::exchange::uff {

// False with `error` as "line N: what is wrong" when the text is not a readable universal file.
bool readText(std::string_view text, File& file, std::string& error);

}  // namespace nvdl::exchange::uff
