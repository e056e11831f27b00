// Band sums of octave analysis over the lines of a spectrum.
#include "analysis/OctaveBands.h"

#include <cmath>
#include <cstdlib>

namespace nvdl {

namespace {

constexpr double kReferenceCentre = 1000.0;
constexpr double kHighestFrequency = 20000.0;

// Sums one band's share of the lines into `sum`, from the running line index i on; a line reaching
// beyond the band's upper edge is left for the next band.
template <class Contribution>
double bandSum(const float* values, int count, double df, double lo, double hi, long& i, Contribution contribution) {
    while ((i + 0.5) * df <= lo) ++i;
    double sum = 0.0;
    while (i < count) {
        const double edge = (i + 0.5) * df;
        if (edge < hi) {
            sum += contribution(values[i], edge - lo);
            ++i;
            lo = edge;
        } else {
            sum += contribution(values[i], hi - lo);
            break;
        }
    }
    return sum;
}

template <class Contribution, class BandValue>
int octaveBands(const float* values, int count, float deltaFrequency, int bands, int* bandCount, float** x, float** y,
                Contribution contribution, BandValue bandValue) {
    *bandCount = 0;
    *x = nullptr;
    *y = nullptr;
    const float top = static_cast<float>((count - 1) * static_cast<double>(deltaFrequency));
    if (top < 10.0f || bands < 1) return 0;
    const double limit = std::min<double>(kHighestFrequency, top);
    const double step = bands == 1 ? 1.0 : std::log2(1000.0) / (10.0 * bands);
    const long k0 = static_cast<long>(std::log2(0.01) / step - 0.1);
    const long k1 = static_cast<long>(std::log2(limit / kReferenceCentre) / step + 0.1);
    const long n = k1 - k0 + 1;
    if (n < 1) return 0;
    *x = static_cast<float*>(std::malloc(static_cast<std::size_t>(n) * sizeof(float)));
    *y = static_cast<float*>(std::malloc(static_cast<std::size_t>(n) * sizeof(float)));
    if (!*x || !*y) {
        std::free(*x);
        std::free(*y);
        *x = *y = nullptr;
        return -1;
    }
    *bandCount = static_cast<int>(n);
    const double df = deltaFrequency;
    long line = 0;
    for (long b = 0; b < n; ++b) {
        const float centre = static_cast<float>(kReferenceCentre * std::exp2((k0 + b) * step));
        (*x)[b] = centre;
        const double lo = bands == 1 ? centre * std::exp2(-0.5) : centre * std::pow(10.0, -0.15 / bands);
        const double hi = bands == 1 ? centre * std::exp2(0.5) : centre * std::pow(10.0, 0.15 / bands);
        (*y)[b] = static_cast<float>(bandValue(bandSum(values, count, df, lo, hi, line, contribution) / df));
    }
    return 0;
}

}  // namespace

int octaves_from_spectra(const float* values, int count, float deltaFrequency, int bands, float factor, int* bandCount,
                         float** x, float** y) {
    return octaveBands(
        values, count, deltaFrequency, bands, bandCount, x, y,
        [](float v, double width) { return static_cast<double>(v) * v * width; },
        [factor](double q) { return std::sqrt(factor * q); });
}

int octaves_from_ai(const float* values, int count, float deltaFrequency, int bands, int* bandCount, float** x, float** y) {
    return octaveBands(
        values, count, deltaFrequency, bands, bandCount, x, y,
        [](float v, double width) { return std::fabs(static_cast<double>(v)) * v * width; },
        [](double q) { return q >= 0.0 ? std::sqrt(q) : -std::sqrt(-q); });
}

}  // namespace nvdl
