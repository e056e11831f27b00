// Fields of the universal file's fixed-width records, read tolerantly: a number may stand at its
// columns or just be separated by blanks from its neighbours, may use E or D (either case) as its
// exponent letter or leave the letter out ("1.5-3"), and a blank field reads as zero.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvdl::exchange::uff {

std::string_view trimmed(std::string_view text);
// The columns [from, from + width) of a line; shorter lines give what they have.
std::string_view columns(std::string_view line, std::size_t from, std::size_t width);
// A number written in any of the forms above; nothing for anything else (an empty text included).
std::optional<double> parseReal(std::string_view text);
std::optional<long> parseInteger(std::string_view text);
// The blank-separated words of a line.
std::vector<std::string_view> words(std::string_view line);

// The numbers of a record whose fields have the given widths: the words of the line when there are
// exactly as many numbers as fields, else the fields at their columns (blank ones as zero).
// Nothing when a field holds no number.
std::optional<std::vector<double>> recordNumbers(std::string_view line, const std::vector<int>& widths);

}  // namespace nvdl::exchange::uff
