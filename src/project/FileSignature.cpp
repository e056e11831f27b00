#include "project/FileSignature.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace nvdl {

namespace {

std::string_view trimBlanks(std::string_view s) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    return s;
}

// The next field up to a comma (the rest of the text for the last one).
std::string_view nextField(std::string_view& text, bool last) {
    const std::size_t comma = last ? std::string_view::npos : text.find(',');
    std::string_view field = text.substr(0, comma);
    text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
    return trimBlanks(field);
}

std::optional<std::int64_t> decimal(std::string_view field) {
    if (!field.empty() && field.front() == '+') field.remove_prefix(1);
    std::int64_t value = 0;
    auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size()) return std::nullopt;
    return value;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// `count` bytes from the first 2 * count hex digits of `digits`.
std::optional<std::vector<std::uint8_t>> hexBytes(std::string_view digits, std::size_t count) {
    if (digits.size() / 2 < count) return std::nullopt;
    std::vector<std::uint8_t> bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        const int high = hexDigit(digits[2 * i]);
        const int low = hexDigit(digits[2 * i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return bytes;
}

}  // namespace

std::optional<FileSignature> ParseFileSignature(std::string_view text) {
    if (std::count(text.begin(), text.end(), ',') < 3) return std::nullopt;
    const std::optional<std::int64_t> offset = decimal(nextField(text, false));
    const std::optional<std::int64_t> length = decimal(nextField(text, false));
    const std::string_view maskDigits = nextField(text, false);
    const std::string_view patternDigits = nextField(text, true);
    if (!offset || !length || *length < 1 || patternDigits.empty()) return std::nullopt;
    // The pattern holds two digits per byte, so the length is bounded by the text itself.
    if (static_cast<std::uint64_t>(*length) > patternDigits.size() / 2) return std::nullopt;
    const auto count = static_cast<std::size_t>(*length);

    FileSignature signature;
    signature.offset = *offset;
    std::optional<std::vector<std::uint8_t>> pattern = hexBytes(patternDigits, count);
    if (!pattern) return std::nullopt;
    signature.pattern = std::move(*pattern);
    if (!maskDigits.empty()) {
        std::optional<std::vector<std::uint8_t>> mask = hexBytes(maskDigits, count);
        if (!mask) return std::nullopt;
        signature.mask = std::move(*mask);
    }
    return signature;
}

bool MatchFileSignature(std::istream& file, const FileSignature& signature) {
    file.clear();
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (size < 0) return false;
    const auto length = static_cast<std::streamoff>(signature.pattern.size());
    const std::streamoff start = signature.offset < 0 ? size + signature.offset : signature.offset;
    if (start < 0 || start > size || length > size - start) return false;

    std::string bytes(signature.pattern.size(), '\0');
    file.seekg(start, std::ios::beg);
    file.read(bytes.data(), length);
    const bool complete = file.gcount() == length;
    file.clear();
    if (!complete) return false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::uint8_t byte = static_cast<std::uint8_t>(bytes[i]);
        if (!signature.mask.empty()) byte &= signature.mask[i];
        if (byte != signature.pattern[i]) return false;
    }
    return true;
}

}  // namespace nvdl
