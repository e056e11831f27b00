#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "EnvGuard.h"
#include "platform/DebugTrace.h"
#include "platform/Registry.h"

using namespace nvdl::registry;

namespace {

class RegistryTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("nvdl_registry_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_);
        file_ = dir_ / "registry.txt";
        env_.set("NVDL_REGISTRY", file_.string());
    }
    void TearDown() override {
        env_.restore();
        nvdl::reloadDebugTraceSettings();
        std::filesystem::remove_all(dir_);
    }

    void write(const std::string& text) { std::ofstream(file_, std::ios::binary | std::ios::trunc) << text; }

    EnvGuard env_;
    std::filesystem::path dir_;
    std::filesystem::path file_;
};

const std::string kSettings = std::string("[HKEY_CURRENT_USER\\") + kSettingsKey + "]\n";

}  // namespace

TEST_F(RegistryTest, ReadsSectionsValuesAndEscapes) {
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
          "\"Latin\"=\"M\xC3\xBC\x6C\x6C\xE2\x82\xAC \xE4\xB8\xAD\"\n");
    EXPECT_EQ(readString(Hive::ClassesRoot, "nv_bench.Project\\CLSID", ""), "{0C1D2E3F-0000-0000-0000-000000000001}");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", "Dir"), "C:\\data\\in \"quotes\"");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", "Loose"), "C:\\temp");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", "Empty"), "");
    EXPECT_EQ(readString(Hive::LocalMachine, "Software\\Paths", ""), std::nullopt);
    // UTF-8 in the file, system code page in the value.
    EXPECT_EQ(readString(Hive::CurrentUser, "Text", "Latin"), "M\xFCll\x80 ?");
    // Values belong to their hive only.
    EXPECT_EQ(readString(Hive::CurrentUser, "Software\\Paths", "Dir"), std::nullopt);
}

TEST_F(RegistryTest, KeysAndNamesIgnoreCase) {
    write("[HKEY_CURRENT_USER\\Software\\Loaders\\beta]\n\"Name\"=\"b\"\n"
          "[HKCU\\SOFTWARE\\loaders\\Alpha]\n\"\xC3\x84rger\"=\"1\"\n"
          "[HKCU\\Software\\Loaders\\Gamma\\Deep]\n"
          "[HKCU\\Software\\Loaders]\n\"Second\"=\"2\"\n\"first\"=\"1\"\n\"SECOND\"=\"two\"\n@=\"d\"\n");
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
    const std::filesystem::path trace = dir_ / "trace.log";
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
    const char* numbers[] = {"line 3 ", "line 4 ", "line 5 ", "line 6 ", "line 7 ", "line 8 ", "line 9 "};
    for (std::size_t i = 0; i < lines.size(); ++i) EXPECT_NE(lines[i].find(numbers[i]), std::string::npos) << lines[i];
}

