// Fields of byte layouts, read and written one by one in little-endian order.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

namespace nvdl::le {

inline std::uint16_t u16(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }
inline std::uint32_t u32(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}
inline std::uint64_t u64(const std::uint8_t* p) { return u32(p) | static_cast<std::uint64_t>(u32(p + 4)) << 32; }
inline std::int16_t i16(const std::uint8_t* p) { return static_cast<std::int16_t>(u16(p)); }
inline std::int32_t i32(const std::uint8_t* p) { return static_cast<std::int32_t>(u32(p)); }
inline float f32(const std::uint8_t* p) { return std::bit_cast<float>(u32(p)); }
inline double f64(const std::uint8_t* p) { return std::bit_cast<double>(u64(p)); }

inline void put16(std::uint8_t* p, std::uint16_t v) {
    p[0] = static_cast<std::uint8_t>(v);
    p[1] = static_cast<std::uint8_t>(v >> 8);
}
inline void put32(std::uint8_t* p, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(v >> (8 * i));
}
inline void put64(std::uint8_t* p, std::uint64_t v) {
    put32(p, static_cast<std::uint32_t>(v));
    put32(p + 4, static_cast<std::uint32_t>(v >> 32));
}
inline void putF32(std::uint8_t* p, float v) { put32(p, std::bit_cast<std::uint32_t>(v)); }
inline void putF64(std::uint8_t* p, double v) { put64(p, std::bit_cast<std::uint64_t>(v)); }

// A fixed text field: up to its first zero byte, never past its size.
inline std::string text(const std::uint8_t* p, std::size_t size) {
    std::size_t n = 0;
    while (n < size && p[n]) ++n;
    return std::string(reinterpret_cast<const char*>(p), n);
}
// Writes a fixed text field: at most size minus 1 characters, zero-ended and zero-filled.
inline void putText(std::uint8_t* p, std::size_t size, const std::string& s) {
    std::memset(p, 0, size);
    std::memcpy(p, s.data(), std::min(s.size(), size - 1));
}

}  // namespace nvdl::le
