#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "plot/Ticks.h"

namespace nvdl::plot {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

std::vector<std::string> labels(const Axis& axis) {
    std::vector<std::string> out;
    for (const Tick& t : axis.ticks)
        if (!t.label.empty()) out.push_back(t.label);
    return out;
}

TEST(PlotTicks, StepsAreOneTwoOrFiveTimesAPowerOfTen) {
    struct Case {
        double span;
        int target;
        double step;
    } cases[] = {
        {10, 5, 2}, {1, 6, 0.2}, {100, 6, 20}, {7, 7, 1}, {0.003, 6, 0.0005}, {4.5e6, 1, 5e6}, {9e6, 3, 2e6},
        {0, 6, 1}, {-4, 6, 1}, {kInf, 6, 1}, {kNaN, 6, 1},
    };
    for (const Case& c : cases) EXPECT_DOUBLE_EQ(niceStep(c.span, c.target), c.step) << c.span << "/" << c.target;
}

TEST(PlotTicks, ExtentsSkipWhatCannotBeDrawn) {
    const std::vector<double> values{kNaN, -2.0, kInf, 0.0, 5.0, -kInf, 0.5};
    const Extent all = extentOf(values);
    EXPECT_FALSE(all.empty);
    EXPECT_EQ(all.low, -2.0);
    EXPECT_EQ(all.high, 5.0);
    const Extent positive = extentOf(values, true);
    EXPECT_EQ(positive.low, 0.5);
    EXPECT_EQ(positive.high, 5.0);
    EXPECT_TRUE(extentOf(std::vector<double>{kNaN, kInf, -1.0}, true).empty);
}

TEST(PlotTicks, LinearAxesCoverTheValuesWithWholeSteps) {
    struct Case {
        Extent extent;
        double low, high;
        std::vector<std::string> labels;
    } cases[] = {
        {{-3.2, 7.9, false}, -4, 8, {"-4", "-2", "0", "2", "4", "6", "8"}},
        {{0.1, 0.7, false}, 0.1, 0.7, {"0.1", "0.2", "0.3", "0.4", "0.5", "0.6", "0.7"}},
        {{-95.5, -12.0, false}, -100, -10, {"-100", "-90", "-80", "-70", "-60", "-50", "-40", "-30", "-20", "-10"}},
        {{1e6, 3.5e6, false}, 1e6, 3.5e6, {"1e+06", "1.5e+06", "2e+06", "2.5e+06", "3e+06", "3.5e+06"}},
        {{}, 0, 1, {"0", "0.2", "0.4", "0.6", "0.8", "1.0"}},
    };
    for (const Case& c : cases) {
        const Axis axis = linearAxis(c.extent);
        EXPECT_FALSE(axis.logarithmic);
        EXPECT_NEAR(axis.low, c.low, 1e-12 * std::abs(c.high - c.low));
        EXPECT_NEAR(axis.high, c.high, 1e-12 * std::abs(c.high - c.low));
        EXPECT_EQ(labels(axis), c.labels) << c.extent.low << ".." << c.extent.high;
        EXPECT_DOUBLE_EQ(axis.fraction(axis.low), 0.0);
        EXPECT_DOUBLE_EQ(axis.fraction(axis.high), 1.0);
    }
}

TEST(PlotTicks, ARangeOfOneValueIsOpenedAroundIt) {
    for (double v : {0.0, 5.0, -250.0, 1e-20, 3e30}) {
        const Axis axis = linearAxis(Extent{v, v, false});
        EXPECT_LT(axis.low, v) << v;
        EXPECT_GT(axis.high, v) << v;
        EXPECT_GE(axis.ticks.size(), 2u) << v;
        EXPECT_LE(axis.ticks.size(), 20u) << v;
    }
}

TEST(PlotTicks, LogarithmicAxesRunFromDecadeToDecade) {
    struct Case {
        Extent extent;
        double low, high;
        std::size_t minors;
        std::vector<std::string> labels;
    } cases[] = {
        {{3, 2000, false}, 1, 1e4, 32, {"1", "10", "100", "1000", "10000"}},
        {{10, 10, false}, 10, 100, 8, {"10", "100"}},
        {{20, 100, false}, 10, 100, 8, {"10", "100"}},
        {{0.05, 0.5, false}, 0.01, 1, 16, {"0.01", "0.1", "1"}},
        // Twelve decades: no minor ticks, every second decade labelled.
        {{1e-3, 1e9, false}, 1e-3, 1e9, 0, {"0.001", "0.1", "10", "1000", "100000", "1e+07", "1e+09"}},
        {{}, 1, 10, 8, {"1", "10"}},
    };
    for (const Case& c : cases) {
        const Axis axis = logAxis(c.extent);
        EXPECT_TRUE(axis.logarithmic);
        EXPECT_DOUBLE_EQ(axis.low, c.low);
        EXPECT_DOUBLE_EQ(axis.high, c.high);
        std::size_t minors = 0;
        for (const Tick& t : axis.ticks) minors += t.major ? 0 : 1;
        EXPECT_EQ(minors, c.minors) << c.extent.low;
        EXPECT_EQ(labels(axis), c.labels) << c.extent.low;
    }
    const Axis axis = logAxis(Extent{1, 10000, false});
    EXPECT_DOUBLE_EQ(axis.fraction(100), 0.5);
    for (double cannot : {0.0, -5.0, kNaN}) EXPECT_TRUE(std::isnan(axis.fraction(cannot))) << cannot;
}

TEST(PlotTicks, LabelsShowAsManyDigitsAsTheStepNeeds) {
    struct Case {
        double value, step;
        const char* text;
    } cases[] = {
        {0.1 + 0.2, 0.1, "0.3"}, {-40, 20, "-40"}, {1e-17, 0.1, "0"}, {0.25, 0.05, "0.25"},
        {2.5e6, 5e5, "2.5e+06"}, {-180, 90, "-180"}, {1.5e-7, 5e-8, "1.5e-07"},
    };
    for (const Case& c : cases) EXPECT_EQ(tickLabel(c.value, c.step), c.text) << c.value;
}

}  // namespace
}  // namespace nvdl::plot
