#include "nvdl/Bstr.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform/CodePage.h"

namespace {

// The byte count is kept in the 4 bytes before the characters; the block starts 8 bytes before them
// so that the characters stay aligned as the allocator aligns.
constexpr std::size_t kHeader = 8;

std::uint32_t* byteCountOf(BSTR text) {
    return reinterpret_cast<std::uint32_t*>(reinterpret_cast<char*>(text) - sizeof(std::uint32_t));
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* text, unsigned length) {
    if (length > (0x7FFFFFFFu - kHeader) / sizeof(OLECHAR) - 1) return nullptr;
    std::size_t bytes = std::size_t{length} * sizeof(OLECHAR);
    char* block = static_cast<char*>(std::malloc(kHeader + bytes + sizeof(OLECHAR)));
    if (!block) return nullptr;
    BSTR str = reinterpret_cast<BSTR>(block + kHeader);
    *byteCountOf(str) = static_cast<std::uint32_t>(bytes);
    if (text)
        std::memcpy(str, text, bytes);
    else
        std::memset(str, 0, bytes);
    str[length] = 0;
    return str;
}

BSTR SysAllocString(const OLECHAR* text) {
    if (!text) return nullptr;
    unsigned n = 0;
    while (text[n]) ++n;
    return SysAllocStringLen(text, n);
}

void SysFreeString(BSTR text) {
    if (text) std::free(reinterpret_cast<char*>(text) - kHeader);
}

unsigned SysStringLen(BSTR text) { return text ? *byteCountOf(text) / sizeof(OLECHAR) : 0; }

namespace nvdl {

BSTR allocBstr(std::u16string_view text) {
    return SysAllocStringLen(text.data() ? text.data() : u"", static_cast<unsigned>(text.size()));
}

BSTR allocBstrFromAnsi(std::string_view text) { return allocBstr(widen(text)); }

std::u16string_view bstrView(BSTR text) { return text ? std::u16string_view(text, SysStringLen(text)) : std::u16string_view(); }

std::string bstrToAnsi(BSTR text) { return narrow(bstrView(text)); }

Bstr& Bstr::operator=(Bstr&& other) noexcept {
    if (this != &other) {
        SysFreeString(m_str);
        m_str = other.release();
    }
    return *this;
}

BSTR* Bstr::out() {
    SysFreeString(m_str);
    m_str = nullptr;
    return &m_str;
}

BSTR Bstr::release() {
    BSTR s = m_str;
    m_str = nullptr;
    return s;
}

}  // namespace nvdl
