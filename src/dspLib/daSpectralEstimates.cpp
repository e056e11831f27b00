// Spectral estimates from spectra: cross-spectral density and its running average, frequency
// response and coherence. A null imag of an input reads as zeros.
#include <cstdlib>

#include "dspLib/daChecks.h"
#include "dspLib/daVectorLoops.h"
#include "nvdl/daSpectra.h"

namespace {

long checkSpectraPair(const char* function, const daVector& a, const daVector& b, int line)
{
    if (a.length < 0)
        return daFail("%s : First spectrum length (%ld) should be >0 {%s,%d}", function, a.length, kDaUnit, line);
    if (a.length != b.length)
        return daFail("%s : Input spectra lengths (%ld & %ld) should be equal {%s,%d}", function, a.length, b.length,
                      kDaUnit, line);
    return 0;
}

long checkDeltaFrequency(const char* function, float deltaFrequency, int line)
{
    if (!(deltaFrequency > 0.0f))
        return daFail("%s : delta frequency (%e) should be positive {%s,%d}", function,
                      static_cast<double>(deltaFrequency), kDaUnit, line);
    return 0;
}

long checkCrossLength(const char* function, const daVector& cross, int line)
{
    if (cross.length < 0)
        return daFail("%s : Crosspower spectral density length (%ld) should be >0 {%s,%d}", function, cross.length,
                      kDaUnit, line);
    return 0;
}

}  // namespace

long daPsd(daVector a, daVector b, daVector* psd, float deltaFrequency)
{
    if (checkSpectraPair("daPsd", a, b, __LINE__) || checkDeltaFrequency("daPsd", deltaFrequency, __LINE__) ||
        daCheckData("daPsd", {a, b}, psd, __LINE__))
        return 1;
    daClearOutput(psd);
    if (daAllocOutput("daPsd", psd, a.length, true, __LINE__))
        return 1;
    // In single precision, as the spectra are.
    const float perHz = static_cast<float>(1.0 / deltaFrequency);
    if (a.imag != nullptr && b.imag != nullptr) {
        daConjugateProduct(a.real, a.imag, b.real, b.imag, psd->real, psd->imag, a.length, perHz);
        return 0;
    }
    for (long i = 0; i < a.length; ++i) {
        const float ar = a.real[i];
        const float ai = static_cast<float>(daImagAt(a, i));
        const float br = b.real[i];
        const float bi = static_cast<float>(daImagAt(b, i));
        psd->real[i] = (br * ar + bi * ai) * perHz;
        psd->imag[i] = (bi * ar - br * ai) * perHz;
    }
    return 0;
}

// The new value's imaginary part has the opposite sign of daPsd's. The output may be the average
// record itself: its arrays are released only once the new ones are written.
long daAvgPsd(daVector a, daVector b, daVector avgPsd, daVector* out, float fraction, float deltaFrequency)
{
    if (checkSpectraPair("daAvgPsd", a, b, __LINE__))
        return 1;
    const bool blend = fraction != 1.0f;
    if (blend && avgPsd.length != a.length)
        return daFail("%s : Spectra and avgPsd lengths (%ld & %ld) should be equal {%s,%d}", "daAvgPsd", a.length,
                      avgPsd.length, kDaUnit, __LINE__);
    if (!(fraction > 0.0f) || fraction > 1.0f)
        return daFail("%s : Averaging fraction (%e) new PSD must be in range ]0., 1.]  {%s,%d}", "daAvgPsd",
                      static_cast<double>(fraction), kDaUnit, __LINE__);
    if (checkDeltaFrequency("daAvgPsd", deltaFrequency, __LINE__) ||
        daCheckData("daAvgPsd", {a, b}, out, __LINE__) || (blend && daCheckData("daAvgPsd", {avgPsd}, out, __LINE__)))
        return 1;
    daVector previous = *out;
    *out = daVector{nullptr, nullptr, 0};
    const long result = daAllocOutput("daAvgPsd", out, a.length, true, __LINE__);
    if (result == 0) {
        const double df = deltaFrequency;
        const double f = fraction;
        for (long i = 0; i < a.length; ++i) {
            double ar = a.real[i];
            double ai = daImagAt(a, i);
            double br = b.real[i];
            double bi = daImagAt(b, i);
            double newReal = (br * ar + bi * ai) / df;
            double newImag = (br * ai - bi * ar) / df;
            if (blend) {
                newReal = f * newReal + (1.0 - f) * avgPsd.real[i];
                newImag = f * newImag + (1.0 - f) * daImagAt(avgPsd, i);
            }
            out->real[i] = static_cast<float>(newReal);
            out->imag[i] = static_cast<float>(newImag);
        }
    }
    std::free(previous.real);
    std::free(previous.imag);
    return result;
}

