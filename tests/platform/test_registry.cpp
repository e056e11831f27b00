// The settings store: reading the file, defaults beneath it, and noticing every change of the file
// or of where it is found, from several threads and across a fork.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "EnvGuard.h"
#include "TempDir.h"
#include "platform/DebugTrace.h"
#include "platform/Registry.h"

using namespace nvdl::registry;
using std::filesystem::path;

namespace {

const std::string kSettings = std::string("[HKEY_CURRENT_USER\\") + kSettingsKey + "]\n";
const std::string kDefaultBlockSize = "32768";

void writeBlockSize(const path& file, const std::string& value) {
    std::ofstream(file, std::ios::trunc) << kSettings << "\"MaxBlockSize\"=\"" << value << "\"\n";
}

std::optional<std::string> blockSize() { return readSetting("MaxBlockSize"); }

class RegistryTest : public ::testing::Test {
protected:
    void SetUp() override { env_.set("NVDL_REGISTRY", file_.string()); }
    void TearDown() override {
        env_.restore();
        nvdl::reloadDebugTraceSettings();
    }

    void write(const std::string& text) { std::ofstream(file_, std::ios::binary | std::ios::trunc) << text; }

    EnvGuard env_;
    nvdl::test::TempDir dir_;
    path file_ = dir_.file("registry.txt");
};

}  // namespace

TEST_F(RegistryTest, ReadsSectionsValuesAndEscapesIgnoringCase) {
    write("\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n"
          "\r\n"
          "; a comment\r\n"
          "[HKEY_CLASSES_ROOT\\nv_bench.Project\\CLSID]\r\n"
          "@=\"{0C1D2E3F-0000-0000-0000-000000000001}\"\r\n"
          "[HKLM\\Software\\Paths]\n"
          "\"Dir\"=\"C:\\\\data\\\\in \\\"quotes\\\"\"\n"
          "  \"Loose\" = \"C:\\temp\"  \n"
          "\"Empty\"=\"\"\n"
          "[hkcu\\Text]\n"
          "\"Latin\"=\"M\xC3\xBC\x6C\x6C\xE2\x82\xAC \xE4\xB8\xAD\"\n"
          "[HKEY_CURRENT_USER\\Software\\Loaders\\beta]\n\"Name\"=\"b\"\n"
          "[HKCU\\SOFTWARE\\loaders\\Alpha]\n\"\xC3\x84rger\"=\"1\"\n"
          "[HKCU\\Software\\Loaders\\Gamma\\Deep]\n"
          "[HKCU\\Software\\Loaders]\n\"Second\"=\"2\"\n\"first\"=\"1\"\n\"SECOND\"=\"two\"\n@=\"d\"\n");
    EXPECT_EQ(readString(Hive::ClassesRoot, "nv_bench.Project\\CLSID", ""), "{0C1D2E3F-0000-0000-0000-000000000001}");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", "Dir"), "C:\\data\\in \"quotes\"");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", "Loose"), "C:\\temp");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", "Empty"), "");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", ""), std::nullopt);
    // UTF-8 in the file, system code page in the value.
    EXPECT_EQ(readString(Hive::CurrentUser, "Text", "Latin"), "M\xFCll\x80 ?");
    // Values belong to their hive only.
    EXPECT_EQ(readString(Hive::CurrentUser, "Software\\Paths", "Dir"), std::nullopt);

    EXPECT_EQ(readString(Hive::CurrentUser, "software\\LOADERS\\BETA", "nAmE"), "b");
    EXPECT_EQ(readString(Hive::CurrentUser, "\\Software\\Loaders\\alpha\\", "\xE4RGER"), "1");
    EXPECT_EQ(subKeys(Hive::CurrentUser, "Software\\loaders"), (std::vector<std::string>{"Alpha", "beta", "Gamma"}));
    EXPECT_EQ(subKeys(Hive::CurrentUser, "Software\\Loaders\\beta"), std::vector<std::string>{});
    EXPECT_TRUE(keyExists(Hive::CurrentUser, "software\\loaders\\gamma"));  // made by its subkey
    EXPECT_FALSE(keyExists(Hive::CurrentUser, "Software\\Loaders\\Delta"));
    EXPECT_FALSE(keyExists(Hive::LocalMachine, "Software\\Loaders"));
    EXPECT_EQ(valueNames(Hive::CurrentUser, "Software\\Loaders"), (std::vector<std::string>{"SECOND", "first", ""}));
    EXPECT_EQ(readString(Hive::CurrentUser, "Software\\Loaders", "second"), "two");
}

