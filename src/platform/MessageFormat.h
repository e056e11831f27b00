// The message formatter behind Clip: numbered inserts into a format text, as the platform's
// message formatter does when it formats from a string with an argument array.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace nvdl {

using MessageArg = std::variant<std::int32_t, std::string>;

// Renders `format` (8-bit text in the system code page) with `args`:
//   %1 .. %99   the argument of that number, optionally with a printf format between exclamation
//               marks (%1!d!, %2!5.2s!, %3!lu!, %1!x!); without one it is !s!. Text arguments
//               print as text and integers as integers whatever the conversion letter says.
//   %0          ends the output (no line break is added)
//   %n          a line break "\r\n";  %t a tab, %r a carriage return, %b a space
//   %% %. %! and '%' before any other character: that character
// Everything else is copied as it stands. Nothing (std::nullopt) comes back for an insert whose
// number is beyond `args`, a malformed insert (a format without its closing '!', an unknown
// conversion, a '*' width or precision), a '%' that ends the text, or a result longer than
// bufferChars - 1 characters.
std::optional<std::string> formatMessage(std::string_view format, std::span<const MessageArg> args,
                                         std::size_t bufferChars = 512);

}  // namespace nvdl
