// daFft, daInverseFft and daZoomFft: the one-sided peak-scaled spectrum convention, agreement with
// numpy, the round trip, and their failures.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "KernelVector.h"
#include "NumpyReference.h"
#include "RandomSignal.h"

using namespace nvdl::test;

namespace {

class Fft : public ::testing::Test {
protected:
    void SetUp() override { daClearErrorFlag(); }
};

std::vector<float> sine(long n, double amplitude, long line, double phase = 0.0)
{
    std::vector<float> x(static_cast<size_t>(n));
    for (long i = 0; i < n; ++i)
        x[static_cast<size_t>(i)] =
            static_cast<float>(amplitude * std::sin(2.0 * std::numbers::pi * line * i / n + phase));
    return x;
}

double magnitude(const OwnedVector& s, long k) { return std::hypot(s.v.real[k], s.v.imag[k]); }

}  // namespace

TEST_F(Fft, SineOnALineReadsItsAmplitudeThereAndNothingElsewhere)
{
    std::vector<float> x = sine(1024, 3.0, 17, 0.4);
    OwnedVector s;
    ASSERT_EQ(daFft(view(x), s.out()), 0);
    ASSERT_EQ(s.v.length, 513);
    ASSERT_NE(s.v.imag, nullptr);
    for (long k = 0; k < s.v.length; ++k)
        EXPECT_NEAR(magnitude(s, k), k == 17 ? 3.0 : 0.0, 1e-5) << k;
}

TEST_F(Fft, ConstantAndAlternatingSignalsCarryHalfFactorAtTheEnds)
{
    std::vector<float> constant(64, 2.0f);
    OwnedVector dc;
    ASSERT_EQ(daFft(view(constant), dc.out()), 0);
    EXPECT_NEAR(dc.v.real[0], 2.0, 1e-6);
    EXPECT_EQ(dc.v.imag[0], 0.0f);

    std::vector<float> alternating(64);
    for (size_t i = 0; i < alternating.size(); ++i)
        alternating[i] = i % 2 ? -1.0f : 1.0f;
    OwnedVector nyquist;
    ASSERT_EQ(daFft(view(alternating), nyquist.out()), 0);
    EXPECT_NEAR(magnitude(nyquist, 32), 1.0, 1e-6);
    EXPECT_EQ(nyquist.v.imag[32], 0.0f);
    EXPECT_NEAR(magnitude(nyquist, 0), 0.0, 1e-6);
}

