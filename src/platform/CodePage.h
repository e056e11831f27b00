// Conversions between the 16-bit text of the interfaces, the system's 8-bit code page
// (Windows-1252) used inside objects and files, and UTF-8 used by the Python client and file names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace nvdl {

// UTF-16 to Windows-1252 as the code page 0 conversion does it: a character without a byte in the
// code page becomes '?', a surrogate pair counts as one character, a lone surrogate is '?'.
// The five bytes that 1252 leaves undefined (0x81 0x8D 0x8F 0x90 0x9D) stand for U+0081 etc.,
// so every byte survives widen followed by narrow.
std::string narrow(std::u16string_view text);

// Windows-1252 to UTF-16; every byte has a character.
std::u16string widen(std::string_view text);

// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
std::string utf16ToUtf8(std::u16string_view text);

// UTF-8 to UTF-16; every ill-formed sequence (stray continuation byte, truncated or overlong
// sequence, encoded surrogate, value above U+10FFFF) becomes one U+FFFD per maximal bad part.
std::u16string utf8ToUtf16(std::string_view text);
// A file name kept as 8-bit text in the system code page, as the file system takes it (UTF-8).
std::filesystem::path pathFromAnsi(std::string_view text);

}  // namespace nvdl
