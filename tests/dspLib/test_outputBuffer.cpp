// Scaling and word format of the signal output buffer.
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace signaltest;

namespace {

std::int32_t word(std::uint32_t bits) { return static_cast<std::int32_t>(bits); }

}  // namespace

TEST(OutputBuffer, ScaleIsQuantisedToSteps256AndNeverAmplifies)
{
    std::vector<float> samples = {0.0f};
    std::vector<std::int32_t> words(1);
    const struct {
        float peak;
        float level;
        float scale;
    } cases[] = {
        {0.5f, 1.0f, 0.5f},            // 128 steps
        {0.3f, 1.0f, 77.0f / 256.0f},  // 76.8 rounds to 77 steps
        {0.001f, 1.0f, 1.0f},          // rounds to 0 steps: no scaling
        {2.0f, 1.0f, 1.0f},            // above 1: no scaling
        {1.0f, 2.0f, 0.5f},
        {-0.5f, 1.0f, 1.0f},
    };
    for (const auto& c : cases) {
        float scale = -1.0f;
        ASSERT_EQ(daOutputBuffer(view(samples), c.level, &scale, words.data(), c.peak), 0);
        EXPECT_EQ(scale, c.scale) << c.peak << " / " << c.level;
    }
}

TEST(OutputBuffer, PeakOfZeroIsTakenFromTheData)
{
    std::vector<float> samples = {0.1f, -0.25f, 0.2f};
    std::vector<std::int32_t> words(3);
    float scale = 0.0f;
    ASSERT_EQ(daOutputBuffer(view(samples), 1.0f, &scale, words.data(), 0.0f), 0);
    EXPECT_EQ(scale, 64.0f / 256.0f);
    // 0.1 · 2^23 / 0.25 = 3355443.2, truncated and shifted.
    EXPECT_EQ(words[0], 3355443 * 256);
}

TEST(OutputBuffer, WordsSaturateAsymmetrically)
{
    // With scale 1 the sample is v = 2^23 · x.
    const double unit = 1.0 / 8388608.0;
    std::vector<float> samples = {static_cast<float>(40000 * unit),   static_cast<float>(-40000 * unit),
                                  static_cast<float>(-32767 * unit),  static_cast<float>(-32768 * unit),
                                  static_cast<float>(4194303 * unit), static_cast<float>(4194304 * unit),
                                  static_cast<float>(1.5 * unit),     static_cast<float>(-1.5 * unit),
                                  0.9f};
    std::vector<std::int32_t> words(samples.size());
    float scale = 0.0f;
    ASSERT_EQ(daOutputBuffer(view(samples), 1.0f, &scale, words.data(), 2.0f), 0);
    ASSERT_EQ(scale, 1.0f);
    EXPECT_EQ(words[0], 40000 * 256);
    EXPECT_EQ(words[1], word(0x80000000u));
    EXPECT_EQ(words[2], -32767 * 256);
    EXPECT_EQ(words[3], word(0x80000000u));
    EXPECT_EQ(words[4], 4194303 * 256);
    EXPECT_EQ(words[5], word(0x40000000u));
    EXPECT_EQ(words[6], 1 * 256);
    EXPECT_EQ(words[7], -1 * 256);
    EXPECT_EQ(words[8], word(0x40000000u));
}

TEST(OutputBuffer, RejectedCalls)
{
    std::vector<float> samples = {0.5f};
    std::vector<std::int32_t> words(1, 7);
    daVector negative = {samples.data(), nullptr, -4};
    float scale = 3.0f;
    std::vector<FailureCase> cases = {
        {"buffer", [&] { return daOutputBuffer(view(samples), 1.0f, &scale, nullptr, 0.0f); },
         "daOutputBuffer : outputNoiseBuffer (0x0) should be pre-allocated"},
        {"length", [&] { return daOutputBuffer(negative, 1.0f, &scale, words.data(), 0.0f); },
         "daOutputBuffer : Data vector length (-4) should be >0"},
        {"level", [&] { return daOutputBuffer(view(samples), 0.0f, &scale, words.data(), 0.0f); },
         "daOutputBuffer : Data output level (0.000000e+00) should be >0"},
        {"negative level", [&] { return daOutputBuffer(view(samples), -2.0f, &scale, words.data(), 0.0f); },
         "daOutputBuffer : Data output level (-2.000000e+00) should be >0"},
    };
    expectFailures(cases);
    EXPECT_EQ(scale, 3.0f);
    EXPECT_EQ(words[0], 7);
}
