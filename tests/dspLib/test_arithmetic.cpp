// Elementary members of the da kernel and its error store.
#include <gtest/gtest.h>

#include <cmath>

#include "KernelVector.h"

using namespace nvdl::test;

namespace {

class Arithmetic : public ::testing::Test {
protected:
    void SetUp() override { daClearErrorFlag(); }
};

}  // namespace

TEST_F(Arithmetic, ErrorStoreKeepsFlagAndMessageUntilCleared)
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

TEST_F(Arithmetic, ScalarAddTouchesRealOnlyWhileScalarMultiplyScalesBoth)
{
    std::vector<float> re{1, -2, 3};
    std::vector<float> im{4, 5, -6};
    OwnedVector sum;
    ASSERT_EQ(daAdd(2.0f, view(re, im), sum.out()), 0);
    EXPECT_EQ(sum.real(), (std::vector<float>{3, 0, 5}));
    EXPECT_EQ(sum.imag(), im);

    OwnedVector product;
    ASSERT_EQ(daMultiply(2.0f, view(re, im), product.out()), 0);
    EXPECT_EQ(product.real(), (std::vector<float>{2, -4, 6}));
    EXPECT_EQ(product.imag(), (std::vector<float>{8, 10, -12}));

    OwnedVector realOnly;
    ASSERT_EQ(daAdd(1.0f, view(re), realOnly.out()), 0);
    EXPECT_EQ(realOnly.v.imag, nullptr);
}

TEST_F(Arithmetic, ComplexScalarFormsAlwaysGiveAnImaginaryPart)
{
    std::vector<float> re{1, 2};
    OwnedVector sum;
    ASSERT_EQ(daAdd(daComplex{1, 3}, view(re), sum.out()), 0);
    EXPECT_EQ(sum.real(), (std::vector<float>{2, 3}));
    EXPECT_EQ(sum.imag(), (std::vector<float>{3, 3}));

    std::vector<float> im{1, -1};
    OwnedVector product;
    ASSERT_EQ(daMultiply(daComplex{2, 1}, view(re, im), product.out()), 0);
    // (2+j)(1+j) = 1+3j ; (2+j)(2-j) = 5
    EXPECT_EQ(product.real(), (std::vector<float>{1, 5}));
    EXPECT_EQ(product.imag(), (std::vector<float>{3, 0}));
}

TEST_F(Arithmetic, TwoVectorFormsReadAMissingImaginaryPartAsZero)
{
    std::vector<float> ar{1, 2};
    std::vector<float> br{3, 4};
    std::vector<float> bi{1, -1};
    daVector a = view(ar);
    daVector b = view(br, bi);

    OwnedVector sum, combination, product, quotient;
    ASSERT_EQ(daAdd(a, b, sum.out()), 0);
    EXPECT_EQ(sum.real(), (std::vector<float>{4, 6}));
    EXPECT_EQ(sum.imag(), bi);

    ASSERT_EQ(daLinearCombination(a, b, combination.out(), 2.0f, -1.0f), 0);
    EXPECT_EQ(combination.real(), (std::vector<float>{-1, 0}));
    EXPECT_EQ(combination.imag(), (std::vector<float>{-1, 1}));

    ASSERT_EQ(daMultiply(a, b, product.out()), 0);
    EXPECT_EQ(product.real(), (std::vector<float>{3, 8}));
    EXPECT_EQ(product.imag(), (std::vector<float>{1, -2}));

    // 1/(3+j) = (3-j)/10 ; 2/(4-j) = 2(4+j)/17
    ASSERT_EQ(daDivide(a, b, quotient.out()), 0);
    EXPECT_FLOAT_EQ(quotient.real()[0], 0.3f);
    EXPECT_FLOAT_EQ(quotient.imag()[0], -0.1f);
    EXPECT_FLOAT_EQ(quotient.real()[1], 8.0f / 17);
    EXPECT_FLOAT_EQ(quotient.imag()[1], 2.0f / 17);

    OwnedVector realProduct;
    ASSERT_EQ(daMultiply(a, view(br), realProduct.out()), 0);
    EXPECT_EQ(realProduct.v.imag, nullptr);
}

