#include "platform/FileSizeText.h"

#include <array>

#include "platform/Registry.h"

namespace nvdl {

namespace {

constexpr std::uint64_t kKilo = 1024;

// The integer part with a separator between groups of three digits.
std::string grouped(std::uint64_t value, std::string_view thousands) {
    std::string digits = std::to_string(value);
    std::string out;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) out += thousands;
        out += digits[i];
    }
    return out;
}

}  // namespace

std::string fileSizeText(std::uint64_t bytes, std::string_view thousands, std::string_view decimal) {
    struct Unit {
        std::uint64_t size;
        const char* name;
    };
    constexpr std::array<Unit, 3> units{{{kKilo, "KB"}, {kKilo * kKilo, "MB"}, {kKilo * kKilo * kKilo, "GB"}}};
    const Unit* unit = &units[0];
    for (const Unit& u : units)
        if (bytes >= u.size) unit = &u;
    const std::uint64_t whole = bytes / unit->size;
    // Hundredths of the remainder, without overflow: the remainder is below the unit (at most 2^30).
    const std::uint64_t hundredths = bytes % unit->size * 100 / unit->size;
    const char tail[3] = {static_cast<char>('0' + hundredths / 10), static_cast<char>('0' + hundredths % 10), 0};
    return grouped(whole, thousands) + std::string(decimal) + tail + " " + unit->name;
}

std::string fileSizeText(std::uint64_t bytes) {
    constexpr const char* key = "Control Panel\\International";
    const auto thousands = registry::readString(registry::Hive::CurrentUser, key, "sThousand");
    const auto decimal = registry::readString(registry::Hive::CurrentUser, key, "sDecimal");
    return fileSizeText(bytes, thousands ? *thousands : ",", decimal ? *decimal : ".");
}

}  // namespace nvdl
