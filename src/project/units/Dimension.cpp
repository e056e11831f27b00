#include "project/units/Dimension.h"

#include <cmath>
#include <limits>

#include "platform/CodePage.h"
#include "platform/MemberTable.h"
#include "nvdl/Variant.h"
#include "project/units/UnitExpression.h"
#include "project/units/UnitObjects.h"

namespace nvdl::units {

namespace {

bool scaleExponents(const Exponents& in, long power, Exponents& out) {
    for (int i = 0; i < kBaseExponentCount; ++i) {
        long product = static_cast<long>(in[i]) * power;
        if (product < std::numeric_limits<SHORT>::min() || product > std::numeric_limits<SHORT>::max()) return false;
        out[i] = static_cast<SHORT>(product);
    }
    return true;
}

}  // namespace

CDimension::CDimension(SharedTable table) : CObjectFrame(IID_IDimension), m_table(std::move(table)) {
    if (!m_table) m_table = std::make_shared<const UnitTable>();
}

CDimension* CDimension::fromTable(SharedTable table, std::size_t index) {
    auto* d = new CDimension(std::move(table));
    d->adoptRow(index);
    return d;
}

CDimension* CDimension::fromExponents(SharedTable table, const Exponents& exponents) {
    auto* d = new CDimension(std::move(table));
    d->adoptExponents(exponents);
    return d;
}

CDimension* CDimension::blank(SharedTable table) {
    auto* d = new CDimension(std::move(table));
    d->becomeBlank();
    return d;
}

void CDimension::becomeBlank() {
    m_record = DimensionRecord{};
    m_record.unknown = true;
    m_defaultUnit = 0;
    m_index = -1;
    m_valid = false;
}

void CDimension::adoptRow(std::size_t index) {
    m_record = m_table->dimensions[index];
    m_defaultUnit = 0;
    m_index = static_cast<LONG>(index);
    m_valid = true;
}

void CDimension::adoptExponents(const Exponents& exponents) {
    if (std::optional<std::size_t> row = m_table->findExponents(exponents)) return adoptRow(*row);
    m_record = DimensionRecord{};
    m_record.name = nameFromExponents(exponents);
    m_record.exponents = exponents;
    m_record.units.push_back({m_record.name, 1.0, 0.0});
    m_defaultUnit = 0;
    m_index = -1;
    m_valid = true;
}

UnitRecord CDimension::shownUnit(std::size_t position) const {
    UnitRecord unit = m_record.units[position];
    if (position == m_defaultUnit) unit.factor *= m_factor;
    return unit;
}

void CDimension::useUnit(const std::string& name, double factor) {
    if (std::optional<std::size_t> found = findUnitIn(m_record.units, name)) {
        m_defaultUnit = *found;
        return;
    }
    m_record.units.push_back({name, factor, 0.0});
    m_defaultUnit = m_record.units.size() - 1;
}

HRESULT CDimension::get_Name(BSTR* name) {
    if (!name) return E_POINTER;
    *name = allocBstrFromAnsi(m_record.name);
    return S_OK;
}

HRESULT CDimension::get_Index(LONG* index) {
    if (!index) return E_POINTER;
    *index = m_index;
    return S_OK;
}

HRESULT CDimension::get_BaseExponent(SHORT position, SHORT* exponent) {
    if (!exponent) return E_POINTER;
    *exponent = 0;
    if (position < 1 || position > kBaseExponentCount) return E_INVALIDARG;
    *exponent = m_record.exponents[position - 1];
    return S_OK;
}

HRESULT CDimension::get_IsUnknown(SHORT* unknown) {
    if (!unknown) return E_POINTER;
    *unknown = m_record.unknown ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT CDimension::get_IsValid(SHORT* valid) {
    if (!valid) return E_POINTER;
    *valid = m_valid && !m_record.name.empty() ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT CDimension::get_DefaultUnit(IUnit** unit) {
    if (!unit) return E_POINTER;
    *unit = m_record.units.empty() ? nullptr : CUnit::create(shownUnit(m_defaultUnit), this);
    return S_OK;
}

HRESULT CDimension::get_Units(IUnits** units) {
    if (!units) return E_POINTER;
    std::vector<CUnit*> list;
    for (std::size_t i = 0; i < m_record.units.size(); ++i) list.push_back(CUnit::create(shownUnit(i), this));
    *units = CUnits::create(std::move(list));
    return S_OK;
}

HRESULT CDimension::get_Dimension(BSTR* base) {
    if (!base) return E_POINTER;
    *base = allocBstrFromAnsi(m_hasBase ? m_base.name : std::string());
    return S_OK;
}

HRESULT CDimension::put_Dimension(VARIANT base) {
    Variant given;
    if (FAILED(VariantCopyInd(&given, &base))) return E_INVALIDARG;
    if (given.vt == VT_DISPATCH || given.vt == VT_UNKNOWN) {
        IDimension* other = nullptr;
        if (!given.punkVal || FAILED(given.punkVal->QueryInterface(IID_IDimension, reinterpret_cast<void**>(&other))))
            return E_INVALIDARG;
        if (auto* ours = dynamic_cast<CDimension*>(other)) {
            m_record = ours->m_record;
            m_index = ours->m_index;
            m_valid = ours->m_valid;
            m_defaultUnit = ours->m_defaultUnit;
            other->Release();
        } else {
            BSTR name = nullptr;
            HRESULT h = other->get_Name(&name);
            other->Release();
            if (FAILED(h)) return E_INVALIDARG;
            given = Variant::fromString(bstrView(name));
            SysFreeString(name);
        }
    }
    if (given.vt != VT_DISPATCH && given.vt != VT_UNKNOWN) {
        std::string name;
        if (given.vt != VT_EMPTY && given.vt != VT_NULL && given.vt != VT_ERROR) {
            if (FAILED(given.changeType(VT_BSTR))) return E_INVALIDARG;
            name = narrow(bstrView(given.bstrVal));
        }
        if (name.empty()) {
            becomeBlank();
            m_hasBase = false;
            m_base = DimensionRecord{};
            m_exponent = 1;
            m_factor = 1.0;
            return S_OK;
        }
        std::optional<std::size_t> row = m_table->findDimension(name);
        if (!row) return E_INVALIDARG;
        adoptRow(*row);
    }
    m_hasBase = true;
    m_base = m_record;
    m_baseIndex = m_index;
    m_exponent = 1;
    m_factor = 1.0;
    return S_OK;
}

HRESULT CDimension::get_Exponent(SHORT* exponent) {
    if (!exponent) return E_POINTER;
    *exponent = m_exponent;
    return S_OK;
}

HRESULT CDimension::put_Exponent(SHORT exponent) {
    if (!m_hasBase || m_base.unknown) {
        m_exponent = exponent;
        return S_OK;
    }
    Exponents raised;
    if (!scaleExponents(m_base.exponents, exponent, raised)) return E_INVALIDARG;
    m_exponent = exponent;
    if (exponent == 1) {
        m_record = m_base;
        m_index = m_baseIndex;
        m_defaultUnit = 0;
        m_valid = true;
    } else {
        adoptExponents(raised);
    }
    return S_OK;
}

HRESULT CDimension::get_Unit(BSTR* unit) {
    if (!unit) return E_POINTER;
    *unit = allocBstrFromAnsi(m_record.units.empty() ? std::string() : m_record.units[m_defaultUnit].name);
    return S_OK;
}

HRESULT CDimension::put_Unit(BSTR unit) {
    const std::string text = narrow(bstrView(unit));
    if (text.empty()) return S_OK;
    if (std::optional<std::size_t> found = findUnitIn(m_record.units, text)) {
        m_defaultUnit = *found;
        return S_OK;
    }
    std::optional<ExpressionValue> value = evaluateUnitExpression(*m_table, text);
    if (m_hasBase) {
        if (m_record.unknown) useUnit(text, 1.0);
        else if (value && value->exponents == m_record.exponents) useUnit(text, value->factor);
        else return E_INVALIDARG;
        return S_OK;
    }
    Exponents raised;
    if (!value || !scaleExponents(value->exponents, m_exponent, raised)) {
        // Not a unit of the table: the dimension stays unknown, named by the text it was given.
        becomeBlank();
        m_record.name = text;
        m_record.units.push_back({text, 1.0, 0.0});
        return S_OK;
    }
    adoptExponents(raised);
    if (m_exponent == 1) useUnit(text, value->factor);
    else useUnit("(" + text + ")^" + std::to_string(m_exponent), std::pow(value->factor, m_exponent));
    return S_OK;
}

HRESULT CDimension::get_Factor(double* factor) {
    if (!factor) return E_POINTER;
    *factor = m_factor;
    return S_OK;
}

HRESULT CDimension::put_Factor(double factor) {
    if (!std::isfinite(factor) || factor == 0.0) return E_INVALIDARG;
    m_factor = factor;
    return S_OK;
}

HRESULT CDimension::SquareRoot(IDimension** root) {
    if (!root) return E_POINTER;
    if (m_record.unknown) {
        AddRef();
        *root = this;
        return S_OK;
    }
    Exponents halved;
    for (int i = 0; i < kBaseExponentCount; ++i) halved[i] = static_cast<SHORT>(m_record.exponents[i] / 2);
    *root = fromExponents(m_table, halved);
    return S_OK;
}

}  // namespace nvdl::units