// numpy's spectrum, scaled and laid out by the kernel's rule: interior lines 2/N·X(k), line 0 half
// of that, and the last line N/2 taking half the factor of the packed array's last value (for an
// odd N that is the imaginary part of line (N-1)/2).
TEST_F(Fft, MatchesNumpyForEvenOddAndPrimeLengths)
{
    const std::vector<long> lengths{6, 7, 250, 1023, 4096, 10007};
    std::vector<double> data, lengthList;
    std::vector<std::vector<float>> inputs;
    unsigned seed = 3;
    for (long n : lengths) {
        inputs.push_back(randomFloats(static_cast<size_t>(n), seed++));
        data.insert(data.end(), inputs.back().begin(), inputs.back().end());
        lengthList.push_back(static_cast<double>(n));
    }
    std::vector<double> reference = runNumpy(R"(
out = []
pos = 0
for n in inputs[0].astype(int):
    x = inputs[1][pos:pos + n]
    pos += n
    X = np.fft.rfft(x) * 2.0 / n
    lines = n // 2 + 1
    s = np.zeros(lines, dtype=complex)
    s[0] = X[0].real * 0.5
    s[1:n // 2] = X[1:n // 2]
    s[n // 2] = 0.5 * (X[n // 2].real if n % 2 == 0 else X[(n - 1) // 2].imag)
    out.append(np.column_stack([s.real, s.imag]).ravel())
result = np.concatenate(out)
)",
                                             {lengthList, data});
    size_t pos = 0;
    for (size_t t = 0; t < lengths.size(); ++t) {
        long n = lengths[t];
        OwnedVector s;
        ASSERT_EQ(daFft(view(inputs[t]), s.out()), 0);
        ASSERT_EQ(s.v.length, n / 2 + 1);
        ASSERT_GE(reference.size(), pos + 2 * static_cast<size_t>(s.v.length));
        double tolerance = 2e-6 * std::log2(2.0 * n);
        for (long k = 0; k < s.v.length; ++k, pos += 2) {
            EXPECT_NEAR(s.v.real[k], reference[pos], tolerance) << "n=" << n << " line " << k;
            EXPECT_NEAR(s.v.imag[k], reference[pos + 1], tolerance) << "n=" << n << " line " << k;
        }
    }
}

TEST_F(Fft, InverseGivesTheTimeSignalBack)
{
    for (long n : {8L, 1000L, 4096L}) {
        std::vector<float> x = randomFloats(static_cast<size_t>(n), 21);
        OwnedVector s, back;
        ASSERT_EQ(daFft(view(x), s.out()), 0);
        ASSERT_EQ(daInverseFft(s.v, back.out()), 0);
        ASSERT_EQ(back.v.length, n);
        EXPECT_EQ(back.v.imag, nullptr);
        for (long i = 0; i < n; ++i)
            EXPECT_NEAR(back.v.real[i], x[static_cast<size_t>(i)], 2e-6) << n << " " << i;
    }
}

TEST_F(Fft, InverseNeedsMoreThanFourLines)
{
    std::vector<float> re(4, 1.0f), im(4, 0.0f);
    OwnedVector out;
    EXPECT_EQ(daInverseFft(view(re, im), out.out()), 1);
    EXPECT_TRUE(lastError().starts_with("daInverseFft : Input freq vector length (4) should be >=4 {daDspLib,"));

    std::vector<float> five{1, 0, 0, 0, 0};
    ASSERT_EQ(daInverseFft(view(five), out.out()), 0);
    EXPECT_EQ(out.v.length, 8);
    for (long i = 0; i < 8; ++i)
        EXPECT_FLOAT_EQ(out.v.real[i], 1.0f);  // DC line of value 1 is a constant 1
}

TEST_F(Fft, ComplexOrNegativeInputIsRefused)
{
    std::vector<float> re(8, 1.0f), im(8, 0.0f);
    OwnedVector out;
    EXPECT_EQ(daFft(view(re, im), out.out()), 1);
    EXPECT_TRUE(lastError().starts_with("daFft : Input time vector should be real valued {daDspLib,"));
    daVector negative{re.data(), nullptr, -1};
    EXPECT_EQ(daZoomFft(negative, out.out(), 0, 0), 1);
    EXPECT_TRUE(lastError().starts_with("daZoomFft : Input time vector length (-1) should be >0 {daDspLib,"));
    EXPECT_EQ(out.v.real, nullptr);

    std::vector<float> none;
    EXPECT_EQ(daFft(view(none), out.out()), 1);
    EXPECT_TRUE(lastError().starts_with("daFft : Forward FFT (imsl_f_fft_real) failed {daDspLib,"));
}

TEST_F(Fft, AlternatingLengthsGiveTheSameSpectraAsFirstTime)
{
    std::vector<float> a = randomFloats(512, 1), b = randomFloats(300, 2);
    OwnedVector first, other, again;
    ASSERT_EQ(daFft(view(a), first.out()), 0);
    ASSERT_EQ(daFft(view(b), other.out()), 0);
    ASSERT_EQ(daFft(view(a), again.out()), 0);
    EXPECT_EQ(first.real(), again.real());
    EXPECT_EQ(first.imag(), again.imag());
}

TEST_F(Fft, ZoomFromLineZeroEqualsTheHeadOfTheFullSpectrum)
{
    std::vector<float> x = randomFloats(256, 4);
    OwnedVector full, zoom;
    ASSERT_EQ(daFft(view(x), full.out()), 0);
    ASSERT_EQ(daZoomFft(view(x), zoom.out(), 0, 128), 0);
    ASSERT_EQ(zoom.v.length, 129);
    for (long k = 0; k <= 128; ++k) {
        EXPECT_NEAR(zoom.v.real[k], full.v.real[k], 1e-6) << k;
        EXPECT_NEAR(zoom.v.imag[k], full.v.imag[k], 1e-6) << k;
    }

    // A later first line keeps line k at index k; indices before it stay zero.
    ASSERT_EQ(daZoomFft(view(x), zoom.out(), 3, 9), 0);
    ASSERT_EQ(zoom.v.length, 7);
    EXPECT_EQ(zoom.v.real[2], 0.0f);
    EXPECT_NEAR(zoom.v.real[5], full.v.real[5], 1e-6);

    EXPECT_EQ(daZoomFft(view(x), zoom.out(), 0, 129), 1);
    EXPECT_TRUE(lastError().starts_with("daZoomFft : Line range (0 to 129) should lie within 0 and 128"));
    OwnedVector untouched;
    EXPECT_EQ(daInverseZoomFft(full.v, untouched.out(), 0, 4), 0);
    EXPECT_EQ(untouched.v.real, nullptr);
}
