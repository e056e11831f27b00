// The watch must stay quiet while nothing on its path changes: a reader relies on that to skip
// looking at the file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "TempDir.h"
#include "platform/FileChangeWatch.h"

namespace {

class FileChangeWatchTest : public ::testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directories(dir_.file("sub")); }

    nvdl::test::TempDir dir_;
};

}  // namespace

TEST_F(FileChangeWatchTest, QuietUntilWhatThePathNamesChanges) {
    const std::filesystem::path file = dir_.file("sub") / "watched.txt";
    std::ofstream(file) << "one";
    nvdl::FileChangeWatch watch;
    ASSERT_TRUE(watch.arm(file.string()));
    EXPECT_FALSE(watch.mayHaveChanged());
    // Other entries beside the path are no concern, nor is reading the file.
    std::ofstream(dir_.file("sub") / "other.txt") << "x";
    std::filesystem::create_directory(dir_.file("sibling"));
    std::ifstream(file).get();
    EXPECT_FALSE(watch.mayHaveChanged());
    std::ofstream(file, std::ios::app) << "two";
    EXPECT_TRUE(watch.mayHaveChanged());
    EXPECT_TRUE(watch.mayHaveChanged());

    // Watches dropped by arming another path do not count as changes of that path.
    const std::filesystem::path missing = dir_.file("missing") / "deeper" / "watched.txt";
    ASSERT_TRUE(watch.arm(missing.string()));
    EXPECT_FALSE(watch.mayHaveChanged());
    std::filesystem::create_directory(dir_.file("missing"));
    EXPECT_TRUE(watch.mayHaveChanged());
}

TEST_F(FileChangeWatchTest, OnlyAbsolutePathsAreWatched) {
    nvdl::FileChangeWatch watch;
    // A relative path moves with the working directory, which sends no notice.
    EXPECT_FALSE(watch.arm("sub/watched.txt"));
    EXPECT_TRUE(watch.mayHaveChanged());
    // No path names no file, now and later.
    EXPECT_TRUE(watch.arm(""));
    EXPECT_FALSE(watch.mayHaveChanged());
}
