// Axis ranges and tick marks: linear axes step by 1, 2 or 5 times a power of ten; logarithmic axes
// mark each decade and, where there is room, 2 to 9 times it as minor ticks.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace nvdl::plot {

// The finite values' extent; `empty` when there is none. With `positiveOnly` (a logarithmic axis)
// values of zero and below do not count.
struct Extent {
    double low = 0.0, high = 0.0;
    bool empty = true;
    void take(double value, bool positiveOnly = false);
};

Extent extentOf(std::span<const double> values, bool positiveOnly = false);

struct Tick {
    double value;
    bool major;
    std::string label;  // empty for minor ticks and for decades left unlabelled
};

struct Axis {
    double low = 0.0, high = 1.0;  // the drawn range, ticks inclusive
    bool logarithmic = false;
    std::vector<Tick> ticks;
    // Where `value` falls between low (0) and high (1); NaN for values a logarithmic axis cannot show.
    double fraction(double value) const;
};

// The step of 1, 2 or 5 times a power of ten that cuts `span` into about `target` parts.
double niceStep(double span, int target);

// A linear axis over the extent, widened out to whole steps. A range of one value is opened around
// it; an empty extent gives 0 to 1.
Axis linearAxis(Extent extent, int target = 6);

// A linear axis over exactly low..high with ticks every `step` (fixed scales: phase, coherence).
Axis fixedAxis(double low, double high, double step);

// A logarithmic axis from the decade at or below the extent's low end to the decade at or above
// its high end (at least one decade). Minor ticks only while the decades are few enough to show
// them; with many decades only every few is labelled. An empty extent gives 1 to 10.
Axis logAxis(Extent extent);

// A tick's text: as few digits as the step needs ("0.25", "-40", "1e+06" for large powers).
std::string tickLabel(double value, double step);

}  // namespace nvdl::plot
