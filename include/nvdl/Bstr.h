// Counted UTF-16 strings with the platform's allocation contract: the callee allocates, the caller
// frees with SysFreeString. A null BSTR is a valid empty string. The length is stored in front of the
// characters, and a terminating zero follows them.
#pragma once

#include <string>
#include <string_view>

#include "nvdl/Export.h"
#include "nvdl/Types.h"

NVDL_API_BEGIN

BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, unsigned length);
void SysFreeString(BSTR text);
unsigned SysStringLen(BSTR text);

namespace nvdl {

BSTR allocBstr(std::u16string_view text);
// Widens 8-bit text of the system code page into a new BSTR.
BSTR allocBstrFromAnsi(std::string_view text);
std::u16string_view bstrView(BSTR text);
// Narrows to the system code page.
std::string bstrToAnsi(BSTR text);

// Owns one BSTR and frees it when it goes.
class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::u16string_view text) : m_str(allocBstr(text)) {}
    explicit Bstr(std::string_view ansi) : m_str(allocBstrFromAnsi(ansi)) {}
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    Bstr(Bstr&& other) noexcept : m_str(other.release()) {}
    Bstr& operator=(Bstr&& other) noexcept;
    ~Bstr() { SysFreeString(m_str); }

    BSTR get() const { return m_str; }
    // For out parameters: frees what is held and hands out the slot.
    BSTR* out();
    BSTR release();
    std::u16string_view view() const { return bstrView(m_str); }
    std::string ansi() const { return bstrToAnsi(m_str); }

private:
    BSTR m_str = nullptr;
};

}  // namespace nvdl

NVDL_API_END
