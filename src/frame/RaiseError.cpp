#include "frame/ObjectFrame.h"
#include "platform/CodePage.h"

namespace nvdl {

bool raiseError(const IID& iid, std::string_view message, std::string_view source) {
    if (message.empty()) return false;
    ErrorRecord record;
    record.iid = iid;
    record.source = widen(source);
    record.description = widen(message);
    setErrorInfo(std::move(record));
    return true;
}

std::string noPropertyPutMessage(BSTR name) { return bstrToAnsi(name) + loadStringResource(IDS_NO_PROPERTY_PUT); }

}  // namespace nvdl
