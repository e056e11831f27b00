#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "measurement/SampleVector.h"

using nvdl::SampleVector;

TEST(SampleVector, TakesOverAMallocArrayWithoutCopying) {
    auto* array = static_cast<float*>(std::malloc(3 * sizeof(float)));
    array[0] = 1.0f;
    array[1] = 2.0f;
    array[2] = 3.0f;
    SampleVector v{9.0f};
    v.adopt(array, 3);
    EXPECT_EQ(v.data(), array);
    EXPECT_EQ(v, (std::vector<float>{1.0f, 2.0f, 3.0f}));

    SampleVector moved = std::move(v);
    EXPECT_EQ(moved.data(), array);
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.data(), nullptr);
}

TEST(SampleVector, CopiesAreIndependent) {
    SampleVector a{1.0f, 2.0f};
    SampleVector b = a;
    b[0] = 5.0f;
    EXPECT_EQ(a, (std::vector<float>{1.0f, 2.0f}));
    a = b;
    EXPECT_EQ(a, (std::vector<float>{5.0f, 2.0f}));
    EXPECT_NE(a.data(), b.data());
}

TEST(SampleVector, ResizeKeepsTheFirstValuesAndFillsTheRest) {
    SampleVector v{1.0f, 2.0f, 3.0f};
    v.resize(5, 7.0f);
    EXPECT_EQ(v, (std::vector<float>{1.0f, 2.0f, 3.0f, 7.0f, 7.0f}));
    v.resize(2);
    EXPECT_EQ(v, (std::vector<float>{1.0f, 2.0f}));
    v.resize(0);
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.data(), nullptr);
}

TEST(SampleVector, AssignAndAllocateReplaceTheArray) {
    SampleVector v;
    v.assign(3, 0.5f);
    EXPECT_EQ(v, (std::vector<float>{0.5f, 0.5f, 0.5f}));
    const std::vector<float> source{4.0f, 5.0f};
    v.assign(source.begin(), source.end());
    EXPECT_EQ(v, source);
    v.allocate(4);
    EXPECT_EQ(v.size(), 4u);
    v.clear();
    EXPECT_TRUE(v.empty());
}
