#include "measurement/FloatExtremes.h"

#include <cstring>

namespace nvdl {

namespace {

// Four lanes of the baseline vector unit; each comparison and choice below is one instruction.
typedef float Lanes __attribute__((vector_size(16)));
constexpr std::size_t kLanes = 4;
constexpr std::size_t kStreams = 4;  // independent accumulators, so that no step waits on the last

Lanes load(const float* p) {
    Lanes v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

}  // namespace

void floatExtremes(const float* in, std::size_t n, float& lowest, float& highest) {
    std::size_t i = 0;
    if (n >= kLanes * kStreams) {
        Lanes lo[kStreams], hi[kStreams];
        for (std::size_t s = 0; s < kStreams; ++s) {
            lo[s] = Lanes{lowest, lowest, lowest, lowest};
            hi[s] = Lanes{highest, highest, highest, highest};
        }
        for (; i + kLanes * kStreams <= n; i += kLanes * kStreams) {
            for (std::size_t s = 0; s < kStreams; ++s) {
                Lanes v = load(in + i + s * kLanes);
                lo[s] = v < lo[s] ? v : lo[s];
                hi[s] = v > hi[s] ? v : hi[s];
            }
        }
        for (std::size_t s = 0; s < kStreams; ++s)
            for (std::size_t k = 0; k < kLanes; ++k) {
                if (lo[s][k] < lowest) lowest = lo[s][k];
                if (hi[s][k] > highest) highest = hi[s][k];
            }
    }
    for (; i < n; ++i) {
        if (in[i] < lowest) lowest = in[i];
        if (in[i] > highest) highest = in[i];
    }
}

}  // namespace nvdl
