#include "project/units/UnitObjects.h"

#include "frame/CollectionEnumerator.h"
#include "platform/CodePage.h"
#include "platform/MemberTable.h"
#include "nvdl/Variant.h"

namespace nvdl::units {


bool readCollectionKey(const VARIANT& key, LONG count, LONG& position, std::string& name) {
    Variant copy;
    if (FAILED(VariantCopyInd(&copy, &key))) return false;
    position = -1;
    if (copy.vt == VT_BSTR) {
        name = narrow(bstrView(copy.bstrVal));
        return true;
    }
    if (FAILED(copy.changeType(VT_I4)) || copy.lVal < 0 || copy.lVal >= count) return false;
    position = copy.lVal;
    return true;
}

CUnit::CUnit(UnitRecord record, IDimension* dimension)
    : CObjectFrame(IID_IUnit), m_record(std::move(record)), m_dimension(dimension) {
    if (m_dimension) m_dimension->AddRef();
}

CUnit* CUnit::create(UnitRecord record, IDimension* dimension) { return new CUnit(std::move(record), dimension); }

CUnit::~CUnit() {
    if (m_dimension) m_dimension->Release();
}

HRESULT CUnit::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    *name = allocBstrFromAnsi(m_record.name);
    return S_OK;
}

HRESULT CUnit::get_Factor(double* factor) {
    if (!factor) return E_POINTER;
    *factor = m_record.factor;
    return S_OK;
}

HRESULT CUnit::get_Offset(double* offset) {
    if (!offset) return E_POINTER;
    *offset = m_record.offset;
    return S_OK;
}

HRESULT CUnit::get_Dimension(IDimension** dimension) {
    if (!dimension) return E_POINTER;
    *dimension = m_dimension;
    if (m_dimension) m_dimension->AddRef();
    return S_OK;
}

CUnits::CUnits(std::vector<CUnit*> units) : CObjectFrame(IID_IUnits), m_units(std::move(units)) {}

CUnits* CUnits::create(std::vector<CUnit*> units) { return new CUnits(std::move(units)); }

CUnits::~CUnits() {
    for (CUnit* unit : m_units) unit->Release();
}

HRESULT CUnits::get_Count(LONG* count) {
    if (!count) return E_POINTER;
    *count = static_cast<LONG>(m_units.size());
    return S_OK;
}

HRESULT CUnits::get_Item(VARIANT index, IUnit** unit) {
    if (!unit) return E_POINTER;
    *unit = nullptr;
    LONG position;
    std::string name;
    if (!readCollectionKey(index, static_cast<LONG>(m_units.size()), position, name)) return E_INVALIDARG;
    if (position < 0) {
        std::vector<UnitRecord> records;
        for (CUnit* u : m_units) records.push_back(u->record());
        std::optional<std::size_t> found = findUnitIn(records, name);
        if (!found) return E_INVALIDARG;
        position = static_cast<LONG>(*found);
    }
    *unit = m_units[position];
    (*unit)->AddRef();
    return S_OK;
}

HRESULT CUnits::get__NewEnum(IUnknown** enumerator) {
    if (!enumerator) return E_POINTER;
    auto snapshot = std::make_shared<CCollectionEnumerator::Snapshot>();
    for (CUnit* unit : m_units) snapshot->push_back(Variant::fromDispatch(unit->dispatch()));
    *enumerator = CCollectionEnumerator::create(std::move(snapshot));
    return S_OK;
}

}  // namespace nvdl::units
