// Window shapes against scipy's, the correction table against the generated windows, the force
// window's geometry and the rejected calls.
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "NumpyReference.h"
#include "signalTestSupport.h"

using namespace nvdl::test;

namespace {

std::vector<float> makeWindow(daeWindow type, long size, float amplitude = 1.0f, float parameter = 0.0f,
                              float offset = 0.0f)
{
    OwnedVector out;
    EXPECT_EQ(daWindow(type, out.out(), size, amplitude, parameter, offset), 0);
    EXPECT_EQ(out.v.length, size);
    EXPECT_EQ(out.v.imag, nullptr);
    return out.real();
}

// The mean of the samples raised to `power`.
double meanPower(const std::vector<float>& w, int power)
{
    double sum = 0.0;
    for (float v : w)
        sum += std::pow(static_cast<double>(v), power);
    return sum / static_cast<double>(w.size());
}

}  // namespace

TEST(Window, MatchesScipysPeriodicWindows)
{
    // The flattop here uses the coefficients 1, 1.933, 1.286, 0.388, 0.032 over 4.637, the same
    // shape as scipy's to four digits; scaled to scipy's first coefficient they differ below 3e-4.
    const struct {
        daeWindow type;
        const char* scipyName;
        double scale;
        double tolerance;
    } shapes[] = {{daeHanning, "hann", 1.0, 1e-6},
                  {daeHamming, "hamming", 1.0, 1e-6},
                  {daeBlackman, "blackman", 1.0, 1e-6},
                  {daeFlattop, "flattop", 4.637 * 0.21557895, 3e-4}};
    const long sizes[] = {7, 64, 1000};
    const std::vector<double> reference =
        runNumpy("import scipy.signal as s\n"
                 "result = np.concatenate([s.get_window(n, size) for n in ('hann', 'hamming', 'blackman', "
                 "'flattop') for size in (7, 64, 1000)])",
                 {});
    ASSERT_EQ(reference.size(), 4u * (7 + 64 + 1000)) << "python3 with scipy is needed";
    size_t pos = 0;
    for (const auto& shape : shapes) {
        for (long size : sizes) {
            SCOPED_TRACE(std::string(shape.scipyName) + " " + std::to_string(size));
            const std::vector<float> w = makeWindow(shape.type, size, 2.5f);
            for (long i = 0; i < size; ++i, ++pos)
                ASSERT_NEAR(w[i] * shape.scale, 2.5 * reference[pos], 2.5 * shape.tolerance) << "element " << i;
        }
    }
}

TEST(Window, CorrectionTableMatchesTheGeneratedWindows)
{
    // Amplitude correction = 1 / mean (coherent gain); bandwidth correction = mean square / mean²
    // (equivalent noise bandwidth in lines). Both are exact for periodic windows of any length
    // above the highest cosine order, so one length serves.
    const struct {
        long code;
        daeWindow window;
        double bandwidthTolerance;
    } rows[] = {
        {1301, daeUniform, 1e-6},   {1302, daeHanning, 1e-6}, {1303, daeHamming, 2e-6},
        {1304, daeFlattop, 2e-5},   {1307, daeBlackman, 2e-6},
        // The table rounds the Kaiser-Bessel bandwidth to 1.8; the coefficients give 1.79857.
        {1308, daeKaiserBessel, 1e-3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.code);
        const daWindowCorrection correction = daGetWindowCorrection(row.code);
        EXPECT_EQ(correction.window, row.window);
        const std::vector<float> w = makeWindow(row.window, 4096);
        const double m = meanPower(w, 1);
        EXPECT_NEAR(correction.amplitudeCorrection * m, 1.0, 2e-6);
        EXPECT_NEAR(correction.bandwidthCorrectionFactor / (meanPower(w, 2) / (m * m)), 1.0, row.bandwidthTolerance);
    }
}

TEST(Window, CorrectionTableRowsWithoutAShapeCorrection)
{
    // Force and exponential windows depend on their parameter, so they carry no correction; the
    // combined force/exponential type and unknown codes fall back to the uniform window.
    const std::pair<long, daeWindow> rows[] = {{1305, daeForce},   {1306, daeExponential}, {1309, daeUniform},
                                               {1300, daeUniform}, {0, daeUniform},        {1402, daeUniform}};
    for (const auto& [code, window] : rows) {
        const daWindowCorrection correction = daGetWindowCorrection(code);
        EXPECT_EQ(correction.window, window) << code;
        EXPECT_EQ(correction.amplitudeCorrection, 1.0f) << code;
        EXPECT_EQ(correction.bandwidthCorrectionFactor, 1.0f) << code;
    }
}

