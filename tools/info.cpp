// nvdl info FILE: what a file holds, one tab-separated line per item. For a recording: a line of
// the recording (format version, scans recorded, block size, sample rate), one line per channel
// (inputs first, then tachos numbered behind them; used 0/1 and the range its 16-bit samples
// span) and one per stored measurement (function type code, values per curve, sub-measurements).
// Only tables and headers are read. Workspace and project files and zip bundles get the listing
// of `nvdl ls`.
#include <cstdio>
#include <string>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "commands.h"
#include "ls.h"
#include "platform/CodePage.h"
#include "recording/Trc.h"
#include "recording/TrcFile.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupSection.h"

namespace nvdl::tool {

namespace {

std::string number(double v) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    return text;
}

// Names inside the recording are in the system code page; the terminal takes UTF-8.
std::string shown(const char* text) { return utf16ToUtf8(widen(text)); }

int fail(const char* path, const char* reason) { return failure("info", path, reason); }

}  // namespace

int info(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {}, {}, problem) || args.positional().size() != 1)
        return usageFailure("info", infoCommand.usage, problem);
    const char* path = args.positional()[0].c_str();
    std::string reason;
    switch (kindOfFile(path, reason)) {
        case FileKind::Unreadable: return fail(path, reason.c_str());
        case FileKind::Project:
        case FileKind::Workspace:
        case FileKind::OtherCompound:
        case FileKind::Bundle: return listFile("info", path);
        case FileKind::Other: break;
    }

    trc::CTrc recording;
    if (!recording.Open(narrow(utf8ToUtf16(path)).c_str())) return fail(path, "not a readable recording");
    trc::CTrcRecorderSection& recorder = recording.GetRecorder();
    if (!recorder.Read()) return fail(path, "the recorder section cannot be read");
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    std::string out = "recording\t" + std::to_string(recording.GetFile()->GetFileVersion()) + "\t" +
                      std::to_string(setup.GetProcessing().GetAverageNumber()) + "\t" +
                      std::to_string(setup.GetAcquisition().GetBlocksize()) + "\t" +
                      number(setup.GetAcquisition().GetSampleFrequency()) + "\n";
    trc::CTrcInputChannels& inputs = setup.GetInputs();
    for (long i = 0; i < inputs.GetTotalChannels(); ++i) {
        const trc::CTrcInputChannel& c = *inputs.GetItem(i);
        out += "channel\t" + std::to_string(i + 1) + "\t" + shown(c.GetName()) + "\t" + (c.GetUsage() ? "1" : "0") + "\t" +
               number(c.GetRange()) + "\n";
    }
    trc::CTrcTachoChannels& tachos = setup.GetTachos();
    for (long k = 0; k < tachos.GetTotalChannels(); ++k) {
        const trc::CTrcTachoChannel& c = *tachos.GetItem(k);
        out += "channel\t" + std::to_string(inputs.GetTotalChannels() + k + 1) + "\t" + shown(c.GetName()) + "\t" +
               (c.GetActivated() ? "1" : "0") + "\t" + number(2.0 * c.GetEndRPM()) + "\n";
    }
    trc::CTrcMeasurementsSection& measurements = recording.GetMeasurements();
    // A cut copies the setup and the scans only and leaves the stored measurements' section
    // unwritten; such a recording, like one whose section is unreadable, lists none, as the
    // recording loader (which reads that section only on request) sees it.
    const long stored = measurements.Read(-1) ? measurements.GetCount() : 0;
    for (long i = 0; i < stored; ++i) {
        trc::CTrcMeasurementSection& m = *measurements.GetItem(i);
        trc::CTrcMeasurementHeaderSection& h = m.GetHeader();
        out += "measurement\t" + std::to_string(i) + "\t" + shown(h.GetName()) + "\t" + std::to_string(h.GetFunctionType()) +
               "\t" + std::to_string(h.GetSize()) + "\t" + std::to_string(m.GetMeasurements().GetCount()) + "\n";
    }
    std::fputs(out.c_str(), stdout);
    return 0;
}

const CommandEntry infoCommand{"info", info, "info FILE       what a recording holds: a line of the recording (format version, scans, block size, sample rate), one per channel and one per stored measurement; for a workspace, project or bundle the listing of ls"};

}  // namespace nvdl::tool