TEST_F(RegistryTest, MalformedLinesAreSkippedWithATrace) {
    const path trace = dir_.file("trace.log");
    env_.set("NVDL_TRACE", trace.string());
    nvdl::reloadDebugTraceSettings();
    write(kSettings +
          "\"Good1\"=\"a\"\n"
          "\"Unclosed=\"x\"\n"        // 3: the name swallows the rest
          "\"Dword\"=dword:00000010\n"  // 4: not a string value
          "\"Trailing\"=\"x\" junk\n"  // 5
          "garbage\n"                  // 6
          "[HKEY_USERS\\Somebody]\n"   // 7: hive not kept
          "\"Lost\"=\"x\"\n"           // 8
          "[HKCU\\Broken\n"            // 9
          + kSettings + "\"Good2\"=\"b\"\n");
    EXPECT_EQ(readSetting("Good1"), "a");
    EXPECT_EQ(readSetting("Good2"), "b");
    // The file's names first, then the names only the built-in defaults have.
    std::vector<std::string> names = valueNames(Hive::CurrentUser, kSettingsKey);
    ASSERT_GE(names.size(), 3u);
    EXPECT_EQ(names[0], "Good1");
    EXPECT_EQ(names[1], "Good2");
    EXPECT_EQ(names[2], "MaxBlockSize");
    EXPECT_FALSE(keyExists(Hive::CurrentUser, "Broken"));

    std::ifstream in(trace);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 7u);
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_NE(lines[i].find("line " + std::to_string(i + 3) + " "), std::string::npos) << lines[i];
}

TEST_F(RegistryTest, DefaultsLieUnderTheFile) {
    // No file at all.
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
    EXPECT_EQ(readSetting("ImportAllTRCFlag"), std::nullopt);
    EXPECT_TRUE(keyExists(Hive::CurrentUser, kSettingsKey));
    EXPECT_EQ(subKeys(Hive::CurrentUser, "software\\norvane instruments"), std::vector<std::string>{"Sonvara"});

    write("[HKCU\\SOFTWARE\\Norvane Instruments\\Sonvara\\CurrentVersion\\Settings]\n\"maxblocksize\"=\"4096\"\n");
    EXPECT_EQ(blockSize(), "4096");
    EXPECT_EQ(readSetting("LongFileFeature"), "0");

    // Several at once answer in the order asked, each as a single read would.
    const std::array<std::string_view, 3> names{"LongFileFeature", "ImportAllTRCFlag", "maxBLOCKsize"};
    std::array<std::optional<std::string>, 3> values{"stale", "stale", "stale"};
    readSettings(names, values);
    EXPECT_EQ(values[0], "0");
    EXPECT_EQ(values[1], std::nullopt);
    EXPECT_EQ(values[2], "4096");
}

TEST_F(RegistryTest, EveryReadSeesTheFileAsItIsNow) {
    writeBlockSize(file_, "1111");
    EXPECT_EQ(blockSize(), "1111");
    // Same size, written at once: the time stamp may not have moved.
    writeBlockSize(file_, "2222");
    EXPECT_EQ(blockSize(), "2222");
    // An edit of the same size that puts the old modification time back.
    const auto stamp = std::filesystem::last_write_time(file_);
    writeBlockSize(file_, "4444");
    std::filesystem::last_write_time(file_, stamp);
    EXPECT_EQ(blockSize(), "4444");
    // Replaced by rename; then the file read last is written after it was renamed away.
    writeBlockSize(dir_.file("registry.txt.new"), "5555");
    std::filesystem::rename(dir_.file("registry.txt.new"), file_);
    EXPECT_EQ(blockSize(), "5555");
    std::filesystem::rename(file_, dir_.file("registry.txt.old"));
    writeBlockSize(dir_.file("registry.txt.old"), "6666");
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
}

TEST_F(RegistryTest, StorePathFollowsTheEnvironmentAtEachRead) {
    env_.set("NVDL_REGISTRY", std::nullopt);
    env_.set("XDG_CONFIG_HOME", "/xdg");
    env_.set("HOME", "/home/someone");
    EXPECT_EQ(storePath(), "/xdg/nvdl/registry.txt");
    env_.set("XDG_CONFIG_HOME", "relative/ignored");
    EXPECT_EQ(storePath(), "/home/someone/.config/nvdl/registry.txt");
    env_.set("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ(storePath(), "/home/someone/.config/nvdl/registry.txt");
    env_.set("HOME", std::nullopt);
    EXPECT_EQ(storePath(), "");
    EXPECT_EQ(blockSize(), kDefaultBlockSize);

    for (const char* config : {"x", "y"}) {
        std::filesystem::create_directories(dir_.file(config) / "nvdl");
        writeBlockSize(dir_.file(config) / "nvdl" / "registry.txt", config);
    }
    writeBlockSize(file_, "file");
    env_.set("XDG_CONFIG_HOME", dir_.file("x").string());
    EXPECT_EQ(blockSize(), "x");
    env_.set("XDG_CONFIG_HOME", dir_.file("y").string());
    EXPECT_EQ(blockSize(), "y");
    env_.set("NVDL_REGISTRY", file_.string());
    EXPECT_EQ(blockSize(), "file");
    env_.set("NVDL_REGISTRY", (dir_.file("x") / "nvdl" / "registry.txt").string());
    EXPECT_EQ(blockSize(), "x");
}

TEST_F(RegistryTest, ReadsFromSeveralThreadsWhileTheFileChanges) {
    std::atomic<bool> stop{false};
    std::atomic<int> badReads{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            while (!stop) {
                const auto value = blockSize();
                if (!value || value->empty()) ++badReads;
            }
        });
    }
    for (int i = 1; i <= 200; ++i) writeBlockSize(file_, std::to_string(i));
    stop = true;
    for (auto& reader : readers) reader.join();
    EXPECT_EQ(badReads, 0);
    EXPECT_EQ(blockSize(), "200");
}

