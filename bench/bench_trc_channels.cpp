// Reading a recording channel by channel against the raw file: a float recording of 8 channels and
// 4000 scans of 8192 samples (1.05 GB), page-cached, read channel after channel with ReadChannel
// in spans of 64 blocks, beside positioned reads of the whole file in 4 MiB pieces in the same run.
// Each reports bytes per second; the channel read also reports its rate as a share of the raw one.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "RecordingBenchSetup.h"
#include "recording/TrcFile.h"
#include "recording/TrcRecorderSection.h"

namespace {

using namespace nvdl::trc;
namespace bench = nvdl::bench;

constexpr long kChannels = 8;
constexpr long kBlocksize = 8192;
constexpr long kScans = 4000;
constexpr std::int64_t kChannelSamples = std::int64_t{kBlocksize} * kScans;
constexpr std::int64_t kSpan = 64 * kBlocksize;
constexpr std::int64_t kSampleBytes = kChannelSamples * kChannels * 4;

double g_rawBytesPerSecond = 0;

// Holds the table the recorder's entry stands in.
class Root final : public CTrcBaseSection {
public:
    std::int64_t GetSectionSize() override { return 0; }
    CTrcTableManagment* GetToc() override { return &toc; }
    CTrcTableManagment toc;
};

struct Recording {
    std::filesystem::path dir, path;
    TocEntry entry;  // the recorder's place in the file
};

// Lays the recording out from its setup and writes every scan, once.
const Recording& recording() {
    static const Recording made = [] {
        Recording r;
        r.dir = std::filesystem::temp_directory_path() / ("nvdl_bench_trc_" + std::to_string(::getpid()));
        std::filesystem::create_directories(r.dir);
        r.path = r.dir / "channels.trc";
        CTrcFile file;
        Root root;
        CTrcRecorderSection recorder;
        file.Create(r.path.c_str(), 0);
        recorder.Init(&file, &root);
        CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
        setup.GetAcquisition().SetBlocksize(kBlocksize);
        for (long c = 0; c < kChannels; ++c) {
            setup.GetInputs().Add(std::make_unique<CTrcInputChannel>());
            setup.GetInputs().GetItem(c)->SetUsage(1);
        }
        setup.GetProcessing().SetAverageNumber(kScans);
        recorder.SetSectionOffset(tocSize(4));
        recorder.UpdateTocSections();
        root.toc.Add(recorder);
        file.SetFileSize(tocSize(4) + recorder.GetSectionSize());
        recorder.Write();
        std::vector<float> scan(std::size_t{kBlocksize} * kChannels);
        for (long s = 1; s <= kScans; ++s) {
            for (std::size_t i = 0; i < scan.size(); ++i)
                scan[i] = static_cast<float>(s) + static_cast<float>(i) * 1e-3f;
            recorder.GetInputSection().WriteScan(s, reinterpret_cast<const unsigned char*>(scan.data()),
                                                 std::int64_t{kBlocksize} * kChannels);
        }
        r.entry = *root.toc.GetItem(0);
        return r;
    }();
    return made;
}

void RawReadOfTheFile(benchmark::State& state) {
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(recording().path));
    g_rawBytesPerSecond = bench::rawReads(state, recording().path, 0, size, size);
}
BENCHMARK(RawReadOfTheFile)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

void ReadChannelWholeChannels(benchmark::State& state) {
    CTrcFile file;
    Root root;
    CTrcRecorderSection recorder;
    file.Open(recording().path.c_str());
    root.toc.Add(std::make_unique<TocEntry>(recording().entry));
    recorder.Init(&file, &root);
    recorder.SetSectionIndex(0);
    if (!recorder.Read()) state.SkipWithError("the recording cannot be read");
    CTrcRecorderInputSection& inputs = recorder.GetInputSection();
    std::vector<unsigned char> span(static_cast<std::size_t>(kSpan * 4));
    double seconds = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (long c = 1; c <= kChannels; ++c)
            for (std::int64_t at = 0; at < kChannelSamples; at += kSpan)
                if (!inputs.ReadChannel(c, at, span.data(), std::min(kSpan, kChannelSamples - at)))
                    state.SkipWithError("channel read failed");
        seconds += bench::secondsSince(start);
        benchmark::DoNotOptimize(span.data());
    }
    bench::reportShareOfRaw(state, kSampleBytes, seconds, g_rawBytesPerSecond);
}
BENCHMARK(ReadChannelWholeChannels)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    recording();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::filesystem::remove_all(recording().dir);
    return 0;
}
