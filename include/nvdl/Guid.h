// 128-bit identifiers of classes and interfaces.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "nvdl/Export.h"
#include "nvdl/Types.h"

NVDL_API_BEGIN

struct GUID {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::uint8_t Data4[8] = {};

    friend bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline constexpr GUID GUID_NULL{};
inline constexpr const GUID& IID_NULL = GUID_NULL;
inline constexpr const GUID& CLSID_NULL = GUID_NULL;

namespace nvdl {

// Parses "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", with or without surrounding braces, any case.
std::optional<GUID> parseGuid(std::string_view text);
// Upper-case hex, "{...}" when withBraces.
std::string formatGuid(const GUID& g, bool withBraces = true);
// A new random (version 4) identifier.
GUID generateGuid();

// The 16 bytes as they are stored on disk: the first three fields little-endian.
void guidToBytes(const GUID& g, std::uint8_t out[16]);
GUID guidFromBytes(const std::uint8_t in[16]);

struct GuidHash {
    std::size_t operator()(const GUID& g) const noexcept;
};

}  // namespace nvdl

NVDL_API_END
