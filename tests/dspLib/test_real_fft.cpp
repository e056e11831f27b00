// The packed real transform against numpy's rfft/irfft on random data of many lengths, odd and
// prime ones included.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "NumpyReference.h"
#include "RandomSignal.h"
#include "analysis/RealFft.h"

using namespace nvdl::test;

namespace {

const std::vector<long> kLengths{1, 2, 3, 4, 5, 7, 8, 16, 17, 97, 100, 127, 1000, 1024, 4099, 12345, 65537};

// numpy's transform of every input, in the packed layout, one after the other.
const char* kPackedForward = R"(
lengths = inputs[0].astype(int)
data = inputs[1]
out = []
pos = 0
for n in lengths:
    x = data[pos:pos + n]
    pos += n
    X = np.fft.rfft(x)
    q = np.empty(n)
    q[0] = X[0].real
    m = (n - 1) // 2
    q[1:2 * m + 1:2] = X[1:m + 1].real
    q[2:2 * m + 1:2] = X[1:m + 1].imag
    if n % 2 == 0:
        q[n - 1] = X[n // 2].real
    out.append(q)
result = np.concatenate(out)
)";

// numpy's unnormalised inverse of every packed input.
const char* kPackedBackward = R"(
lengths = inputs[0].astype(int)
data = inputs[1]
out = []
pos = 0
for n in lengths:
    q = data[pos:pos + n]
    pos += n
    X = np.zeros(n // 2 + 1, dtype=complex)
    X[0] = q[0]
    m = (n - 1) // 2
    X[1:m + 1] = q[1:2 * m + 1:2] + 1j * q[2:2 * m + 1:2]
    if n % 2 == 0:
        X[n // 2] = q[n - 1]
    out.append(np.fft.irfft(X, n) * n)
result = np.concatenate(out)
)";

struct Batch {
    std::vector<double> lengths;
    std::vector<double> data;  // all inputs one after the other, as the transform saw them
    std::vector<std::vector<float>> inputs;
};

Batch randomBatch(unsigned seed)
{
    Batch batch;
    for (long n : kLengths) {
        batch.lengths.push_back(static_cast<double>(n));
        batch.inputs.push_back(randomFloats(static_cast<size_t>(n), seed++));
        batch.data.insert(batch.data.end(), batch.inputs.back().begin(), batch.inputs.back().end());
    }
    return batch;
}

// Compares one transform with its reference slice to single-precision accuracy relative to the
// largest reference value.
void expectMatches(const float* actual, const double* reference, long n, const char* direction)
{
    double scale = 1.0;
    for (long i = 0; i < n; ++i)
        scale = std::max(scale, std::abs(reference[i]));
    double worst = 0.0;
    long worstIndex = 0;
    for (long i = 0; i < n; ++i) {
        double error = std::abs(actual[i] - reference[i]);
        if (error > worst) {
            worst = error;
            worstIndex = i;
        }
    }
    EXPECT_LT(worst, 2e-6 * scale * std::log2(2.0 * n)) << direction << " n=" << n << " at " << worstIndex;
}

void checkDirection(ImslFftDirection direction, const char* script, unsigned seed)
{
    Batch batch = randomBatch(seed);
    std::vector<double> reference = runNumpy(script, {batch.lengths, batch.data});
    ASSERT_EQ(reference.size(), batch.data.size());
    size_t pos = 0;
    for (size_t t = 0; t < kLengths.size(); ++t) {
        long n = kLengths[t];
        std::vector<float> input = batch.inputs[t];
        float* result = imsl_f_fft_real(n, input.data(), direction);
        ASSERT_NE(result, nullptr) << n;
        EXPECT_EQ(input, batch.inputs[t]) << "input changed, n=" << n;
        expectMatches(result, reference.data() + pos, n, direction == ImslFftDirection::Forward ? "forward" : "backward");
        std::free(result);
        pos += static_cast<size_t>(n);
    }
}

}  // namespace

TEST(RealFft, ForwardMatchesNumpyInPackedLayout) { checkDirection(ImslFftDirection::Forward, kPackedForward, 11); }

TEST(RealFft, BackwardMatchesUnnormalisedNumpyInverse) { checkDirection(ImslFftDirection::Backward, kPackedBackward, 99); }

TEST(RealFft, SetupGivesTheSameNumbersAndMustMatchTheLength)
{
    const long n = 1000;
    std::vector<float> x = randomFloats(n + 1, 8);
    ImslFftRealSetup* setup = imsl_f_fft_real_init(n);
    ASSERT_NE(setup, nullptr);
    float* withSetup = imsl_f_fft_real(n, x.data(), ImslFftDirection::Forward, setup);
    float* without = imsl_f_fft_real(n, x.data());
    ASSERT_NE(withSetup, nullptr);
    ASSERT_NE(without, nullptr);
    EXPECT_EQ(std::vector<float>(withSetup, withSetup + n), std::vector<float>(without, without + n));
    EXPECT_EQ(imsl_f_fft_real(n + 1, x.data(), ImslFftDirection::Forward, setup), nullptr);
    // Samples starting one float past an aligned address are transformed as well.
    std::vector<float> copy(x.begin() + 1, x.end());
    float* misaligned = imsl_f_fft_real(n, x.data() + 1);
    float* aligned = imsl_f_fft_real(n, copy.data());
    ASSERT_NE(misaligned, nullptr);
    ASSERT_NE(aligned, nullptr);
    for (long i = 0; i < n; ++i)
        EXPECT_NEAR(misaligned[i], aligned[i], 1e-4) << i;
    std::free(misaligned);
    std::free(aligned);
    std::free(withSetup);
    std::free(without);
    std::free(setup);
}

TEST(RealFft, EmptyOrNullInputFails)
{
    float one = 1.0f;
    EXPECT_EQ(imsl_f_fft_real(0, &one), nullptr);
    EXPECT_EQ(imsl_f_fft_real(4, nullptr), nullptr);
    EXPECT_EQ(imsl_f_fft_real_init(0), nullptr);
}