TEST(Window, KaiserBesselAndExponential)
{
    const std::vector<float> kb = makeWindow(daeKaiserBessel, 100);
    EXPECT_NEAR(kb[50], (1 + 1.24 + 0.244 + 0.00305) * 0.40207472, 1e-6);
    EXPECT_NEAR(kb[0], (1 - 1.24 + 0.244 - 0.00305) * 0.40207472, 1e-6);

    const std::vector<float> decay = makeWindow(daeExponential, 200, 3.0f, 4.0f);
    EXPECT_FLOAT_EQ(decay[0], 3.0f);
    EXPECT_NEAR(decay[50], 3.0 * std::exp(-1.0), 1e-6);
    EXPECT_NEAR(decay[199], 3.0 * std::exp(-199.0 * 4.0 / 200.0), 1e-6);

    const std::vector<float> flat = makeWindow(daeUniform, 5, 0.25f);
    EXPECT_EQ(flat, std::vector<float>(5, 0.25f));
}

TEST(Window, ForceWindowFromAPercentageOrAFraction)
{
    // 10 %: start 0, width 100, end 99, taper 20 samples of falling half cosine.
    const std::vector<float> w = makeWindow(daeForce, 1000, 1.0f, 10.0f, 0.0f);
    for (long i = 0; i <= 99; ++i)
        ASSERT_EQ(w[i], 1.0f) << i;
    for (long i = 100; i < 119; ++i)
        ASSERT_NEAR(w[i], 0.5 * (std::cos((i - 99) * M_PI / 20) + 1.0), 1e-6) << i;
    EXPECT_GT(w[118], 0.0f);
    for (long i = 119; i < 1000; ++i)
        ASSERT_EQ(w[i], 0.0f) << i;

    // 0.1 is the same width, but the percentage part is 0: the taper is 1 % of the block.
    const std::vector<float> fraction = makeWindow(daeForce, 1000, 2.0f, 0.1f, 0.0f);
    EXPECT_EQ(fraction[99], 2.0f);
    EXPECT_NEAR(fraction[104], 2.0 * 0.5 * (std::cos(5 * M_PI / 10) + 1.0), 1e-6);
    EXPECT_GT(fraction[108], 0.0f);
    EXPECT_EQ(fraction[109], 0.0f);
}

TEST(Window, ForceWindowPlacement)
{
    // Starts two samples before the offset; 20 % of 100 samples is 20 wide, taper 4.
    const std::vector<float> w = makeWindow(daeForce, 100, 1.0f, 20.0f, 0.5f);
    EXPECT_EQ(w[47], 0.0f);
    EXPECT_EQ(w[48], 1.0f);
    EXPECT_EQ(w[67], 1.0f);
    EXPECT_NEAR(w[68], 0.5 * (std::cos(M_PI / 4) + 1.0), 1e-6);
    EXPECT_EQ(w[71], 0.0f);

    // A rectangle reaching the end of the block has no room for a taper.
    const std::vector<float> full = makeWindow(daeForce, 100, 1.0f, 100.0f, 0.0f);
    EXPECT_EQ(full, std::vector<float>(100, 1.0f));

    // An offset beyond the block puts a single sample at the end; a zero width is one sample wide.
    const std::vector<float> late = makeWindow(daeForce, 50, 1.0f, 10.0f, 3.0f);
    EXPECT_EQ(late[49], 1.0f);
    EXPECT_EQ(late[48], 0.0f);
    const std::vector<float> narrow = makeWindow(daeForce, 50, 1.0f, 0.0f, 0.2f);
    EXPECT_EQ(narrow[8], 1.0f);
    EXPECT_EQ(narrow[7] + narrow[9], 0.0f);
}

TEST(Window, EmptyWindow) { EXPECT_TRUE(makeWindow(daeHanning, 0).empty()); }

TEST(Window, RejectedCallsLeaveTheOutputAlone)
{
    OwnedVector out;
    ASSERT_EQ(daWindow(daeUniform, out.out(), 3, 1.0f, 0.0f, 0.0f), 0);
    const float* kept = out.v.real;
    expectFailures({
        {"type 0", [&] { return daWindow(static_cast<daeWindow>(0), out.out(), 8, 1, 0, 0); },
         "daWindow : Window type (0) outside valid range [-1,8]"},
        {"type 9", [&] { return daWindow(static_cast<daeWindow>(9), out.out(), 8, 1, 0, 0); },
         "daWindow : Window type (9) outside valid range [-1,8]"},
        {"negative size", [&] { return daWindow(daeHanning, out.out(), -1, 1, 0, 0); },
         "daWindow : Window size (-1) should be >0"},
    });
    EXPECT_EQ(out.v.real, kept);
    EXPECT_EQ(out.v.length, 3);

    // A failed allocation is the one rejection that leaves the output empty.
    expectAllocationFailure("daWindow", [&] { return daWindow(daeHanning, out.out(), kUnallocatable, 1, 0, 0); });
    EXPECT_TRUE(!kHugeAllocationsFail || (out.v.real == nullptr && out.v.length == 0));
}
