// Phase in degrees and the RMS sum.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

TEST(PhaseUnwrappedDegrees, CutMovedToMinus160)
{
    std::vector<float> re = {1.0f, 0.0f, -1.0f, -1.0f, 0.0f, std::cos(-2.7f), std::cos(-2.8f), -1.0f};
    std::vector<float> im = {0.0f, 1.0f, 0.0f, -1e-6f, -1.0f, std::sin(-2.7f), std::sin(-2.8f), 0.0f};
    OwnedVector out;
    ASSERT_EQ(daPhaseUnwrappedDegrees(view(re, im), out.out()), 0);
    EXPECT_EQ(out.v.imag, nullptr);
    EXPECT_NEAR(out[0], 0.0, 1e-5);
    EXPECT_NEAR(out[1], 90.0, 1e-5);
    EXPECT_NEAR(out[2], 180.0, 1e-5);
    EXPECT_NEAR(out[3], 180.0, 1e-3);  // just past -180 becomes just past +180
    EXPECT_NEAR(out[4], -90.0, 1e-5);
    EXPECT_NEAR(out[5], -2.7 * 180.0 / M_PI, 1e-4);           // -154.7 stays
    EXPECT_NEAR(out[6], -2.8 * 180.0 / M_PI + 360.0, 1e-4);   // -160.4 becomes 199.6
    EXPECT_NEAR(out[7], 180.0, 1e-5);
}

TEST(PhaseUnwrappedDegrees, RealInputHasZeroPhaseWhateverItsSign)
{
    std::vector<float> re = {-3.0f, 2.0f};
    OwnedVector out;
    ASSERT_EQ(daPhaseUnwrappedDegrees(view(re), out.out()), 0);
    EXPECT_EQ(out.real(), (std::vector<float>{0.0f, 0.0f}));
}

TEST(Rms, PowerSumOfComplexValuesAndZeroForNone)
{
    std::vector<float> re = {3.0f, 1.0f}, im = {4.0f, 0.0f}, none;
    float rms = -1.0f;
    ASSERT_EQ(daRms(view(re, im), &rms, 0, 0.5f), 0);
    EXPECT_FLOAT_EQ(rms, std::sqrt(0.5f * 26.0f));
    ASSERT_EQ(daRms(view(re), &rms, 0, 1.0f), 0);
    EXPECT_FLOAT_EQ(rms, std::sqrt(10.0f));
    ASSERT_EQ(daRms(view(none), &rms, 0, 1.0f), 0);
    EXPECT_EQ(rms, 0.0f);
}

TEST(Rms, AmplitudeSumKeepsTheSignOfRealValues)
{
    std::vector<float> re = {3.0f, -1.0f, 6.0f};
    std::vector<float> im = {4.0f, 0.0f, 0.0f};
    float rms = 0.0f;
    ASSERT_EQ(daRms(view(re, im), &rms, 1, 2.0f), 0);
    EXPECT_FLOAT_EQ(rms, std::sqrt(2.0f * (5.0f - 1.0f + 6.0f)));

    std::vector<float> negative = {-1.0f, -1.0f};
    ASSERT_EQ(daRms(view(negative), &rms, 1, 1.0f), 0);
    EXPECT_TRUE(std::isnan(rms));  // a sum of -2 has no root
    ASSERT_EQ(daRms(view(negative), &rms, 1, -1.0f), 0);
    EXPECT_FLOAT_EQ(rms, std::sqrt(2.0f));
}

TEST(PhaseAndRms, RejectedCalls)
{
    std::vector<float> one = {1.0f};
    daVector negative = {one.data(), nullptr, -7};
    OwnedVector out;
    float rms = 0.0f;
    expectFailures({
        {"phase", [&] { return daPhaseUnwrappedDegrees(negative, out.out()); },
         "daPhaseUnwrappedDegrees : Input vector length (-7) should be >0"},
        {"rms", [&] { return daRms(negative, &rms, 0, 1.0f); }, "daRms : Input vector1 length (-7) should be >0"},
    });
    daVector huge = {one.data(), nullptr, kUnallocatable};
    expectAllocationFailure("daPhaseUnwrappedDegrees", [&] { return daPhaseUnwrappedDegrees(huge, out.out()); });
}
