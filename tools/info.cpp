// nvdl info FILE: what a file holds, one tab-separated line per item. For a recording: a line of
// the recording (format version, scans recorded, block size, sample rate), one line per channel
// (inputs first, then tachos numbered behind them; used 0/1 and the range its 16-bit samples
// span) and one per stored measurement (function type code, values per curve, sub-measurements).
// Only tables and headers are read. Workspace and project files get the listing of `nvdl ls`.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "commands.h"
#include "platform/CodePage.h"
#include "recording/Trc.h"
#include "recording/TrcFile.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupSection.h"

namespace nvdl::tool {

namespace {

// The first bytes of the file: compound files (workspaces, projects) begin with a signature,
// recordings with their version. False when the file cannot be read.
bool readHead(const char* path, unsigned char (&head)[8]) {
    std::FILE* f = std::fopen(path, "rb");
    if (!f) return false;
    std::memset(head, 0, sizeof head);
    std::fread(head, 1, sizeof head, f);
    std::fclose(f);
    return true;
}

bool isCompoundFile(const unsigned char (&head)[8]) {
    static const unsigned char kSignature[8] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    return std::equal(head, head + 8, kSignature);
}

std::string number(double v) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    return text;
}

// Names inside the recording are in the system code page; the terminal takes UTF-8.
std::string shown(const char* text) { return utf16ToUtf8(widen(text)); }

int fail(const char* path, const char* reason) {
    std::fprintf(stderr, "nvdl info: %s: %s\n", path, reason);
    return 1;
}

}  // namespace

int info(int argc, char** argv) {
    if (argc != 1) {
        std::fprintf(stderr, "usage: nvdl info FILE\n");
        return 2;
    }
    const char* path = argv[0];
    unsigned char head[8];
    if (!readHead(path, head)) return fail(path, std::strerror(errno));
    if (isCompoundFile(head)) return lsCommand.run(argc, argv);

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
    if (!measurements.Read(-1)) return fail(path, "the stored measurements cannot be read");
    for (long i = 0; i < measurements.GetCount(); ++i) {
        trc::CTrcMeasurementSection& m = *measurements.GetItem(i);
        trc::CTrcMeasurementHeaderSection& h = m.GetHeader();
        out += "measurement\t" + std::to_string(i) + "\t" + shown(h.GetName()) + "\t" + std::to_string(h.GetFunctionType()) +
               "\t" + std::to_string(h.GetSize()) + "\t" + std::to_string(m.GetMeasurements().GetCount()) + "\n";
    }
    std::fputs(out.c_str(), stdout);
    return 0;
}

const CommandEntry infoCommand{"info", info, "info FILE       what a recording holds: a line of the recording (format version, scans, block size, sample rate), one per channel and one per stored measurement; for a workspace or project file the listing of ls"};

}  // namespace nvdl::tool
