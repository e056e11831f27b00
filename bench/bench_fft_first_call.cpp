// The cost of the first transform of a length in a fresh process: daFft (without wisdom, and with a
// measured plan in the wisdom file) against FFTW's own first transform (allocate its arrays, plan
// with FFTW_ESTIMATE, copy the samples in, execute). Each figure is one fresh process, started
// REPEATS times (default 9) per length and kind, interleaved; medians and minima in milliseconds.
// The samples exist before the clock starts; both sides pay the page faults of their arrays, which
// dominate at large lengths. Lengths to be timed with wisdom are measured first if the wisdom file
// lacks them.
//   bench_fft_first_call [REPEATS]
#include <fftw3.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "analysis/FftPlanner.h"
#include "nvdl/daDspLib.h"

namespace {

const long kLengths[] = {4096, 65536, 786432, 1 << 20};

struct Kind {
    const char* name;
    const char* environment;  // prefix of the child's command line
    const char* child;
};
const Kind kKinds[] = {
    {"fftw", "", "fftw"},
    {"daFft, no wisdom", "NVDL_FFT_WISDOM=0 ", "daFft"},
    {"daFft, wisdom", "", "daFft"},
};

// Milliseconds of the first transform in this process.
double firstTransform(const char* kind, long n)
{
    std::mt19937 generator(42);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> x(static_cast<size_t>(n));
    for (float& v : x)
        v = uniform(generator);
    auto start = std::chrono::steady_clock::now();
    if (std::strcmp(kind, "fftw") == 0) {
        float* in = fftwf_alloc_real(static_cast<size_t>(n));
        fftwf_complex* out = fftwf_alloc_complex(static_cast<size_t>(n / 2 + 1));
        fftwf_plan plan = fftwf_plan_dft_r2c_1d(static_cast<int>(n), in, out, FFTW_ESTIMATE);
        std::copy(x.begin(), x.end(), in);
        fftwf_execute(plan);
        double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        fftwf_destroy_plan(plan);
        fftwf_free(in);
        fftwf_free(out);
        return ms;
    }
    daVector time{x.data(), nullptr, n};
    daVector spectrum{nullptr, nullptr, 0};
    if (daFft(time, &spectrum) != 0)
        return -1.0;
    double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    std::free(spectrum.real);
    std::free(spectrum.imag);
    return ms;
}

double runChild(const std::string& self, const Kind& kind, long n)
{
    std::string command = std::string(kind.environment) + "'" + self + "' --child " + kind.child + " " +
                          std::to_string(n);
    FILE* pipe = ::popen(command.c_str(), "r");
    double ms = -1.0;
    if (pipe == nullptr || std::fscanf(pipe, "%lf", &ms) != 1)
        ms = -1.0;
    if (pipe != nullptr)
        ::pclose(pipe);
    return ms;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--child") == 0) {
        std::printf("%.3f\n", firstTransform(argv[2], std::atol(argv[3])));
        return 0;
    }
    const int repeats = argc > 1 ? std::max(1, std::atoi(argv[1])) : 9;
    char self[PATH_MAX];
    ssize_t length = ::readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0)
        return 1;
    self[length] = '\0';
    for (long n : kLengths)
        if (nvdl::analysis::measureFftPlans(n) == nvdl::analysis::FftMeasureResult::CannotPlan)
            return 1;

    std::printf("%10s  %-18s %10s %10s\n", "length", "first transform", "median ms", "min ms");
    for (long n : kLengths) {
        std::vector<std::vector<double>> times(std::size(kKinds));
        for (int r = 0; r < repeats; ++r)
            for (size_t k = 0; k < std::size(kKinds); ++k)
                times[k].push_back(runChild(self, kKinds[k], n));
        for (size_t k = 0; k < std::size(kKinds); ++k)
            std::printf("%10ld  %-18s %10.2f %10.2f\n", n, kKinds[k].name, median(times[k]),
                        *std::min_element(times[k].begin(), times[k].end()));
    }
    return 0;
}
