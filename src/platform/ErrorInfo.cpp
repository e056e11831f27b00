#include "nvdl/ErrorInfo.h"

namespace nvdl {

namespace {
thread_local std::optional<ErrorRecord> t_pending;
}

void setErrorInfo(ErrorRecord record) { t_pending = std::move(record); }

std::optional<ErrorRecord> takeErrorInfo() {
    std::optional<ErrorRecord> taken = std::move(t_pending);
    t_pending.reset();
    return taken;
}

const ErrorRecord* peekErrorInfo() { return t_pending ? &*t_pending : nullptr; }

void clearErrorInfo() { t_pending.reset(); }

}  // namespace nvdl
