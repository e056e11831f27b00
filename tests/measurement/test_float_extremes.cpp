// The min/max reduction against a plain loop, over every length around the vector widths, with
// the extremes at every position, NaNs among the values and values beyond the start values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "measurement/FloatExtremes.h"

namespace nvdl {
namespace {

void plainExtremes(const std::vector<float>& v, float& lo, float& hi) {
    for (float x : v) {
        if (x < lo) lo = x;
        if (x > hi) hi = x;
    }
}

TEST(FloatExtremes, AgreesWithAPlainLoopAtEveryLengthAndPosition) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
    for (std::size_t n = 0; n <= 70; ++n) {
        for (std::size_t at = 0; at < std::max<std::size_t>(n, 1); ++at) {
            std::vector<float> v(n);
            for (float& x : v) x = value(random);
            if (n) {
                v[at] = 5000.0f;                    // the maximum somewhere
                v[n - 1 - at] = -5000.0f + float(at);  // the minimum somewhere else
                if (n > 2) v[(at + 1) % n] = std::numeric_limits<float>::quiet_NaN();
            }
            float lo = 2147483648.0f, hi = -2147483648.0f, plainLo = lo, plainHi = hi;
            floatExtremes(v.data(), n, lo, hi);
            plainExtremes(v, plainLo, plainHi);
            ASSERT_EQ(lo, plainLo) << n << " " << at;
            ASSERT_EQ(hi, plainHi) << n << " " << at;
        }
    }
}

TEST(FloatExtremes, StartValuesBoundTheResult) {
    // Values that never pass the start values leave them as they are.
    std::vector<float> v(100, 3.0e9f);
    float lo = 2147483648.0f, hi = 4.0e9f;
    floatExtremes(v.data(), v.size(), lo, hi);
    EXPECT_EQ(lo, 2147483648.0f);
    EXPECT_EQ(hi, 4.0e9f);
    std::vector<float> nans(37, std::numeric_limits<float>::quiet_NaN());
    floatExtremes(nans.data(), nans.size(), lo, hi);
    EXPECT_EQ(lo, 2147483648.0f);
    EXPECT_EQ(hi, 4.0e9f);
}

}  // namespace
}  // namespace nvdl
