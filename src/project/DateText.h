// Measurement times as the user's own regional date settings show them. The six values come from
// the settings store under the current user's "Control Panel\International" key, read on every
// call; a missing value reads as an empty text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "nvdl/Types.h"

namespace nvdl {

std::string ReadShortDateFormat();  // sShortDate, the date pattern ("dd.MM.yyyy")
std::string ReadDateSeparator();    // sDate
std::string ReadTimeFormat();       // sTimeFormat, the time pattern ("HH:mm:ss", "h:mm:ss tt")
std::string ReadTimeSeparator();    // sTime
std::string ReadAmText();           // s1159, the morning mark
std::string ReadPmText();           // s2359, the afternoon mark

// The date and time of `value` (days since 1899-12-30) by the regional patterns: each piece of a
// pattern prints its number with the piece's length as the least width ("dd" 05, "yy" 2004). A
// "t" piece in the time pattern turns on the 12-hour clock and puts the morning or afternoon mark
// at the end. Without usable regional values the text is "%d.%m.%Y %H:%M:%S" (05.03.2004
// 14:07:09). A value that is no calendar date gives an empty text.
std::string FormatDateTimeLocal(DATE value);

// The pieces of `text` between the occurrences of `separator`, in order; empty pieces between two
// separators are kept. An empty text has no pieces; an empty separator leaves the text whole.
void SplitText(std::string_view text, std::string_view separator, std::vector<std::string>& pieces);

}  // namespace nvdl
