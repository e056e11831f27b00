// Reading one setting from the settings store, as a new measurement does: with the settings file
// present and unchanged, and with no file at all (a new machine, where even its directory is
// missing).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "platform/Registry.h"

namespace {

// A private directory for the store, pointed to by NVDL_REGISTRY while the benchmark runs.
class StoreDirectory {
public:
    StoreDirectory()
        : dir_(std::filesystem::temp_directory_path() / ("nvdl_bench_registry_" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(dir_);
    }
    ~StoreDirectory() {
        ::unsetenv("NVDL_REGISTRY");
        std::filesystem::remove_all(dir_);
    }
    StoreDirectory(const StoreDirectory&) = delete;
    StoreDirectory& operator=(const StoreDirectory&) = delete;

    void useStore(const std::filesystem::path& file) { ::setenv("NVDL_REGISTRY", file.c_str(), 1); }
    const std::filesystem::path& dir() const { return dir_; }

private:
    std::filesystem::path dir_;
};

void ReadSettingFilePresent(benchmark::State& state) {
    StoreDirectory store;
    const std::filesystem::path file = store.dir() / "registry.txt";
    std::ofstream(file) << "[HKEY_CURRENT_USER\\" << nvdl::registry::kSettingsKey << "]\n"
                        << "\"MaxBlockSize\"=\"4096\"\n\"LongFileFeature\"=\"1\"\n";
    store.useStore(file);
    // A file written moments ago may still change without a new time stamp and is compared byte
    // by byte on every read; the steady state of a settings file is an old one.
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    if (nvdl::registry::readSetting("MaxBlockSize") != "4096") state.SkipWithError("the file was not read");
    for (auto _ : state) benchmark::DoNotOptimize(nvdl::registry::readSetting("MaxBlockSize"));
}
BENCHMARK(ReadSettingFilePresent);

void ReadSettingFileMissing(benchmark::State& state) {
    StoreDirectory store;
    store.useStore(store.dir() / "nvdl" / "registry.txt");
    if (nvdl::registry::readSetting("MaxBlockSize") != "32768") state.SkipWithError("the default was not read");
    for (auto _ : state) benchmark::DoNotOptimize(nvdl::registry::readSetting("MaxBlockSize"));
}
BENCHMARK(ReadSettingFileMissing);

}  // namespace

BENCHMARK_MAIN();
