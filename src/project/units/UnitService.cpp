#include "project/units/UnitService.h"

#include "platform/CodePage.h"
#include "platform/MemberTable.h"
#include "project/units/Dimension.h"
#include "project/units/Dimensions.h"
#include "project/units/ShippedUnitsFile.h"
#include "project/units/UnitObjects.h"
#include "project/units/UnitsFileReader.h"

namespace nvdl::units {


CUnitService::CUnitService() : CObjectFrame(IID_IUnitService) {}

CUnitService* CUnitService::create() { return new CUnitService; }

SharedTable CUnitService::table() {
    if (m_table) return m_table;
    UnitsFileContent content = readUnitsFile(kShippedUnitsFile);
    if (content.table) {
        m_table = std::move(content.table);
        m_fileName = narrow(utf8ToUtf16(kShippedUnitsFile));
    } else {
        m_table = std::make_shared<const UnitTable>();
    }
    return m_table;
}

HRESULT CUnitService::get_Dimensions(IDimensions** dimensions) {
    if (!dimensions) return E_POINTER;
    *dimensions = CDimensions::create(table());
    return S_OK;
}

HRESULT CUnitService::get_Units(IUnits** units) {
    if (!units) return E_POINTER;
    SharedTable rows = table();
    std::vector<CUnit*> list;
    for (std::size_t d = 0; d < rows->dimensions.size(); ++d) {
        CDimension* dimension = CDimension::fromTable(rows, d);
        for (const UnitRecord& unit : rows->dimensions[d].units) list.push_back(CUnit::create(unit, dimension));
        dimension->Release();
    }
    *units = CUnits::create(std::move(list));
    return S_OK;
}

HRESULT CUnitService::Load(BSTR file) {
    const std::string path = narrow(bstrView(file));
    UnitsFileContent content = readUnitsFile(utf16ToUtf8(bstrView(file)));
    if (!content.table) {
        RaiseException("The units file \"" + path + "\" could not be read.", moduleFileName());
        return E_FAIL;
    }
    m_table = std::move(content.table);
    m_fileName = path;
    return S_OK;
}

HRESULT CUnitService::get_FileName(BSTR* file) {
    if (!file) return E_POINTER;
    table();  // the shipped file is read on first need
    *file = allocBstrFromAnsi(m_fileName);
    return S_OK;
}

HRESULT CUnitService::FindUnit(BSTR name, IUnit** unit) {
    if (!unit) return E_POINTER;
    *unit = nullptr;
    SharedTable rows = table();
    std::optional<UnitPosition> found = rows->findUnit(narrow(bstrView(name)));
    if (!found) return E_INVALIDARG;
    CDimension* dimension = CDimension::fromTable(rows, found->dimension);
    *unit = CUnit::create(rows->dimensions[found->dimension].units[found->unit], dimension);
    dimension->Release();
    return S_OK;
}

HRESULT CUnitService::NewDimension(IDimension** dimension) {
    if (!dimension) return E_POINTER;
    *dimension = CDimension::blank(table());
    return S_OK;
}

}  // namespace nvdl::units
