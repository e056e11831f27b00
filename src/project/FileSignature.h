// A file signature of the settings store: bytes at a fixed place of a file that tell its class.
// The text form is "offset,length,mask,pattern": a negative offset counts from the end of the
// file, mask and pattern are hexadecimal digits, two per byte, and the mask may be empty.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string_view>
#include <vector>

namespace nvdl {

struct FileSignature {
    std::int64_t offset = 0;
    std::vector<std::uint8_t> mask;  // empty: the bytes compare exactly
    std::vector<std::uint8_t> pattern;
};

// The signature of a text, or nothing for one that cannot match anything: fewer than four fields,
// no pattern, a length below 1, a digit that is not hexadecimal, or a mask or pattern shorter than
// the length (digits beyond the length are not read).
std::optional<FileSignature> ParseFileSignature(std::string_view text);

// Compares the file's bytes at the signature's place: each byte, ANDed with the mask's byte,
// must equal the pattern's byte. A place outside the file does not match. The stream is left
// positioned anywhere, its error state cleared.
bool MatchFileSignature(std::istream& file, const FileSignature& signature);

}  // namespace nvdl