long daFrf(daVector cross, daVector autoPower, daVector* frf, long estimator, float threshold)
{
    if (checkCrossLength("daFrf", cross, __LINE__))
        return 1;
    if (autoPower.length != cross.length)
        return daFail("%s : Auto and crosspower lengths (%ld & %ld) should be equal {%s,%d}", "daFrf",
                      autoPower.length, cross.length, kDaUnit, __LINE__);
    if (daCheckData("daFrf", {cross, autoPower}, frf, __LINE__))
        return 1;
    daClearOutput(frf);
    if (daAllocOutput("daFrf", frf, cross.length, true, __LINE__))
        return 1;
    const double limit = threshold;
    for (long i = 0; i < cross.length; ++i) {
        double cr = cross.real[i];
        double ci = daImagAt(cross, i);
        double autoValue = autoPower.real[i];
        double p = estimator == 2 ? cr * cr + ci * ci : autoValue;
        if (p >= limit) {
            if (estimator == 2) {
                frf->real[i] = static_cast<float>(cr * autoValue / p);
                frf->imag[i] = static_cast<float>(-ci * autoValue / p);
            } else {
                frf->real[i] = static_cast<float>(cr / p);
                frf->imag[i] = static_cast<float>(ci / p);
            }
        } else if (i == 0) {
            frf->real[0] = 1.0f;
            frf->imag[0] = 0.0f;
        } else {
            frf->real[i] = frf->real[i - 1];
            frf->imag[i] = frf->imag[i - 1];
        }
    }
    return 0;
}

long daCoherence(daVector cross, daVector auto1, daVector auto2, daVector* coherence)
{
    if (checkCrossLength("daCoherence", cross, __LINE__))
        return 1;
    if (auto1.length != cross.length)
        return daFail("%s : Auto1 and crosspower lengths (%ld & %ld) should be equal {%s,%d}", "daCoherence",
                      auto1.length, cross.length, kDaUnit, __LINE__);
    if (auto2.length != cross.length)
        return daFail("%s : Auto2 and crosspower lengths (%ld & %ld) should be equal {%s,%d}", "daCoherence",
                      auto2.length, cross.length, kDaUnit, __LINE__);
    if (daCheckData("daCoherence", {cross, auto1, auto2}, coherence, __LINE__))
        return 1;
    daClearOutput(coherence);
    if (daAllocOutput("daCoherence", coherence, cross.length, false, __LINE__))
        return 1;
    // Rounding bands around 0 and 1, in single precision.
    const double nearZero = -0.001f;
    const double nearOne = 1.001f;
    for (long i = 0; i < cross.length; ++i) {
        double cr = cross.real[i];
        double ci = daImagAt(cross, i);
        double v = cr * cr + ci * ci;
        if (auto1.real[i] != 0.0f)
            v /= auto1.real[i];
        if (auto2.real[i] != 0.0f)
            v /= auto2.real[i];
        if (v < 0.0 && v > nearZero)
            v = 0.0;
        else if (v > 1.0 && v < nearOne)
            v = 1.0;
        coherence->real[i] = static_cast<float>(v);
    }
    return 0;
}
