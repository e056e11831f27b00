// Where the units file shipped with the library lies: data/units.txt at the root of the source
// tree, found from this header's own path when the library is compiled. It is the built-in value of
// the `UnitsFile` setting and the table a new unit service starts with.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace nvdl::units {

namespace shipped_detail {

inline constexpr std::string_view kThisHeader = "src/project/units/ShippedUnitsFile.h";
inline constexpr std::string_view kFromRoot = "data/units.txt";
inline constexpr std::string_view kCompiledPath = __FILE__;
static_assert(kCompiledPath.ends_with(kThisHeader), "this header must be reached as project/units/ShippedUnitsFile.h");
inline constexpr std::size_t kRootLength = kCompiledPath.size() - kThisHeader.size();

constexpr std::array<char, kRootLength + kFromRoot.size() + 1> joinPath() {
    std::array<char, kRootLength + kFromRoot.size() + 1> path{};
    for (std::size_t i = 0; i < kRootLength; ++i) path[i] = kCompiledPath[i];
    for (std::size_t i = 0; i < kFromRoot.size(); ++i) path[kRootLength + i] = kFromRoot[i];
    return path;
}

inline constexpr auto kPath = joinPath();

}  // namespace shipped_detail

// The path, zero-ended, in UTF-8 as the file system names it.
inline constexpr const char* kShippedUnitsFile = shipped_detail::kPath.data();

}  // namespace nvdl::units
