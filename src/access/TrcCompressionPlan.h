// The arithmetic of a reduced read: how a span of a source is cut into steps, how a step becomes a
// pair of values, and how long the pieces are in which a stored curve is read.
#pragma once

#include <cstdint>

namespace nvdl::access {

struct CompressionPlan {
    float factor = 1.0f;  // values of the source per value handed out; 1.0 when nothing is reduced
    int uncompleted = 0;  // the source has more values than one read hands out
    int useful = 1;       // the span comes back whole
    std::int64_t stepLength = 0;
    long steps = 1;
};

// Plans the read of `count` values from `start` of a source of `fileSamples` values when at most
// `maximum` values are handed out. Without the long file feature the whole source is one step;
// with it a span longer than `maximum` of a source longer than `maximum` is reduced to maximum / 2
// steps of one minimum and one maximum each. 0 for a negative start, a count or source of no
// values, or a maximum too small to hold one pair when a reduction is due.
int PlanCompression(std::int64_t start, std::int64_t count, std::int64_t fileSamples, long maximum,
                    int longFileFeature, CompressionPlan& plan);

// The length of the pieces in which a stored curve of `fileSamples` values is read for steps of
// `stepLength`: the largest power of two from 2^18 down to 2^7 that divides the curve exactly and
// is at least the step, else the step itself.
std::int64_t PickReadChunk(std::int64_t stepLength, std::int64_t fileSamples);

// The smallest and then the largest of `n` values into target[position] and target[position + 1],
// and the position moves on by 2. The search starts from +2147483648.0 and -2147483648.0, so a
// run of values all above (or all below) that mark gives the mark itself. Nothing is written when
// the pair would not fit in `targetLength`.
void ReduceMinMax(const float* source, std::int64_t n, float* target, std::int64_t targetLength,
                  std::int64_t& position);

// The marks the search of a pair starts from.
inline constexpr float kMinimumStart = 2147483648.0f;
inline constexpr float kMaximumStart = -2147483648.0f;

}  // namespace nvdl::access
