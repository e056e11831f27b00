// File name helpers of the workspace export: path parts, the ".WKD" extension and free names,
// names made from client texts, and the question before saving under a new name.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/Host.h"
#include "project/FileNames.h"

namespace nvdl::test {
namespace {

TEST(FileNames, PathSplitsIntoDriveDirectoryBaseAndExtension) {
    auto parts = [](const char* path) {
        PathParts p = SplitPath(path);
        return p.drive + "|" + p.directory + "|" + p.baseName + "|" + p.extension;
    };
    EXPECT_EQ(parts("C:\\data/run 1\\take.2.wkd"), "C:|\\data/run 1\\|take.2|.wkd");
    EXPECT_EQ(parts("/tmp/dir.old/readme"), "|/tmp/dir.old/|readme|");
    EXPECT_EQ(parts(".WKD"), "|||.WKD");
}

TEST(FileNames, WkdExtensionIgnoresCaseAndOnlyTheLastPart) {
    for (const char* name : {"run.wkd", "D:\\x\\Run.WkD"}) EXPECT_TRUE(IsWkdFileName(name)) << name;
    for (const char* name : {"run.wkd.bak", "run.wk", "archive.wkd/run", "wkd", ""})
        EXPECT_FALSE(IsWkdFileName(name)) << name;
}

TEST(FileNames, SanitizeBlanksWhatAFileNameCannotHold) {
    EXPECT_EQ(SanitizeFileName("a\"b/c:d<e>f\\g|h"), "a b c d e f g h");
    EXPECT_EQ(SanitizeFileName(std::string("\ttab\x01\x1f\0x", 8)), " tab   x");
    EXPECT_EQ(SanitizeFileName(" Run *? \xE9t\xE9 "), " Run *? \xE9t\xE9 ");  // no trimming here
    EXPECT_EQ(SanitizeFileName(""), "");
}

class FreeWkdNameTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() / ("nvdl_wkd_names_" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }
    std::string at(const std::string& name) const { return (dir_ / name).string(); }
    void touch(const std::string& name) const { std::ofstream(dir_ / name) << "x"; }

    std::filesystem::path dir_;
};

TEST_F(FreeWkdNameTest, ExtensionIsReplacedOrKept) {
    EXPECT_EQ(MakeWkdFileName(at("run.txt")), at("run.WKD"));
    EXPECT_EQ(MakeWkdFileName(at("run")), at("run.WKD"));
    EXPECT_EQ(MakeWkdFileName(at("run.wkd")), at("run.wkd"));
}

TEST_F(FreeWkdNameTest, NumberGoesBeforeTheExtensionUntilTheNameIsFree) {
    touch("run.WKD");
    EXPECT_EQ(MakeWkdFileName(at("run.txt")), at("run1.WKD"));
    touch("run1.WKD");
    touch("run2.WKD");
    EXPECT_EQ(MakeWkdFileName(at("run.WKD")), at("run3.WKD"));
    // Existing files with other extensions do not matter.
    touch("take.txt");
    EXPECT_EQ(MakeWkdFileName(at("take.txt")), at("take.WKD"));
}

class PromptTest : public ::testing::Test {
protected:
    void TearDown() override { host::setMessageBoxHandler({}); }
};

TEST_F(PromptTest, QuestionNamesBothWorkspacesAndYesAgrees) {
    std::string text, caption;
    unsigned type = 0;
    int answer = host::IDNO;
    host::setMessageBoxHandler([&](const std::string& t, const std::string& c, unsigned k) {
        text = t;
        caption = c;
        type = k;
        return answer;
    });
    EXPECT_FALSE(PromptSaveAs("old.wkd", "new.WKD"));
    EXPECT_EQ(text, "Do you want to save the changes you made in workspace : \nold.wkd\nto new.WKD ?");
    EXPECT_EQ(caption, "Save Workspace...");
    EXPECT_EQ(type, static_cast<unsigned>(host::MB_YESNO | host::MB_ICONQUESTION));
    answer = host::IDYES;
    EXPECT_TRUE(PromptSaveAs("a", "b"));
    answer = host::IDCANCEL;
    EXPECT_FALSE(PromptSaveAs("a", "b"));
}

TEST_F(PromptTest, HostWithoutAWindowAgrees) { EXPECT_TRUE(PromptSaveAs("old", "new")); }

}  // namespace
}  // namespace nvdl::test
