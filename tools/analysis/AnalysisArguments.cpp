#include "analysis/AnalysisArguments.h"

namespace nvdl::analysis {

const std::set<std::string>& analysisOptionNames() {
    static const std::set<std::string> names{"block", "window", "averages", "overlap"};
    return names;
}

bool analysisOptions(const tool::Arguments& args, AnalysisOptions& options, std::string& error) {
    long block = 0, averages = 0;
    double overlap = 0.0;
    if (!args.integer("block", options.block, block, error) || !args.integer("averages", options.averages, averages, error) ||
        !args.number("overlap", options.overlap, overlap, error))
        return false;
    options.block = block;
    options.averages = averages;
    options.overlap = overlap;
    if (auto name = args.value("window")) {
        options.window = windowCode(*name);
        if (options.window < 0) {
            error = "unknown window \"" + *name + "\" (uniform, hanning, hamming, flattop, blackman, kaiser-bessel)";
            return false;
        }
    }
    return true;
}

}  // namespace nvdl::analysis
