#include "project/units/UnitTable.h"

#include "frame/TextCompare.h"
#include "platform/CodePage.h"

namespace nvdl::units {

namespace {

bool sameIgnoringCase(std::string_view a, std::string_view b) { return equalsIgnoringCase(widen(a), widen(b)); }

// Symbols of the base units in exponent order; the tenth has none of its own.
constexpr const char* kBaseSymbols[kBaseExponentCount] = {"m", "s", "kg", "A", "K", "mol", "cd", "rad", "sr", "x"};

}  // namespace

std::optional<std::size_t> UnitTable::findDimension(std::string_view name) const {
    for (std::size_t i = 0; i < dimensions.size(); ++i)
        if (sameIgnoringCase(dimensions[i].name, name)) return i;
    return std::nullopt;
}

std::optional<std::size_t> UnitTable::findExponents(const Exponents& exponents) const {
    for (std::size_t i = 0; i < dimensions.size(); ++i)
        if (!dimensions[i].unknown && dimensions[i].exponents == exponents) return i;
    return std::nullopt;
}

std::optional<UnitPosition> UnitTable::findUnit(std::string_view name) const {
    for (std::size_t d = 0; d < dimensions.size(); ++d)
        for (std::size_t u = 0; u < dimensions[d].units.size(); ++u)
            if (dimensions[d].units[u].name == name) return UnitPosition{d, u};
    for (std::size_t d = 0; d < dimensions.size(); ++d)
        for (std::size_t u = 0; u < dimensions[d].units.size(); ++u)
            if (sameIgnoringCase(dimensions[d].units[u].name, name)) return UnitPosition{d, u};
    return std::nullopt;
}

std::optional<std::size_t> findUnitIn(const std::vector<UnitRecord>& units, std::string_view name) {
    for (std::size_t i = 0; i < units.size(); ++i)
        if (units[i].name == name) return i;
    for (std::size_t i = 0; i < units.size(); ++i)
        if (sameIgnoringCase(units[i].name, name)) return i;
    return std::nullopt;
}

std::string nameFromExponents(const Exponents& exponents) {
    std::string name;
    for (int i = 0; i < kBaseExponentCount; ++i) {
        if (exponents[i] == 0) continue;
        if (!name.empty()) name += '*';
        name += kBaseSymbols[i];
        if (exponents[i] != 1) name += "^" + std::to_string(exponents[i]);
    }
    return name.empty() ? "1" : name;
}

}  // namespace nvdl::units
