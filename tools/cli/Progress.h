// A progress bar for long operations. It draws on standard error, redrawing one line, only when
// standard error is a terminal and the user did not ask for quiet; otherwise it draws nothing.
// While it lives it is also the host's progress handler, so that the server's own long operations
// (a cut, a conversion) move it. It is not meant to be shared between threads.
#pragma once

#include <string>

namespace nvdl::tool {

class ProgressBar {
public:
    ProgressBar(std::string label, bool quiet);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Moves the bar to `fraction` (0 to 1, clamped); redraws only when the shown percentage changes.
    void update(double fraction);
    bool visible() const { return visible_; }

private:
    std::string label_;
    bool visible_;
    int shown_ = -1;
};

}  // namespace nvdl::tool
