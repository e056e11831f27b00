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
#include "cli/Failure.h"
#include "commands.h"

namespace nvdl::tool {

namespace {

constexpr const char* kUsage = "plan SIZE...    measure FFT plans of these lengths and keep them in the user's cache, so transforms of them run at full speed";

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
            return usageFailure("plan", kUsage, std::string("not a transform length: ") + argv[i]);
        }
        lengths.push_back(n);
    }
    if (lengths.empty()) {
        return usageFailure("plan", kUsage);
    }
    const std::string path = analysis::fftWisdomPath();
    if (path.empty()) {
        return failure("plan", "-", "the wisdom file is turned off (NVDL_FFT_WISDOM=0) or HOME is not set");
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
                return failure("plan", path, "cannot write the wisdom file");
            case analysis::FftMeasureResult::CannotPlan:
                return failure("plan", "-", "FFTW cannot plan length " + std::to_string(n));
        }
    }
    std::printf("wisdom\t%s\n", path.c_str());
    return 0;
}

const CommandEntry planCommand{"plan", plan, kUsage};

}  // namespace nvdl::tool
