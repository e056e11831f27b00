// What the server asks of its host: modal messages, pumping the message queue during long work,
// and progress. A host without a window leaves the defaults, which never wait for anybody.
#pragma once

#include <functional>
#include <string>

namespace nvdl::host {

// Button sets and answers of a message box, numbered as the platform numbers them.
enum : unsigned { MB_OK = 0x0, MB_OKCANCEL = 0x1, MB_YESNOCANCEL = 0x3, MB_YESNO = 0x4, MB_ICONQUESTION = 0x20, MB_ICONINFORMATION = 0x40 };
enum : int { IDOK = 1, IDCANCEL = 2, IDYES = 6, IDNO = 7 };

using MessageBoxHandler = std::function<int(const std::string& text, const std::string& caption, unsigned type)>;
using DoEventsHandler = std::function<void()>;
// Answers false to ask the running operation to stop.
using ProgressHandler = std::function<bool(int percent, const std::string& text)>;

// An empty handler restores the default.
void setMessageBoxHandler(MessageBoxHandler handler);
void setDoEventsHandler(DoEventsHandler handler);
void setProgressHandler(ProgressHandler handler);

// The default traces the message and answers with the first button of the set (OK or Yes).
int messageBox(const std::string& text, const std::string& caption, unsigned type);
// The default has no queue to pump and does nothing.
void DoEvents();
// The default lets the operation go on.
bool reportProgress(int percent, const std::string& text);

}  // namespace nvdl::host
