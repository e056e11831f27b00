// CTrcLogging: the trace of the compression loop, one time-stamped line per stage into a text file
// made afresh at each start. The class is on by default, but the recording loader switches it off
// before it starts it, so no file comes into being unless a caller turns it on again.
#pragma once

#include <string>

#include "measurement/MeasurementLog.h"

namespace nvdl::access {

class CTrcLogging {
public:
    CTrcLogging() { m_log.SetLoggingEnable(true); }

    // Writes the title with the time between two rules; nothing when disabled.
    void Start(const char* title, const char* path) { m_log.Start(path, title, true); }
    // One line, flushed at once so that a trace survives a crash; nothing when not started.
    void Add(const std::string& text) { m_log.Add(text); }
    // A line from a format with one or two long values, as the loop's stages give them.
    void Add(const char* format, long value);
    void Add(const char* format, long first, long second);
    void Stop() { m_log.Stop(); }

    void SetEnable(bool enabled) { m_log.SetLoggingEnable(enabled); }
    bool GetEnable() const { return m_log.IsLoggingEnabled(); }
    bool IsStarted() const { return m_log.IsOpen(); }

private:
    CMeasurementLog m_log;
};

}  // namespace nvdl::access
