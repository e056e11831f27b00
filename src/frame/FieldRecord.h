// Properties that are plain stores in a class's field record (the `field_get` and `field_put`
// members of an interface list): a getter refuses a null output and copies the value out, a setter
// stores the value as given. Text is kept 8-bit in the system code page.
#pragma once

#include <string>

#include "nvdl/Bstr.h"
#include "nvdl/HResult.h"

namespace nvdl::field {

inline HRESULT give(const std::string& field, BSTR* value) {
    if (!value) return E_POINTER;
    *value = allocBstrFromAnsi(field);
    return S_OK;
}
template <class T>
HRESULT give(const T& field, T* value) {
    if (!value) return E_POINTER;
    *value = field;
    return S_OK;
}

inline void take(std::string& field, BSTR value) { field = bstrToAnsi(value); }
template <class T>
void take(T& field, T value) {
    field = value;
}

}  // namespace nvdl::field
