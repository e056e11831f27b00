// CUnitService: the unit service shipped with the library. It holds one table; it starts with the
// shipped units file, read on first need, and Load replaces the table when the new file reads.
#pragma once

#include <string>

#include "frame/ObjectFrame.h"
#include "nvdl/IUnitService.h"
#include "project/units/UnitTable.h"

namespace nvdl::units {

class CUnitService final : public CObjectFrame<CUnitService, IUnitService> {
public:
    static constexpr bool kCountedByServer = false;  // an object of the unit service
    static CUnitService* create();

    NVDL_IMPLEMENTS(NVDL_IUNITSERVICE_MEMBERS)

    // The table in use, never null (empty when not even the shipped file reads).
    SharedTable table();

private:
    CUnitService();

    SharedTable m_table;
    std::string m_fileName;
};

}  // namespace nvdl::units
