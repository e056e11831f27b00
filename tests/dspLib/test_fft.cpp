// daFft, daInverseFft and daZoomFft: the one-sided peak-scaled spectrum convention, agreement with
// numpy, the round trip, and their failures.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "NumpyReference.h"
#include "RandomSignal.h"
#include "signalTestSupport.h"

using namespace nvdl::test;

TEST(Fft, SineOnALineReadsItsAmplitudeThereAndNothingElsewhere)
{
    std::vector<float> x(1024);
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = static_cast<float>(3.0 * std::sin(2.0 * std::numbers::pi * 17.0 * i / 1024.0 + 0.4));
    OwnedVector s;
    ASSERT_EQ(daFft(view(x), s.out()), 0);
    ASSERT_EQ(s.v.length, 513);
    ASSERT_NE(s.v.imag, nullptr);
    for (long k = 0; k < s.v.length; ++k)
        EXPECT_NEAR(std::hypot(s.v.real[k], s.v.imag[k]), k == 17 ? 3.0 : 0.0, 1e-5) << k;
}

// numpy's spectrum, scaled and laid out by the kernel's rule: interior lines 2/N·X(k), line 0 half
// of that, and the last line N/2 taking half the factor of the packed array's last value (for an
// odd N that is the imaginary part of line (N-1)/2). Length 250 comes back after others, as the
// transform keeps the set-up of the last length.
TEST(Fft, MatchesNumpyForEvenOddAndPrimeLengths)
{
    const std::vector<long> lengths{250, 6, 7, 250, 1023, 4096, 10007};
    const RandomBatch batch = randomBatch(lengths, 3);
    std::vector<double> reference = runNumpy(R"(
out = []
pos = 0
for n in inputs[0].astype(int):
    s = np.fft.rfft(inputs[1][pos:pos + n]) * 2.0 / n
    pos += n
    s[0] = s[0].real * 0.5
    s[n // 2] = 0.5 * (s[n // 2].real if n % 2 == 0 else s[(n - 1) // 2].imag)
    out.append(np.column_stack([s.real, s.imag]).ravel())
result = np.concatenate(out)
)",
                                             {batch.lengths, batch.data});
    size_t pos = 0;
    for (size_t t = 0; t < lengths.size(); ++t) {
        long n = lengths[t];
        OwnedVector s;
        std::vector<float> input = batch.inputs[t];
        ASSERT_EQ(daFft(view(input), s.out()), 0);
        ASSERT_EQ(s.v.length, n / 2 + 1);
        ASSERT_GE(reference.size(), pos + 2 * static_cast<size_t>(s.v.length));
        double tolerance = 2e-6 * std::log2(2.0 * n);
        for (long k = 0; k < s.v.length; ++k, pos += 2) {
            EXPECT_NEAR(s.v.real[k], reference[pos], tolerance) << "n=" << n << " line " << k;
            EXPECT_NEAR(s.v.imag[k], reference[pos + 1], tolerance) << "n=" << n << " line " << k;
        }
    }
}

TEST(Fft, InverseGivesTheTimeSignalBack)
{
    // 8 samples give 5 lines, the shortest spectrum the inverse takes.
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

TEST(Fft, RejectedCalls)
{
    std::vector<float> re(8, 1.0f), im(8, 0.0f), none;
    daVector negative{re.data(), nullptr, -1}, fourLines{re.data(), im.data(), 4};
    OwnedVector out;
    expectFailures({
        {"four lines", [&] { return daInverseFft(fourLines, out.out()); },
         "daInverseFft : Input freq vector length (4) should be >=4"},
        {"complex", [&] { return daFft(view(re, im), out.out()); }, "daFft : Input time vector should be real valued"},
        {"negative", [&] { return daZoomFft(negative, out.out(), 0, 0); },
         "daZoomFft : Input time vector length (-1) should be >0"},
        {"zoom range", [&] { return daZoomFft(view(re), out.out(), 0, 5); },
         "daZoomFft : Line range (0 to 5) should lie within 0 and 4"},
    });
    EXPECT_EQ(out.v.real, nullptr);
    // No samples pass the checks but cannot be transformed.
    expectFailures(
        {{"empty", [&] { return daFft(view(none), out.out()); }, "daFft : Forward FFT (imsl_f_fft_real) failed"}});
}

TEST(Fft, ZoomFromLineZeroEqualsTheHeadOfTheFullSpectrum)
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

    OwnedVector untouched;
    EXPECT_EQ(daInverseZoomFft(full.v, untouched.out(), 0, 4), 0);
    EXPECT_EQ(untouched.v.real, nullptr);
}
