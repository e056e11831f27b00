// The table of the unit service: dimensions in file order, each with its ten base exponents and its
// units. Text is 8-bit in the system code page. A table is never changed once read; objects that
// show it share it.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nvdl/IUnitService.h"

namespace nvdl::units {

using Exponents = std::array<SHORT, kBaseExponentCount>;

struct UnitRecord {
    std::string name;
    double factor = 1.0;  // base value = factor * value + offset
    double offset = 0.0;
};

struct DimensionRecord {
    std::string name;
    Exponents exponents{};
    bool unknown = false;
    std::vector<UnitRecord> units;  // the first is the default unit
};

struct UnitPosition {
    std::size_t dimension;
    std::size_t unit;
};

class UnitTable {
public:
    std::vector<DimensionRecord> dimensions;

    // A dimension by name ignoring case.
    std::optional<std::size_t> findDimension(std::string_view name) const;
    // The first dimension, not unknown, with these exponents.
    std::optional<std::size_t> findExponents(const Exponents& exponents) const;
    // A unit by name: the first exact match in table order, else the first match ignoring case.
    std::optional<UnitPosition> findUnit(std::string_view name) const;
};

using SharedTable = std::shared_ptr<const UnitTable>;

// A unit within a list by name: exact first, then ignoring case.
std::optional<std::size_t> findUnitIn(const std::vector<UnitRecord>& units, std::string_view name);

// The name of a dimension the table does not hold, made of the base units: "m*s^-3", "1" for none.
std::string nameFromExponents(const Exponents& exponents);

}  // namespace nvdl::units
