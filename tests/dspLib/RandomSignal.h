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

// Random inputs of several lengths, each from its own seed, with the lengths and all inputs one
// after the other as a numpy reference script reads them.
struct RandomBatch {
    std::vector<std::vector<float>> inputs;
    std::vector<double> lengths;
    std::vector<double> data;
};

inline RandomBatch randomBatch(const std::vector<long>& lengths, unsigned seed)
{
    RandomBatch batch;
    for (long n : lengths) {
        batch.inputs.push_back(randomFloats(static_cast<size_t>(n), seed++));
        batch.lengths.push_back(static_cast<double>(n));
        batch.data.insert(batch.data.end(), batch.inputs.back().begin(), batch.inputs.back().end());
    }
    return batch;
}

}  // namespace nvdl::test
