// The packed real transform against numpy's rfft on random data of many lengths, odd and prime
// ones included, and the backward transform as its unnormalised inverse.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>

#include "NumpyReference.h"
#include "RandomSignal.h"
#include "analysis/RealFft.h"

using namespace nvdl::test;

namespace {

const std::vector<long> kLengths{1, 2, 3, 4, 5, 7, 8, 16, 17, 97, 100, 127, 1000, 1024, 4099, 12345, 65537};

// numpy's transform of every input, in the packed layout, one after the other.
const char* kPackedForward = R"(
out = []
pos = 0
for n in inputs[0].astype(int):
    x = inputs[1][pos:pos + n]
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

using Transform = std::unique_ptr<float[], decltype(&std::free)>;

Transform transform(long n, const float* p, ImslFftDirection direction = ImslFftDirection::Forward,
                    const ImslFftRealSetup* setup = nullptr)
{
    return Transform(imsl_f_fft_real(n, p, direction, setup), &std::free);
}

// Single-precision accuracy relative to the largest reference value.
void expectMatches(const float* actual, const double* reference, long n, const char* direction)
{
    double scale = 1.0, worst = 0.0;
    long worstIndex = 0;
    for (long i = 0; i < n; ++i)
        scale = std::max(scale, std::abs(reference[i]));
    for (long i = 0; i < n; ++i) {
        if (std::abs(actual[i] - reference[i]) > worst) {
            worst = std::abs(actual[i] - reference[i]);
            worstIndex = i;
        }
    }
    EXPECT_LT(worst, 2e-6 * scale * std::log2(2.0 * n)) << direction << " n=" << n << " at " << worstIndex;
}

}  // namespace

// The forward transform is checked against numpy; backward after forward must then give n times
// the input, which pins the backward transform down as well.
TEST(RealFft, ForwardMatchesNumpyAndBackwardUndoesIt)
{
    const RandomBatch batch = randomBatch(kLengths, 11);
    const std::vector<double> reference = runNumpy(kPackedForward, {batch.lengths, batch.data});
    ASSERT_EQ(reference.size(), batch.data.size());
    size_t pos = 0;
    for (size_t t = 0; t < kLengths.size(); ++t) {
        const long n = kLengths[t];
        std::vector<float> input = batch.inputs[t];
        Transform forward = transform(n, input.data());
        ASSERT_NE(forward, nullptr) << n;
        EXPECT_EQ(input, batch.inputs[t]) << "input changed, n=" << n;
        expectMatches(forward.get(), reference.data() + pos, n, "forward");
        pos += static_cast<size_t>(n);

        Transform backward = transform(n, forward.get(), ImslFftDirection::Backward);
        ASSERT_NE(backward, nullptr) << n;
        std::vector<double> scaled(input.begin(), input.end());
        for (double& v : scaled)
            v *= static_cast<double>(n);
        expectMatches(backward.get(), scaled.data(), n, "backward");
    }
}

TEST(RealFft, SetupGivesTheSameNumbersAndMustMatchTheLength)
{
    const long n = 1000;
    std::vector<float> x = randomFloats(n + 1, 8);
    std::unique_ptr<ImslFftRealSetup, decltype(&std::free)> setup(imsl_f_fft_real_init(n), &std::free);
    ASSERT_NE(setup, nullptr);
    Transform withSetup = transform(n, x.data(), ImslFftDirection::Forward, setup.get());
    Transform without = transform(n, x.data());
    ASSERT_NE(withSetup, nullptr);
    ASSERT_NE(without, nullptr);
    EXPECT_EQ(std::vector<float>(withSetup.get(), withSetup.get() + n),
              std::vector<float>(without.get(), without.get() + n));
    EXPECT_EQ(transform(n + 1, x.data(), ImslFftDirection::Forward, setup.get()), nullptr);

    // Samples starting one float past an aligned address are transformed as well.
    std::vector<float> copy(x.begin() + 1, x.end());
    Transform misaligned = transform(n, x.data() + 1);
    Transform aligned = transform(n, copy.data());
    ASSERT_NE(misaligned, nullptr);
    ASSERT_NE(aligned, nullptr);
    for (long i = 0; i < n; ++i)
        EXPECT_NEAR(misaligned[i], aligned[i], 1e-4) << i;
}

TEST(RealFft, EmptyOrNullInputFails)
{
    float one = 1.0f;
    EXPECT_EQ(transform(0, &one), nullptr);
    EXPECT_EQ(transform(4, nullptr), nullptr);
    EXPECT_EQ(imsl_f_fft_real_init(0), nullptr);
}
