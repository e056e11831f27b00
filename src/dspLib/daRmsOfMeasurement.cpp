// The RMS figure of a measurement: which scale and summation its function type calls for, and how
// the DC line of a spectrum is kept out of the window's leakage.
#include <cmath>

#include "dspLib/daChecks.h"
#include "nvdl/daSignal.h"

namespace {

// Function type, X axis type and window type codes of a measurement.
enum FunctionTypeCode : long {
    kSpectrum = 1002,
    kAutopower = 1003,
    kCrosspower = 1004,
    kPsd = 1005,
    kCrosspowerSpectralDensity = 1006,
    kEsd = 1007,
    kCrossEsd = 1008,
    kAutocorrelation = 1009,
    kCrosscorrelation = 1010,
    kFrf = 1011,
    kImpulseResponse = 1012,
    kSoundPressure = 1023,
    kSoundPowerLevel = 1024,
    kSoundIntensity = 1025,
    kParticleVelocity = 1026,
    kLoudness = 1027,
    kRoughness = 1028,
    kUnnamedLevel = 1029,
    kIntelligibility = 1030,
    kArticulationIndex = 1031,
    kWindow = 1035,
    kOrder = 1037,
    kSoundPower = 1038,
    kFirstTimeHistory = 1046,  // "RMS Time History" ...
    kLastTimeHistory = 1054,   // ... "Peak- Time History"
};
constexpr long kOctavesAxis = 1103;
constexpr long kFlattopWindow = 1304;

// Amplitude convention codes: RMS amplitudes, peak-to-peak; anything else means peak amplitudes.
constexpr long kRmsAmplitudes = 701;
constexpr long kPeakToPeakAmplitudes = 703;

struct RmsRule {
    double scale;
    int amplitudes;   // summation mode of daRms
    double dcPart;    // power of the DC line, 0 where the DC line is summed like the others
    bool loudness;
};

double conventionDivisor(float code)
{
    // A peak amplitude A has the mean square A²/2, a peak-to-peak one (2A)²/8.
    if (code == static_cast<float>(kRmsAmplitudes))
        return 1.0;
    if (code == static_cast<float>(kPeakToPeakAmplitudes))
        return 8.0;
    return 2.0;
}

RmsRule ruleFor(const daRmsSource& source, long n, double k, double b)
{
    const double df = source.xIncrement;
    double dcAmplitude = 0.0;
    if (source.y.length > 0) {
        const double re = source.y.real[0];
        const double im = source.y.imag != nullptr ? source.y.imag[0] : 0.0;
        dcAmplitude = std::sqrt(re * re + im * im);
    }
    const double perElement = n > 0 ? 1.0 / static_cast<double>(n) : 0.0;

    switch (source.functionType) {
    case kSpectrum:
    case kParticleVelocity:
    case kOrder:
        return {1.0 / (k * b), 0, dcAmplitude * dcAmplitude, false};
    case kAutopower:
    case kCrosspower:
    case kSoundPowerLevel:
    case kSoundIntensity:
    case kSoundPower:
        return {1.0 / (k * b), 1, dcAmplitude, false};
    case kPsd:
    case kCrosspowerSpectralDensity:
        return {df, 1, 2.0 * df * b * dcAmplitude, false};
    case kEsd:
    case kCrossEsd:
        return {df * df, 1, dcAmplitude * b, false};
    case kAutocorrelation:
    case kCrosscorrelation:
    case kImpulseResponse:
    case kWindow:
        return {perElement, 0, 0.0, false};
    case kFrf:
    case kSoundPressure:
    case kRoughness:
    case kUnnamedLevel:
    case kIntelligibility:
    case kArticulationIndex:
        return {1.0, 0, 0.0, false};
    case kLoudness:
        return {1.0, 0, 0.0, true};
    default:
        if (source.functionType >= kFirstTimeHistory && source.functionType <= kLastTimeHistory)
            return {perElement, 0, 0.0, false};
        return {perElement / b, 0, 0.0, false};
    }
}

// Elements first..first+count-1 of y; an empty view where count is not positive.
daVector slice(daVector y, long first, long count)
{
    if (count <= 0)
        return {y.real, nullptr, count};
    return {y.real + first, y.imag != nullptr ? y.imag + first : nullptr, count};
}

}  // namespace

long daRmsOfMeasurement(const daRmsSource& source, long first, long last, float* rms)
{
    if (rms == nullptr)
        return daFail("%s : rms pointer is null {%s,%d}", "daRmsOfMeasurement", kDaUnit, __LINE__);
    if (daCheckData("daRmsOfMeasurement", {source.y}, nullptr, __LINE__, false) != 0)
        return 1;
    const double k = conventionDivisor(*rms);
    *rms = 0.0f;

    const long size = source.y.length;
    if (first < 0)
        first = 0;
    if (last > size - 1)
        last = size - 1;
    if (source.xAxisType == kOctavesAxis && last >= size - 1)
        last = size - 2;
    const long n = last - first + 1;

    float* factor = source.bandwidthCorrectionFactor;
    if (factor != nullptr && *factor == 0.0f)
        *factor = 1.0f;
    const double b = factor != nullptr && *factor > 1.0f ? *factor : 1.0;

    const RmsRule rule = ruleFor(source, n, k, b);
    if (rule.scale == 0.0)
        return 0;

    if (rule.loudness && source.loudnessAxes) {
        // A loudness curve over frequency: its integral, not an RMS.
        double total = 0.0;
        for (long i = 0; i < n; ++i)
            total += static_cast<double>(source.xIncrement) * source.y.real[i];
        *rms = static_cast<float>(total);
        return 0;
    }

    const float scale = static_cast<float>(rule.scale);
    if (first == 0 && rule.dcPart != 0.0 && source.firstX == 0.0f && source.frequencyAxis) {
        // The DC line and the lines its window leakage reaches are summed as the DC power alone.
        const long from = source.windowType == kFlattopWindow ? 4 : 2;
        float r = 0.0f;
        if (daRms(slice(source.y, from, last - from + 1), &r, rule.amplitudes, scale) != 0)
            return 1;
        *rms = static_cast<float>(std::sqrt(static_cast<double>(r) * r + rule.dcPart));
        return 0;
    }

    float r = 0.0f;
    if (daRms(slice(source.y, first, n), &r, rule.amplitudes, scale) != 0)
        return 1;
    *rms = r;
    return 0;
}
