#include "platform/CodePage.h"

#include <array>
#include <cstdint>

namespace nvdl {

namespace {

// Characters of the bytes 0x80..0x9F; the rest of the code page is the Latin-1 identity.
constexpr std::array<char16_t, 32> kHighControlRow = {
    u'\u20AC', u'\u0081', u'\u201A', u'\u0192', u'\u201E', u'\u2026', u'\u2020', u'\u2021',
    u'\u02C6', u'\u2030', u'\u0160', u'\u2039', u'\u0152', u'\u008D', u'\u017D', u'\u008F',
    u'\u0090', u'\u2018', u'\u2019', u'\u201C', u'\u201D', u'\u2022', u'\u2013', u'\u2014',
    u'\u02DC', u'\u2122', u'\u0161', u'\u203A', u'\u0153', u'\u009D', u'\u017E', u'\u0178',
};

constexpr char kDefaultChar = '?';

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// The byte of one BMP character, or the default character when the code page has none.
char narrowChar(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
    for (std::size_t i = 0; i < kHighControlRow.size(); ++i) {
        if (kHighControlRow[i] == c) return static_cast<char>(0x80 + i);
    }
    return kDefaultChar;
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void appendUtf16(std::u16string& out, char32_t c) {
    if (c < 0x10000) {
        out += static_cast<char16_t>(c);
    } else {
        c -= 0x10000;
        out += static_cast<char16_t>(0xD800 + (c >> 10));
        out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    }
}

constexpr char32_t kReplacement = 0xFFFD;

// Decodes one UTF-8 sequence at text[pos]; advances pos past the sequence, or past its longest
// well-formed beginning when it is bad (the maximal subpart rule), and answers U+FFFD for bad ones.
char32_t decodeUtf8(std::string_view text, std::size_t& pos) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byte(pos++);
    if (lead < 0x80) return lead;
    int length;
    char32_t value;
    std::uint8_t low = 0x80, high = 0xBF;  // allowed range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        value = lead & 0x0F;
        if (lead == 0xE0) low = 0xA0;   // overlong
        if (lead == 0xED) high = 0x9F;  // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        value = lead & 0x07;
        if (lead == 0xF0) low = 0x90;   // overlong
        if (lead == 0xF4) high = 0x8F;  // above U+10FFFF
    } else {
        return kReplacement;
    }
    for (int i = 1; i < length; ++i) {
        if (pos >= text.size()) return kReplacement;
        const std::uint8_t b = byte(pos);
        const std::uint8_t lo = i == 1 ? low : 0x80;
        const std::uint8_t hi = i == 1 ? high : 0xBF;
        if (b < lo || b > hi) return kReplacement;
        value = (value << 6) | (b & 0x3F);
        ++pos;
    }
    return value;
}

}  // namespace

std::string narrow(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            ++i;  // the pair is one character outside the code page
            out += kDefaultChar;
        } else {
            out += narrowChar(c);
        }
    }
    return out;
}

std::u16string widen(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (char ch : text) {
        const auto b = static_cast<std::uint8_t>(ch);
        out += (b >= 0x80 && b <= 0x9F) ? kHighControlRow[b - 0x80] : static_cast<char16_t>(b);
    }
    return out;
}

std::string utf16ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (isHighSurrogate(c) || isLowSurrogate(c)) {
            c = kReplacement;
        }
        appendUtf8(out, c);
    }
    return out;
}

std::u16string utf8ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    std::size_t pos = 0;
    while (pos < text.size()) appendUtf16(out, decodeUtf8(text, pos));
    return out;
}

std::filesystem::path pathFromAnsi(std::string_view text) {
    std::string utf8 = utf16ToUtf8(widen(text));
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace nvdl
