// The arithmetic and the queue of the reduced read: plans, read pieces, pairs, chunks in and out.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "access/TrcCompressionPlan.h"
#include "access/TrcSampleQueue.h"

using namespace nvdl::access;

namespace {

TEST(TrcCompressionPlan, PlansStepsAndRefusesBadInput) {
    struct Case {
        std::int64_t start, count, fileSamples;
        long maximum;
        int feature;
        int ok;
        CompressionPlan plan;
    };
    const Case cases[] = {
        {0, 1000000, 1000000, 32768, 0, 1, {1.0f, 0, 1, 1000000, 1}},     // feature off: all of N at once
        {5, 100, 1000000, 32768, 0, 1, {1.0f, 0, 1, 1000000, 1}},         // even for a short span
        {0, 100000, 1000000, 32768, 1, 1, {3.0517578f, 1, 0, 6, 16384}},  // reduced
        {0, 1000, 1000000, 32768, 1, 1, {1.0f, 1, 1, 1000, 1}},           // fits: one step, untouched
        {0, 5000, 5000, 32768, 1, 1, {1.0f, 0, 1, 5000, 1}},              // the whole source fits
        {0, 7, 9, 5, 1, 1, {1.4f, 1, 0, 3, 2}},
        {-1, 10, 10, 5, 1, 0, {}},
        {0, 0, 10, 5, 1, 0, {}},
        {0, 10, 0, 5, 1, 0, {}},
        {0, 10, 10, 0, 1, 0, {}},
        {0, 10, 10, 1, 1, 0, {}},  // no room for a pair
    };
    for (const Case& c : cases) {
        CompressionPlan plan;
        ASSERT_EQ(PlanCompression(c.start, c.count, c.fileSamples, c.maximum, c.feature, plan), c.ok) << c.count;
        if (!c.ok) continue;
        EXPECT_FLOAT_EQ(plan.factor, c.plan.factor) << c.count;
        EXPECT_EQ(std::tuple(plan.uncompleted, plan.useful, plan.stepLength, plan.steps),
                  std::tuple(c.plan.uncompleted, c.plan.useful, c.plan.stepLength, c.plan.steps))
            << c.count;
    }
}

TEST(TrcCompressionPlan, PicksPowerOfTwoPiecesThatDivideTheCurve) {
    struct Case {
        std::int64_t step, samples, chunk;
    };
    const Case cases[] = {
        {100, 1000000, 100},     // divisible by 64 at most
        {1000, 262144, 262144},  // the largest first
        {200, 196608, 65536},    // 3 x 65536: the first that divides
        {300, 256, 300},         // 256 divides but is below the step
        {100, 128 * 3, 128},     // the last one walked
        {50, 64, 50},            // 64 is not walked
        {0, 1024, 0},
        {5, 0, 5},
    };
    for (const Case& c : cases) EXPECT_EQ(PickReadChunk(c.step, c.samples), c.chunk) << c.step << " " << c.samples;
}

TEST(TrcCompressionPlan, ReducesToMinimumThenMaximumFromTheMarks) {
    struct Case {
        std::vector<float> values;
        float minimum, maximum;
    };
    const Case cases[] = {
        {{3, 1, 2}, 1, 3},
        {{3e9f, 4e9f}, kMinimumStart, 4e9f},  // all above the starting minimum
        {{-3e9f, -4e9f}, -4e9f, kMaximumStart},
        {std::vector<float>(37, -0.5f), -0.5f, -0.5f},  // beyond the vector width
    };
    for (const Case& c : cases) {
        float target[4] = {9, 9, 9, 9};
        std::int64_t position = 2;
        ReduceMinMax(c.values.data(), static_cast<std::int64_t>(c.values.size()), target, 4, position);
        EXPECT_EQ(position, 4);
        EXPECT_EQ(target[2], c.minimum);
        EXPECT_EQ(target[3], c.maximum);
        ReduceMinMax(c.values.data(), 3, target, 4, position);  // no room left: nothing moves
        EXPECT_EQ(position, 4);
    }
}

TEST(TrcSampleQueue, TakesAcrossChunksAndKeepsAnOverload) {
    CTrcLogging log;
    CSampleQueue queue(log);
    const float a[] = {1, 2, 3}, b[] = {4, 5}, c[] = {6, 7, 8, 9};
    EXPECT_FALSE(queue.QueuePush(a, 3, 3, 0, 1.0f));  // element size
    EXPECT_FALSE(queue.QueuePush(a, 4, 0, 0, 1.0f));  // count
    ASSERT_TRUE(queue.QueuePush(a, 4, 3, 0, 5.0f));
    ASSERT_TRUE(queue.QueuePush(b, 4, 2, 1, 2.0f));
    ASSERT_TRUE(queue.QueuePush(c, 4, 4, 0, 7.0f));
    EXPECT_FALSE(queue.QueueHasValues(0));
    EXPECT_TRUE(queue.QueueHasValues(9));
    EXPECT_FALSE(queue.QueueHasValues(10));

    struct Take {
        std::int64_t n;
        std::vector<float> values;
        long status;
        float range;
        long chunksLeft;
    };
    const Take takes[] = {
        {2, {1, 2}, 0, 5.0f, 3},           // part of the head stays
        {4, {3, 4, 5, 6}, 1, 7.0f, 1},     // the overload of the middle chunk stays over a later 0
        {3, {7, 8, 9}, 0, 7.0f, 0},
    };
    for (const Take& t : takes) {
        std::vector<float> out(t.values.size(), -1.0f);
        long status = -1;
        float range = -1.0f;
        ASSERT_TRUE(queue.QueueTake(t.n, 4, out.data(), &status, &range));
        EXPECT_EQ(std::tuple(out, status, range, queue.GetChunkCount()),
                  std::tuple(t.values, t.status, t.range, t.chunksLeft));
    }
    float out[2];
    long status;
    float range;
    EXPECT_FALSE(queue.QueueTake(1, 4, out, &status, &range));  // dry

    const std::int16_t s[] = {1, 2};
    ASSERT_TRUE(queue.QueuePush(s, 2, 2, 2, 1.0f));
    EXPECT_FALSE(queue.QueueTake(1, 4, out, &status, &range));  // another element size
    queue.QueueFree();
    EXPECT_FALSE(queue.QueueHasValues(1));
}

}  // namespace
