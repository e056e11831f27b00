#include "access/TrcCompressionPlan.h"

#include <algorithm>
#include <array>

#include "measurement/FloatExtremes.h"

namespace nvdl::access {

int PlanCompression(std::int64_t start, std::int64_t count, std::int64_t fileSamples, long maximum,
                    int longFileFeature, CompressionPlan& plan) {
    if (start < 0 || count < 1 || fileSamples < 1 || maximum < 1) return 0;
    plan = CompressionPlan{};
    if (longFileFeature) {
        if (fileSamples > maximum) plan.uncompleted = 1;
        if (count > maximum) plan.useful = 0;
    }
    if (plan.uncompleted == 0 || plan.useful == 1) {
        plan.stepLength = longFileFeature ? std::min<std::int64_t>(maximum, count) : fileSamples;
        return 1;
    }
    // A maximum of 1 leaves no room for a pair: no step could be taken.
    if (maximum < 2) return 0;
    plan.factor = static_cast<float>(static_cast<double>(count) / static_cast<double>(maximum));
    plan.steps = maximum / 2;
    plan.stepLength = count / plan.steps;
    return 1;
}

std::int64_t PickReadChunk(std::int64_t stepLength, std::int64_t fileSamples) {
    // The walk ends at 128: shorter pieces would cost more calls than they save.
    static constexpr std::array<std::int64_t, 12> kChunks{262144, 131072, 65536, 32768, 16384, 8192,
                                                          4096,   2048,   1024,  512,   256,   128};
    if (stepLength < 1 || fileSamples < 1) return stepLength;
    for (const std::int64_t chunk : kChunks)
        if (fileSamples % chunk == 0 && chunk >= stepLength) return chunk;
    return stepLength;
}

void ReduceMinMax(const float* source, std::int64_t n, float* target, std::int64_t targetLength,
                  std::int64_t& position) {
    if (position < 0 || position + 1 >= targetLength) return;
    float lowest = kMinimumStart, highest = kMaximumStart;
    if (n > 0) floatExtremes(source, static_cast<std::size_t>(n), lowest, highest);
    target[position] = lowest;
    target[position + 1] = highest;
    position += 2;
}

}  // namespace nvdl::access
