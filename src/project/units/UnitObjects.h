// CUnit: one unit of a dimension, read-only. CUnits: a fixed list of units.
#pragma once

#include <string_view>
#include <vector>

#include "frame/ObjectFrame.h"
#include "nvdl/IUnitService.h"
#include "project/units/UnitTable.h"

namespace nvdl::units {

class CUnit final : public CObjectFrame<CUnit, IUnit> {
public:
    static constexpr bool kCountedByServer = false;  // an object of the unit service
    // A unit of `dimension` (counted; may be null).
    static CUnit* create(UnitRecord record, IDimension* dimension);
    ~CUnit() override;

    NVDL_IMPLEMENTS(NVDL_IUNIT_MEMBERS)

    const UnitRecord& record() const { return m_record; }

private:
    CUnit(UnitRecord record, IDimension* dimension);

    UnitRecord m_record;
    IDimension* m_dimension;  // counted
};

class CUnits final : public CObjectFrame<CUnits, IUnits> {
public:
    static constexpr bool kCountedByServer = false;  // an object of the unit service
    // Takes over one reference of each unit.
    static CUnits* create(std::vector<CUnit*> units);
    ~CUnits() override;

    NVDL_IMPLEMENTS(NVDL_IUNITS_MEMBERS)

private:
    explicit CUnits(std::vector<CUnit*> units);

    std::vector<CUnit*> m_units;
};

// A collection key: a 0-based position below `count`, or a name; false for anything else.
bool readCollectionKey(const VARIANT& key, LONG count, LONG& position, std::string& name);

}  // namespace nvdl::units
