// Integration and differentiation of spectra by powers of jω.
#include <cmath>
#include <complex>
#include <vector>

#include <gtest/gtest.h>

#include "signalTestSupport.h"

using namespace nvdl::test;

namespace {

using Complex = std::complex<double>;

// (jω)^power by complex arithmetic, as the independent reference.
Complex jOmegaPower(double frequency, long power)
{
    return std::pow(Complex(0.0, 2.0 * M_PI * frequency), static_cast<double>(power));
}

}  // namespace

TEST(FrequencyDomainIntegration, MatchesComplexArithmeticForEveryQuarterTurn)
{
    std::vector<float> frequency = {0.5f, 1.0f, 3.0f, 17.5f};
    std::vector<float> re = {1.0f, -2.0f, 0.25f, 3.0f};
    std::vector<float> im = {0.5f, 1.5f, -4.0f, 0.0f};
    for (bool realInput : {false, true}) {
        const daVector input = realInput ? view(re) : view(re, im);
        for (long exponent = 1; exponent <= 6; ++exponent) {
            SCOPED_TRACE(testing::Message() << "exponent " << exponent << (realInput ? ", real input" : ""));
            OwnedVector integrated, differentiated;
            ASSERT_EQ(daIntegrationFreqDomain(input, integrated.out(), view(frequency), exponent), 0);
            ASSERT_EQ(daDifferentiationFreqDomain(input, differentiated.out(), view(frequency), exponent), 0);
            ASSERT_EQ(integrated.v.length, 4);
            ASSERT_NE(integrated.v.imag, nullptr);
            ASSERT_NE(differentiated.v.imag, nullptr);
            for (long i = 0; i < 4; ++i) {
                const Complex value(re[i], realInput ? 0.0f : im[i]);
                const Complex up = value * jOmegaPower(frequency[i], exponent);
                const Complex down = value / jOmegaPower(frequency[i], exponent);
                EXPECT_NEAR(differentiated.v.real[i], up.real(), 1e-6 * std::abs(up)) << i;
                EXPECT_NEAR(differentiated.v.imag[i], up.imag(), 1e-6 * std::abs(up)) << i;
                EXPECT_NEAR(integrated.v.real[i], down.real(), 1e-6 * std::abs(down)) << i;
                EXPECT_NEAR(integrated.v.imag[i], down.imag(), 1e-6 * std::abs(down)) << i;
            }
        }
    }
}

TEST(FrequencyDomainIntegration, LinesAtZeroOrNegativeFrequencyStillTurn)
{
    // The gain is 1 there, not infinite, but the quarter turns of j^n still apply.
    std::vector<float> frequency = {0.0f, -5.0f};
    std::vector<float> re = {2.0f, 3.0f};
    std::vector<float> im = {1.0f, 0.0f};
    OwnedVector out;
    ASSERT_EQ(daIntegrationFreqDomain(view(re, im), out.out(), view(frequency), 2), 0);
    EXPECT_EQ(out.v.real[0], -2.0f);
    EXPECT_EQ(out.v.imag[0], -1.0f);
    EXPECT_EQ(out.v.real[1], -3.0f);
    ASSERT_EQ(daDifferentiationFreqDomain(view(re, im), out.out(), view(frequency), 4), 0);
    EXPECT_EQ(out.v.real[0], 2.0f);
    EXPECT_EQ(out.v.imag[0], 1.0f);
}

TEST(FrequencyDomainIntegration, RejectedCalls)
{
    std::vector<float> two = {1.0f, 2.0f};
    std::vector<float> three = {1.0f, 2.0f, 3.0f};
    daVector negative = {two.data(), nullptr, -2};
    OwnedVector out;
    expectFailures({
        {"integration, negative length",
         [&] { return daIntegrationFreqDomain(negative, out.out(), negative, 1); },
         "daIntegrationFreqDomain : Input vector length (-2) should be >0"},
        {"differentiation, negative length",
         [&] { return daDifferentiationFreqDomain(negative, out.out(), view(two), 1); },
         "daDifferentiationFreqDomain : Input vector length (-2) should be >0"},
        {"integration, lengths", [&] { return daIntegrationFreqDomain(view(two), out.out(), view(three), 1); },
         "daIntegrationFreqDomain : Input vector length (2) different from frequency vector length (3)"},
        {"differentiation, lengths",
         [&] { return daDifferentiationFreqDomain(view(three), out.out(), view(two), 1); },
         "daDifferentiationFreqDomain : Input vector length (3) different from frequency vector length (2)"},
        {"integration, exponent", [&] { return daIntegrationFreqDomain(view(two), out.out(), view(two), 0); },
         "daIntegrationFreqDomain : exponent (0) should be >0"},
        {"differentiation, exponent",
         [&] { return daDifferentiationFreqDomain(view(two), out.out(), view(two), -1); },
         "daDifferentiationFreqDomain : exponent (-1) should be >0"},
    });
    daVector huge = {two.data(), nullptr, kUnallocatable};
    expectAllocationFailure("daIntegrationFreqDomain",
                            [&] { return daIntegrationFreqDomain(huge, out.out(), huge, 1); });
    expectAllocationFailure("daDifferentiationFreqDomain",
                            [&] { return daDifferentiationFreqDomain(huge, out.out(), huge, 1); });
}
