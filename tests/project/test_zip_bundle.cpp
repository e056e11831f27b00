// Extraction of zip bundles: contents and names of good archives, archives that are not zips, and
// every kind of refused archive, each of which must leave nothing on disk.
#include <gtest/gtest.h>
#include <minizip/zip.h>
#include <sys/statvfs.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <random>

#include "SettingsFileTest.h"
#include "platform/CodePage.h"
#include "platform/RecordLayout.h"
#include "platform/Registry.h"
#include "project/ZipBundle.h"

namespace nvdl {
namespace {

namespace fs = std::filesystem;

struct Item {
    std::string name, data;
    int method = Z_DEFLATED;
    unsigned long flag = 0;         // general purpose flags beside those the writer sets
    unsigned long attributes = 0;   // external attributes
};

// Fields that local (generation 0) and central (generation 1) headers share, to damage an archive.
struct HeaderFields {
    std::int16_t flag = 0, method = 0;
    std::int32_t packedSize = 0, size = 0;
};
constexpr record::Field<HeaderFields, 2> kHeaderFields[] = {
    {record::i16(&HeaderFields::flag), {6, 8}},
    {record::i16(&HeaderFields::method), {8, 10}},
    {record::i32(&HeaderFields::packedSize), {18, 20}},
    {record::i32(&HeaderFields::size), {22, 24}},
};
constexpr std::span<const record::Field<HeaderFields, 2>> kHeaderTable(kHeaderFields);
static_assert(record::fitsAndDisjoint(kHeaderTable, 0, 30) && record::fitsAndDisjoint(kHeaderTable, 1, 46));
constexpr const char* kSignatures[] = {"PK\x03\x04", "PK\x01\x02"};
enum Headers { kCentral = 2, kBoth = 3 };  // bit g: generation g

using Edit = std::function<void(std::string& zip)>;

// Sets one field in every header of the kinds named.
template <class M>
Edit setHeaderField(Headers which, M HeaderFields::*member, M value) {
    return [=](std::string& zip) {
        for (std::size_t g = 0; g < 2; ++g) {
            if (!(which & (1 << g))) continue;
            const int offset = record::offsetOf(kHeaderTable, g, member);
            for (std::size_t at = zip.find(kSignatures[g]); at != std::string::npos; at = zip.find(kSignatures[g], at + 4)) {
                auto* field = reinterpret_cast<std::uint8_t*>(zip.data() + at + offset);
                if constexpr (sizeof(M) == 2) le::put16(field, static_cast<std::uint16_t>(value));
                else le::put32(field, static_cast<std::uint32_t>(value));
            }
        }
    };
}
Edit replaceBytes(std::string from, std::string to) {
    return [=](std::string& zip) {
        for (std::size_t at = zip.find(from); at != std::string::npos; at = zip.find(from, at + to.size()))
            zip.replace(at, from.size(), to);
    };
}

std::string readAll(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string randomBytes(std::size_t size) {
    std::mt19937 generator(7);
    std::string bytes(size, '\0');
    for (char& c : bytes) c = static_cast<char>(generator());
    return bytes;
}

class ZipBundleTest : public test::SettingsFileTest {
protected:
    void SetUp() override {
        SettingsFileTest::SetUp();
        fs::create_directories(temp());
        env_.set("TMPDIR", temp().string());
    }
    fs::path temp() const { return dir_ / "tmp"; }
    fs::path archive() const { return dir_ / "bundle.zip"; }

    void writeZip(const std::vector<Item>& items, const Edit& edit = {}) {
        zipFile zip = zipOpen64(archive().c_str(), APPEND_STATUS_CREATE);
        ASSERT_NE(zip, nullptr);
        for (const Item& item : items) {
            zip_fileinfo info{};
            info.external_fa = item.attributes;
            ASSERT_EQ(zipOpenNewFileInZip4_64(zip, item.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, item.method,
                                              item.method ? Z_BEST_COMPRESSION : 0, 0, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY,
                                              nullptr, 0, 0x0314, item.flag, 0),
                      ZIP_OK);
            ASSERT_EQ(zipWriteInFileInZip(zip, item.data.data(), static_cast<unsigned>(item.data.size())), ZIP_OK);
            ASSERT_EQ(zipCloseFileInZip(zip), ZIP_OK);
        }
        ASSERT_EQ(zipClose(zip, nullptr), ZIP_OK);
        if (!edit) return;
        std::string bytes = readAll(archive());
        edit(bytes);
        std::ofstream(archive(), std::ios::binary | std::ios::trunc) << bytes;
    }
    HRESULT extract(const ZipLimits& limits = {1 << 30, 100}) {
        return ExtractedBundle::extract(archive().string(), limits, bundle, message);
    }
    bool tempIsEmpty() const { return fs::is_empty(temp()); }

    ExtractedBundle bundle;
    std::string message;
};

TEST_F(ZipBundleTest, ExtractsABundleByteExactUntilTheLastOwnerGoes) {
    const std::vector<Item> items = {{"project.VPJ", std::string("VPJ\0\x01\xff", 6)},
                                     {"run1.trc", randomBytes(200000)},  // several read and write chunks
                                     {"run2.trc", "stored as it is", 0}};
    writeZip(items);
    ASSERT_EQ(extract(), S_OK) << message;
    EXPECT_EQ(message, "");
    const std::string directory = bundle.directory();
    EXPECT_EQ(fs::path(directory).parent_path(), temp());
    EXPECT_EQ(fs::status(directory).permissions(), fs::perms::owner_all);
    ASSERT_EQ(bundle.files().size(), items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(bundle.files()[i], directory + "/" + items[i].name);
        EXPECT_EQ(readAll(bundle.files()[i]), items[i].data) << items[i].name;
    }

    ExtractedBundle owner(std::move(bundle));
    EXPECT_EQ(bundle.directory(), "");
    EXPECT_TRUE(bundle.files().empty());
    bundle = ExtractedBundle{};  // the moved-from bundle deletes nothing
    EXPECT_TRUE(fs::exists(owner.files()[1]));
    owner = ExtractedBundle{};
    EXPECT_FALSE(fs::exists(directory));
    EXPECT_TRUE(tempIsEmpty());
}

TEST_F(ZipBundleTest, NamesAreTrimmedSplitAndKeptAs8BitText) {
    writeZip({{" spaced.vpj  ", "a"},
              {"win\\sub\\b.trc", "b"},
              {"./c//d.trc", "c"},
              {"folder/", ""},
              {"", "skipped"},
              {"   ", "skipped"},
              {"\xC3\xA9t\xC3\xA9.trc", "utf8", Z_DEFLATED, 1 << 11},
              {"\xE9.trc", "code page"},
              {"link", "/etc/passwd", Z_DEFLATED, 0, 0120777u << 16}});
    ASSERT_EQ(extract(), S_OK) << message;
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"spaced.vpj", "a"}, {"win/sub/b.trc", "b"}, {"c/d.trc", "c"},
        {"\xE9t\xE9.trc", "utf8"}, {"\xE9.trc", "code page"}, {"link", "/etc/passwd"}};
    ASSERT_EQ(bundle.files().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const std::string& file = bundle.files()[i];
        EXPECT_EQ(file, bundle.directory() + "/" + expected[i].first);
        EXPECT_EQ(fs::symlink_status(pathFromAnsi(file)).type(), fs::file_type::regular) << expected[i].first;
        EXPECT_EQ(readAll(pathFromAnsi(file)), expected[i].second) << expected[i].first;
    }
    EXPECT_TRUE(fs::is_directory(fs::path(bundle.directory()) / "folder"));
    EXPECT_TRUE(fs::exists(fs::path(bundle.directory()) / "\xC3\xA9t\xC3\xA9.trc"));  // UTF-8 on disk
}

TEST_F(ZipBundleTest, WhatIsNoArchiveFailsWithoutMessage) {
    const std::vector<std::pair<const char*, std::function<void()>>> cases = {
        {"plain text", [&] { std::ofstream(archive()) << "just a text file\n"; }},
        {"empty archive", [&] { writeZip({}); }},
        {"missing file", [&] { fs::remove(archive()); }},
    };
    for (const auto& [label, make] : cases) {
        make();
        message = "left over";
        EXPECT_EQ(extract(), E_FAIL) << label;
        EXPECT_EQ(message, "") << label;
        EXPECT_TRUE(tempIsEmpty()) << label;
    }
    EXPECT_EQ(ExtractedBundle::extract("  ", {1 << 20, 10}, bundle, message), E_FAIL);
}

TEST_F(ZipBundleTest, RefusedArchivesNameTheReasonAndLeaveNothingBehind) {
    const std::string zeros(4 << 20, '\0');
    const std::string kilobytes(1 << 20, '\0');
    struct Case {
        const char* label;
        std::vector<Item> items;
        Edit edit;
        ZipLimits limits;
        std::string expected;
    };
    const ZipLimits loose{1 << 30, 100};
    const Item good{"good.trc", "good"};
    const std::vector<Case> cases = {
        {"parent", {good, {"../x", "x"}}, {}, loose, "\"../x\" refused: \"..\" in the path."},
        {"absolute", {good, {"/etc/x", "x"}}, {}, loose, "\"/etc/x\" refused: absolute path."},
        {"drive", {good, {"C:\\x", "x"}}, {}, loose, "\"C:\\x\" refused: drive letter."},
        {"drive relative", {good, {"C:x", "x"}}, {}, loose, "\"C:x\" refused: drive letter."},
        {"backslash parent", {good, {"a\\..\\..\\x", "x"}}, {}, loose, "\"a\\..\\..\\x\" refused: \"..\" in the path."},
        {"inner parent", {good, {"a/../../x", "x"}}, {}, loose, "\"a/../../x\" refused: \"..\" in the path."},
        {"share", {good, {"\\\\server\\x", "x"}}, {}, loose, "refused: absolute path."},
        {"tab", {good, {"a\tb", "x"}}, {}, loose, "\"a?b\" refused: control character in the name."},
        {"NUL", {good, {"aQb", "x"}}, replaceBytes("aQb", std::string("a\0b", 3)), loose, "\"a?b\" refused: control"},
        {"twice", {good, {"x", "1"}, {"x", "2"}}, {}, loose, "\"x\" refused: a second entry of the same name."},
        {"file as folder", {{"a", "1"}, {"a/b", "2"}}, {}, loose, "\"a\" refused: a file where another entry needs"},
        {"encrypted", {good}, setHeaderField<std::int16_t>(kCentral, &HeaderFields::flag, 1), loose, "refused: encrypted."},
        {"method", {good}, setHeaderField<std::int16_t>(kBoth, &HeaderFields::method, 12), loose, "compression method 12"},
        {"entries", {good, good, good}, {}, {1 << 30, 2}, "Zip archive refused: 3 entries, more than the limit of 2."},
        {"total", {good, {"zeros", zeros}}, {}, {1 << 20, 10}, "more than the limit of 1048576 bytes (zip bomb)."},
        {"lying size", {{"zeros", kilobytes}}, setHeaderField(kBoth, &HeaderFields::size, 1000), loose,
         "\"zeros\" refused: it unpacks to more than its declared size (zip bomb)."},
        {"lying stored size", {{"x", "hello world", 0}}, setHeaderField(kBoth, &HeaderFields::size, 5), loose,
         "declared size (zip bomb)"},
        {"crc", {{"x", "hello world", 0}}, replaceBytes("hello", "jello"), loose, "\"x\" is damaged: CRC error."},
        {"cut deflate", {{"zeros", kilobytes}}, setHeaderField(kBoth, &HeaderFields::packedSize, 3), loose,
         "\"zeros\" is damaged: its data is cut off or unreadable."},
        {"short stored", {{"x", "hello", 0}}, setHeaderField(kBoth, &HeaderFields::size, 6), loose,
         "is damaged: its data is cut off"},
    };
    for (const Case& c : cases) {
        writeZip(c.items, c.edit);
        EXPECT_EQ(extract(c.limits), E_FAIL) << c.label;
        EXPECT_NE(message.find(c.expected), std::string::npos) << c.label << ": " << message;
        EXPECT_EQ(message.find('\n'), std::string::npos) << c.label;
        EXPECT_TRUE(tempIsEmpty()) << c.label;
        EXPECT_FALSE(fs::exists(dir_ / "x")) << c.label;
    }
}

TEST_F(ZipBundleTest, ArchivesRightAtTheLimitsAreExtracted) {
    writeZip({{"a", std::string(1000, 'a')}, {"b", std::string(24, 'b')}, {"folder/", ""}});
    EXPECT_EQ(extract({1024, 3}), S_OK) << message;
    EXPECT_EQ(bundle.files().size(), 2u);
}

TEST_F(ZipBundleTest, MoreThanTheFreeSpaceIsRefused) {
    struct statvfs space {};
    ASSERT_EQ(statvfs(temp().c_str(), &space), 0);
    const std::uint64_t declared = 0xFFFFFFFE;
    const std::uint64_t count = static_cast<std::uint64_t>(space.f_bavail) * space.f_frsize / declared + 1;
    if (count > 3000) GTEST_SKIP() << "the temporary file system is too large to outgrow";
    std::vector<Item> items;
    for (std::uint64_t i = 0; i < count; ++i) items.push_back({"f" + std::to_string(i), "x"});
    writeZip(items, setHeaderField(kCentral, &HeaderFields::size, -2));
    EXPECT_EQ(extract({std::numeric_limits<std::uint64_t>::max(), 5000}), E_FAIL);
    EXPECT_NE(message.find("bytes free in the temporary folder"), std::string::npos) << message;
    EXPECT_TRUE(tempIsEmpty());
}

TEST_F(ZipBundleTest, LimitsComeFromTheSettings) {
    constexpr std::uint64_t kMiB = 1 << 20;
    struct Case {
        Values values;
        ZipLimits expected;
    };
    const std::vector<Case> cases = {
        {{}, {4096 * kMiB, 10000}},
        {{{"ZipExtractLimitMB", "2"}, {"ZipMaxEntries", " 3 "}}, {2 * kMiB, 3}},
        {{{"ZipExtractLimitMB", "0"}, {"ZipMaxEntries", "-5"}}, {4096 * kMiB, 10000}},
        {{{"ZipExtractLimitMB", "12abc"}, {"ZipMaxEntries", ""}}, {4096 * kMiB, 10000}},
        {{{"ZipExtractLimitMB", "99999999999999999999999"}, {"ZipMaxEntries", "99999999999"}},
         {std::numeric_limits<std::uint64_t>::max() / kMiB * kMiB, std::numeric_limits<std::uint32_t>::max()}},
    };
    for (const Case& c : cases) {
        writeSettings({{std::string("HKEY_CURRENT_USER\\") + registry::kSettingsKey, c.values}});
        const ZipLimits limits = zipLimitsFromSettings();
        EXPECT_EQ(limits.maxTotalBytes, c.expected.maxTotalBytes);
        EXPECT_EQ(limits.maxEntries, c.expected.maxEntries);
    }
    writeSettings({{std::string("HKEY_CURRENT_USER\\") + registry::kSettingsKey, {{"ZipMaxEntries", "1"}}}});
    writeZip({{"a", "1"}, {"b", "2"}});
    EXPECT_EQ(extract(zipLimitsFromSettings()), E_FAIL);
    EXPECT_NE(message.find("more than the limit of 1."), std::string::npos) << message;
}

}  // namespace
}  // namespace nvdl
