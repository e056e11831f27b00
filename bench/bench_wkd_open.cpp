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
#include "WorkspaceBenchFile.h"
#include "platform/ComPtr.h"
#include "project/WkdStorage.h"
#include "project/Workspace.h"

namespace {

using namespace nvdl;

std::filesystem::path workDir() { return bench::pagingWorkDir("nvdl_bench_wkd"); }

using bench::kMeasurements;
using bench::residentKiB;

// A workspace file of ten time records of `blocks` blocks each.
std::filesystem::path workspaceFile(LONG blocks) {
    const auto file = workDir() / ("ws" + std::to_string(blocks) + ".wkd");
    if (std::filesystem::exists(file)) return file;
    ComPtr<IStorage> root;
    createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out(), CompoundFileOptions{true});
    bench::writeTimeRecordWorkspace(root.get(), blocks);
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
