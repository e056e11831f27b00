// The system's only log. Off by default and then almost free: one load of a cached flag.
// NVDL_TRACE turns it on: "1" or "stderr" writes lines to standard error, any other non-empty
// value except "0" is the path of a file that lines are appended to. Each line is cut to 255
// characters and ended with a newline. Tracing never fails and never throws.
#pragma once

#include <atomic>

namespace nvdl {

namespace trace_detail {
enum : signed char { kUnknown = -1, kOff = 0, kOn = 1 };
// Constant-initialised, so tracing works from other static initialisers too.
inline std::atomic<signed char> g_state{kUnknown};
bool readSettings() noexcept;
}  // namespace trace_detail

inline bool debugTraceEnabled() noexcept {
    const signed char state = trace_detail::g_state.load(std::memory_order_relaxed);
    if (state != trace_detail::kUnknown) return state == trace_detail::kOn;
    return trace_detail::readSettings();
}

// Reads NVDL_TRACE again (after the environment changed) and reopens the trace file.
void reloadDebugTraceSettings() noexcept;

}  // namespace nvdl

using nvdl::debugTraceEnabled;

void DebugTrace(const char* text) noexcept;
void DebugTraceF(const char* format, ...) noexcept __attribute__((format(printf, 1, 2)));
