// CDimension: a physical dimension of the unit service: a row of the table, a dimension the table
// does not hold (named by its base units), or one built through its four building properties.
// Each object keeps its own copy of its row, so a later Load of the service does not change it.
#pragma once

#include "frame/ObjectFrame.h"
#include "nvdl/IUnitService.h"
#include "project/units/UnitTable.h"

namespace nvdl::units {

class CDimension final : public CObjectFrame<CDimension, IDimension> {
public:
    static constexpr bool kCountedByServer = false;  // an object of the unit service
    // The table's row at `index` (below the table's size).
    static CDimension* fromTable(SharedTable table, std::size_t index);
    // The table's first row with these exponents, else a new dimension named by its base units.
    static CDimension* fromExponents(SharedTable table, const Exponents& exponents);
    // An empty object to be built through its building properties: unknown and not valid.
    static CDimension* blank(SharedTable table);

    NVDL_IMPLEMENTS(NVDL_IDIMENSION_MEMBERS)

private:
    explicit CDimension(SharedTable table);

    void becomeBlank();
    void adoptRow(std::size_t index);
    void adoptExponents(const Exponents& exponents);
    // The unit at a position as this dimension shows it: the default unit carries the Factor.
    UnitRecord shownUnit(std::size_t position) const;
    // Makes `name` the default unit, adding it with `factor` when the dimension lacks it.
    void useUnit(const std::string& name, double factor);

    SharedTable m_table;  // never null
    DimensionRecord m_record;
    std::size_t m_defaultUnit = 0;
    LONG m_index = -1;
    bool m_valid = false;

    // What the building properties were given.
    bool m_hasBase = false;
    DimensionRecord m_base;
    LONG m_baseIndex = -1;
    SHORT m_exponent = 1;
    double m_factor = 1.0;
};

}  // namespace nvdl::units
