// The samples that the test TEAC reader serves, shared with the tests that check them: channel c
// (from 0) carries a sine of 10 (c + 1) Hz with amplitude c + 1.
#pragma once

#include <cmath>

namespace nvdl::test {

inline float teacSample(long channel, long index, double sampleFrequency) {
    const double hz = 10.0 * static_cast<double>(channel + 1);
    return static_cast<float>(static_cast<double>(channel + 1) *
                              std::sin(2.0 * 3.14159265358979323846 * hz * static_cast<double>(index) / sampleFrequency));
}

}  // namespace nvdl::test
