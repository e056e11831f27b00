// What the recording benchmarks share: the folder their long recordings are kept in, the clock, and
// the positioned reads of a file in 4 MiB pieces that each reading benchmark is set beside. Those
// reads run first and bring the file into the page cache for the reads compared with them.
#pragma once

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace nvdl::bench {

// $NVDL_BENCH_DIR, else /tmp: long recordings are made there once and kept between runs.
inline std::filesystem::path recordingBenchDir() {
    const char* dir = std::getenv("NVDL_BENCH_DIR");
    return dir && *dir ? dir : "/tmp";
}

inline double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Reads the bytes [begin, end) of `path` once per iteration and reports `counted` bytes per
// iteration as processed; answers that rate in bytes per second.
inline double rawReads(benchmark::State& state, const std::filesystem::path& path, std::int64_t begin,
                       std::int64_t end, std::int64_t counted) {
    constexpr std::int64_t kPiece = std::int64_t{4} << 20;
    const int fd = ::open(path.c_str(), O_RDONLY);
    std::vector<char> buffer(kPiece);
    double seconds = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (std::int64_t at = begin; at < end;) {
            const ssize_t got = ::pread(fd, buffer.data(), static_cast<std::size_t>(std::min(kPiece, end - at)), at);
            if (got <= 0) {
                state.SkipWithError("raw read failed");
                break;
            }
            at += got;
        }
        seconds += secondsSince(start);
        benchmark::DoNotOptimize(buffer.data());
    }
    if (fd >= 0) ::close(fd);
    state.SetBytesProcessed(state.iterations() * counted);
    return seconds > 0 ? static_cast<double>(state.iterations() * counted) / seconds : 0;
}

// The rate of `counted` bytes per iteration in `seconds` as a share of the raw rate, as a counter.
inline void reportShareOfRaw(benchmark::State& state, std::int64_t counted, double seconds, double rawBytesPerSecond) {
    state.SetBytesProcessed(state.iterations() * counted);
    const double rate = seconds > 0 ? static_cast<double>(state.iterations() * counted) / seconds : 0;
    state.counters["share_of_raw"] = rawBytesPerSecond > 0 ? rate / rawBytesPerSecond : 0;
}

}  // namespace nvdl::bench
