// Reduced reads through the min/max cache: a float recording of one channel with 10^9 bytes of
// samples (made once in $NVDL_BENCH_DIR or /tmp and kept), its cache made once by
// BuildMinMaxCaches (timed), then the whole channel reduced to 1000 steps (2000 values), with the
// cache already loaded and with the load counted. Two signals: noise, whose steps rarely need raw
// samples, and a rising ramp, whose every step needs its edges.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "../tests/access/RecordingBuilder.h"
#include "RecordingBenchSetup.h"
#include "access/MinMaxCache.h"

namespace {

using namespace nvdl::access;

constexpr long kBlock = 8192;
constexpr long kScans = 30518;  // 10^9 bytes of float samples
constexpr std::int64_t kSamples = std::int64_t{kBlock} * kScans;
constexpr long kSteps = 1000;

float noise(long, std::int64_t i) {
    std::uint32_t h = static_cast<std::uint32_t>(i) * 2654435761u;
    h ^= h >> 15;
    return static_cast<float>(h % 20001) * 1e-3f - 10.0f;
}
float ramp(long, std::int64_t i) { return static_cast<float>(i) * 1e-6f; }

// The recording of a signal, made and indexed once; the path.
std::string recording(const char* name, float (*signal)(long, std::int64_t)) {
    const std::string path = (nvdl::bench::recordingBenchDir() / name).string();
    if (!CMinMaxCache::Load(path, 1, 1)) {
        nvdl::testing::RecordingPlan plan;
        plan.block = kBlock;
        plan.scans = kScans;
        plan.inputs = {{"a"}};
        plan.sample = signal;
        std::error_code ec;
        const std::uintmax_t size = std::filesystem::file_size(path, ec);
        if ((ec || size < std::uintmax_t{4} * kSamples) && !nvdl::testing::writeRecording(path, plan))
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
        const auto start = std::chrono::steady_clock::now();
        const long built = BuildMinMaxCaches(path);
        std::fprintf(stderr, "%s: %ld cache(s) built in %.2f s\n", name, built, nvdl::bench::secondsSince(start));
    }
    return path;
}

void reduceWholeChannel(benchmark::State& state, const std::string& path, bool loadEachTime) {
    std::vector<StepExtremes> out(kSteps);
    long status = 0;
    float range = 0;
    auto cache = CMinMaxCache::Load(path, 1, 1);
    for (auto _ : state) {
        if (loadEachTime) cache = CMinMaxCache::Load(path, 1, 1);
        if (!cache || !cache->Reduce(0, kSamples / kSteps, kSteps, out.data(), &status, &range)) {
            state.SkipWithError("no cache answer");
            break;
        }
        benchmark::DoNotOptimize(out.data());
    }
}

void Noise(benchmark::State& state) {
    reduceWholeChannel(state, recording("nvdl_bench_minmax_noise.trc", noise), false);
}
void NoiseWithLoad(benchmark::State& state) {
    reduceWholeChannel(state, recording("nvdl_bench_minmax_noise.trc", noise), true);
}
void Ramp(benchmark::State& state) { reduceWholeChannel(state, recording("nvdl_bench_minmax_ramp.trc", ramp), false); }
void RampWithLoad(benchmark::State& state) {
    reduceWholeChannel(state, recording("nvdl_bench_minmax_ramp.trc", ramp), true);
}

BENCHMARK(Noise)->Unit(benchmark::kMillisecond);
BENCHMARK(NoiseWithLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(Ramp)->Unit(benchmark::kMillisecond);
BENCHMARK(RampWithLoad)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
