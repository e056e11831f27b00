// Opening a project file reads measurement headers only, as a workspace file does: the open time and
// the resident memory it takes stay nearly flat from a project of 10 MB of samples to one of 1 GB
// (one workspace of ten time records, nested under Data/File 1).
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "PagingBenchSetup.h"
#include "WorkspaceBenchFile.h"
#include "project/Project.h"
#include "project/ProjectFile.h"
#include "project/SmallStreams.h"

namespace {

using namespace nvdl;

std::filesystem::path workDir() { return bench::pagingWorkDir("nvdl_bench_vpj"); }

// A project file whose one workspace holds ten time records of `blocks` blocks each.
std::filesystem::path projectFile(LONG blocks) {
    const auto file = workDir() / ("project" + std::to_string(blocks) + ".vpj");
    if (std::filesystem::exists(file)) return file;
    constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
    ComPtr<IStorage> root, version, data, workspace;
    createCompoundFile(file, kCreate, root.out(), CompoundFileOptions{true});
    root->SetClass(CLSID_CProject);
    root->CreateStorage(u"Version", kCreate, 0, 0, version.out());
    const char tags[] = "20001123\0" "20030221";
    writeSmallStream(version.get(), u"Version", tags, sizeof tags);
    root->CreateStorage(u"Data", kCreate, 0, 0, data.out());
    data->CreateStorage(u"File 1", kCreate, 0, 0, workspace.out());
    bench::writeTimeRecordWorkspace(workspace.get(), blocks);
    workspace.reset();
    data.reset();
    root->Commit(STGC_DEFAULT);
    return file;
}

void OpenProjectFile(benchmark::State& state) {
    const auto file = projectFile(static_cast<LONG>(state.range(0)));
    const long before = bench::residentKiB();
    long openGrowth = 0;
    for (auto _ : state) {
        ComPtr<IDispatch> object(CProject::create());
        auto* project = dynamic_cast<CProject*>(CFrameBase::of(object.get()));
        ComPtr<IStorage> root;
        std::string message;
        if (FAILED(openCompoundFile(file, STGM_READ, root.out())) ||
            FAILED(readProjectTree(root.get(), *project, file.string(), message)) || project->workspaces().size() != 1)
            state.SkipWithError("open failed");
        openGrowth = std::max(openGrowth, bench::residentKiB() - before);
    }
    state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(file)) / 1e6;
    state.counters["rss_growth_MiB"] = static_cast<double>(openGrowth) / 1024.0;
}
BENCHMARK(OpenProjectFile)->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond)->MinTime(1.0)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
