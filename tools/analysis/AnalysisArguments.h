// The options that every command running the block analysis shares: --block N, --window NAME,
// --averages N (0 or absent: every whole block) and --overlap PCT.
#pragma once

#include <set>
#include <string>

#include "analysis/ChannelAnalysis.h"
#include "cli/Arguments.h"

namespace nvdl::analysis {

// The names of those options, for Arguments::parse.
const std::set<std::string>& analysisOptionNames();

// The options as given, the rest at their defaults (a block of 2048 samples, Hanning, 50% overlap,
// every block). False with `error` set for a value that is not a number or an unknown window.
bool analysisOptions(const tool::Arguments& args, AnalysisOptions& options, std::string& error);

}  // namespace nvdl::analysis
