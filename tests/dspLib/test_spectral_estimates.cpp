// Cross-spectral density, its running average, frequency response and coherence.
#include <gtest/gtest.h>

#include <cmath>

#include "RandomSignal.h"
#include "signalTestSupport.h"

using namespace nvdl::test;

TEST(SpectralEstimates, PsdIsTheConjugateProductOverTheFrequencyStepAndAnAutopowerIsReal)
{
    // An odd length runs the vector loop and its remainder.
    const size_t n = 1001;
    std::vector<float> ar = randomFloats(n, 1), ai = randomFloats(n, 2);
    std::vector<float> br = randomFloats(n, 3), bi = randomFloats(n, 4);
    const float df = 0.3f;
    OwnedVector cross, autopower;
    ASSERT_EQ(daPsd(view(ar, ai), view(br, bi), cross.out(), df), 0);
    ASSERT_EQ(daPsd(view(ar, ai), view(ar, ai), autopower.out(), df), 0);
    for (size_t i = 0; i < n; ++i) {
        const double re = (double(br[i]) * ar[i] + double(bi[i]) * ai[i]) / df;
        const double im = (double(bi[i]) * ar[i] - double(br[i]) * ai[i]) / df;
        const double size = (std::abs(double(ar[i])) + std::abs(double(ai[i]))) *
                            (std::abs(double(br[i])) + std::abs(double(bi[i]))) / df;
        ASSERT_NEAR(cross.real()[i], re, 1e-6 * size) << i;
        ASSERT_NEAR(cross.imag()[i], im, 1e-6 * size) << i;
        ASSERT_EQ(autopower.imag()[i], 0.0f) << i;
        ASSERT_NEAR(autopower.real()[i], (double(ar[i]) * ar[i] + double(ai[i]) * ai[i]) / df, 1e-6 * size) << i;
    }
}

TEST(SpectralEstimates, AvgPsdBlendsWithOppositeImaginarySign)
{
    std::vector<float> ar{1}, ai{2}, br{3}, bi{-1};
    std::vector<float> avgRe{10}, avgIm{20};
    OwnedVector fresh;
    // Fraction 1 takes the new value alone and ignores an average of another length.
    std::vector<float> anyRe{0, 0, 0};
    ASSERT_EQ(daAvgPsd(view(ar, ai), view(br, bi), view(anyRe), fresh.out(), 1.0f, 1.0f), 0);
    EXPECT_EQ(fresh.real(), (std::vector<float>{1}));
    EXPECT_EQ(fresh.imag(), (std::vector<float>{7}));  // br·ai − bi·ar = 6 + 1

    OwnedVector blended;
    ASSERT_EQ(daAvgPsd(view(ar, ai), view(br, bi), view(avgRe, avgIm), blended.out(), 0.5f, 1.0f), 0);
    EXPECT_EQ(blended.real(), (std::vector<float>{5.5f}));
    EXPECT_EQ(blended.imag(), (std::vector<float>{13.5f}));

    // The running average may be its own output.
    ASSERT_EQ(daAvgPsd(view(ar, ai), view(br, bi), blended.v, blended.out(), 0.5f, 1.0f), 0);
    EXPECT_EQ(blended.real(), (std::vector<float>{3.25f}));
}

TEST(SpectralEstimates, FrfHoldsTheLastGoodValueBelowTheThreshold)
{
    std::vector<float> cr{2, 4, 6, 8}, ci{2, 0, 0, -4};
    std::vector<float> autoPower{2, 0.01f, 0.01f, 4};
    OwnedVector h1;
    ASSERT_EQ(daFrf(view(cr, ci), view(autoPower), h1.out(), 1, 0.1f), 0);
    EXPECT_EQ(h1.real(), (std::vector<float>{1, 1, 1, 2}));
    EXPECT_EQ(h1.imag(), (std::vector<float>{1, 1, 1, -1}));

    std::vector<float> low{0, 0, 0, 0};
    OwnedVector held;
    ASSERT_EQ(daFrf(view(cr, ci), view(low), held.out(), 1, 0.1f), 0);
    EXPECT_EQ(held.real(), (std::vector<float>{1, 1, 1, 1}));
    EXPECT_EQ(held.imag(), (std::vector<float>{0, 0, 0, 0}));

    // Second estimator: auto·conj(cross)/|cross|², i.e. auto/cross.
    OwnedVector h2;
    ASSERT_EQ(daFrf(view(cr, ci), view(autoPower), h2.out(), 2, 0.1f), 0);
    EXPECT_FLOAT_EQ(h2.real()[0], 0.5f);
    EXPECT_FLOAT_EQ(h2.imag()[0], -0.5f);
    EXPECT_FLOAT_EQ(h2.real()[3], 4.0f * 8 / 80);
    EXPECT_FLOAT_EQ(h2.imag()[3], 4.0f * 4 / 80);
}

TEST(SpectralEstimates, CoherenceSkipsZeroAutopowersAndTidiesNearZeroAndOne)
{
    std::vector<float> cr{2, 1, 1, 1}, ci{0, 0, 0, 0};
    std::vector<float> auto1{0, 1, 1, 1};
    std::vector<float> auto2{2, 0.9995f, -2000, -500};
    OwnedVector coherence;
    ASSERT_EQ(daCoherence(view(cr, ci), view(auto1), view(auto2), coherence.out()), 0);
    EXPECT_EQ(coherence.v.imag, nullptr);
    std::vector<float> c = coherence.real();
    EXPECT_FLOAT_EQ(c[0], 2.0f);  // auto1 zero: |cross|²/auto2, above 1
    EXPECT_EQ(c[1], 1.0f);        // 1.0005 rounds to 1
    EXPECT_EQ(c[2], 0.0f);        // -0.0005 rounds to 0
    EXPECT_FLOAT_EQ(c[3], -0.002f);
}

TEST(SpectralEstimates, RejectedCallsLeaveTheEarlierResult)
{
    std::vector<float> re{1, 2}, im{2, 0}, one{1}, three{0, 0, 0};
    daVector negative{re.data(), nullptr, -3};
    OwnedVector out;
    ASSERT_EQ(daPsd(view(re, im), view(re, im), out.out(), 1.0f), 0);
    expectFailures({
        {"psd step", [&] { return daPsd(view(re, im), view(re, im), out.out(), 0.0f); },
         "daPsd : delta frequency (0.000000e+00) should be positive"},
        {"psd lengths", [&] { return daPsd(view(re, im), view(one), out.out(), 1.0f); },
         "daPsd : Input spectra lengths (2 & 1) should be equal"},
        {"average length", [&] { return daAvgPsd(view(one), view(one), view(three), out.out(), 0.5f, 1.0f); },
         "daAvgPsd : Spectra and avgPsd lengths (1 & 3) should be equal"},
        {"average fraction", [&] { return daAvgPsd(view(one), view(one), view(one), out.out(), 0.0f, 1.0f); },
         "daAvgPsd : Averaging fraction (0.000000e+00) new PSD must be in range ]0., 1.] "},
        {"frf lengths", [&] { return daFrf(view(re, im), view(one), out.out(), 1, 0.1f); },
         "daFrf : Auto and crosspower lengths (1 & 2) should be equal"},
        {"coherence lengths", [&] { return daCoherence(view(re, im), view(re), view(one), out.out()); },
         "daCoherence : Auto2 and crosspower lengths (1 & 2) should be equal"},
        {"coherence length", [&] { return daCoherence(negative, view(re), view(re), out.out()); },
         "daCoherence : Crosspower spectral density length (-3) should be >0"},
    });
    EXPECT_EQ(out.v.length, 2);
}
