#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "frame/TextChecks.h"
#include "platform/Registry.h"
#include "project/ZipBundle.h"

namespace nvdl {

namespace {

// A positive whole number of the setting, at most `max` (a larger one is taken as `max`), or the
// fallback for a missing, empty, zero, negative or not numeric value.
std::uint64_t positiveSetting(const std::optional<std::string>& setting, std::uint64_t max, std::uint64_t fallback) {
    if (!setting) return fallback;
    const std::string text = trimmed(*setting);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || end != text.data() + text.size()) return fallback;
    if (error == std::errc::result_out_of_range) return max;
    return error == std::errc{} && value > 0 ? std::min(value, max) : fallback;
}

}  // namespace

ZipLimits zipLimitsFromSettings() {
    constexpr std::string_view names[] = {"ZipExtractLimitMB", "ZipMaxEntries"};
    std::optional<std::string> values[2];
    registry::readSettings(names, values);
    constexpr std::uint64_t kMebibyte = 1024 * 1024;
    const std::uint64_t mebibytes = positiveSetting(values[0], std::numeric_limits<std::uint64_t>::max() / kMebibyte, 4096);
    const std::uint64_t entries = positiveSetting(values[1], std::numeric_limits<std::uint32_t>::max(), 10000);
    return ZipLimits{mebibytes * kMebibyte, static_cast<std::uint32_t>(entries)};
}

}  // namespace nvdl
