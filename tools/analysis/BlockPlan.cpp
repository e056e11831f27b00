#include "analysis/BlockPlan.h"

#include <algorithm>
#include <cmath>

namespace nvdl::analysis {

bool planBlocks(std::int64_t samples, long block, double overlapPercent, long averages, BlockPlan& plan,
                std::string& error) {
    if (block < 2) {
        error = "a block needs at least 2 samples, not " + std::to_string(block);
        return false;
    }
    if (!(overlapPercent >= 0.0 && overlapPercent < 100.0)) {
        error = "the overlap is a percentage from 0 up to (not including) 100";
        return false;
    }
    if (averages < 0) {
        error = "the number of averages cannot be negative";
        return false;
    }
    if (samples < block) {
        error = "the record holds " + std::to_string(samples) + " samples, fewer than one block of " +
                std::to_string(block);
        return false;
    }
    // The step is rounded to whole samples and never 0, so that a 99.99% overlap still moves on.
    const long step = std::max(1L, std::lround(static_cast<double>(block) * (1.0 - overlapPercent / 100.0)));
    const std::int64_t available = (samples - block) / step + 1;
    if (averages > available) {
        error = "asks for " + std::to_string(averages) + " averages; the record holds " + std::to_string(available) +
                " blocks of " + std::to_string(block) + " samples at this overlap";
        return false;
    }
    plan.block = block;
    plan.step = step;
    plan.count = averages > 0 ? averages : static_cast<long>(std::min<std::int64_t>(available, 0x7FFFFFFF));
    return true;
}

}  // namespace nvdl::analysis
