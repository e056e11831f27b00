#include "frame/EnumTable.h"

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

bool EnumTable::isSorted() const {
    for (std::size_t i = 1; i < m_rows.size(); ++i)
        if (m_rows[i - 1].value > m_rows[i].value) return false;
    return true;
}

}  // namespace nvdl
