#include "nvdl/Guid.h"

#include <cstdio>
#include <random>

namespace nvdl {

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Reads `digits` hex digits from text at pos.
bool readHex(std::string_view text, std::size_t pos, int digits, std::uint64_t& value) {
    value = 0;
    for (int i = 0; i < digits; ++i) {
        int v = hexValue(text[pos + i]);
        if (v < 0) return false;
        value = (value << 4) | static_cast<std::uint64_t>(v);
    }
    return true;
}

}  // namespace

std::optional<GUID> parseGuid(std::string_view text) {
    if (text.size() == 38) {
        if (text.front() != '{' || text.back() != '}') return std::nullopt;
        text = text.substr(1, 36);
    }
    if (text.size() != 36) return std::nullopt;
    if (text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-') return std::nullopt;
    GUID g;
    std::uint64_t v;
    if (!readHex(text, 0, 8, v)) return std::nullopt;
    g.Data1 = static_cast<std::uint32_t>(v);
    if (!readHex(text, 9, 4, v)) return std::nullopt;
    g.Data2 = static_cast<std::uint16_t>(v);
    if (!readHex(text, 14, 4, v)) return std::nullopt;
    g.Data3 = static_cast<std::uint16_t>(v);
    static constexpr std::size_t kBytePos[8] = {19, 21, 24, 26, 28, 30, 32, 34};
    for (int i = 0; i < 8; ++i) {
        if (!readHex(text, kBytePos[i], 2, v)) return std::nullopt;
        g.Data4[i] = static_cast<std::uint8_t>(v);
    }
    return g;
}

std::string formatGuid(const GUID& g, bool withBraces) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%s%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X%s", withBraces ? "{" : "",
                  g.Data1, g.Data2, g.Data3, g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3], g.Data4[4], g.Data4[5],
                  g.Data4[6], g.Data4[7], withBraces ? "}" : "");
    return buf;
}

GUID generateGuid() {
    static thread_local std::mt19937_64 engine{std::random_device{}()};
    std::uint8_t bytes[16];
    for (int i = 0; i < 16; i += 8) {
        std::uint64_t r = engine();
        for (int j = 0; j < 8; ++j) bytes[i + j] = static_cast<std::uint8_t>(r >> (8 * j));
    }
    bytes[7] = static_cast<std::uint8_t>((bytes[7] & 0x0F) | 0x40);  // version 4 (high nibble of Data3)
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);  // variant 10xx
    return guidFromBytes(bytes);
}

void guidToBytes(const GUID& g, std::uint8_t out[16]) {
    for (int i = 0; i < 4; ++i) out[i] = static_cast<std::uint8_t>(g.Data1 >> (8 * i));
    for (int i = 0; i < 2; ++i) out[4 + i] = static_cast<std::uint8_t>(g.Data2 >> (8 * i));
    for (int i = 0; i < 2; ++i) out[6 + i] = static_cast<std::uint8_t>(g.Data3 >> (8 * i));
    for (int i = 0; i < 8; ++i) out[8 + i] = g.Data4[i];
}

GUID guidFromBytes(const std::uint8_t in[16]) {
    GUID g;
    g.Data1 = static_cast<std::uint32_t>(in[0]) | static_cast<std::uint32_t>(in[1]) << 8 |
              static_cast<std::uint32_t>(in[2]) << 16 | static_cast<std::uint32_t>(in[3]) << 24;
    g.Data2 = static_cast<std::uint16_t>(in[4] | in[5] << 8);
    g.Data3 = static_cast<std::uint16_t>(in[6] | in[7] << 8);
    for (int i = 0; i < 8; ++i) g.Data4[i] = in[8 + i];
    return g;
}

std::size_t GuidHash::operator()(const GUID& g) const noexcept {
    std::uint8_t b[16];
    guidToBytes(g, b);
    std::size_t h = 1469598103934665603ull;
    for (std::uint8_t x : b) h = (h ^ x) * 1099511628211ull;
    return h;
}

}  // namespace nvdl
