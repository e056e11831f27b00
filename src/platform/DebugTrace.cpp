#include "platform/DebugTrace.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace nvdl {

namespace {

constexpr std::size_t kMaxLineChars = 255;

// Where lines go while tracing is on: standard error or the descriptor of an opened file.
struct TraceSink {
    std::mutex mutex;
    int fd = -1;
    bool ownsFd = false;
};

// Never destroyed, so that traces from other static destructors still find it.
TraceSink& sink() {
    static TraceSink* instance = new TraceSink;
    return *instance;
}

void closeSink(TraceSink& s) {
    if (s.ownsFd) ::close(s.fd);
    s.fd = -1;
    s.ownsFd = false;
}

// Decides on/off from the environment and opens the sink; the caller holds the mutex.
bool configure(TraceSink& s) {
    closeSink(s);
    const char* value = std::getenv("NVDL_TRACE");
    bool on = false;
    if (value == nullptr || value[0] == '\0' || std::strcmp(value, "0") == 0) {
        on = false;
    } else if (std::strcmp(value, "1") == 0 || std::strcmp(value, "stderr") == 0) {
        s.fd = STDERR_FILENO;
        on = true;
    } else {
        s.fd = ::open(value, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
        s.ownsFd = s.fd >= 0;
        on = s.ownsFd;  // a file that cannot be opened leaves tracing off
    }
    trace_detail::g_state.store(on ? trace_detail::kOn : trace_detail::kOff, std::memory_order_relaxed);
    return on;
}

void writeLine(const char* text) {
    char line[kMaxLineChars + 1];
    std::size_t length = ::strnlen(text, kMaxLineChars);
    std::memcpy(line, text, length);
    if (length == 0 || line[length - 1] != '\n') line[length++] = '\n';
    TraceSink& s = sink();
    std::lock_guard lock(s.mutex);
    if (s.fd < 0) return;
    // One write per line keeps lines whole when several processes append to one file.
    [[maybe_unused]] ssize_t written = ::write(s.fd, line, length);
}

}  // namespace

namespace trace_detail {

bool readSettings() noexcept {
    try {
        TraceSink& s = sink();
        std::lock_guard lock(s.mutex);
        const signed char state = g_state.load(std::memory_order_relaxed);
        if (state != kUnknown) return state == kOn;
        return configure(s);
    } catch (...) {
        return false;
    }
}

}  // namespace trace_detail

void reloadDebugTraceSettings() noexcept {
    try {
        TraceSink& s = sink();
        std::lock_guard lock(s.mutex);
        configure(s);
    } catch (...) {
    }
}

}  // namespace nvdl

void DebugTrace(const char* text) noexcept {
    if (!debugTraceEnabled() || text == nullptr) return;
    try {
        nvdl::writeLine(text);
    } catch (...) {
    }
}

void DebugTraceF(const char* format, ...) noexcept {
    if (!debugTraceEnabled() || format == nullptr) return;
    char line[nvdl::kMaxLineChars + 1];
    va_list args;
    va_start(args, format);
    const int produced = std::vsnprintf(line, sizeof line, format, args);
    va_end(args);
    if (produced < 0) return;
    try {
        nvdl::writeLine(line);
    } catch (...) {
    }
}
