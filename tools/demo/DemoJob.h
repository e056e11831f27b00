// The main job from end to end on data it makes itself: a recording of a known modal structure,
// loaded into a new project, analysed (autopowers, crosspowers, H1 FRFs and coherences to the
// force, third-octave bands of one response), saved as a project file, loaded again, reported and
// pictured.
#pragma once

#include <filesystem>
#include <string>

namespace nvdl::demo {

struct DemoOptions {
    std::filesystem::path folder;  // made when missing
    bool small = false;            // a shorter recording, for a quick run
    bool quiet = false;            // no progress bar
};

// Runs the job; `report` gets what the demonstration prints. False with `error` set at the step
// that failed.
bool runDemo(const DemoOptions& options, std::string& report, std::string& error);

}  // namespace nvdl::demo
