// daFft against a raw FFTW execute of the same length and planner (the kernel's transform plans
// with FFTW_ESTIMATE for lengths the wisdom file does not know: run with NVDL_FFT_WISDOM=0 to be
// sure), with the plan made beforehand in both cases; bench_fft_planned compares measured plans. daFft's extra work is its
// output allocation, the repacking of the spectrum to peak scale, and the packed-layout shuffle.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "FftBenchBodies.h"
#include "nvdl/daDspLib.h"

namespace {

using nvdl::bench::randomSignal;

void BM_daFft(benchmark::State& state) { nvdl::bench::runDaFft(state); }

void BM_RawFftwExecute(benchmark::State& state)
{
    const long n = state.range(0);
    float* in = fftwf_alloc_real(static_cast<size_t>(n));
    fftwf_complex* out = fftwf_alloc_complex(static_cast<size_t>(n / 2 + 1));
    fftwf_plan plan = fftwf_plan_dft_r2c_1d(static_cast<int>(n), in, out, FFTW_ESTIMATE);
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

}  // namespace

BENCHMARK(BM_daFft)->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawFftwExecute)->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
