// What the transform benchmarks share: the test signal and the daFft loop, whose output arrays are
// made anew by every call as the kernel's callers get them.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "nvdl/daDspLib.h"

namespace nvdl::bench {

inline std::vector<float> randomSignal(long n)
{
    std::mt19937 generator(42);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> x(static_cast<size_t>(n));
    for (float& v : x)
        v = uniform(generator);
    return x;
}

inline void runDaFft(benchmark::State& state)
{
    const long n = state.range(0);
    std::vector<float> x = randomSignal(n);
    daVector time{x.data(), nullptr, n};
    daVector spectrum{nullptr, nullptr, 0};
    if (daFft(time, &spectrum) != 0) {
        state.SkipWithError("daFft failed");
        return;
    }
    for (auto _ : state) {
        daFft(time, &spectrum);
        benchmark::DoNotOptimize(spectrum.real);
        benchmark::ClobberMemory();
    }
    std::free(spectrum.real);
    std::free(spectrum.imag);
    state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace nvdl::bench
