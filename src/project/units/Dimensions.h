// CDimensions: the dimensions of one table, in table order.
#pragma once

#include "frame/ObjectFrame.h"
#include "nvdl/IUnitService.h"
#include "project/units/UnitTable.h"

namespace nvdl::units {

class CDimensions final : public CObjectFrame<CDimensions, IDimensions> {
public:
    static constexpr bool kCountedByServer = false;  // an object of the unit service
    static CDimensions* create(SharedTable table);

    NVDL_IMPLEMENTS(NVDL_IDIMENSIONS_MEMBERS)

private:
    explicit CDimensions(SharedTable table);

    SharedTable m_table;
};

}  // namespace nvdl::units
