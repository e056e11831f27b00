#include "cli/ServerMessages.h"

#include "platform/CodePage.h"
#include "platform/Host.h"

namespace nvdl::tool {

ServerMessages::ServerMessages() {
    host::setMessageBoxHandler([this](const std::string& text, const std::string&, unsigned type) {
        last_ = utf16ToUtf8(widen(text));
        const unsigned buttons = type & 0xF;
        return buttons == host::MB_YESNO || buttons == host::MB_YESNOCANCEL ? host::IDYES : host::IDOK;
    });
}

ServerMessages::~ServerMessages() { host::setMessageBoxHandler({}); }

}  // namespace nvdl::tool
