// Changing the settings file: values set and removed, keys removed with their subkeys, and every
// change undone giving back the very bytes of the file, whatever its line ends and text.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "EnvGuard.h"
#include "TempDir.h"
#include "platform/Registry.h"

using namespace nvdl::registry;

namespace {

class RegistryWriteTest : public ::testing::Test {
protected:
    void SetUp() override { env_.set("NVDL_REGISTRY", file_.string()); }

    void write(const std::string& bytes) { std::ofstream(file_, std::ios::binary | std::ios::trunc) << bytes; }
    std::string bytes() const {
        std::ifstream in(file_, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    EnvGuard env_;
    nvdl::test::TempDir dir_;
    std::filesystem::path file_ = dir_.file("registry.txt");
};

struct EditCase {
    const char* what;
    const char* before;
    std::function<bool()> edit;
    const char* after;
};

TEST_F(RegistryWriteTest, DeletionsRemoveTheirLinesAndKeepTheRest) {
    const EditCase cases[] = {
        {"a value goes from every section of its key, the sections stay",
         "[HKCU\\A]\n\"x\"=\"1\"\n\"y\"=\"2\"\n[HKLM\\A]\n\"x\"=\"m\"\n[hkcu\\a]\n\"X\"=\"3\"\n",
         [] { return deleteValue(Hive::CurrentUser, "A", "x"); },
         "[HKCU\\A]\n\"y\"=\"2\"\n[HKLM\\A]\n\"x\"=\"m\"\n[hkcu\\a]\n"},
        {"the default value", "[HKCR\\P]\n@=\"d\"\n\"@\"=\"named\"\n",
         [] { return deleteValue(Hive::ClassesRoot, "P", ""); }, "[HKCR\\P]\n\"@\"=\"named\"\n"},
        {"a key goes with its subkeys, ignoring case; a key sharing its first letters stays",
         "; top\n[HKCR\\Key]\n@=\"k\"\n\n[HKCR\\KeyBoard]\n@=\"b\"\n\n[HKCR\\key\\Sub\\Deep]\n@=\"d\"\n\n"
         "[HKCU\\Key]\n@=\"u\"\n",
         [] { return deleteKey(Hive::ClassesRoot, "KEY"); },
         "; top\n\n[HKCR\\KeyBoard]\n@=\"b\"\n\n[HKCU\\Key]\n@=\"u\"\n"},
        {"comments and blank lines in front of the next section stay with it",
         "[HKCR\\A]\n@=\"a\"\n; about B\n[HKCR\\B]\n@=\"b\"\n",
         [] { return deleteKey(Hive::ClassesRoot, "A"); }, "; about B\n[HKCR\\B]\n@=\"b\"\n"},
        {"adjacent sections without blank lines", "x\n\n[HKCR\\A]\n@=\"a\"\n[HKCR\\A\\B]\n@=\"b\"\n",
         [] { return deleteKey(Hive::ClassesRoot, "A"); }, "x\n"},
        {"a key the file does not have", "[HKCR\\A]\n@=\"a\"\n",
         [] { return deleteKey(Hive::ClassesRoot, "B"); }, "[HKCR\\A]\n@=\"a\"\n"},
        {"a whole hive is refused", "[HKCR\\A]\n@=\"a\"\n",
         [] { return !deleteKey(Hive::ClassesRoot, "\\"); }, "[HKCR\\A]\n@=\"a\"\n"},
        {"a section whose hive is unknown ends the section above",
         "[HKCR\\A]\n@=\"a\"\n[HKXX\\A]\n@=\"x\"\n", [] { return deleteKey(Hive::ClassesRoot, "A"); },
         "[HKXX\\A]\n@=\"x\"\n"},
    };
    for (const EditCase& c : cases) {
        write(c.before);
        EXPECT_TRUE(c.edit()) << c.what;
        EXPECT_EQ(bytes(), c.after) << c.what;
    }
    write("[HKCR\\A]\n@=\"a\"\n");
    ASSERT_TRUE(deleteKey(Hive::ClassesRoot, "A\\"));
    EXPECT_FALSE(keyExists(Hive::ClassesRoot, "A"));
}

// Keys and values written to a file and removed again, last first, give back its bytes.
TEST_F(RegistryWriteTest, WritingThenRemovingGivesBackTheBytes) {
    const char* files[] = {
        "Windows Registry Editor Version 5.00\n\n[HKCU\\Other]\n\"A\"=\"1\"\n",
        "[HKCU\\Other]\n\"A\"=\"1\"\n\n",                                      // ends with a blank line
        "\xEF\xBB\xBF[HKCU\\Other]\r\n\"A\"=\"1\"\r\n; end\r\n",                // mark, CR LF, comment last
        "[HKCU\\Other]\n\"A\"=\"1\"",                                            // no line end at the end
        "[HKCU\\Other]\n\"Text\"=\"\xE4\xB8\xAD \xF0\x9F\x8E\xB5\"\n; caf\xC3\xA9\n",  // beyond 8-bit text
    };
    for (const char* original : files) {
        write(original);
        ASSERT_TRUE(writeString(Hive::ClassesRoot, "nv_bench.x", "", "X"));
        ASSERT_TRUE(writeString(Hive::ClassesRoot, "nv_bench.x\\CLSID", "", "{1}"));
        ASSERT_TRUE(writeString(Hive::CurrentUser, "Other", "B", "2"));  // into an existing section
        ASSERT_TRUE(writeString(Hive::ClassesRoot, "Interface\\{2}", "", "I"));
        ASSERT_TRUE(writeString(Hive::ClassesRoot, "Interface\\{2}\\TypeLib", "Version", "1.0"));
        EXPECT_EQ(readString(Hive::ClassesRoot, "nv_bench.x\\CLSID", ""), "{1}") << original;
        EXPECT_EQ(readString(Hive::CurrentUser, "Other", "B"), "2") << original;

        const Change undo[] = {
            {Change::Kind::DeleteKey, Hive::ClassesRoot, "Interface\\{2}", {}, {}},
            {Change::Kind::DeleteValue, Hive::CurrentUser, "Other", "b", {}},
            {Change::Kind::DeleteKey, Hive::ClassesRoot, "NV_BENCH.X", {}, {}},
        };
        ASSERT_TRUE(applyChanges(undo));
        EXPECT_EQ(bytes(), original);
        EXPECT_FALSE(keyExists(Hive::ClassesRoot, "nv_bench.x"));
    }
}

TEST_F(RegistryWriteTest, ChangesThatChangeNothingLeaveTheFileAlone) {
    ASSERT_TRUE(deleteKey(Hive::ClassesRoot, "Missing"));
    EXPECT_FALSE(std::filesystem::exists(file_)) << "no file is made to remove nothing from";

    write("[HKCU\\A]\n\"x\"=\"1\"\n");
    struct stat before {}, after {};
    ASSERT_EQ(::stat(file_.c_str(), &before), 0);
    const Change changes[] = {
        {Change::Kind::SetString, Hive::CurrentUser, "A", "x", "1"},
        {Change::Kind::DeleteValue, Hive::CurrentUser, "A", "y", {}},
        {Change::Kind::SetString, Hive::CurrentUser, "B", "", "b"},
        {Change::Kind::DeleteKey, Hive::CurrentUser, "B", {}, {}},
    };
    ASSERT_TRUE(applyChanges(changes));
    ASSERT_EQ(::stat(file_.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);  // replacing the file would give it a new one
    EXPECT_EQ(bytes(), "[HKCU\\A]\n\"x\"=\"1\"\n");
}

}  // namespace
