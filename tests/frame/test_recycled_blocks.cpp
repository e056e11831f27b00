// Recycled memory of frequently made objects.
#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "frame/RecycledBlocks.h"

namespace nvdl {
namespace {

using Blocks = RecycledBlocks<96, 4>;

TEST(RecycledBlocks, ReleasedBlocksComeBackOnTheirThreadUpToTheShelfSize) {
    if (!NVDL_RECYCLE_BLOCKS) GTEST_SKIP() << "the sanitizer build sends every block to the allocator";
    std::vector<void*> taken;
    for (int i = 0; i < 6; ++i) taken.push_back(Blocks::take(96));
    for (void* block : taken) Blocks::give(block, 96);  // the last two do not fit on the shelf
    std::set<void*> kept(taken.begin(), taken.begin() + 4);
    std::vector<void*> back;
    for (int i = 0; i < 4; ++i) back.push_back(Blocks::take(96));
    EXPECT_EQ(std::set<void*>(back.begin(), back.end()), kept);

    // Another thread keeps what it is given, and frees it when it ends.
    void* fresh = Blocks::take(96);
    EXPECT_EQ(kept.count(fresh), 0u);
    std::thread([fresh] {
        Blocks::give(fresh, 96);
        void* again = Blocks::take(96);
        EXPECT_EQ(again, fresh);
        Blocks::give(again, 96);
    }).join();
    for (void* block : back) Blocks::give(block, 96);
}

TEST(RecycledBlocks, OtherSizesGoToTheAllocator) {
    void* other = Blocks::take(200);
    Blocks::give(other, 200);
    void* block = Blocks::take(96);
    if (NVDL_RECYCLE_BLOCKS) {
        EXPECT_NE(block, other);
    }
    Blocks::give(block, 96);
}

}  // namespace
}  // namespace nvdl
