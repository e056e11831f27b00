#include "measurement/FloatExtremes.h"

#include <cstring>

#include "platform/CpuFeatures.h"

namespace nvdl {

namespace {

// The pass over whole groups of vectors, for a vector type V of W lanes: four independent pairs of
// accumulators, so that no step waits on the one before; each comparison and choice is one
// instruction. The values before `done` are taken; the caller takes the rest.
template <class V, std::size_t W>
NVDL_INLINE_LOOP std::size_t vectorExtremes(const float* in, std::size_t n, float& lowest,
                                                                  float& highest) {
    if (n < 4 * W) return 0;
    V startLow, startHigh;
    for (std::size_t k = 0; k < W; ++k) {
        startLow[k] = lowest;
        startHigh[k] = highest;
    }
    V lo0 = startLow, lo1 = startLow, lo2 = startLow, lo3 = startLow;
    V hi0 = startHigh, hi1 = startHigh, hi2 = startHigh, hi3 = startHigh;
    std::size_t i = 0;
    for (; i + 4 * W <= n; i += 4 * W) {
        V a, b, c, d;
        std::memcpy(&a, in + i, sizeof a);
        std::memcpy(&b, in + i + W, sizeof b);
        std::memcpy(&c, in + i + 2 * W, sizeof c);
        std::memcpy(&d, in + i + 3 * W, sizeof d);
        lo0 = a < lo0 ? a : lo0;
        hi0 = a > hi0 ? a : hi0;
        lo1 = b < lo1 ? b : lo1;
        hi1 = b > hi1 ? b : hi1;
        lo2 = c < lo2 ? c : lo2;
        hi2 = c > hi2 ? c : hi2;
        lo3 = d < lo3 ? d : lo3;
        hi3 = d > hi3 ? d : hi3;
    }
    lo0 = lo1 < lo0 ? lo1 : lo0;
    lo2 = lo3 < lo2 ? lo3 : lo2;
    const V lo = lo2 < lo0 ? lo2 : lo0;
    hi0 = hi1 > hi0 ? hi1 : hi0;
    hi2 = hi3 > hi2 ? hi3 : hi2;
    const V hi = hi2 > hi0 ? hi2 : hi0;
    for (std::size_t k = 0; k < W; ++k) {
        if (lo[k] < lowest) lowest = lo[k];
        if (hi[k] > highest) highest = hi[k];
    }
    return i;
}

typedef float Lanes4 __attribute__((vector_size(16)));

std::size_t baselineExtremes(const float* in, std::size_t n, float& lowest, float& highest) {
    return vectorExtremes<Lanes4, 4>(in, n, lowest, highest);
}

#if NVDL_HAS_AVX2_BUILD
typedef float Lanes8 __attribute__((vector_size(32)));

NVDL_AVX2 std::size_t avx2Extremes(const float* in, std::size_t n, float& lowest, float& highest) {
    return vectorExtremes<Lanes8, 8>(in, n, lowest, highest);
}
#else
constexpr auto avx2Extremes = baselineExtremes;
#endif

using Pass = std::size_t(const float*, std::size_t, float&, float&);
Pass* const g_vectorPass = pickBuild<Pass>(avx2Extremes, baselineExtremes);

}  // namespace

void floatExtremes(const float* in, std::size_t n, float& lowestSoFar, float& highestSoFar) {
    float lowest = lowestSoFar, highest = highestSoFar;
    for (std::size_t i = g_vectorPass(in, n, lowest, highest); i < n; ++i) {
        const float x = in[i];
        lowest = x < lowest ? x : lowest;
        highest = x > highest ? x : highest;
    }
    lowestSoFar = lowest;
    highestSoFar = highest;
}

}  // namespace nvdl
