// The watch must stay quiet while nothing on its path changes: a reader relies on that to skip
// looking at the file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/FileChangeWatch.h"

namespace {

class FileChangeWatchTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("nvdl_watch_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_ / "sub");
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::filesystem::path dir_;
};

}  // namespace

TEST_F(FileChangeWatchTest, QuietUntilWhatThePathNamesChanges) {
    const std::filesystem::path file = dir_ / "sub" / "watched.txt";
    std::ofstream(file) << "one";
    nvdl::FileChangeWatch watch;
    ASSERT_TRUE(watch.arm(file.string()));
    EXPECT_FALSE(watch.mayHaveChanged());
    // Other entries beside the path are no concern, nor is reading the file.
    std::ofstream(dir_ / "sub" / "other.txt") << "x";
    std::filesystem::create_directory(dir_ / "sibling");
    std::ifstream(file).get();
    EXPECT_FALSE(watch.mayHaveChanged());
    std::ofstream(file, std::ios::app) << "two";
    EXPECT_TRUE(watch.mayHaveChanged());
    EXPECT_TRUE(watch.mayHaveChanged());

    // Watches dropped by arming another path do not count as changes of that path.
    const std::filesystem::path missing = dir_ / "missing" / "deeper" / "watched.txt";
    ASSERT_TRUE(watch.arm(missing.string()));
    EXPECT_FALSE(watch.mayHaveChanged());
    std::filesystem::create_directory(dir_ / "missing");
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
