// Scaling and word format of the signal output buffer.
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

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
    // With scale 1 a sample x is v = 2^23 · x, truncated and placed in the top 24 bits of the word.
    const struct {
        double v;
        std::int32_t word;
    } cases[] = {{40000, 40000 * 256},     {-40000, word(0x80000000u)},  {-32767, -32767 * 256},
                 {-32768, word(0x80000000u)}, {4194303, 4194303 * 256}, {4194304, word(0x40000000u)},
                 {1.5, 256},               {-1.5, -256},                {0.9 * 8388608.0, word(0x40000000u)}};
    std::vector<float> samples;
    for (const auto& c : cases)
        samples.push_back(static_cast<float>(c.v / 8388608.0));
    std::vector<std::int32_t> words(samples.size());
    float scale = 0.0f;
    ASSERT_EQ(daOutputBuffer(view(samples), 1.0f, &scale, words.data(), 2.0f), 0);
    ASSERT_EQ(scale, 1.0f);
    for (size_t i = 0; i < samples.size(); ++i)
        EXPECT_EQ(words[i], cases[i].word) << cases[i].v;
}

TEST(OutputBuffer, RejectedCalls)
{
    std::vector<float> samples = {0.5f};
    std::vector<std::int32_t> words(1, 7);
    daVector negative = {samples.data(), nullptr, -4};
    float scale = 3.0f;
    expectFailures({
        {"buffer", [&] { return daOutputBuffer(view(samples), 1.0f, &scale, nullptr, 0.0f); },
         "daOutputBuffer : outputNoiseBuffer (0x0) should be pre-allocated"},
        {"length", [&] { return daOutputBuffer(negative, 1.0f, &scale, words.data(), 0.0f); },
         "daOutputBuffer : Data vector length (-4) should be >0"},
        {"level", [&] { return daOutputBuffer(view(samples), 0.0f, &scale, words.data(), 0.0f); },
         "daOutputBuffer : Data output level (0.000000e+00) should be >0"},
        {"negative level", [&] { return daOutputBuffer(view(samples), -2.0f, &scale, words.data(), 0.0f); },
         "daOutputBuffer : Data output level (-2.000000e+00) should be >0"},
    });
    EXPECT_EQ(scale, 3.0f);
    EXPECT_EQ(words[0], 7);
}
