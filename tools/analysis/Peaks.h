// Peaks of a spectrum or FRF on an equidistant frequency axis: the highest line in a frequency
// range, with the frequency refined between the lines by a parabola through it and its neighbours.
#pragma once

#include <vector>

#include "nvdl/IMeasurement.h"

namespace nvdl::analysis {

struct Peak {
    long line = -1;
    double frequency = 0.0;  // refined
    double magnitude = 0.0;  // of the highest line
};

// The magnitude of every line of the measurement; empty when it has no values.
std::vector<double> magnitudes(IMeasurement* spectrum);

// The peak of |values| between `low` and `high` Hz; false when no line lies in the range.
bool findPeak(IMeasurement* spectrum, double low, double high, Peak& peak);

}  // namespace nvdl::analysis
