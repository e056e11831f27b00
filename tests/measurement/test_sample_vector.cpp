// The sample vector: a malloc array it owns, takes over, copies and resizes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "measurement/SampleVector.h"

using nvdl::SampleVector;

TEST(SampleVector, TakesOverAMallocArrayWithoutCopyingAndCopiesIndependently) {
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

    SampleVector copy = moved;
    copy[0] = 5.0f;
    EXPECT_EQ(moved, (std::vector<float>{1.0f, 2.0f, 3.0f}));
    moved = copy;
    EXPECT_EQ(moved, (std::vector<float>{5.0f, 2.0f, 3.0f}));
    EXPECT_NE(moved.data(), copy.data());
}

TEST(SampleVector, ResizeAssignAndAllocateReplaceTheArray) {
    SampleVector v{1.0f, 2.0f, 3.0f};
    v.resize(5, 7.0f);
    EXPECT_EQ(v, (std::vector<float>{1.0f, 2.0f, 3.0f, 7.0f, 7.0f}));
    v.resize(2);
    EXPECT_EQ(v, (std::vector<float>{1.0f, 2.0f}));
    v.resize(0);
    EXPECT_TRUE(v.empty());
    EXPECT_EQ(v.data(), nullptr);
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
