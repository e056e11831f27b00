#include "project/units/Dimensions.h"

#include "frame/CollectionEnumerator.h"
#include "platform/MemberTable.h"
#include "nvdl/Variant.h"
#include "project/units/Dimension.h"
#include "project/units/UnitObjects.h"

namespace nvdl::units {


CDimensions::CDimensions(SharedTable table) : CObjectFrame(IID_IDimensions), m_table(std::move(table)) {
    if (!m_table) m_table = std::make_shared<const UnitTable>();
}

CDimensions* CDimensions::create(SharedTable table) { return new CDimensions(std::move(table)); }

HRESULT CDimensions::get_Count(LONG* count) {
    if (!count) return E_POINTER;
    *count = static_cast<LONG>(m_table->dimensions.size());
    return S_OK;
}

HRESULT CDimensions::get_Item(VARIANT index, IDimension** dimension) {
    if (!dimension) return E_POINTER;
    *dimension = nullptr;
    LONG position;
    std::string name;
    if (!readCollectionKey(index, static_cast<LONG>(m_table->dimensions.size()), position, name)) return E_INVALIDARG;
    if (position < 0) {
        std::optional<std::size_t> row = m_table->findDimension(name);
        if (!row) return E_INVALIDARG;
        position = static_cast<LONG>(*row);
    }
    *dimension = CDimension::fromTable(m_table, static_cast<std::size_t>(position));
    return S_OK;
}

HRESULT CDimensions::get__NewEnum(IUnknown** enumerator) {
    if (!enumerator) return E_POINTER;
    auto snapshot = std::make_shared<CCollectionEnumerator::Snapshot>();
    for (std::size_t i = 0; i < m_table->dimensions.size(); ++i) {
        CDimension* d = CDimension::fromTable(m_table, i);
        snapshot->push_back(Variant::fromDispatch(d->dispatch()));
        d->Release();
    }
    *enumerator = CCollectionEnumerator::create(std::move(snapshot));
    return S_OK;
}

HRESULT CDimensions::FromExponents(SHORT length, SHORT time, SHORT mass, SHORT current, SHORT temperature,
                                   SHORT amount, SHORT luminousIntensity, SHORT planeAngle, SHORT solidAngle,
                                   SHORT other, IDimension** dimension) {
    if (!dimension) return E_POINTER;
    *dimension = CDimension::fromExponents(m_table, {length, time, mass, current, temperature, amount,
                                                     luminousIntensity, planeAngle, solidAngle, other});
    return S_OK;
}

}  // namespace nvdl::units
