// Elementary members of the da kernel and its error store.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>

#include "signalTestSupport.h"

using namespace nvdl::test;

TEST(Arithmetic, ErrorStoreKeepsFlagAndMessageUntilCleared)
{
    std::string longText(1500, 'x');
    daSetError(longText.c_str());
    EXPECT_EQ(errorFlag(), 1);
    EXPECT_EQ(lastError(), std::string(999, 'x'));

    char small[5];
    daGetError(small, sizeof small);
    EXPECT_STREQ(small, "xxxx");
    EXPECT_EQ(errorFlag(), 1);  // reading does not clear

    daClearErrorFlag();
    EXPECT_EQ(errorFlag(), 0);
    EXPECT_EQ(lastError().size(), 999u);  // the text stays

    std::vector<float> re{1, 2};
    OwnedVector out;
    EXPECT_EQ(daCopy(view(re), out.out()), 0);
    EXPECT_EQ(errorFlag(), 0);  // success leaves the flag alone
}

TEST(Arithmetic, ElementwiseResultsAndWhenTheyHaveAnImaginaryPart)
{
    std::vector<float> re{1, -2, 3}, im{4, 5, -6}, br{3, 4, -1}, bi{1, -1, 2};
    const daVector a = view(re, im), realA = view(re), b = view(br, bi), realB = view(br);
    const std::vector<float> none;  // no imaginary part expected
    const struct {
        const char* label;
        std::function<long(daVector*)> call;
        std::vector<float> re;
        std::vector<float> im;
    } cases[] = {
        // A real scalar adds to the real part only but multiplies both.
        {"add scalar", [&](daVector* out) { return daAdd(2.0f, a, out); }, {3, 0, 5}, im},
        {"add scalar to real", [&](daVector* out) { return daAdd(2.0f, realA, out); }, {3, 0, 5}, none},
        {"multiply by scalar", [&](daVector* out) { return daMultiply(2.0f, a, out); }, {2, -4, 6}, {8, 10, -12}},
        // The complex scalar forms always give an imaginary part.
        {"add complex", [&](daVector* out) { return daAdd(daComplex{1, 3}, realA, out); }, {2, -1, 4}, {3, 3, 3}},
        {"multiply by complex", [&](daVector* out) { return daMultiply(daComplex{2, 1}, a, out); },
         {-2, -9, 12}, {9, 8, -9}},
        // The two-vector forms read a missing imaginary part as zero.
        {"add", [&](daVector* out) { return daAdd(realA, b, out); }, {4, 2, 2}, {1, -1, 2}},
        {"2a - b", [&](daVector* out) { return daLinearCombination(realA, b, out, 2.0f, -1.0f); },
         {-1, -8, 7}, {-1, 1, -2}},
        {"multiply", [&](daVector* out) { return daMultiply(realA, b, out); }, {3, -8, -3}, {1, 2, 6}},
        {"multiply reals", [&](daVector* out) { return daMultiply(realA, realB, out); }, {3, -8, -3}, none},
        {"conjugate", [&](daVector* out) { return daComplexConjugate(a, out); }, re, {-4, -5, 6}},
        {"running sum", [&](daVector* out) { return daSum(a, out); }, {1, -1, 2}, {4, 9, 3}},
        {"first difference", [&](daVector* out) { return daDifference(a, out); }, {1, -3, 5}, {4, 1, -11}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        OwnedVector out;
        ASSERT_EQ(c.call(out.out()), 0);
        EXPECT_EQ(out.real(), c.re);
        if (c.im.empty())
            EXPECT_EQ(out.v.imag, nullptr);
        else
            EXPECT_EQ(out.imag(), c.im);
    }

    OwnedVector quotient, amplitude;
    ASSERT_EQ(daDivide(realA, b, quotient.out()), 0);
    ASSERT_EQ(daAmplitude(a, amplitude.out()), 0);
    EXPECT_EQ(amplitude.v.imag, nullptr);
    for (size_t i = 0; i < re.size(); ++i) {
        const std::complex<float> q = re[i] / std::complex<float>(br[i], bi[i]);
        EXPECT_FLOAT_EQ(quotient.real()[i], q.real()) << i;
        EXPECT_FLOAT_EQ(quotient.imag()[i], q.imag()) << i;
        EXPECT_FLOAT_EQ(amplitude.real()[i], std::abs(std::complex<float>(re[i], im[i]))) << i;
    }
}

TEST(Arithmetic, ZeroDenominatorGivesZeroAndTheLoopGoesOn)
{
    daClearErrorFlag();
    std::vector<float> re{2, 0, 4};
    std::vector<float> im{0, 0, 0};
    OwnedVector reciprocal;
    ASSERT_EQ(daDivide(8.0f, view(re, im), reciprocal.out()), 0);
    EXPECT_EQ(reciprocal.real(), (std::vector<float>{4, 0, 2}));
    EXPECT_EQ(reciprocal.imag(), (std::vector<float>{-0.0f, 0, -0.0f}));

    std::vector<float> num{1, 1, 1};
    OwnedVector quotient;
    ASSERT_EQ(daDivide(view(num), view(re), quotient.out()), 0);
    EXPECT_EQ(quotient.real(), (std::vector<float>{0.5f, 0, 0.25f}));
    EXPECT_EQ(errorFlag(), 0);

    // The complex-numerator form divides by its own fresh (zeroed) output: all zeros.
    OwnedVector meaningless;
    ASSERT_EQ(daDivide(daComplex{1, 1}, view(re, im), meaningless.out()), 0);
    EXPECT_EQ(meaningless.real(), (std::vector<float>{0, 0, 0}));
}

TEST(Arithmetic, MaxAmplKeepsTheFirstOfEqualPeaks)
{
    std::vector<float> re{0, 3, -3};
    float peak = -1;
    long index = -1;
    ASSERT_EQ(daMaxAmpl(view(re), &peak, &index), 0);
    EXPECT_EQ(peak, 3.0f);
    EXPECT_EQ(index, 1);

    std::vector<float> zeros{0, 0};
    ASSERT_EQ(daMaxAmpl(view(zeros), &peak, &index), 0);
    EXPECT_EQ(peak, 0.0f);
    EXPECT_EQ(index, 0);
}

TEST(Arithmetic, OutputHeldFromAnEarlierCallIsReplacedEvenByAnEmptyResult)
{
    std::vector<float> re{1, 2, 3}, im{1, 1, 1}, shorter{7}, none;
    OwnedVector out;
    ASSERT_EQ(daCopy(view(re, im), out.out()), 0);
    ASSERT_EQ(daCopy(view(shorter), out.out()), 0);
    EXPECT_EQ(out.v.imag, nullptr);
    EXPECT_EQ(out.real(), shorter);

    daClearErrorFlag();
    EXPECT_EQ(daCopy(view(none), out.out()), 0);
    EXPECT_EQ(out.v.length, 0);
    EXPECT_NE(out.v.real, nullptr);
    EXPECT_EQ(errorFlag(), 0);
}

TEST(Arithmetic, RejectedCallsLeaveTheOutputAsItWas)
{
    std::vector<float> re{1, 2, 3}, two{1, 2};
    OwnedVector out;
    ASSERT_EQ(daCopy(view(re), out.out()), 0);
    const float* kept = out.v.real;
    daVector negative{re.data(), nullptr, -2};
    daVector missing{nullptr, nullptr, 4};
    expectFailures({
        {"copy", [&] { return daCopy(negative, out.out()); }, "daCopy : Input vector length (-2) should be >0"},
        {"add", [&] { return daAdd(view(re), view(two), out.out()); },
         "daAdd : Input vector length (3 & 2) should be equal"},
        {"divide", [&] { return daDivide(negative, view(two), out.out()); },
         "daDivide : Input vector1 length (-2) should be >0"},
        {"peak", [&] { return daMaxAmpl(negative, nullptr, nullptr); },
         "daMaxAmpl : Input vector1 length (-2) should be >0"},
        {"no data", [&] { return daSum(missing, out.out()); }, "daSum : Input vector has no data"},
        {"no output", [&] { return daSum(view(re), nullptr); }, "daSum : Output vector is null"},
    });
    EXPECT_EQ(out.v.real, kept);
    EXPECT_EQ(out.v.length, 3);
}
