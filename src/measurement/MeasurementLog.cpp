// The measurement log: title block, time-stamped lines, closing block.
#include "measurement/MeasurementLog.h"

#include <sys/time.h>

#include <ctime>

namespace nvdl {

namespace {

constexpr const char* kDashes = "\n----------------------------------------------------";

}  // namespace

const char* CMeasurementLog::LogTime() {
    static char buffer[64];
    timeval now{};
    gettimeofday(&now, nullptr);
    std::time_t seconds = now.tv_sec;
    char dateText[32] = "";
    if (!ctime_r(&seconds, dateText)) dateText[0] = '\0';
    std::snprintf(buffer, sizeof buffer, "%.19s.%hu", dateText, static_cast<unsigned short>(now.tv_usec / 1000));
    return buffer;
}

bool CMeasurementLog::Start(const std::string& file, const std::string& title, bool replace) {
    if (!m_enabled) return false;
    close();
    if (!replace) m_file = std::fopen(file.c_str(), "r+");
    if (!m_file) m_file = std::fopen(file.c_str(), "w+");
    if (!m_file) return false;
    std::fseek(m_file, 0, SEEK_END);
    std::fputs(kDashes, m_file);
    std::fprintf(m_file, "\n\t%s\t\t%s", title.c_str(), LogTime());
    std::fputs(kDashes, m_file);
    std::fflush(m_file);
    return true;
}

void CMeasurementLog::Add(const std::string& text) {
    if (!m_file) return;
    std::fprintf(m_file, "\n%s - %s", LogTime(), text.c_str());
    std::fflush(m_file);
}

void CMeasurementLog::Stop() {
    if (!m_file) return;
    std::fputs(kDashes, m_file);
    std::fprintf(m_file, "\nDONE - %s", LogTime());
    std::fputs(kDashes, m_file);
    close();
}

void CMeasurementLog::close() {
    if (m_file) std::fclose(m_file);
    m_file = nullptr;
}

}  // namespace nvdl
