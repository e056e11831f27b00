// nvdl demo [OUTDIR] [--small] [--quiet]: the main job from end to end on data it makes itself - a
// recording of a known modal structure, a project, the averaged analysis, a project file saved and
// read back, a table of the modes found and the band levels, and pictures - in OUTDIR, by default
// a folder "nvdl-demo" here (or in the temporary folder when this one cannot be written).
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "commands.h"
#include "demo/DemoJob.h"

namespace nvdl::tool {

namespace {

constexpr const char* kUsage = "demo [OUTDIR] [--small] [--quiet]";

std::filesystem::path defaultFolder() {
    if (::access(".", W_OK) == 0) return "nvdl-demo";
    const char* temporary = std::getenv("TMPDIR");
    return std::filesystem::path(temporary && *temporary ? temporary : "/tmp") / "nvdl-demo";
}

}  // namespace

int demo(int argc, char** argv) {
    Arguments args;
    std::string error;
    if (!args.parse(argc, argv, {}, {"small", "quiet"}, error)) return usageFailure("demo", kUsage, error);
    if (args.positional().size() > 1) return usageFailure("demo", kUsage);
    demo::DemoOptions options;
    options.folder = args.positional().empty() ? defaultFolder() : std::filesystem::path(args.positional()[0]);
    options.small = args.has("small");
    options.quiet = args.has("quiet");
    const auto begin = std::chrono::steady_clock::now();
    std::string report;
    if (!demo::runDemo(options, report, error)) return failure("demo", options.folder.string(), error);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    std::fputs(report.c_str(), stdout);
    std::printf("done in %.1f s\n", took.count());
    return 0;
}

const CommandEntry demoCommand{"demo", demo,
                               "demo [OUTDIR]    the main job on data it makes itself: a recording of a known modal "
                               "structure, its FRFs, coherences and third-octave bands, a project file and PNG plots "
                               "in OUTDIR (default ./nvdl-demo); --small, --quiet"};

}  // namespace nvdl::tool
