#include "frame/EnumTable.h"

#include "platform/CodePage.h"

namespace nvdl {

const std::u16string_view* EnumTable::lookupString(LONG value) const {
    std::size_t lo = 0, hi = m_rows.size();
    while (lo < hi) {
        std::size_t mid = lo + (hi - lo) / 2;
        if (m_rows[mid].value == value) return &m_rows[mid].text;
        if (m_rows[mid].value < value) lo = mid + 1;
        else hi = mid;
    }
    return nullptr;
}

LONG EnumTable::lookupEnum(std::u16string_view text) const {
    for (const EnumPair& row : m_rows)
        if (row.text == text) return row.value;
    return -1;
}

HRESULT EnumTable::translate(LONG value, BSTR* text) const {
    if (!text) return E_POINTER;
    const std::u16string_view* found = lookupString(value);
    *text = allocBstr(found ? *found : std::u16string_view());
    return S_OK;
}

std::string EnumTable::textOf(LONG value) const {
    const std::u16string_view* text = lookupString(value);
    return text ? narrow(*text) : std::string();
}

HRESULT EnumTable::valueOf(const VARIANT& given, LONG& value) const {
    Variant number;
    HRESULT h = VariantChangeType(&number, &given, 0, VT_I4);
    if (SUCCEEDED(h)) {
        value = number.lVal;
        return S_OK;
    }
    if (h != DISP_E_TYPEMISMATCH) return h;
    Variant text;
    if (HRESULT t = VariantChangeType(&text, &given, 0, VT_BSTR); FAILED(t)) return t;
    const LONG found = lookupEnum(bstrView(text.bstrVal));
    if (found == -1) return E_INVALIDARG;
    value = found;
    return S_OK;
}

bool EnumTable::isSorted() const {
    for (std::size_t i = 1; i < m_rows.size(); ++i)
        if (m_rows[i - 1].value > m_rows[i].value) return false;
    return true;
}

}  // namespace nvdl
