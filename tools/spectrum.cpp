// nvdl spectrum FILE OUT: the averaged spectra of chosen channels of a recording or workspace file
// against a reference channel - autopower, PSD, crosspower, H1 FRF, coherence - into a new
// workspace file or comma-separated text.
#include <algorithm>
#include <cstdio>
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
    "spectrum FILE OUT.wkd|OUT.csv [--channels LIST] [--reference N] [--kind autopower,psd,cross,frf,coherence] "
    "[--block N] [--window NAME] [--averages N] [--overlap PCT] [--quiet]";

using Pick = ComPtr<IMeasurement> analysis::ChannelSpectra::*;

struct KindName {
    const char* name;
    Pick member;
};

constexpr KindName kKinds[] = {
    {"autopower", &analysis::ChannelSpectra::autopower}, {"psd", &analysis::ChannelSpectra::psd},
    {"cross", &analysis::ChannelSpectra::cross},         {"frf", &analysis::ChannelSpectra::frf},
    {"coherence", &analysis::ChannelSpectra::coherence},
};

// The kinds named in a comma-separated list, in its order.
bool parseKinds(const std::string& list, std::vector<Pick>& kinds, std::string& error) {
    std::size_t from = 0;
    while (from <= list.size()) {
        const std::size_t comma = std::min(list.find(',', from), list.size());
        const std::string word = list.substr(from, comma - from);
        auto kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindName& k) { return word == k.name; });
        if (kind == std::end(kKinds)) {
            error = "unknown kind \"" + word + "\" (autopower, psd, cross, frf, coherence)";
            return false;
        }
        kinds.push_back(kind->member);
        from = comma + 1;
    }
    return true;
}

}  // namespace

int spectrum(int argc, char** argv) {
    Arguments args;
    std::string error;
    std::set<std::string> options = analysis::analysisOptionNames();
    options.insert({"channels", "reference", "kind"});
    if (!args.parse(argc, argv, options, {"quiet"}, error)) return usageFailure("spectrum", kUsage, error);
    if (args.positional().size() != 2) return usageFailure("spectrum", kUsage);
    const std::string& file = args.positional()[0];
    const std::string& out = args.positional()[1];
    analysis::AnalysisOptions settings;
    std::vector<Pick> kinds;
    long referenceNumber = 0;
    if (!analysis::analysisOptions(args, settings, error) || !parseKinds(args.value("kind").value_or("autopower"), kinds, error) ||
        !args.integer("reference", 0, referenceNumber, error))
        return usageFailure("spectrum", kUsage, error);

    analysis::TimeRecords loaded;
    std::vector<IMeasurement*> picked;
    if (!analysis::loadTimeRecords(file, loaded, error) || !analysis::pickChannels(loaded, args.value("channels").value_or(""), picked, error))
        return failure("spectrum", file, error);
    // The reference is analysed with the channels even when it is not one of them.
    std::vector<IMeasurement*> records = picked, reference;
    if (referenceNumber == 0) referenceNumber = analysis::numberOf(loaded, picked.front());
    if (!analysis::pickChannels(loaded, std::to_string(referenceNumber), reference, error))
        return failure("spectrum", file, error);
    auto at = std::find(records.begin(), records.end(), reference.front());
    settings.reference = static_cast<std::size_t>(at - records.begin());
    if (at == records.end()) records.push_back(reference.front());

    analysis::ChannelAnalysis result;
    {
        ProgressBar bar("spectrum", args.has("quiet"));
        if (!analysis::analyseChannels(records, settings, [&](double f) { bar.update(f); }, result, error))
            return failure("spectrum", file, error);
    }
    std::vector<IMeasurement*> results;
    for (std::size_t i = 0; i < picked.size(); ++i)
        for (Pick kind : kinds)
            if (IMeasurement* m = (result.channels[i].*kind).get()) results.push_back(m);
    if (results.empty()) return failure("spectrum", file, "the chosen kinds give nothing for the reference alone");
    if (!analysis::writeResults(results, out, error)) return failure("spectrum", out, error);
    return 0;
}

const CommandEntry spectrumCommand{"spectrum", spectrum,
                                   "spectrum FILE OUT  averaged spectra of a recording's channels into a .wkd or .csv: "
                                   "--channels LIST, --reference N, --kind autopower,psd,cross,frf,coherence, "
                                   "--block N, --window NAME, --averages N, --overlap PCT, --quiet"};

}  // namespace nvdl::tool
