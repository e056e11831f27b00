// Integration and differentiation of spectra: division or multiplication by (jω)^n line by line.
#include <cmath>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

namespace {

constexpr double kTwoPi = 6.283185307;

enum class Direction { integrate, differentiate };

// (jω)^n is ω^n times j^n, and j^n only depends on n mod 4: a quarter turn per power, clockwise when
// dividing, counter-clockwise when multiplying.
long applyJOmegaPower(const char* name, Direction direction, daVector a, daVector* out, daVector frequency,
                      long exponent)
{
    if (a.length < 0)
        return daFail("%s : Input vector length (%ld) should be >0 {%s,%d}", name, a.length, kDaUnit, __LINE__);
    if (a.length != frequency.length)
        return daFail("%s : Input vector length (%ld) different from frequency vector length (%ld) {%s,%d}", name,
                      a.length, frequency.length, kDaUnit, __LINE__);
    if (exponent < 1)
        return daFail("%s : exponent (%ld) should be >0 {%s,%d}", name, exponent, kDaUnit, __LINE__);

    if (daCheckData(name, {a, frequency}, out, __LINE__) != 0)
        return 1;

    daClearOutput(out);
    if (daAllocOutput(name, out, a.length, true, __LINE__) != 0)
        return 1;

    const double power = direction == Direction::integrate ? -static_cast<double>(exponent)
                                                           : static_cast<double>(exponent);
    const long quarterTurns = exponent % 4;
    for (long i = 0; i < a.length; ++i) {
        const double w = static_cast<double>(frequency.real[i]) * kTwoPi;
        const double g = w > 0.0 ? std::pow(w, power) : 1.0;
        const double re = g * a.real[i];
        const double im = a.imag != nullptr ? g * a.imag[i] : 0.0;
        double outRe = re;
        double outIm = im;
        switch (quarterTurns) {
        case 1:
            outRe = direction == Direction::integrate ? im : -im;
            outIm = direction == Direction::integrate ? -re : re;
            break;
        case 2:
            outRe = -re;
            outIm = -im;
            break;
        case 3:
            outRe = direction == Direction::integrate ? -im : im;
            outIm = direction == Direction::integrate ? re : -re;
            break;
        default:
            break;
        }
        out->real[i] = static_cast<float>(outRe);
        out->imag[i] = static_cast<float>(outIm);
    }
    return 0;
}

}  // namespace

long daIntegrationFreqDomain(daVector a, daVector* out, daVector frequency, long exponent)
{
    return applyJOmegaPower("daIntegrationFreqDomain", Direction::integrate, a, out, frequency, exponent);
}

long daDifferentiationFreqDomain(daVector a, daVector* out, daVector frequency, long exponent)
{
    return applyJOmegaPower("daDifferentiationFreqDomain", Direction::differentiate, a, out, frequency, exponent);
}
