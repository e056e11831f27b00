#include "cli/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "platform/Host.h"

namespace nvdl::tool {

namespace {
constexpr int kBarWidth = 30;
}

ProgressBar::ProgressBar(std::string label, bool quiet)
    : label_(std::move(label)), visible_(!quiet && ::isatty(STDERR_FILENO) == 1) {
    host::setProgressHandler([this](int percent, const std::string&) {
        update(percent / 100.0);
        return true;
    });
}

ProgressBar::~ProgressBar() {
    host::setProgressHandler({});
    if (visible_ && shown_ >= 0) std::fprintf(stderr, "\r\033[K");
}

void ProgressBar::update(double fraction) {
    const int percent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100.0);
    if (!visible_ || percent == shown_) return;
    shown_ = percent;
    const int filled = percent * kBarWidth / 100;
    std::fprintf(stderr, "\r%s [%.*s%*s] %3d%%", label_.c_str(), filled, "##############################",
                 kBarWidth - filled, "", percent);
    std::fflush(stderr);
}

}  // namespace nvdl::tool
