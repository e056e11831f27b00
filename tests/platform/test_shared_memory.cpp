// Named shared memory blocks: which names are taken, the bounds of a write, and who removes a name.
#include <gtest/gtest.h>

#include <unistd.h>

#include "platform/SharedMemory.h"

namespace nvdl {
namespace {

// A name of this test process, so that runs side by side do not meet; `length` pads it.
std::string uniqueName(std::size_t length = 0) {
    static int counter = 0;
    std::string name = "t" + std::to_string(::getpid()) + "." + std::to_string(++counter);
    return name.size() < length ? name + std::string(length - name.size(), 'x') : name;
}

TEST(SharedMemory, NamesAreTakenWithinTheLengthLimits) {
    // An 8-bit character takes two bytes of the 255 that the system name "/nvdl.<name>" allows.
    const std::string base = uniqueName();
    const std::size_t fits = (250 - base.size()) / 2;
    const std::pair<std::string, bool> cases[] = {
        {"", false},          {uniqueName(250), true},  {uniqueName(251), false}, {base + "a/b", true},
        {base + std::string("a\0b", 3), false}, {base + std::string(fits, '\xE9'), true},
        {base + std::string(fits + 1, '\xE9'), false},
    };
    for (const auto& [name, taken] : cases) {
        CShmBlock block;
        EXPECT_EQ(block.Create(name, 16), taken) << name.size();
        EXPECT_EQ(block.GetSize(), taken ? 16u : 0u) << name.size();
    }
}

TEST(SharedMemory, WritesClearTheBlockAndKeepToItsSize) {
    CShmBlock block;
    ASSERT_TRUE(block.Create(uniqueName(), 8));
    const std::pair<std::string, bool> cases[] = {{"", false}, {"123456789", false}, {"12345678", true}, {"ab", true}};
    std::string expected(8, '\0');
    for (const auto& [data, done] : cases) {
        EXPECT_EQ(block.Write(data.data(), data.size()), done) << data;
        if (done) expected = data + std::string(8 - data.size(), '\0');
        char bytes[8] = {};
        ASSERT_TRUE(block.Read(bytes, sizeof bytes, 0, sizeof bytes));
        EXPECT_EQ(std::string(bytes, 8), expected) << data;
    }
    EXPECT_FALSE(block.Read(expected.data(), 8, 7, 2));
}

// A second Create lets go of the first name, which it made; a reader closing leaves the name.
TEST(SharedMemory, TheCreatorRemovesItsNamesAsItClosesThem) {
    const std::string first = uniqueName(), second = uniqueName();
    CShmBlock creator, reader;
    ASSERT_TRUE(creator.Create(first, 16));
    ASSERT_TRUE(creator.Create(second, 32));
    EXPECT_EQ(creator.GetSize(), 32u);
    EXPECT_FALSE(reader.Open(first, 16));
    EXPECT_FALSE(reader.Open(second, 33));  // larger than the block
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(reader.Open(second, 32)) << i;
        reader.Close();
    }
    creator.Close();
    EXPECT_FALSE(reader.Open(second, 32));
}

}  // namespace
}  // namespace nvdl