TEST_F(Arithmetic, ZeroDenominatorGivesZeroAndTheLoopGoesOn)
{
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

TEST_F(Arithmetic, ConjugateSumDifferenceAndAmplitude)
{
    std::vector<float> re{3, 1, -2, 5};
    std::vector<float> im{4, 0, 1, -1};
    daVector a = view(re, im);

    OwnedVector conj, sum, diff, amp;
    ASSERT_EQ(daComplexConjugate(a, conj.out()), 0);
    EXPECT_EQ(conj.real(), re);
    EXPECT_EQ(conj.imag(), (std::vector<float>{-4, -0.0f, -1, 1}));

    ASSERT_EQ(daSum(a, sum.out()), 0);
    EXPECT_EQ(sum.real(), (std::vector<float>{3, 4, 2, 7}));
    EXPECT_EQ(sum.imag(), (std::vector<float>{4, 4, 5, 4}));

    ASSERT_EQ(daDifference(a, diff.out()), 0);
    EXPECT_EQ(diff.real(), (std::vector<float>{3, -2, -3, 7}));
    EXPECT_EQ(diff.imag(), (std::vector<float>{4, -4, 1, -2}));

    ASSERT_EQ(daAmplitude(a, amp.out()), 0);
    EXPECT_EQ(amp.v.imag, nullptr);
    EXPECT_FLOAT_EQ(amp.real()[0], 5.0f);
    EXPECT_FLOAT_EQ(amp.real()[2], std::sqrt(5.0f));
}

TEST_F(Arithmetic, MaxAmplKeepsTheFirstOfEqualPeaks)
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

TEST_F(Arithmetic, EmptyInputGivesEmptyResult)
{
    std::vector<float> none;
    OwnedVector out;
    EXPECT_EQ(daCopy(view(none), out.out()), 0);
    EXPECT_EQ(out.v.length, 0);
    EXPECT_NE(out.v.real, nullptr);
    EXPECT_EQ(errorFlag(), 0);
}

TEST_F(Arithmetic, RejectedCallReportsAndLeavesTheOutputAsItWas)
{
    std::vector<float> re{1, 2, 3};
    OwnedVector out;
    ASSERT_EQ(daCopy(view(re), out.out()), 0);
    float* kept = out.v.real;

    daVector negative{re.data(), nullptr, -2};
    EXPECT_EQ(daCopy(negative, out.out()), 1);
    EXPECT_EQ(errorFlag(), 1);
    EXPECT_TRUE(lastError().starts_with("daCopy : Input vector length (-2) should be >0 {daDspLib,")) << lastError();
    EXPECT_EQ(out.v.real, kept);
    EXPECT_EQ(out.v.length, 3);

    std::vector<float> two{1, 2};
    EXPECT_EQ(daAdd(view(re), view(two), out.out()), 1);
    EXPECT_TRUE(lastError().starts_with("daAdd : Input vector length (3 & 2) should be equal {daDspLib,"))
        << lastError();
    EXPECT_EQ(daDivide(negative, view(two), out.out()), 1);
    EXPECT_TRUE(lastError().starts_with("daDivide : Input vector1 length (-2) should be >0 {daDspLib,"));
    EXPECT_EQ(daMaxAmpl(negative, nullptr, nullptr), 1);
    EXPECT_TRUE(lastError().starts_with("daMaxAmpl : Input vector1 length (-2) should be >0 {daDspLib,"));
    EXPECT_EQ(out.v.real, kept);

    daVector missing{nullptr, nullptr, 4};
    EXPECT_EQ(daSum(missing, out.out()), 1);
    EXPECT_EQ(daSum(view(re), nullptr), 1);
    EXPECT_TRUE(lastError().ends_with("}"));
}

TEST_F(Arithmetic, OutputHeldFromAnEarlierCallIsReplaced)
{
    std::vector<float> re{1, 2, 3};
    std::vector<float> im{1, 1, 1};
    OwnedVector out;
    ASSERT_EQ(daCopy(view(re, im), out.out()), 0);
    std::vector<float> shorter{7};
    ASSERT_EQ(daCopy(view(shorter), out.out()), 0);
    EXPECT_EQ(out.v.length, 1);
    EXPECT_EQ(out.v.imag, nullptr);
    EXPECT_EQ(out.real(), shorter);
}
