// Acoustic weighting curves at and between the band frequencies.
#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

namespace {

// The band frequencies and the A and D levels, as published for the weighting curves.
const std::vector<float> kBands = {10,    12.59f, 15.85f, 19.95f, 25.12f, 31.62f, 39.81f, 50.12f, 63.1f,
                                   79.43f, 100,   125.9f, 158.5f, 199.5f, 251.2f, 316.2f, 398.1f, 501.2f,
                                   631,   794.3f, 1000,   1259,   1585,   1995,   2512,   3162,   3981,
                                   5012,  6310,   7943,   10000,  12590,  15850,  19950};
const std::vector<double> kA = {-70.4, -63.4, -56.7, -50.5, -44.7, -39.4, -34.6, -30.2, -26.2, -22.5, -19.1, -16.1,
                                -13.4, -10.9, -8.6,  -6.6,  -4.8,  -3.2,  -1.9,  -0.8,  0.0,   0.6,   1.0,   1.2,
                                1.3,   1.2,   1.0,   0.5,   -0.1,  -1.1,  -2.5,  -4.3,  -6.6,  -9.3};
const std::vector<double> kB = {-38.2, -33.2, -28.5, -24.2, -20.4, -17.1, -14.2, -11.6, -9.3, -7.4, -5.6, -4.2,
                                -3.0,  -2.0,  -1.3,  -0.8,  -0.5,  -0.3,  -0.1,  0.0,   0.0,  0.0,  0.0,  -0.1,
                                -0.2,  -0.4,  -0.7,  -1.2,  -1.9,  -2.9,  -4.3,  -6.1,  -8.4, -11.1};
const std::vector<double> kC = {-14.3, -11.2, -8.5, -6.2, -4.4, -3.0, -2.0, -1.3, -0.8, -0.5, -0.3, -0.2,
                                -0.1,  0.0,   0.0,  0.0,  0.0,  0.0,  0.0,  0.0,  0.0,  0.0,  -0.1, -0.2,
                                -0.3,  -0.5,  -0.8, -1.3, -2.0, -3.0, -4.4, -6.2, -8.5, -11.2};
const std::vector<double> kD = {-28.0, -26.0, -23.0, -21.5, -18.5, -16.5, -15.0, -12.8, -10.9, -9.0, -7.2, -5.5,
                                -4.0,  -2.6,  -1.6,  -0.8,  -0.4,  -0.3,  -0.5,  -0.6,  0.0,   2.0,  4.9,  7.9,
                                10.6,  11.5,  11.1,  9.6,   7.6,   5.5,   3.4,   -1.4,  -4.0,  -8.0};

std::vector<float> weigh(std::vector<float> frequencies, long type)
{
    OwnedVector out;
    EXPECT_EQ(daAcousticWeight(view(frequencies), out.out(), type), 0);
    EXPECT_EQ(out.v.length, static_cast<long>(frequencies.size()));
    return out.real();
}

double toDb(float gain, double dbPerDecade) { return dbPerDecade * std::log10(gain); }

}  // namespace

TEST(AcousticWeight, BandFrequenciesGiveTheTableLevels)
{
    const struct {
        long type;
        const std::vector<double>* levels;
        double dbPerDecade;  // 20 for amplitude gains, 10 for power gains
    } curves[] = {{1, &kA, 20}, {2, &kB, 20}, {3, &kC, 20}, {4, &kD, 20}, {0, &kA, 20}, {7, &kA, 20},
                  {11, &kA, 10}, {12, &kB, 10}, {13, &kC, 10}, {14, &kD, 10}, {25, &kA, 10}};
    for (const auto& curve : curves) {
        SCOPED_TRACE(curve.type);
        const std::vector<float> gains = weigh(kBands, curve.type);
        for (size_t i = 0; i < kBands.size(); ++i)
            EXPECT_NEAR(toDb(gains[i], curve.dbPerDecade), (*curve.levels)[i], 1e-4) << kBands[i] << " Hz";
    }
}

TEST(AcousticWeight, LinearInLogFrequencyBetweenBands)
{
    // The geometric mean of two neighbouring bands sits halfway in dB.
    std::vector<float> between;
    for (size_t i = 0; i + 1 < kBands.size(); ++i)
        between.push_back(std::sqrt(kBands[i] * kBands[i + 1]));
    const std::vector<float> gains = weigh(between, 4);
    for (size_t i = 0; i < between.size(); ++i)
        EXPECT_NEAR(toDb(gains[i], 20), 0.5 * (kD[i] + kD[i + 1]), 1e-3) << between[i] << " Hz";

    // A quarter of the way through a band in log frequency is a quarter of the way in dB.
    const float quarter = static_cast<float>(std::pow(10.0, 0.75 * std::log10(1000.0) + 0.25 * std::log10(1259.0)));
    EXPECT_NEAR(toDb(weigh({quarter}, 14)[0], 10), 0.25 * 2.0, 1e-3);
}

TEST(AcousticWeight, ExtrapolatesBeyondTheOuterBandsAndIsZeroOutside8HzTo25kHz)
{
    const std::vector<float> f = {8.0f, 9.0f, 22000.0f, 25000.0f, 7.99f, 25001.0f, 0.0f, -1000.0f, std::nanf("")};
    const std::vector<float> gains = weigh(f, 1);
    const double slopeLow = (kA[1] - kA[0]) / std::log10(1.259);
    const double slopeHigh = (kA[33] - kA[32]) / std::log10(19950.0 / 15850.0);
    for (size_t i = 0; i < 2; ++i)
        EXPECT_NEAR(toDb(gains[i], 20), kA[0] + slopeLow * std::log10(f[i] / 10.0), 1e-3) << f[i];
    for (size_t i = 2; i < 4; ++i)
        EXPECT_NEAR(toDb(gains[i], 20), kA[33] + slopeHigh * std::log10(f[i] / 19950.0), 1e-3) << f[i];
    for (size_t i = 4; i < f.size(); ++i)
        EXPECT_EQ(gains[i], 0.0f) << f[i];
}

TEST(AcousticWeight, ReusesAnOutputOfTheSameLength)
{
    std::vector<float> frequencies = {100.0f, 1000.0f};
    OwnedVector out;
    ASSERT_EQ(daAcousticWeight(view(frequencies), out.out(), 1), 0);
    const float* curve = out.v.real;
    out.v.imag = static_cast<float*>(std::malloc(2 * sizeof(float)));
    ASSERT_EQ(daAcousticWeight(view(frequencies), out.out(), 3), 0);
    EXPECT_EQ(out.v.real, curve);
    EXPECT_EQ(out.v.imag, nullptr);
    EXPECT_NEAR(toDb(out[0], 20), -0.3, 1e-4);
}

TEST(AcousticWeight, RejectedCalls)
{
    std::vector<float> frequencies = {100.0f};
    daVector negative = {frequencies.data(), nullptr, -1};
    OwnedVector out;
    // A bad length returns the general failure code rather than 1.
    const long generalFailure = static_cast<std::int32_t>(0x80004005u);
    expectFailures({{"length", [&] { return daAcousticWeight(negative, out.out(), 1); },
                     "daAcousticWeight : inputVector.length (-1) should be >0", generalFailure}});
    daVector huge = {frequencies.data(), nullptr, kUnallocatable};
    expectAllocationFailure("daAcousticWeight", [&] { return daAcousticWeight(huge, out.out(), 1); });
}
