#include "platform/Host.h"

#include "platform/DebugTrace.h"

namespace nvdl::host {

namespace {

MessageBoxHandler& messageBoxHandler() {
    static MessageBoxHandler handler;
    return handler;
}
DoEventsHandler& doEventsHandler() {
    static DoEventsHandler handler;
    return handler;
}
ProgressHandler& progressHandler() {
    static ProgressHandler handler;
    return handler;
}

}  // namespace

void setMessageBoxHandler(MessageBoxHandler handler) { messageBoxHandler() = std::move(handler); }
void setDoEventsHandler(DoEventsHandler handler) { doEventsHandler() = std::move(handler); }
void setProgressHandler(ProgressHandler handler) { progressHandler() = std::move(handler); }

int messageBox(const std::string& text, const std::string& caption, unsigned type) {
    if (messageBoxHandler()) return messageBoxHandler()(text, caption, type);
    DebugTraceF("messageBox - %s: %s", caption.c_str(), text.c_str());
    switch (type & 0xF) {
        case MB_YESNO:
        case MB_YESNOCANCEL: return IDYES;
        default: return IDOK;
    }
}

void DoEvents() {
    if (doEventsHandler()) doEventsHandler()();
}

bool reportProgress(int percent, const std::string& text) {
    return progressHandler() ? progressHandler()(percent, text) : true;
}

}  // namespace nvdl::host
