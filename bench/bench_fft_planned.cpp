// daFft against a raw FFTW execute on a measured plan, at the lengths of bench_fft, once wisdom
// holds measured plans of those lengths. Before the benchmarks run, the lengths are measured as
// `nvdl plan` measures them, unless the wisdom file in the user's cache has them already (the first
// run takes about a minute at 2^20); both sides then plan from that wisdom. daFft's extra work is
// its output allocation, the repacking of the spectrum to peak scale and the packed-layout shuffle.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "analysis/FftPlanner.h"
#include "analysis/RealFft.h"
#include "FftBenchBodies.h"
#include "nvdl/daDspLib.h"

namespace {

const long kLengths[] = {4096, 65536, 1 << 20};

using nvdl::bench::randomSignal;

void BM_daFft(benchmark::State& state) { nvdl::bench::runDaFft(state); }

void BM_RawFftwMeasured(benchmark::State& state)
{
    const long n = state.range(0);
    float* in = fftwf_alloc_real(static_cast<size_t>(n));
    fftwf_complex* out = fftwf_alloc_complex(static_cast<size_t>(n / 2 + 1));
    // Made from wisdom: the measurement happened before the benchmarks started.
    fftwf_plan plan = fftwf_plan_dft_r2c_1d(static_cast<int>(n), in, out, FFTW_MEASURE | FFTW_WISDOM_ONLY);
    if (plan == nullptr) {
        state.SkipWithError("no measured plan in wisdom");
        fftwf_free(in);
        fftwf_free(out);
        return;
    }
    std::vector<float> x = randomSignal(n);
    std::copy(x.begin(), x.end(), in);
    for (auto _ : state) {
        fftwf_execute(plan);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    fftwf_destroy_plan(plan);
    fftwf_free(in);
    fftwf_free(out);
    state.SetItemsProcessed(state.iterations() * n);
}

// The kernel's transform alone, into its set-up's work area: what daFft runs before its scaling.
void BM_KernelTransform(benchmark::State& state)
{
    const long n = state.range(0);
    std::vector<float> x = randomSignal(n);
    ImslFftRealSetup* setup = imsl_f_fft_real_init(n);
    if (setup == nullptr) {
        state.SkipWithError("no set-up");
        return;
    }
    for (auto _ : state) {
        const float* p = imsl_f_fft_real_into_setup(n, x.data(), setup);
        benchmark::DoNotOptimize(p);
        benchmark::ClobberMemory();
    }
    std::free(setup);
    state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(BM_daFft)->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_KernelTransform)->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawFftwMeasured)->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (long n : kLengths) {
        nvdl::analysis::FftMeasureResult result = nvdl::analysis::measureFftPlans(n);
        if (result == nvdl::analysis::FftMeasureResult::CannotPlan) {
            std::fprintf(stderr, "cannot plan %ld\n", n);
            return 1;
        }
        if (result == nvdl::analysis::FftMeasureResult::NotSaved)
            std::fprintf(stderr, "measured %ld for this run only: the wisdom file is off or not writable\n", n);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
