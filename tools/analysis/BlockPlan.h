// How a long time record is cut into analysis blocks: each block is `block` samples long and starts
// `step` samples after the one before, the step following from the overlap that neighbouring blocks
// share. Only whole blocks are taken; samples after the last whole block are left out.
#pragma once

#include <cstdint>
#include <string>

namespace nvdl::analysis {

struct BlockPlan {
    long block = 0;
    long step = 0;
    long count = 0;  // blocks to take

    std::int64_t start(long index) const { return static_cast<std::int64_t>(index) * step; }
};

// The plan for a record of `samples` samples, with `overlapPercent` from 0 up to (not including) 100
// and `averages` blocks wanted, 0 for every whole block the record holds. False with `error` set
// when the numbers make no plan: a block below 2 samples, an overlap out of range, a record shorter
// than one block, or more averages than the record has blocks.
bool planBlocks(std::int64_t samples, long block, double overlapPercent, long averages, BlockPlan& plan,
                std::string& error);

}  // namespace nvdl::analysis
