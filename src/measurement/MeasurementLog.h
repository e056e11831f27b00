// The measurement log: a text file of time-stamped lines, for tracing the paging of long records.
// Off unless switched on by SetLoggingEnable; nothing switches it on by default.
#pragma once

#include <cstdio>
#include <string>

namespace nvdl {

class CMeasurementLog {
public:
    CMeasurementLog() = default;
    CMeasurementLog(const CMeasurementLog&) = delete;
    CMeasurementLog& operator=(const CMeasurementLog&) = delete;
    ~CMeasurementLog() { close(); }

    void SetLoggingEnable(bool enable) { m_enabled = enable; }
    bool IsLoggingEnabled() const { return m_enabled; }
    // Opens `file` for appending (creating it when needed), or afresh with `replace`, and writes the
    // title block. False when logging is off or the file cannot be opened.
    bool Start(const std::string& file, const std::string& title, bool replace = false);
    // Writes one time-stamped line and flushes it.
    void Add(const std::string& text);
    // Writes the closing block and closes the file.
    void Stop();
    bool IsOpen() const { return m_file != nullptr; }

    // The local time as "Www Mmm dd hh:mm:ss.mmm", in one buffer shared by every log.
    static const char* LogTime();

private:
    void close();

    std::FILE* m_file = nullptr;
    bool m_enabled = false;
};

}  // namespace nvdl
