#include "frame/Clip.h"

#include "nvdl/Bstr.h"
#include "nvdl/HResult.h"

namespace nvdl {

HRESULT clip(BSTR format, std::span<const MessageArg> fields, BSTR* text) {
    if (!text) return E_POINTER;
    std::optional<std::string> rendered = formatMessage(bstrToAnsi(format), fields, 512);
    if (!rendered || rendered->empty()) return E_OUTOFMEMORY;
    *text = allocBstrFromAnsi(*rendered);
    return S_OK;
}

}  // namespace nvdl
