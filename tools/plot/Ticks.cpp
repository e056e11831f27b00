#include "plot/Ticks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace nvdl::plot {

namespace {

// No axis carries more ticks than this, whatever its range: a range too wide for a double's
// steps would otherwise never end.
constexpr int kMostTicks = 200;
// Decades up to which the minor ticks 2..9 are drawn, and the most decades that carry labels.
constexpr int kMinorDecades = 6;
constexpr int kLabelledDecades = 8;

std::string format(const char* pattern, int digits, double value) {
    char text[48];
    std::snprintf(text, sizeof text, pattern, digits, value);
    return text;
}

}  // namespace

void Extent::take(double value, bool positiveOnly) {
    if (!std::isfinite(value) || (positiveOnly && value <= 0.0)) return;
    if (empty) {
        low = high = value;
        empty = false;
    } else {
        low = std::min(low, value);
        high = std::max(high, value);
    }
}

Extent extentOf(std::span<const double> values, bool positiveOnly) {
    Extent extent;
    for (double v : values) extent.take(v, positiveOnly);
    return extent;
}

double Axis::fraction(double value) const {
    if (!logarithmic) return (value - low) / (high - low);
    if (!(value > 0.0)) return std::numeric_limits<double>::quiet_NaN();
    return (std::log10(value) - std::log10(low)) / (std::log10(high) - std::log10(low));
}

double niceStep(double span, int target) {
    if (!std::isfinite(span) || span <= 0.0 || target < 1) return 1.0;
    const double raw = span / target;
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    const double normalised = raw / magnitude;
    const double factor = normalised < 1.5 ? 1.0 : normalised < 3.5 ? 2.0 : normalised < 7.5 ? 5.0 : 10.0;
    return factor * magnitude;
}

std::string tickLabel(double value, double step) {
    if (std::abs(value) < step * 1e-9) return "0";
    const int decimals = step > 0.0 ? std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9))) : 0;
    if (std::abs(value) >= 1e6 || decimals > 5) {
        // Enough significant digits to tell neighbouring ticks apart.
        const int digits = std::clamp(static_cast<int>(std::ceil(std::log10(std::abs(value) / step))) + 1, 1, 15);
        return format("%.*g", digits, value);
    }
    return format("%.*f", decimals, value);
}

Axis fixedAxis(double low, double high, double step) {
    Axis axis;
    axis.low = low;
    axis.high = high;
    const int count = static_cast<int>(std::min<double>(std::floor((high - low) / step + 1e-9), kMostTicks));
    for (int i = 0; i <= count; ++i) {
        const double value = low + i * step;
        axis.ticks.push_back({value, true, tickLabel(value, step)});
    }
    return axis;
}

Axis linearAxis(Extent extent, int target) {
    if (extent.empty) return fixedAxis(0.0, 1.0, 0.2);
    double low = extent.low, high = extent.high;
    if (high - low <= std::abs(high) * 1e-12) {
        const double margin = low == 0.0 ? 1.0 : std::abs(low) * 0.1;
        low -= margin;
        high += margin;
    }
    const double step = niceStep(high - low, target);
    Axis axis;
    axis.low = std::floor(low / step) * step;
    axis.high = std::ceil(high / step) * step;
    const int count = static_cast<int>(std::min<double>(std::round((axis.high - axis.low) / step), kMostTicks));
    for (int i = 0; i <= count; ++i) {
        // Whole multiples of the step, so that 0.1 + 0.2 is labelled and placed as 0.3.
        double value = std::round(axis.low / step + i) * step;
        if (std::abs(value) < step * 1e-9) value = 0.0;
        axis.ticks.push_back({value, true, tickLabel(value, step)});
    }
    return axis;
}

Axis logAxis(Extent extent) {
    Axis axis;
    axis.logarithmic = true;
    int first = 0, last = 1;
    if (!extent.empty) {
        first = static_cast<int>(std::floor(std::log10(extent.low) + 1e-9));
        last = static_cast<int>(std::ceil(std::log10(extent.high) - 1e-9));
        if (last <= first) last = first + 1;
    }
    axis.low = std::pow(10.0, first);
    axis.high = std::pow(10.0, last);
    const int decades = last - first;
    const int labelEvery = (decades + kLabelledDecades - 1) / kLabelledDecades;
    for (int d = first; d <= last; ++d) {
        const double decade = std::pow(10.0, d);
        axis.ticks.push_back({decade, true, (d - first) % labelEvery == 0 ? format("%.*g", 6, decade) : std::string()});
        if (d == last || decades > kMinorDecades) continue;
        for (int k = 2; k <= 9; ++k) axis.ticks.push_back({k * decade, false, {}});
    }
    return axis;
}

}  // namespace nvdl::plot
