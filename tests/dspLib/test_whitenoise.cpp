// Level, band limits, burst and generator use of the band-limited noise.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

namespace {

double rootMeanSquare(const daVector& v)
{
    double sum = 0.0;
    for (long i = 0; i < v.length; ++i)
        sum += static_cast<double>(v.real[i]) * v.real[i];
    return std::sqrt(sum / static_cast<double>(v.length));
}

std::vector<double> lineMagnitudes(const daVector& time)
{
    OwnedVector spectrum;
    EXPECT_EQ(daFft(time, spectrum.out()), 0);
    std::vector<double> magnitudes;
    for (long k = 0; k < spectrum.v.length; ++k)
        magnitudes.push_back(std::hypot(spectrum.v.real[k], spectrum.v.imag[k]));
    return magnitudes;
}

double largestMagnitude(const OwnedVector& noise, long count)
{
    double largest = 0.0;
    for (long i = 0; i < count; ++i)
        largest = std::max(largest, std::fabs(static_cast<double>(noise[i])));
    return largest;
}

}  // namespace

TEST(WhiteNoise, BandClearOfDcAndNyquistHasHalfTheLevelAsMeanSquare)
{
    // 100 to 300 Hz at 1 kHz on 4096 samples: lines floor(409.6) = 409 to ceil(1228.8) = 1229. Each
    // line is a cosine of amplitude sqrt(4 / 821), so the mean square is 821 · (4 / 821) / 2 = 2.
    srand(11);
    OwnedVector noise;
    float peak = 0.0f;
    ASSERT_EQ(daWhiteNoise(noise.out(), &peak, 4096, 1000.0f, 0.1f, 0.3f, 4.0f, 1.0f), 0);
    ASSERT_EQ(noise.v.length, 4096);
    EXPECT_EQ(noise.v.imag, nullptr);
    EXPECT_EQ(peak, static_cast<float>(largestMagnitude(noise, 4096)));

    const double lineAmplitude = std::sqrt(4.0 / 821.0);
    const std::vector<double> lines = lineMagnitudes(noise.v);
    for (long k = 0; k < static_cast<long>(lines.size()); ++k) {
        if (k >= 409 && k <= 1229)
            ASSERT_NEAR(lines[k], lineAmplitude, 1e-4 * lineAmplitude) << "line " << k;
        else
            ASSERT_LT(lines[k], 1e-5 * lineAmplitude) << "line " << k;
    }
}

TEST(WhiteNoise, FullBandAsTheMeasurementOperatorAsksForIt)
{
    // Lines 0 to 2048 share desiredVrms 1. DC is a constant of the full line amplitude and the line
    // below Nyquist also feeds the Nyquist term, so the mean square lies between
    // (2047/2 + 1) / 2049 and (2047/2 + 2) / 2049: within 0.2 % of one half.
    srand(3);
    OwnedVector noise;
    ASSERT_EQ(daWhiteNoise(noise.out(), nullptr, 4096, 2.0f, 0.0f, 0.5f, 1.0f, 1.0f), 0);
    EXPECT_NEAR(rootMeanSquare(noise.v), std::sqrt(0.5), 0.01 * std::sqrt(0.5));
    const double lineAmplitude = std::sqrt(1.0 / 2049.0);
    const std::vector<double> lines = lineMagnitudes(noise.v);
    EXPECT_NEAR(lines[0], lineAmplitude, 1e-5);
    EXPECT_NEAR(lines[1], lineAmplitude, 1e-5);
    EXPECT_NEAR(lines[2047], lineAmplitude, 1e-5);
}

TEST(WhiteNoise, BurstKeepsTheStartOfTheBlock)
{
    srand(5);
    OwnedVector noise;
    float peak = 0.0f;
    ASSERT_EQ(daWhiteNoise(noise.out(), &peak, 1000, 100.0f, 0.05f, 0.4f, 1.0f, 0.2504f), 0);
    EXPECT_GT(peak, 0.0f);
    EXPECT_EQ(peak, static_cast<float>(largestMagnitude(noise, 250)));
    for (long i = 250; i < 1000; ++i)
        ASSERT_EQ(noise[i], 0.0f) << i;
}