TEST_F(RegistryTest, FileAndDirectoriesMadeAfterAReadAreSeenAndTheirRemovalToo) {
    const path deep = dir_.file("a") / "b" / "registry.txt";
    env_.set("NVDL_REGISTRY", deep.string());
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
    std::filesystem::create_directory(dir_.file("a"));
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
    std::filesystem::create_directory(dir_.file("a") / "b");
    writeBlockSize(deep, "512");
    EXPECT_EQ(blockSize(), "512");
    std::filesystem::remove(deep);
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
    writeBlockSize(deep, "1024");
    EXPECT_EQ(blockSize(), "1024");

    // A directory on the way is renamed and another one made in its place.
    std::filesystem::rename(dir_.file("a"), dir_.file("old"));
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
    writeBlockSize(dir_.file("old") / "b" / "registry.txt", "9");
    std::filesystem::create_directories(dir_.file("a") / "b");
    writeBlockSize(deep, "2048");
    EXPECT_EQ(blockSize(), "2048");
    std::filesystem::remove_all(dir_.file("a"));
    EXPECT_EQ(blockSize(), kDefaultBlockSize);
}

TEST_F(RegistryTest, ChangesBehindSymbolicLinksAndOtherNamesAreSeen) {
    const path real = dir_.file("real") / "settings.txt";
    std::filesystem::create_directories(real.parent_path());
    writeBlockSize(real, "100");
    // The store is reached through a linked directory and a linked file.
    std::filesystem::create_directory_symlink("real", dir_.file("linkdir"));
    std::filesystem::create_symlink("linkdir/settings.txt", file_);
    EXPECT_EQ(blockSize(), "100");
    writeBlockSize(real, "200");
    EXPECT_EQ(blockSize(), "200");
    writeBlockSize(dir_.file("real") / "next.txt", "300");
    std::filesystem::rename(dir_.file("real") / "next.txt", real);
    EXPECT_EQ(blockSize(), "300");

    // The linked directory is pointed elsewhere.
    std::filesystem::create_directories(dir_.file("elsewhere"));
    writeBlockSize(dir_.file("elsewhere") / "settings.txt", "400");
    std::filesystem::remove(dir_.file("linkdir"));
    std::filesystem::create_directory_symlink(dir_.file("elsewhere"), dir_.file("linkdir"));
    EXPECT_EQ(blockSize(), "400");

    // Written in place through a second name of the file in another directory.
    std::filesystem::create_hard_link(dir_.file("elsewhere") / "settings.txt", dir_.file("real") / "same.txt");
    writeBlockSize(dir_.file("real") / "same.txt", "500");
    EXPECT_EQ(blockSize(), "500");
}

TEST_F(RegistryTest, AChildProcessLeavesTheParentItsNoticesOfChange) {
    writeBlockSize(file_, "10");
    EXPECT_EQ(blockSize(), "10");
    writeBlockSize(file_, "20");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) ::_exit(blockSize() == "20" ? 0 : 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(blockSize(), "20");
}

TEST_F(RegistryTest, WritingAValueKeepsTheRestOfTheFile) {
    write("; kept\n[HKEY_CURRENT_USER\\Software\\A]\n\"One\"=\"1\"\n\n[HKLM\\Software\\A]\n\"One\"=\"machine\"\n");
    ASSERT_TRUE(writeString(Hive::CurrentUser, "software\\a", "one", "uno"));         // replaced in place
    ASSERT_TRUE(writeString(Hive::CurrentUser, "Software\\A", "Two", "C:\\x \"y\"")); // added to the section
    ASSERT_TRUE(writeString(Hive::CurrentUser, "Software\\B", "", "default"));       // a new section
    std::ifstream in(file_);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(text,
              "; kept\n[HKEY_CURRENT_USER\\Software\\A]\n\"One\"=\"uno\"\n\"Two\"=\"C:\\\\x \\\"y\\\"\"\n\n"
              "[HKLM\\Software\\A]\n\"One\"=\"machine\"\n\n[HKEY_CURRENT_USER\\Software\\B]\n@=\"default\"\n");
    EXPECT_EQ(readString(Hive::CurrentUser, "Software\\A", "Two"), "C:\\x \"y\"");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\A", "One"), "machine");
    EXPECT_EQ(readString(Hive::CurrentUser, "Software\\B", ""), "default");

    std::filesystem::remove(file_);  // no file yet: one is made
    ASSERT_TRUE(writeString(Hive::CurrentUser, kSettingsKey, "ImportAllTRCFlag", "1"));
    EXPECT_EQ(readSetting("ImportAllTRCFlag"), "1");
}
