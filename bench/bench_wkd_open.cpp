// Opening a workspace file reads measurement headers only: the open time and the resident memory it
// takes stay nearly flat from a 10 MB file to a 1 GB one (ten time records each, written by the
// block writer in 4096-byte sectors, as the workspace file loader writes them).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "PagingBenchSetup.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementBlockWriter.h"
#include "platform/ComPtr.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace {

using namespace nvdl;

constexpr int kMeasurements = 10;
constexpr LONG kBlockSize = 250'000;  // samples per written block: 1 MB

std::filesystem::path workDir() { return bench::pagingWorkDir("nvdl_bench_wkd"); }

using bench::residentKiB;

// A workspace file of ten time records of `blocks` blocks each.
std::filesystem::path workspaceFile(LONG blocks) {
    const auto file = workDir() / ("ws" + std::to_string(blocks) + ".wkd");
    if (std::filesystem::exists(file)) return file;
    ComPtr<IStorage> root, workspace, storage;
    createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out(), CompoundFileOptions{true});
    writeWkdHead(root.get(), "bench", 0, workspace.out());
    workspace->CreateStorage(u"Blocks", STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, 0, storage.out());
    std::vector<float> block(kBlockSize);
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<float>(i % 997) * 0.01f;
    for (int m = 0; m < kMeasurements; ++m) {
        ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
        auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
        Bstr name{std::string_view{"Meas<" + std::to_string(m) + ">"}}, unit{std::string_view{"s"}};
        Bstr none{std::string_view{}};
        writer->Create(storage.get(), name.get());
        writer->BeginTimeRecord(blocks, kBlockSize, 1000.0, 0.0f, unit.get(), unit.get(), none.get(), none.get(), 0.0, 0.0,
                                nullptr);
        for (LONG b = 0; b < blocks; ++b) writer->WriteBlock(block.data(), kBlockSize, 0);
        writer->Finish(nullptr);
        writer->Close();
    }
    storage.reset();
    workspace.reset();
    root->Commit(STGC_DEFAULT);
    return file;
}

void OpenWorkspaceFile(benchmark::State& state) {
    const auto file = workspaceFile(static_cast<LONG>(state.range(0)));
    const long before = residentKiB();
    long openGrowth = 0;
    for (auto _ : state) {
        ComPtr<IDispatch> object(CWorkspace::create());
        auto* ws = dynamic_cast<CWorkspace*>(CFrameBase::of(object.get()));
        ComPtr<IStorage> root;
        std::string message;
        if (FAILED(openCompoundFile(file, STGM_READ, root.out())) ||
            FAILED(loadWkd(root.get(), *ws, WkdPlace{file.string(), {}}, message)) || ws->measurements().size() != kMeasurements)
            state.SkipWithError("open failed");
        openGrowth = std::max(openGrowth, residentKiB() - before);
    }
    state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
    state.counters["rss_growth_MiB"] = static_cast<double>(openGrowth) / 1024.0;
}
BENCHMARK(OpenWorkspaceFile)->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond)->MinTime(1.0)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