TEST_F(RegistryTest, DefaultsLieUnderTheFile) {
    // No file at all.
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
    EXPECT_EQ(readSetting("LongFileFeature"), "0");
    EXPECT_EQ(readSetting("ComputationBlocksizeDivider"), "1");
    EXPECT_EQ(readSetting("ImportAllTRCFlag"), std::nullopt);
    EXPECT_TRUE(keyExists(Hive::CurrentUser, kSettingsKey));
    EXPECT_EQ(subKeys(Hive::CurrentUser, "software\\norvane instruments"), std::vector<std::string>{"Sonvara"});

    write("[HKCU\\SOFTWARE\\Norvane Instruments\\Sonvara\\CurrentVersion\\Settings]\n\"maxblocksize\"=\"4096\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "4096");
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
    write(kSettings + "\"MaxBlockSize\"=\"1111\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "1111");
    // Same size, written at once: the time stamp may not have moved.
    write(kSettings + "\"MaxBlockSize\"=\"2222\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "2222");
    // An edit of the same size that puts the old modification time back.
    const auto stamp = std::filesystem::last_write_time(file_);
    write(kSettings + "\"MaxBlockSize\"=\"4444\"\n");
    std::filesystem::last_write_time(file_, stamp);
    EXPECT_EQ(readSetting("MaxBlockSize"), "4444");
    write(kSettings + "\"MaxBlockSize\"=\"333\"\n\"ImportAllTRCFlag\"=\"u.dat\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "333");
    EXPECT_EQ(readSetting("ImportAllTRCFlag"), "u.dat");

    // Another file by path, then none.
    const std::filesystem::path other = dir_ / "other.txt";
    std::ofstream(other) << kSettings << "\"ImportAllTRCFlag\"=\"other.dat\"\n";
    env_.set("NVDL_REGISTRY", other.string());
    EXPECT_EQ(readSetting("ImportAllTRCFlag"), "other.dat");
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
    std::filesystem::remove(other);
    EXPECT_EQ(readSetting("ImportAllTRCFlag"), std::nullopt);
}

TEST_F(RegistryTest, StorePathFallsBackToTheConfigDirectories) {
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
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");

    std::filesystem::create_directories(dir_ / "nvdl");
    std::ofstream(dir_ / "nvdl" / "registry.txt") << kSettings << "\"BuildNumber\"=\"77\"\n";
    env_.set("XDG_CONFIG_HOME", dir_.string());
    EXPECT_EQ(readSetting("BuildNumber"), "77");
}

TEST_F(RegistryTest, ReadsFromSeveralThreadsWhileTheFileChanges) {
    std::atomic<bool> stop{false};
    std::atomic<int> badReads{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            while (!stop) {
                const auto value = readSetting("MaxBlockSize");
                if (!value || value->empty()) ++badReads;
            }
        });
    }
    for (int i = 0; i < 200; ++i) write(kSettings + "\"MaxBlockSize\"=\"" + std::to_string(i + 1) + "\"\n");
    stop = true;
    for (auto& reader : readers) reader.join();
    EXPECT_EQ(badReads, 0);
    EXPECT_EQ(readSetting("MaxBlockSize"), "200");
}

TEST_F(RegistryTest, ReplacingTheFileByRenameIsSeen) {
    write(kSettings + "\"MaxBlockSize\"=\"1111\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "1111");
    const std::filesystem::path temporary = dir_ / "registry.txt.new";
    std::ofstream(temporary) << kSettings << "\"MaxBlockSize\"=\"2222\"\n";
    std::filesystem::rename(temporary, file_);
    EXPECT_EQ(readSetting("MaxBlockSize"), "2222");
    // The file read last is written after it was renamed away.
    std::filesystem::rename(file_, dir_ / "registry.txt.old");
    std::ofstream(dir_ / "registry.txt.old") << kSettings << "\"MaxBlockSize\"=\"3333\"\n";
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
}

TEST_F(RegistryTest, FileAndDirectoriesMadeAfterAReadAreSeenAndTheirRemovalToo) {
    const std::filesystem::path deep = dir_ / "a" / "b" / "registry.txt";
    env_.set("NVDL_REGISTRY", deep.string());
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
    std::filesystem::create_directory(dir_ / "a");
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
    std::filesystem::create_directory(dir_ / "a" / "b");
    std::ofstream(deep) << kSettings << "\"MaxBlockSize\"=\"512\"\n";
    EXPECT_EQ(readSetting("MaxBlockSize"), "512");
    std::filesystem::remove(deep);
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
    std::ofstream(deep) << kSettings << "\"MaxBlockSize\"=\"1024\"\n";
    EXPECT_EQ(readSetting("MaxBlockSize"), "1024");

    // A directory on the way is renamed and another one made in its place.
    std::filesystem::rename(dir_ / "a", dir_ / "old");
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
    std::ofstream(dir_ / "old" / "b" / "registry.txt") << kSettings << "\"MaxBlockSize\"=\"9\"\n";
    std::filesystem::create_directories(dir_ / "a" / "b");
    std::ofstream(deep) << kSettings << "\"MaxBlockSize\"=\"2048\"\n";
    EXPECT_EQ(readSetting("MaxBlockSize"), "2048");
    std::filesystem::remove_all(dir_ / "a");
    EXPECT_EQ(readSetting("MaxBlockSize"), "32768");
}

TEST_F(RegistryTest, ChangesBehindSymbolicLinksAndOtherNamesAreSeen) {
    const std::filesystem::path real = dir_ / "real" / "settings.txt";
    std::filesystem::create_directories(real.parent_path());
    std::ofstream(real) << kSettings << "\"MaxBlockSize\"=\"100\"\n";
    // The store is reached through a linked directory and a linked file.
    std::filesystem::create_directory_symlink("real", dir_ / "linkdir");
    std::filesystem::create_symlink("linkdir/settings.txt", file_);
    EXPECT_EQ(readSetting("MaxBlockSize"), "100");
    std::ofstream(real, std::ios::trunc) << kSettings << "\"MaxBlockSize\"=\"200\"\n";
    EXPECT_EQ(readSetting("MaxBlockSize"), "200");
    std::ofstream(dir_ / "real" / "next.txt") << kSettings << "\"MaxBlockSize\"=\"300\"\n";
    std::filesystem::rename(dir_ / "real" / "next.txt", real);
    EXPECT_EQ(readSetting("MaxBlockSize"), "300");

    // The linked directory is pointed elsewhere.
    std::filesystem::create_directories(dir_ / "elsewhere");
    std::ofstream(dir_ / "elsewhere" / "settings.txt") << kSettings << "\"MaxBlockSize\"=\"400\"\n";
    std::filesystem::remove(dir_ / "linkdir");
    std::filesystem::create_directory_symlink(dir_ / "elsewhere", dir_ / "linkdir");
    EXPECT_EQ(readSetting("MaxBlockSize"), "400");

    // Written in place through a second name of the file in another directory.
    std::filesystem::create_hard_link(dir_ / "elsewhere" / "settings.txt", dir_ / "real" / "same.txt");
    std::ofstream(dir_ / "real" / "same.txt", std::ios::trunc) << kSettings << "\"MaxBlockSize\"=\"500\"\n";
    EXPECT_EQ(readSetting("MaxBlockSize"), "500");
}

TEST_F(RegistryTest, AChangedStorePathIsSeenOnTheNextRead) {
    std::filesystem::create_directories(dir_ / "x" / "nvdl");
    std::filesystem::create_directories(dir_ / "y" / "nvdl");
    std::ofstream(dir_ / "x" / "nvdl" / "registry.txt") << kSettings << "\"MaxBlockSize\"=\"1\"\n";
    std::ofstream(dir_ / "y" / "nvdl" / "registry.txt") << kSettings << "\"MaxBlockSize\"=\"2\"\n";
    write(kSettings + "\"MaxBlockSize\"=\"3\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "3");
    env_.set("NVDL_REGISTRY", std::nullopt);
    env_.set("XDG_CONFIG_HOME", (dir_ / "x").string());
    EXPECT_EQ(readSetting("MaxBlockSize"), "1");
    env_.set("XDG_CONFIG_HOME", (dir_ / "y").string());
    EXPECT_EQ(readSetting("MaxBlockSize"), "2");
    env_.set("NVDL_REGISTRY", file_.string());
    EXPECT_EQ(readSetting("MaxBlockSize"), "3");
    env_.set("NVDL_REGISTRY", (dir_ / "y" / "nvdl" / "registry.txt").string());
    EXPECT_EQ(readSetting("MaxBlockSize"), "2");
}

TEST_F(RegistryTest, AChildProcessLeavesTheParentItsNoticesOfChange) {
    write(kSettings + "\"MaxBlockSize\"=\"10\"\n");
    EXPECT_EQ(readSetting("MaxBlockSize"), "10");
    write(kSettings + "\"MaxBlockSize\"=\"20\"\n");
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) ::_exit(readSetting("MaxBlockSize") == "20" ? 0 : 1);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(readSetting("MaxBlockSize"), "20");
}
