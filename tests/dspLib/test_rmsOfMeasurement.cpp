// The RMS figure of a measurement by function type.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

namespace {

constexpr long kTimeRecord = 1001, kSpectrum = 1002, kAutopower = 1003, kCrosspower = 1004, kPsd = 1005,
               kEsd = 1007, kAutocorrelation = 1009, kFrf = 1011, kLoudness = 1027, kRmsTimeHistory = 1046,
               kPeakMinusTimeHistory = 1054, kOrder = 1037, kHistogram = 1017;
constexpr long kEquidistant = 1100, kOctaves = 1103;
constexpr long kHanning = 1302, kFlattop = 1304;

struct Measurement {
    std::vector<float> re;
    std::vector<float> im;
    long functionType = kTimeRecord;
    long xAxisType = kEquidistant;
    long windowType = kHanning;
    float df = 1.0f;
    float firstX = 0.0f;
    bool frequencyAxis = false;
    bool loudnessAxes = false;
    float bandwidth = 1.0f;

    daRmsSource source()
    {
        daVector y = {re.data(), im.empty() ? nullptr : im.data(), static_cast<long>(re.size())};
        return {y, functionType, xAxisType, windowType, df, firstX, frequencyAxis, loudnessAxes, &bandwidth};
    }

    float rms(long first, long last, float code = 0.0f)
    {
        float value = code;
        EXPECT_EQ(daRmsOfMeasurement(source(), first, last, &value), 0) << lastError();
        return value;
    }
};

// A spectrum with a DC line, one leakage line beside it and three more lines.
Measurement spectrum(long functionType)
{
    Measurement m;
    m.re = {2.0f, 0.5f, 3.0f, 1.0f, 4.0f};
    m.functionType = functionType;
    m.frequencyAxis = true;
    return m;
}

template <class Edit>
Measurement spectrum(long functionType, Edit edit)
{
    Measurement m = spectrum(functionType);
    edit(m);
    return m;
}

}  // namespace

TEST(RmsOfMeasurement, TimeRecordIsTheRootMeanSquare)
{
    Measurement m;
    for (int i = 0; i < 64; ++i)
        m.re.push_back(static_cast<float>(3.0 * std::sin(2.0 * M_PI * 5.0 * i / 64.0)));
    EXPECT_NEAR(m.rms(0, 63), 3.0 / std::sqrt(2.0), 1e-5);
    EXPECT_NEAR(m.rms(-10, 1000), 3.0 / std::sqrt(2.0), 1e-5);

    // A bandwidth correction above 1 divides the power; 0 is replaced by 1 in the measurement.
    m.bandwidth = 1.5f;
    EXPECT_NEAR(m.rms(0, 63), 3.0 / std::sqrt(2.0 * 1.5), 1e-5);
    m.bandwidth = 0.0f;
    EXPECT_NEAR(m.rms(0, 63), 3.0 / std::sqrt(2.0), 1e-5);
    EXPECT_EQ(m.bandwidth, 1.0f);
    m.bandwidth = 0.5f;  // below 1 counts as 1 and is left alone
    EXPECT_NEAR(m.rms(0, 63), 3.0 / std::sqrt(2.0), 1e-5);
    EXPECT_EQ(m.bandwidth, 0.5f);
}

