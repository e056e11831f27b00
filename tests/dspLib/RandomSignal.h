// Reproducible random test data for the transform and matrix tests.
#pragma once

#include <random>
#include <vector>

namespace nvdl::test {

inline std::vector<float> randomFloats(size_t count, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> values(count);
    for (float& v : values)
        v = uniform(generator);
    return values;
}

}  // namespace nvdl::test
