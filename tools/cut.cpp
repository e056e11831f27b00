// nvdl cut RECORDING OUT: a time span of a recording copied into a new recording with the same
// setup. The span is given in seconds (--from, --to) or in scans (--from-scan, --to-scan, counted
// from 1, both ends included); it starts at the beginning and ends at the end of the recording
// unless told otherwise, and an end behind the recording's end is taken as its end. The cut is
// written beside OUT under a temporary name and renamed over OUT when complete, so a failed cut
// leaves OUT as it was; OUT may not be the recording itself. Prints one tab-separated line: the
// new file, its scans and its seconds.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "access/TrcLoader.h"
#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/Progress.h"
#include "cli/ServerMessages.h"
#include "commands.h"
#include "platform/CodePage.h"
#include "recording/Trc.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupSection.h"

namespace nvdl::tool {

extern const CommandEntry cutCommand;

namespace {

// The recording's shape, as far as a span needs it.
struct Shape {
    long scans = 0;
    long blocksize = 0;
    double sampleRate = 0;
    double seconds() const { return static_cast<double>(scans) * blocksize / sampleRate; }
};

// Names inside the server are in the system code page; names on the command line are UTF-8.
std::string ansi(const std::string& utf8) { return narrow(utf8ToUtf16(utf8)); }

bool readShape(const std::string& path, Shape& shape, std::string& reason) {
    trc::CTrc recording;
    if (!recording.Open(ansi(path).c_str())) {
        reason = "not a readable recording";
        return false;
    }
    trc::CTrcRecorderSection& recorder = recording.GetRecorder();
    if (!recorder.Read()) {
        reason = "the recorder section cannot be read";
        return false;
    }
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    shape.scans = setup.GetProcessing().GetAverageNumber();
    shape.blocksize = setup.GetAcquisition().GetBlocksize();
    shape.sampleRate = setup.GetAcquisition().GetSampleFrequency();
    if (shape.scans < 1 || shape.blocksize < 1 || !(shape.sampleRate > 0)) {
        reason = "the recording holds no samples";
        return false;
    }
    return true;
}

// The span in seconds from the options; false with `problem` set for a usage mistake.
bool spanOf(const Arguments& args, const Shape& shape, double& from, double& to, std::string& problem) {
    if ((args.value("from") && args.value("from-scan")) || (args.value("to") && args.value("to-scan"))) {
        problem = "give each end of the span in seconds or in scans, not both";
        return false;
    }
    const double scanSeconds = shape.blocksize / shape.sampleRate;
    long firstScan = 1, lastScan = shape.scans;
    if (!args.number("from", 0.0, from, problem) || !args.number("to", shape.seconds(), to, problem) ||
        !args.integer("from-scan", 1, firstScan, problem) || !args.integer("to-scan", shape.scans, lastScan, problem))
        return false;
    if (args.value("from-scan")) from = static_cast<double>(firstScan - 1) * scanSeconds;
    if (args.value("to-scan")) to = static_cast<double>(lastScan) * scanSeconds;
    if (firstScan < 1 || lastScan < 1 || from < 0) {
        problem = "the span starts before the recording";
        return false;
    }
    if (to > shape.seconds()) to = shape.seconds();
    if (!(from < to)) {
        problem = "the span is empty";
        return false;
    }
    return true;
}

}  // namespace

int cut(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {"from", "to", "from-scan", "to-scan"}, {"quiet"}, problem) ||
        args.positional().size() != 2)
        return usageFailure("cut", cutCommand.usage, problem);
    const std::string& input = args.positional()[0];
    const std::string& output = args.positional()[1];

    Shape shape;
    std::string reason;
    if (::access(input.c_str(), R_OK) != 0) return failure("cut", input, std::strerror(errno));
    if (!readShape(input, shape, reason)) return failure("cut", input, reason);
    double from = 0, to = 0;
    if (!spanOf(args, shape, from, to, problem)) return usageFailure("cut", cutCommand.usage, problem);
    std::error_code error;
    if (std::filesystem::equivalent(input, output, error))
        return failure("cut", output, "is the recording being cut; the cut goes to a new file");

    // The cut goes to a temporary file in OUT's folder, so that the rename replaces OUT at once.
    std::string temporary = output + ".cut-XXXXXX";
    const int descriptor = ::mkstemp(temporary.data());
    if (descriptor < 0) return failure("cut", output, std::strerror(errno));
    // A temporary file is private to its maker; the cut gets the modes of any new file.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(descriptor, 0666 & ~mask);
    ::close(descriptor);

    int made = 0;
    ServerMessages messages;
    {
        ProgressBar bar("cut", args.has("quiet"));
        access::CTrcLoader loader;
        made = loader.Cut(ansi(input).c_str(), ansi(temporary).c_str(), static_cast<float>(from),
                          static_cast<float>(to));
    }
    Shape written;
    if (!made || !readShape(temporary, written, reason)) {
        std::filesystem::remove(temporary, error);
        return failure("cut", input, messages.last().empty() ? "the span cannot be cut" : messages.last());
    }
    if (std::rename(temporary.c_str(), output.c_str()) != 0) {
        const int why = errno;
        std::filesystem::remove(temporary, error);
        return failure("cut", output, std::strerror(why));
    }
    std::printf("%s\t%ld\t%g\n", output.c_str(), written.scans, to - from);
    return 0;
}

const CommandEntry cutCommand{"cut", cut, "cut FILE OUT    copy a time span of a recording into a new recording OUT: --from/--to SECONDS or --from-scan/--to-scan N (from 1, both included), the whole recording by default; --quiet; prints OUT, its scans and seconds"};

}  // namespace nvdl::tool
