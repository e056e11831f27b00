// A class's table of enumeration values and their texts, sorted by value: the text of a value by
// binary search, the value of a text by a linear scan (exact comparison, first row wins).
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "nvdl/Bstr.h"
#include "nvdl/HResult.h"
#include "nvdl/Variant.h"

namespace nvdl {

struct EnumPair {
    LONG value;
    std::u16string_view text;
};

class EnumTable {
public:
    constexpr explicit EnumTable(std::span<const EnumPair> rows) : m_rows(rows) {}

    // The text of a value, or nothing.
    const std::u16string_view* lookupString(LONG value) const;
    // The value of a text compared exactly (case counts), or -1.
    LONG lookupEnum(std::u16string_view text) const;
    // The text of a value; an unknown value gives S_OK and an empty text.
    HRESULT translate(LONG value, BSTR* text) const;
    // The text of a value in the system code page, empty for an unknown value.
    std::string textOf(LONG value) const;
    // The value a client hands in a variant: a number as it is, or else (on a type mismatch) a text
    // looked up in the table, an unknown text giving E_INVALIDARG.
    HRESULT valueOf(const VARIANT& given, LONG& value) const;
    // Sorted by value; a value may stand twice, and the text lookup finds its first row.
    bool isSorted() const;
    std::span<const EnumPair> rows() const { return m_rows; }

private:
    std::span<const EnumPair> m_rows;
};

}  // namespace nvdl