TEST(WhiteNoise, DrawsOnceFromTheSharedGeneratorPerLineAndNeverSeedsIt)
{
    // 64 samples over the full band: lines 0 to 32, the phases of lines 0 and 32 forced but drawn.
    srand(42);
    for (int i = 0; i < 33; ++i)
        rand();
    const int next = rand();

    srand(42);
    OwnedVector first;
    ASSERT_EQ(daWhiteNoise(first.out(), nullptr, 64, 1.0f, 0.0f, 0.5f, 1.0f, 1.0f), 0);
    EXPECT_EQ(rand(), next);

    srand(42);
    OwnedVector repeated;
    ASSERT_EQ(daWhiteNoise(repeated.out(), nullptr, 64, 1.0f, 0.0f, 0.5f, 1.0f, 1.0f), 0);
    EXPECT_EQ(first.real(), repeated.real());
    OwnedVector following;
    ASSERT_EQ(daWhiteNoise(following.out(), nullptr, 64, 1.0f, 0.0f, 0.5f, 1.0f, 1.0f), 0);
    EXPECT_NE(first.real(), following.real());
}

TEST(WhiteNoise, ZeroLevelIsSilence)
{
    OwnedVector noise;
    float peak = 1.0f;
    ASSERT_EQ(daWhiteNoise(noise.out(), &peak, 16, 10.0f, 0.0f, 0.5f, 0.0f, 1.0f), 0);
    EXPECT_EQ(noise.real(), std::vector<float>(16, 0.0f));
    EXPECT_EQ(peak, 0.0f);
}

TEST(WhiteNoise, RejectedCalls)
{
    OwnedVector out;
    float peak = 0.0f;
    auto noise = [&](long blocksize, float fs, float start, float end, float level, float burst) {
        return [=, &out, &peak] { return daWhiteNoise(out.out(), &peak, blocksize, fs, start, end, level, burst); };
    };
    expectFailures({
        {"blocksize", noise(-1, 1000, 0, 0.5f, 1, 1), "daWhiteNoise : blocksize (-1) should be >0"},
        {"sampling", noise(64, 0, 0, 0.5f, 1, 1), "daWhiteNoise : samplingFrequency (0.000000e+00) should be >0"},
        {"end 0", noise(64, 1000, 0, 0, 1, 1),
         "daWhiteNoise : endFrequency (0.000000e+00) should be within ]0,5.000000e+02]"},
        {"end above Nyquist", noise(64, 1000, 0, 0.75f, 1, 1),
         "daWhiteNoise : endFrequency (7.500000e+02) should be within ]0,5.000000e+02]"},
        {"start negative", noise(64, 1000, -0.25f, 0.5f, 1, 1),
         "daWhiteNoise : startFrequency (-2.500000e+02) should be within [0.,5.000000e+02]"},
        {"start at end", noise(64, 1000, 0.25f, 0.25f, 1, 1),
         "daWhiteNoise : startFrequency (2.500000e+02) should be within [0.,2.500000e+02]"},
        {"level", noise(64, 1000, 0, 0.5f, -1, 1), "daWhiteNoise : desiredVrms (-1.000000e+00) should be >=0."},
        {"burst 0", noise(64, 1000, 0, 0.5f, 1, 0), "daWhiteNoise : burstFraction (0.000000e+00) should be within ]0.,1.]"},
        {"burst above 1", noise(64, 1000, 0, 0.5f, 1, 1.5f),
         "daWhiteNoise : burstFraction (1.500000e+00) should be within ]0.,1.]"},
        // An empty block passes the checks, but a transform of no samples cannot be made.
        {"transform", noise(0, 1000, 0, 0.5f, 1, 1), "daWhiteNoise : Inverse FFT (imsl_f_fft_real) failed"},
    });
    expectAllocationFailure("daWhiteNoise", noise(kUnallocatable, 1000, 0, 0.5f, 1, 1));
    EXPECT_EQ(out.v.real, nullptr);
    EXPECT_EQ(out.v.length, 0);
}

// Runs in a child process whose address space leaves room for the 256 MB output but not for the
// work array of the same size beside it; reports the status and message and exits.
[[noreturn]] void noiseWithoutRoomForTheWorkArray()
{
    long pages = 0;
    if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld", &pages) != 1)
            pages = 0;
        std::fclose(statm);
    }
    const rlim_t limit = static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (384UL << 20);
    const rlimit space = {limit, limit};
    setrlimit(RLIMIT_AS, &space);
    daVector out = {nullptr, nullptr, 0};
    const long status = daWhiteNoise(&out, nullptr, 1L << 26, 1.0f, 0.0f, 0.5f, 1.0f, 1.0f);
    std::fprintf(stderr, "%ld %s\n", status, lastError().c_str());
    std::_Exit(out.real == nullptr ? 0 : 1);
}

TEST(WhiteNoiseDeathTest, WorkArrayAllocationFailure)
{
    if (!kHugeAllocationsFail)
        GTEST_SKIP() << "address space limits do not mix with AddressSanitizer's shadow memory";
    EXPECT_EXIT(noiseWithoutRoomForTheWorkArray(), ::testing::ExitedWithCode(0),
                "1 daWhiteNoise : allocation failure for 67108866 floats");
}
