// CUnit: one unit of a dimension, read-only. CUnits: a fixed list of units.
#pragma once

#include <string_view>
#include <vector>

#include "frame/ObjectFrame.h"
#include "nvdl/IUnitService.h"
#include "project/units/UnitTable.h"

namespace nvdl::units {

class CUnit final : public CObjectFrame<IUnit> {
public:
    // A unit of `dimension` (counted; may be null).
    static CUnit* create(UnitRecord record, IDimension* dimension);
    ~CUnit() override;

    HRESULT get_Name(BSTR* name) override;
    HRESULT get_Factor(double* factor) override;
    HRESULT get_Offset(double* offset) override;
    HRESULT get_Dimension(IDimension** dimension) override;

    const UnitRecord& record() const { return m_record; }

private:
    CUnit(UnitRecord record, IDimension* dimension);

    UnitRecord m_record;
    IDimension* m_dimension;  // counted
};

class CUnits final : public CObjectFrame<IUnits> {
public:
    // Takes over one reference of each unit.
    static CUnits* create(std::vector<CUnit*> units);
    ~CUnits() override;

    HRESULT get_Count(LONG* count) override;
    HRESULT get_Item(VARIANT index, IUnit** unit) override;
    HRESULT get__NewEnum(IUnknown** enumerator) override;

private:
    explicit CUnits(std::vector<CUnit*> units);

    std::vector<CUnit*> m_units;
};

// A collection key: a 0-based position below `count`, or a name; false for anything else.
bool readCollectionKey(const VARIANT& key, LONG count, LONG& position, std::string& name);

}  // namespace nvdl::units
