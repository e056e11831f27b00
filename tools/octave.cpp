// nvdl octave FILE OUT --channel N: the octave or fractional-octave bands of one channel of a
// recording or workspace file, from its averaged autopower, into a .wkd or .csv file.
#include <string>

#include "analysis/AnalysisArguments.h"
#include "analysis/ChannelFiles.h"
#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/Progress.h"
#include "commands.h"

namespace nvdl::tool {

namespace {
constexpr const char* kUsage =
    "octave FILE OUT.wkd|OUT.csv --channel N [--bands 3] [--block N] [--window NAME] [--averages N] [--overlap PCT] "
    "[--quiet]";
}

int octave(int argc, char** argv) {
    Arguments args;
    std::string error;
    std::set<std::string> options = analysis::analysisOptionNames();
    options.insert({"channel", "bands"});
    if (!args.parse(argc, argv, options, {"quiet"}, error)) return usageFailure("octave", kUsage, error);
    if (args.positional().size() != 2 || !args.value("channel")) return usageFailure("octave", kUsage);
    const std::string& file = args.positional()[0];
    const std::string& out = args.positional()[1];
    analysis::AnalysisOptions settings;
    long bands = 0;
    if (!analysis::analysisOptions(args, settings, error) || !args.integer("bands", 3, bands, error))
        return usageFailure("octave", kUsage, error);
    if (bands < 1 || bands > 24) return usageFailure("octave", kUsage, "--bands takes 1 to 24 bands per octave");

    analysis::TimeRecords loaded;
    std::vector<IMeasurement*> channel;
    if (!analysis::loadTimeRecords(file, loaded, error) || !analysis::pickChannels(loaded, *args.value("channel"), channel, error))
        return failure("octave", file, error);
    if (channel.size() != 1) return usageFailure("octave", kUsage, "--channel names one channel");
    analysis::ChannelAnalysis result;
    ComPtr<IMeasurement> bandRecord;
    {
        ProgressBar bar("octave", args.has("quiet"));
        if (!analysis::analyseChannels(channel, settings, [&](double f) { bar.update(f); }, result, error) ||
            !analysis::octaveBands(result.channels.front().autopower.get(), bands, result.windowBandwidth, bandRecord, error))
            return failure("octave", file, error);
    }
    if (!analysis::writeResults({bandRecord.get()}, out, error)) return failure("octave", out, error);
    return 0;
}

const CommandEntry octaveCommand{"octave", octave,
                                 "octave FILE OUT  third-octave (--bands N: 1/N-octave) bands of one channel's averaged "
                                 "autopower into a .wkd or .csv: --channel N, --block N, --window NAME, --averages N, "
                                 "--overlap PCT, --quiet"};

}  // namespace nvdl::tool
