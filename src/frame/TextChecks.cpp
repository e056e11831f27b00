#include "frame/TextChecks.h"

#include <cctype>

#include "nvdl/Bstr.h"

namespace nvdl {

std::string trimmed(std::string_view text) {
    std::size_t b = 0, e = text.size();
    while (b < e && std::isspace(static_cast<unsigned char>(text[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(text[e - 1]))) --e;
    return std::string(text.substr(b, e - b));
}

bool IsBlankString(BSTR text) { return !text || trimmed(bstrToAnsi(text)).empty(); }

}  // namespace nvdl
