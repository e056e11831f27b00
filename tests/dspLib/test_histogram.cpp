// Histogram classes, the clip rule and accumulation across calls.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

TEST(Histogram, ClassesTruncateAndTheTopClassTakesOnlyExactHits)
{
    // Five classes over 0..4: class width 1, sample x lands in class floor(x). Imaginary parts are
    // ignored, and an imaginary array the output held is freed.
    std::vector<float> re = {0.0f, 0.5f, 0.999f, 1.0f, 2.5f, 3.999f, 4.0f, 4.0f};
    std::vector<float> im(re.size(), 5.0f);
    OwnedVector out;
    out.v.imag = static_cast<float*>(std::malloc(2 * sizeof(float)));
    ASSERT_EQ(daHistogram(view(re, im), out.out(), 5, 0.0f, 4.0f, 0), 0);
    EXPECT_EQ(out.real(), (std::vector<float>{3, 1, 1, 1, 2}));
    EXPECT_EQ(out.v.imag, nullptr);
}

TEST(Histogram, ClipPutsOutliersIntoTheEndClassesButNeverNan)
{
    std::vector<float> samples = {-10.0f, -1.001f, -1.0f, 1.0f, 1.0001f, 50.0f, std::nanf("")};
    OwnedVector clipped;
    ASSERT_EQ(daHistogram(view(samples), clipped.out(), 3, -1.0f, 1.0f, 1), 0);
    EXPECT_EQ(clipped.real(), (std::vector<float>{3, 0, 3}));

    OwnedVector dropped;
    ASSERT_EQ(daHistogram(view(samples), dropped.out(), 3, -1.0f, 1.0f, 0), 0);
    EXPECT_EQ(dropped.real(), (std::vector<float>{1, 0, 1}));
}

TEST(Histogram, AccumulatesWhileTheClassCountStays)
{
    std::vector<float> first = {0.1f, 0.2f, 0.9f};
    std::vector<float> second = {0.15f, 0.6f};
    OwnedVector out;
    ASSERT_EQ(daHistogram(view(first), out.out(), 4, 0.0f, 1.0f, 1), 0);
    EXPECT_EQ(out.real(), (std::vector<float>{2, 0, 1, 0}));
    const float* counts = out.v.real;
    ASSERT_EQ(daHistogram(view(second), out.out(), 4, 0.0f, 1.0f, 1), 0);
    EXPECT_EQ(out.v.real, counts);
    EXPECT_EQ(out.real(), (std::vector<float>{3, 1, 1, 0}));

    // A different class count starts over.
    ASSERT_EQ(daHistogram(view(second), out.out(), 3, 0.0f, 1.0f, 1), 0);
    EXPECT_EQ(out.real(), (std::vector<float>{1, 1, 0}));
}

TEST(Histogram, RejectedCallsKeepTheRunningCounts)
{
    std::vector<float> samples = {0.5f};
    OwnedVector out;
    ASSERT_EQ(daHistogram(view(samples), out.out(), 2, 0.0f, 1.0f, 1), 0);
    daVector negative = {samples.data(), nullptr, -3};
    expectFailures({
        {"length", [&] { return daHistogram(negative, out.out(), 2, 0.0f, 1.0f, 1); },
         "daHistogram : inputVector.length (-3) should be >0"},
        {"classes", [&] { return daHistogram(view(samples), out.out(), 1, 0.0f, 1.0f, 1); },
         "daHistogram : nrClasses (1) should be >1"},
        {"range", [&] { return daHistogram(view(samples), out.out(), 2, 1.0f, 1.0f, 1); },
         "daHistogram : maxValue (1.000000e+00) should be greater than minValue (1.000000e+00)"},
    });
    EXPECT_EQ(out.real(), (std::vector<float>{1, 0}));
    expectAllocationFailure("daHistogram",
                            [&] { return daHistogram(view(samples), out.out(), kUnallocatable, 0, 1, 1); });
}
