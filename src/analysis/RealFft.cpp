// The packed real transform on FFTW's real-to-complex and complex-to-real plans.
//
// FFTW's complex half-spectrum of n/2 + 1 bins is laid out as re0, im0, re1, im1, ...; the packed
// layout is the same sequence with im0 (always 0) dropped, so a forward result is that spectrum
// shifted down by one float from index 2 on, and a backward input is unpacked the other way.
#include "analysis/RealFft.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "analysis/FftPlanCache.h"

using nvdl::analysis::FftPlans;

namespace {

constexpr size_t kArrayAlignment = 64;

// An array of `floats` floats aligned for FFTW's SIMD codelets, released with free().
float* allocAlignedFloats(size_t floats)
{
    size_t bytes = (floats * sizeof(float) + kArrayAlignment - 1) / kArrayAlignment * kArrayAlignment;
    return static_cast<float*>(std::aligned_alloc(kArrayAlignment, bytes));
}

// Number of floats in FFTW's complex half-spectrum of an n-point real transform.
size_t halfSpectrumFloats(long n) { return 2 * (static_cast<size_t>(n) / 2 + 1); }

// Runs the forward plan from p into `spectrum` (n + 2 floats, aligned) and returns false if no plan
// can be made. The plan preserves its input.
bool transformForward(FftPlans& plans, const float* p, float* spectrum)
{
    float* in = const_cast<float*>(p);
    fftwf_plan plan = nvdl::analysis::forwardPlan(plans, fftwf_alignment_of(in) == 0);
    if (plan == nullptr)
        return false;
    fftwf_execute_dft_r2c(plan, in, reinterpret_cast<fftwf_complex*>(spectrum));
    return true;
}

float* forward(FftPlans& plans, const float* p)
{
    long n = plans.n;
    float* q = allocAlignedFloats(halfSpectrumFloats(n));
    if (q == nullptr || !transformForward(plans, p, q)) {
        std::free(q);
        return nullptr;
    }
    if (n > 1)
        std::memmove(q + 1, q + 2, static_cast<size_t>(n - 1) * sizeof(float));
    return q;
}

float* backward(FftPlans& plans, const float* q)
{
    long n = plans.n;
    float* spectrum = allocAlignedFloats(halfSpectrumFloats(n));
    float* p = allocAlignedFloats(static_cast<size_t>(n));
    fftwf_plan plan = nvdl::analysis::backwardPlan(plans, true);
    if (spectrum == nullptr || p == nullptr || plan == nullptr) {
        std::free(spectrum);
        std::free(p);
        return nullptr;
    }
    spectrum[0] = q[0];
    spectrum[1] = 0.0f;
    if (n > 1)
        std::memcpy(spectrum + 2, q + 1, static_cast<size_t>(n - 1) * sizeof(float));
    if (n % 2 == 0)
        spectrum[n + 1] = 0.0f;  // imaginary part of the bin at n/2
    fftwf_execute_dft_c2r(plan, reinterpret_cast<fftwf_complex*>(spectrum), p);
    std::free(spectrum);
    return p;
}

}  // namespace

ImslFftRealSetup* imsl_f_fft_real_init(long n)
{
    FftPlans* plans = nvdl::analysis::fftPlansFor(n);
    if (plans == nullptr || nvdl::analysis::forwardPlan(*plans, true) == nullptr)
        return nullptr;
    size_t workBytes = halfSpectrumFloats(n) * sizeof(float);
    void* block = std::malloc(sizeof(ImslFftRealSetup) + kArrayAlignment + workBytes);
    if (block == nullptr)
        return nullptr;
    auto* setup = static_cast<ImslFftRealSetup*>(block);
    auto workStart = reinterpret_cast<std::uintptr_t>(setup + 1);
    workStart = (workStart + kArrayAlignment - 1) / kArrayAlignment * kArrayAlignment;
    setup->n = n;
    setup->work = reinterpret_cast<float*>(workStart);
    return setup;
}

float* imsl_f_fft_real(long n, const float* p, ImslFftDirection direction, const ImslFftRealSetup* setup)
{
    if (p == nullptr || (setup != nullptr && setup->n != n))
        return nullptr;
    FftPlans* plans = nvdl::analysis::fftPlansFor(n);
    if (plans == nullptr)
        return nullptr;
    return direction == ImslFftDirection::Forward ? forward(*plans, p) : backward(*plans, p);
}

const float* imsl_f_fft_real_into_setup(long n, const float* p, ImslFftRealSetup* setup)
{
    if (p == nullptr || setup == nullptr || setup->n != n)
        return nullptr;
    FftPlans* plans = nvdl::analysis::fftPlansFor(n);
    if (plans == nullptr || !transformForward(*plans, p, setup->work))
        return nullptr;
    // The half-spectrum re0, im0 = 0, re1, im1, ... read from its second float is the packed layout
    // once that float takes re0.
    setup->work[1] = setup->work[0];
    return setup->work + 1;
}
