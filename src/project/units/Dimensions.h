// CDimensions: the dimensions of one table, in table order.
#pragma once

#include "frame/ObjectFrame.h"
#include "nvdl/IUnitService.h"
#include "project/units/UnitTable.h"

namespace nvdl::units {

class CDimensions final : public CObjectFrame<IDimensions> {
public:
    static CDimensions* create(SharedTable table);

    HRESULT get_Count(LONG* count) override;
    HRESULT get_Item(VARIANT index, IDimension** dimension) override;
    HRESULT get__NewEnum(IUnknown** enumerator) override;
    HRESULT FromExponents(SHORT length, SHORT time, SHORT mass, SHORT current, SHORT temperature, SHORT amount,
                          SHORT luminousIntensity, SHORT planeAngle, SHORT solidAngle, SHORT other,
                          IDimension** dimension) override;

private:
    explicit CDimensions(SharedTable table);

    SharedTable m_table;
};

}  // namespace nvdl::units
