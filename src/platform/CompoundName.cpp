#include "platform/CompoundName.h"

#include "platform/CompoundFormat.h"

namespace nvdl::cfb {

HRESULT validateName(std::u16string_view name) {
    if (name.empty() || name.size() > kMaxNameLength) return STG_E_INVALIDNAME;
    for (char16_t c : name)
        if (c == 0 || c == u'/' || c == u'\\' || c == u':' || c == u'!') return STG_E_INVALIDNAME;
    return S_OK;
}

namespace {

bool in(char16_t c, char16_t lo, char16_t hi) { return c >= lo && c <= hi; }
bool odd(char16_t c) { return (c & 1) != 0; }
char16_t minus(char16_t c, int d) { return static_cast<char16_t>(c - d); }

}  // namespace

char16_t upperCase(char16_t c) {
    if (c < 0x80) return in(c, u'a', u'z') ? minus(c, 0x20) : c;
    // Latin-1 Supplement.
    if (c == 0xB5) return 0x039C;  // micro sign to capital mu
    if (in(c, 0xE0, 0xFE) && c != 0xF7) return minus(c, 0x20);
    if (c == 0xFF) return 0x0178;
    // Latin Extended-A: pairs of capital and small letter.
    if (c == 0x0131) return u'I';  // dotless i
    if (c == 0x017F) return u'S';  // long s
    if ((in(c, 0x0100, 0x0137) || in(c, 0x014A, 0x0177)) && odd(c)) return minus(c, 1);
    if ((in(c, 0x0139, 0x0148) || in(c, 0x0179, 0x017E)) && !odd(c)) return minus(c, 1);
    // Greek.
    if (c == 0x03AC) return 0x0386;
    if (in(c, 0x03AD, 0x03AF)) return minus(c, 0x25);
    if (c == 0x03C2) return 0x03A3;  // final sigma
    if (in(c, 0x03B1, 0x03CB)) return minus(c, 0x20);
    if (c == 0x03CC) return 0x038C;
    if (in(c, 0x03CD, 0x03CE)) return minus(c, 0x3F);
    // Cyrillic.
    if (in(c, 0x0430, 0x044F)) return minus(c, 0x20);
    if (in(c, 0x0450, 0x045F)) return minus(c, 0x50);
    if ((in(c, 0x0460, 0x0481) || in(c, 0x048A, 0x04BF) || in(c, 0x04D0, 0x052F)) && odd(c)) return minus(c, 1);
    if (in(c, 0x04C1, 0x04CE) && !odd(c)) return minus(c, 1);
    if (c == 0x04CF) return 0x04C0;
    // Fullwidth Latin small letters.
    if (in(c, 0xFF41, 0xFF5A)) return minus(c, 0x20);
    return c;
}

int compareNames(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char16_t x = upperCase(a[i]);
        char16_t y = upperCase(b[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    return 0;
}

}  // namespace nvdl::cfb
