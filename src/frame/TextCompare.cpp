#include "frame/TextCompare.h"

namespace nvdl {

char16_t foldCase(char16_t c) {
    if (c >= u'A' && c <= u'Z') return static_cast<char16_t>(c + 32);
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return static_cast<char16_t>(c + 32);  // Latin-1 capitals
    return c;
}

bool equalsIgnoringCase(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (foldCase(a[i]) != foldCase(b[i])) return false;
    return true;
}

}  // namespace nvdl
