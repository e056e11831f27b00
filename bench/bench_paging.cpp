// Paging a long record against the raw file: the min/max overview of a 10^8-sample (400 MB) record
// in a workspace file, page-cached, beside a positioned read of the same bytes; and the block writer
// beside a plain write of the same bytes. Each reports bytes per second and its resident memory growth.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "PagingBenchSetup.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/Persist.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"

namespace {

using namespace nvdl;

constexpr LONG kBlockSize = 100'000;
constexpr LONG kBlocks = 1'000;
constexpr std::int64_t kSamples = std::int64_t{kBlockSize} * kBlocks;
constexpr std::size_t kRawPiece = std::size_t{4} << 20;

std::filesystem::path workDir() { return bench::pagingWorkDir("nvdl_bench_paging"); }

using bench::residentKiB;

float sample(std::int64_t i) { return static_cast<float>(i % 20011) * 0.01f - 100.0f; }

// Writes the record through the block writer into "Workspace/Blocks/Meas0" of a new file.
void writeRecord(const std::filesystem::path& file) {
    ComPtr<IStorage> root, workspace, blocks;
    createCompoundFile(file, STGM_CREATE | STGM_READWRITE, root.out());
    root->CreateStorage(u"Workspace", 0x1011, 0, 0, workspace.out());
    workspace->CreateStorage(u"Blocks", 0x1011, 0, 0, blocks.out());
    {
        ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
        auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
        Bstr name{std::string_view{"Meas0"}}, xUnit{std::string_view{"s"}}, yUnit{std::string_view{"Pa"}};
        Bstr none{std::string_view{}};
        writer->Create(blocks.get(), name.get());
        writer->BeginTimeRecord(kBlocks, kBlockSize, 1000.0, 0.0f, xUnit.get(), yUnit.get(), none.get(), none.get(), 0.0,
                                0.0, nullptr);
        std::vector<float> block(kBlockSize);
        for (LONG b = 0; b < kBlocks; ++b) {
            for (LONG i = 0; i < kBlockSize; ++i) block[static_cast<std::size_t>(i)] = sample(std::int64_t{b} * kBlockSize + i);
            writer->WriteBlock(block.data(), kBlockSize, 0);
        }
        writer->Finish(nullptr);
        writer->Close();
    }
    blocks.reset();
    workspace.reset();
    root->Commit(STGC_DEFAULT);
}

const std::filesystem::path& recordFile() {
    static const std::filesystem::path file = [] {
        auto f = workDir() / "record.wkd";
        writeRecord(f);
        return f;
    }();
    return file;
}

ComPtr<CMeasurement> pagedRecord() {
    ComPtr<IStorage> root, workspace, blocks;
    ComPtr<IStream> stream;
    openCompoundFile(recordFile(), STGM_READ, root.out());
    root->OpenStorage(u"Workspace", nullptr, 0x10010, nullptr, 0, workspace.out());
    workspace->OpenStorage(u"Blocks", nullptr, 0x10010, nullptr, 0, blocks.out());
    blocks->OpenStream(u"Meas0", nullptr, 0x10, 0, stream.out());
    ComPtr<CMeasurement> m(CMeasurement::createMeasurement());
    Bstr path{std::string_view{recordFile().string()}}, empty{std::string_view{}}, name{std::string_view{"Meas0"}};
    m->Location(path.get(), 0, empty.get(), name.get(), CMeasurementBlockWriter::kTag);
    ComPtr<IPersistStream> persist;
    m->QueryInterface(IID_IPersistStream, persist.outVoid());
    persist->Load(stream.get());
    return m;
}

void OverviewOfTheRecord(benchmark::State& state) {
    ComPtr<CMeasurement> m = pagedRecord();
    const long before = residentKiB();
    for (auto _ : state) {
        if (FAILED(m->ReadData(0, static_cast<LONG>(kSamples)))) state.SkipWithError("overview read failed");
        m->ReadData(0, 10);  // the next overview reads the file again
    }
    state.SetBytesProcessed(state.iterations() * kSamples * 4);
    state.counters["rss_growth_MiB"] = static_cast<double>(residentKiB() - before) / 1024.0;
}
BENCHMARK(OverviewOfTheRecord)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

void RawReadOfTheSameBytes(benchmark::State& state) {
    const int fd = ::open(recordFile().c_str(), O_RDONLY);
    std::vector<char> buffer(kRawPiece);
    const long before = residentKiB();
    for (auto _ : state) {
        std::int64_t total = 0;
        for (ssize_t got; (got = ::pread(fd, buffer.data(), buffer.size(), total)) > 0;) total += got;
        benchmark::DoNotOptimize(total);
    }
    ::close(fd);
    state.SetBytesProcessed(state.iterations() * kSamples * 4);
    state.counters["rss_growth_MiB"] = static_cast<double>(residentKiB() - before) / 1024.0;
}
BENCHMARK(RawReadOfTheSameBytes)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

void BlockWriterWrite(benchmark::State& state) {
    const long before = residentKiB();
    for (auto _ : state) writeRecord(workDir() / "written.wkd");
    state.SetBytesProcessed(state.iterations() * kSamples * 4);
    state.counters["rss_growth_MiB"] = static_cast<double>(residentKiB() - before) / 1024.0;
}
BENCHMARK(BlockWriterWrite)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

void RawWriteOfTheSameBytes(benchmark::State& state) {
    std::vector<float> block(kBlockSize);
    const long before = residentKiB();
    for (auto _ : state) {
        const int fd = ::open((workDir() / "raw.bin").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        for (LONG b = 0; b < kBlocks; ++b) {
            for (LONG i = 0; i < kBlockSize; ++i) block[static_cast<std::size_t>(i)] = sample(std::int64_t{b} * kBlockSize + i);
            if (::write(fd, block.data(), block.size() * 4) < 0) state.SkipWithError("write failed");
        }
        ::close(fd);
    }
    state.SetBytesProcessed(state.iterations() * kSamples * 4);
    state.counters["rss_growth_MiB"] = static_cast<double>(residentKiB() - before) / 1024.0;
}
BENCHMARK(RawWriteOfTheSameBytes)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    workDir();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::filesystem::remove_all(workDir());
    return 0;
}
