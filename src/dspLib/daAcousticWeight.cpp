// A, B, C and D acoustic weighting curves, interpolated on a log-frequency scale between the levels
// of the 34 third-octave bands from 10 Hz to 20 kHz.
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"
#include "nvdl/HResult.h"

namespace {

constexpr int kBands = 34;

constexpr double kBandFrequency[kBands] = {
    10,   12.59, 15.85, 19.95, 25.12, 31.62, 39.81, 50.12, 63.1,  79.43, 100,   125.9,
    158.5, 199.5, 251.2, 316.2, 398.1, 501.2, 631,   794.3, 1000,  1259,  1585,  1995,
    2512, 3162,  3981,  5012,  6310,  7943,  10000, 12590, 15850, 19950};

constexpr double kWeightA[kBands] = {-70.4, -63.4, -56.7, -50.5, -44.7, -39.4, -34.6, -30.2, -26.2, -22.5, -19.1, -16.1,
                                     -13.4, -10.9, -8.6,  -6.6,  -4.8,  -3.2,  -1.9,  -0.8,  0.0,   0.6,   1.0,   1.2,
                                     1.3,   1.2,   1.0,   0.5,   -0.1,  -1.1,  -2.5,  -4.3,  -6.6,  -9.3};

constexpr double kWeightB[kBands] = {-38.2, -33.2, -28.5, -24.2, -20.4, -17.1, -14.2, -11.6, -9.3, -7.4, -5.6, -4.2,
                                     -3.0,  -2.0,  -1.3,  -0.8,  -0.5,  -0.3,  -0.1,  0.0,   0.0,  0.0,  0.0,  -0.1,
                                     -0.2,  -0.4,  -0.7,  -1.2,  -1.9,  -2.9,  -4.3,  -6.1,  -8.4, -11.1};

constexpr double kWeightC[kBands] = {-14.3, -11.2, -8.5, -6.2, -4.4, -3.0, -2.0, -1.3, -0.8, -0.5, -0.3, -0.2,
                                     -0.1,  0.0,   0.0,  0.0,  0.0,  0.0,  0.0,  0.0,  0.0,  0.0,  -0.1, -0.2,
                                     -0.3,  -0.5,  -0.8, -1.3, -2.0, -3.0, -4.4, -6.2, -8.5, -11.2};

constexpr double kWeightD[kBands] = {-28.0, -26.0, -23.0, -21.5, -18.5, -16.5, -15.0, -12.8, -10.9, -9.0, -7.2, -5.5,
                                     -4.0,  -2.6,  -1.6,  -0.8,  -0.4,  -0.3,  -0.5,  -0.6,  0.0,   2.0,  4.9,  7.9,
                                     10.6,  11.5,  11.1,  9.6,   7.6,   5.5,   3.4,   -1.4,  -4.0,  -8.0};

constexpr double kLowestFrequency = 8.0;
constexpr double kHighestFrequency = 25000.0;

struct Weighting {
    const double* levels;
    double dbToExponent;  // 0.05 for an amplitude gain, 0.1 for a power gain
};

Weighting selectWeighting(long type)
{
    switch (type) {
    case 2:
        return {kWeightB, 0.05};
    case 3:
        return {kWeightC, 0.05};
    case 4:
        return {kWeightD, 0.05};
    case 12:
        return {kWeightB, 0.1};
    case 13:
        return {kWeightC, 0.1};
    case 14:
        return {kWeightD, 0.1};
    default:
        return {kWeightA, type <= 10 ? 0.05 : 0.1};
    }
}

// Level in dB at frequency f (within 8 Hz..25 kHz), linear in log10 f between the two bands around
// it and extrapolated from the outermost two bands beyond 10 Hz and 19.95 kHz.
double levelAt(const double* levels, double f)
{
    const double logF = std::log10(f);
    long idx = static_cast<long>(std::floor((logF - 1.0) * 10.0));
    if (idx < 0)
        idx = 0;
    if (idx > kBands - 2)
        idx = kBands - 2;
    const double logLow = std::log10(kBandFrequency[idx]);
    const double logHigh = std::log10(kBandFrequency[idx + 1]);
    return levels[idx] + (levels[idx + 1] - levels[idx]) * (logF - logLow) / (logHigh - logLow);
}

}  // namespace

long daAcousticWeight(daVector frequency, daVector* out, long type)
{
    static const char* const kName = "daAcousticWeight";
    if (frequency.length < 0) {
        daFail("%s : inputVector.length (%ld) should be >0 {%s,%d}", kName, frequency.length, kDaUnit, __LINE__);
        return E_FAIL;
    }

    if (daCheckData(kName, {frequency}, out, __LINE__) != 0)
        return 1;

    std::free(out->imag);
    out->imag = nullptr;
    if (out->length != frequency.length || (out->real == nullptr && frequency.length > 0)) {
        daClearOutput(out);
        if (daAllocOutput(kName, out, frequency.length, false, __LINE__) != 0)
            return 1;
        std::memset(out->real, 0, static_cast<size_t>(frequency.length) * sizeof(float));
    }

    const Weighting weighting = selectWeighting(type);
    for (long i = 0; i < frequency.length; ++i) {
        const double f = frequency.real[i];
        double gain = 0.0;  // also for NaN frequencies, which belong to no band
        if (f >= kLowestFrequency && f <= kHighestFrequency)
            gain = std::pow(10.0, levelAt(weighting.levels, f) * weighting.dbToExponent);
        out->real[i] = static_cast<float>(gain);
    }
    return 0;
}
