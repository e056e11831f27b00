#include "access/TrcLogging.h"

#include <cstdio>

namespace nvdl::access {

void CTrcLogging::Add(const char* format, long value) {
    if (!IsStarted()) return;
    char line[512];
    std::snprintf(line, sizeof line, format, value);
    m_log.Add(line);
}

void CTrcLogging::Add(const char* format, long first, long second) {
    if (!IsStarted()) return;
    char line[512];
    std::snprintf(line, sizeof line, format, first, second);
    m_log.Add(line);
}

}  // namespace nvdl::access
