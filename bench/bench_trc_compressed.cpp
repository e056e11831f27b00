// The reduced read of a long channel against the raw file: a float recording of one channel with
// 10^9 bytes of samples (30518 scans of 8192 samples), made once in $NVDL_BENCH_DIR (or /tmp) and
// kept, page-cached. The channel is reduced to 2000 values (MaxBlockSize 2000, LongFileFeature 1)
// beside positioned reads of the same bytes in 4 MiB pieces; both report the channel's bytes per
// second, and the reduced read its rate as a share of the raw one. The reduced read covers all but
// the last sample, so that it never leaves a min/max cache behind; a third case reads the whole
// channel of a second name of the file after its caches were built.
//
// The bench writes `<recording>.layout` beside the recording (stream offset, scan stride, block
// bytes, scans, blocksize, steps, step length) for bench/compressed_reference.py.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "RecordingBenchSetup.h"
#include "access/MinMaxCache.h"
#include "access/TrcCompressionPlan.h"
#include "access/TrcLoader.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcSetupsSection.h"
#include "recording/TrcTestDefinition.h"

namespace {

using namespace nvdl;

constexpr long kBlocksize = 8192;
constexpr long kScans = 30518;  // 10^9 bytes of float samples
constexpr std::int64_t kSamples = std::int64_t{kBlocksize} * kScans;
constexpr std::int64_t kChannelBytes = kSamples * 4;
constexpr long kMaxBlock = 2000;

double g_rawBytesPerSecond = 0;

struct Recording {
    std::filesystem::path dir, path, cached;
    trc::ScanGeometry geometry;
};

bool make(const std::filesystem::path& path) {
    trc::CTrc trc;
    auto& header = trc.GetRecorder().GetHeader();
    header.SetEnabled(1);
    header.SetDataSize(trc::kDataSizeFloat);
    auto& setup = header.GetSetup();
    setup.GetAcquisition().SetBlocksize(kBlocksize);
    setup.GetAcquisition().SetSampleFrequency(51200.0f);
    setup.GetProcessing().SetAverageNumber(kScans);
    auto input = std::make_unique<trc::CTrcInputChannel>();
    input->SetName("long");
    input->SetUsage(1);
    input->SetRange(10.0f);
    input->SetUnit("V");
    input->SetSensitivity(1.0f);
    input->SetCalibrationType("V/EU");
    setup.GetInputs().Add(std::move(input));
    auto& recorder = trc.GetRecorder();
    if (!trc.Create(path.c_str()) || !trc.GetSetups().Write() || !recorder.Write() || !trc.GetMeasurements().Write() ||
        !trc.GetTestDefinition().Write())
        return false;
    std::vector<float> scan(kBlocksize);
    trc::CTrcScanInfo info;
    info.SetRange(10.0f);
    for (long s = 1; s <= kScans; ++s) {
        for (long i = 0; i < kBlocksize; ++i)
            scan[static_cast<std::size_t>(i)] = static_cast<float>((s * 7919 + i * 104729) % 20011) * 1e-3f - 10.0f;
        if (!recorder.GetInputSection().WriteScan(s, reinterpret_cast<const unsigned char*>(scan.data()), kBlocksize) ||
            !recorder.GetInputSection().WriteInfo(s, 1, info))
            return false;
    }
    return trc.Close() != 0;
}

const Recording& recording() {
    static const Recording made = [] {
        Recording r;
        r.dir = bench::recordingBenchDir();
        r.path = r.dir / "nvdl_bench_compressed.trc";
        r.cached = r.dir / "nvdl_bench_compressed_cached.trc";
        trc::CTrc probe;
        if (!probe.Open(r.path.c_str()) || !probe.GetRecorder().Read() ||
            probe.GetRecorder().GetInputSection().GetGeometry().scans != kScans) {
            probe.Close();
            std::filesystem::remove(r.cached);
            if (!make(r.path) || !probe.Open(r.path.c_str()) || !probe.GetRecorder().Read()) std::abort();
        }
        r.geometry = probe.GetRecorder().GetInputSection().GetGeometry();
        std::error_code ec;
        if (!std::filesystem::exists(r.cached)) std::filesystem::create_hard_link(r.path, r.cached, ec);
        access::CompressionPlan plan;
        access::PlanCompression(0, kSamples, kSamples, kMaxBlock, 1, plan);
        std::ofstream layout(r.path.string() + ".layout");
        layout << r.geometry.streamOffset << ' ' << r.geometry.stride() << ' ' << r.geometry.blockBytes() << ' '
               << kScans << ' ' << kBlocksize << ' ' << plan.steps << ' ' << plan.stepLength << '\n';
        // The loader's settings: 2000 values at most, long recordings reduced.
        const std::filesystem::path settings = r.dir / "nvdl_bench_compressed_settings.txt";
        std::ofstream(settings) << "[HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings]\n"
                                << "\"MaxBlockSize\"=\"" << kMaxBlock << "\"\n\"LongFileFeature\"=\"1\"\n";
        ::setenv("NVDL_REGISTRY", settings.c_str(), 1);
        return r;
    }();
    return made;
}

// The stream's bytes, blocks and status records.
void RawReadOfTheChannel(benchmark::State& state) {
    const trc::ScanGeometry& g = recording().geometry;
    g_rawBytesPerSecond = bench::rawReads(state, recording().path, g.streamOffset, g.scanOffset(kScans + 1), kChannelBytes);
}
BENCHMARK(RawReadOfTheChannel)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

void reduce(benchmark::State& state, const std::filesystem::path& path, std::int64_t count) {
    access::CTrcLoader loader;
    if (!loader.OpenFile(path.c_str())) {
        state.SkipWithError("the recording cannot be opened");
        return;
    }
    double seconds = 0;
    for (auto _ : state) {
        float* y = nullptr;
        float factor, range;
        int uncompleted, useful;
        long status;
        const auto start = std::chrono::steady_clock::now();
        if (!loader.ReadCompressed(1, 1, -1, kSamples, 0, count, nullptr, &y, nullptr, &factor, &uncompleted, &useful,
                                   &range, &status))
            state.SkipWithError("reduced read failed");
        seconds += bench::secondsSince(start);
        benchmark::DoNotOptimize(y);
        std::free(y);
    }
    bench::reportShareOfRaw(state, kChannelBytes, seconds, g_rawBytesPerSecond);
}

void ReducedReadOfTheChannel(benchmark::State& state) { reduce(state, recording().path, kSamples - 1); }
BENCHMARK(ReducedReadOfTheChannel)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

void ReducedReadFromTheCache(benchmark::State& state) {
    static const long indexed = access::BuildMinMaxCaches(recording().cached.string());
    if (indexed < 1) {
        for (auto _ : state) state.SkipWithError("no min/max cache could be built");
        return;
    }
    reduce(state, recording().cached, kSamples);
}
BENCHMARK(ReducedReadFromTheCache)->Unit(benchmark::kMillisecond)->MinTime(1.0)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    recording();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
