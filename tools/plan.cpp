// nvdl plan SIZE...: measures the fastest FFTW plans of the kernel's real transforms (forward and
// backward) for each length and keeps them as FFTW wisdom in the user's cache directory, so that
// every later process runs transforms of these lengths on measured plans from their first call.
// One line per length: the length, "known" (wisdom had it already) or "measured", and the seconds
// it took, tab-separated; then the wisdom file's path. Measuring takes seconds per length, tens of
// seconds from about a million points up.
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "analysis/FftPlanner.h"
#include "commands.h"

namespace nvdl::tool {

namespace {

// A whole decimal number within 1..INT_MAX, or 0.
long parseLength(const char* text) {
    char* end = nullptr;
    errno = 0;
    long n = std::strtol(text, &end, 10);
    if (errno != 0 || end == text || *end != '\0' || n < 1 || n > INT_MAX) return 0;
    return n;
}

}  // namespace

int plan(int argc, char** argv) {
    std::vector<long> lengths;
    for (int i = 0; i < argc; ++i) {
        long n = parseLength(argv[i]);
        if (n == 0) {
            std::fprintf(stderr, "nvdl plan: not a transform length: %s\n", argv[i]);
            return 2;
        }
        lengths.push_back(n);
    }
    if (lengths.empty()) {
        std::fprintf(stderr, "usage: nvdl plan SIZE...\n");
        return 2;
    }
    const std::string path = analysis::fftWisdomPath();
    if (path.empty()) {
        std::fprintf(stderr, "nvdl plan: the wisdom file is turned off (NVDL_FFT_WISDOM=0) or HOME is not set\n");
        return 1;
    }
    for (long n : lengths) {
        auto start = std::chrono::steady_clock::now();
        analysis::FftMeasureResult result = analysis::measureFftPlans(n);
        double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        switch (result) {
            case analysis::FftMeasureResult::Known:
            case analysis::FftMeasureResult::Measured:
                std::printf("%ld\t%s\t%.2f\n", n, result == analysis::FftMeasureResult::Known ? "known" : "measured",
                            seconds);
                std::fflush(stdout);
                break;
            case analysis::FftMeasureResult::NotSaved:
                std::fprintf(stderr, "nvdl plan: cannot write %s\n", path.c_str());
                return 1;
            case analysis::FftMeasureResult::CannotPlan:
                std::fprintf(stderr, "nvdl plan: FFTW cannot plan length %ld\n", n);
                return 1;
        }
    }
    std::printf("wisdom\t%s\n", path.c_str());
    return 0;
}

const CommandEntry planCommand{"plan", plan, "plan SIZE...    measure FFT plans of these lengths and keep them in the user's cache, so transforms of them run at full speed"};

}  // namespace nvdl::tool
