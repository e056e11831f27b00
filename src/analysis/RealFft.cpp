// The packed real transform on FFTW's real-to-complex and complex-to-real plans.
//
// FFTW's complex half-spectrum of n/2 + 1 bins is laid out as re0, im0, re1, im1, ...; the packed
// layout is the same sequence with im0 (always 0) dropped, so a forward result is that spectrum
// shifted down by one float from index 2 on, and a backward input is unpacked the other way.
#include "analysis/RealFft.h"

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

float* forward(FftPlans& plans, const float* p)
{
    long n = plans.n;
    float* q = allocAlignedFloats(halfSpectrumFloats(n));
    if (q == nullptr)
        return nullptr;
    float* in = const_cast<float*>(p);  // the plan preserves its input
    bool aligned = fftwf_alignment_of(in) == 0;
    fftwf_plan plan = nvdl::analysis::forwardPlan(plans, aligned);
    if (plan == nullptr) {
        std::free(q);
        return nullptr;
    }
    fftwf_execute_dft_r2c(plan, in, reinterpret_cast<fftwf_complex*>(q));
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
    auto* setup = static_cast<ImslFftRealSetup*>(std::malloc(sizeof(ImslFftRealSetup)));
    if (setup != nullptr)
        setup->n = n;
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