TEST(RmsOfMeasurement, ScaleAndSummationByFunctionType)
{
    const double lines = 9.0 + 1.0 + 16.0;  // the squares of lines 2 to 4
    const double all = 4.0 + 0.25 + lines;  // the squares of every line
    const struct {
        const char* label;
        Measurement m;
        long first;
        long last;
        double expected;
        float code = 0.0f;
    } cases[] = {
        // Peak amplitudes: a line of amplitude A has the mean square A²/2; DC counts as C², and the
        // leakage line beside it is left out.
        {"spectrum", spectrum(kSpectrum), 0, 4, std::sqrt(lines / 2.0 + 4.0)},
        {"RMS amplitudes", spectrum(kSpectrum), 0, 4, std::sqrt(lines + 4.0), 701.0f},
        {"peak-to-peak amplitudes", spectrum(kSpectrum), 0, 4, std::sqrt(lines / 8.0 + 4.0), 703.0f},
        {"bandwidth", spectrum(kSpectrum, [](Measurement& m) { m.bandwidth = 2.0f; }), 0, 4,
         std::sqrt(lines / 4.0 + 4.0)},
        // After a flattop window three lines beside DC are left out.
        {"flattop", spectrum(kSpectrum, [](Measurement& m) { m.windowType = kFlattop; }), 0, 4,
         std::sqrt(16.0 / 2.0 + 4.0)},
        {"order", spectrum(kOrder), 0, 4, std::sqrt(lines / 2.0 + 4.0)},
        // The DC line is summed like the others unless it really is DC.
        {"no frequency axis", spectrum(kSpectrum, [](Measurement& m) { m.frequencyAxis = false; }), 0, 4,
         std::sqrt(all / 2.0)},
        {"axis from 10", spectrum(kSpectrum, [](Measurement& m) { m.firstX = 10.0f; }), 0, 4, std::sqrt(all / 2.0)},
        {"from line 1", spectrum(kSpectrum), 1, 4, std::sqrt((all - 4.0) / 2.0)},
        {"zero DC", spectrum(kSpectrum, [](Measurement& m) { m.re[0] = 0.0f; }), 0, 4, std::sqrt((all - 4.0) / 2.0)},
        // Power spectra sum their values; a complex crosspower its amplitudes, its DC part being the
        // amplitude of line 0.
        {"autopower", spectrum(kAutopower), 0, 4, std::sqrt((3.0 + 1.0 + 4.0) / 2.0 + 2.0)},
        {"crosspower",
         spectrum(kCrosspower, [](Measurement& m) { m.re[0] = 0.0f; m.im = {2.0f, 0.0f, 4.0f, 0.0f, 0.0f}; }), 0, 4,
         std::sqrt((5.0 + 1.0 + 4.0) / 2.0 + 2.0)},
        {"PSD", spectrum(kPsd, [](Measurement& m) { m.df = 0.25f; m.bandwidth = 1.5f; }), 0, 4,
         std::sqrt(0.25 * 8.0 + 2.0 * 0.25 * 1.5 * 2.0)},
        {"ESD", spectrum(kEsd, [](Measurement& m) { m.df = 0.5f; m.bandwidth = 3.0f; }), 0, 4,
         std::sqrt(0.25 * 8.0 + 2.0 * 3.0)},
        // Unscaled, and "all others" per element with the bandwidth correction.
        {"FRF", spectrum(kFrf), 0, 4, std::sqrt(all)},
        {"histogram", spectrum(kHistogram, [](Measurement& m) { m.bandwidth = 2.0f; }), 0, 4, std::sqrt(all / 10.0)},
    };
    for (auto c : cases)
        EXPECT_NEAR(c.m.rms(c.first, c.last, c.code), c.expected, 1e-5) << c.label;

    // Per element, without a bandwidth correction.
    for (long type : {kAutocorrelation, kRmsTimeHistory, kPeakMinusTimeHistory}) {
        Measurement m = spectrum(type);
        EXPECT_NEAR(m.rms(1, 4), std::sqrt((all - 4.0) / 4.0), 1e-5) << type;
        m.bandwidth = 4.0f;
        EXPECT_NEAR(m.rms(0, 4), std::sqrt(all / 5.0), 1e-5) << type;
    }
}

TEST(RmsOfMeasurement, LoudnessIsIntegratedOverFrequency)
{
    Measurement m;
    m.re = {1.0f, 2.0f, 3.0f, 4.0f};
    m.functionType = kLoudness;
    m.df = 0.5f;
    m.loudnessAxes = true;
    EXPECT_FLOAT_EQ(m.rms(0, 3), 5.0f);
    // Three elements, counted from the start of the array whatever the first index.
    EXPECT_FLOAT_EQ(m.rms(1, 3), 3.0f);
    m.loudnessAxes = false;
    EXPECT_FLOAT_EQ(m.rms(0, 3), std::sqrt(30.0f));
}

TEST(RmsOfMeasurement, IndexLimits)
{
    Measurement m;
    m.re = {1.0f, 1.0f, 1.0f, 7.0f};
    m.functionType = kFrf;
    m.xAxisType = kOctaves;  // the last band is the total: never summed
    EXPECT_FLOAT_EQ(m.rms(0, 3), std::sqrt(3.0f));
    EXPECT_FLOAT_EQ(m.rms(0, 2), std::sqrt(3.0f));
    EXPECT_FLOAT_EQ(m.rms(0, 1), std::sqrt(2.0f));

    // An empty range with a per-element scale has no scale and gives 0.
    Measurement time;
    time.re = {1.0f, 2.0f};
    EXPECT_EQ(time.rms(1, 0, 5.0f), 0.0f);
}

TEST(RmsOfMeasurement, ReversedRangeOfAScaledSpectrumFails)
{
    Measurement m = spectrum(kSpectrum);
    float value = 701.0f;
    expectFailures({{"reversed", [&] { return daRmsOfMeasurement(m.source(), 3, 1, &value); },
                     "daRms : Input vector1 length (-1) should be >0"}});
    EXPECT_EQ(value, 0.0f);
}
