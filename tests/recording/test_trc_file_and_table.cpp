// The file layer, the table of sections and the parameter lists of a recording file.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/TrcFile.h"
#include "recording/TrcParameters.h"
#include "recording/TrcToc.h"

using namespace nvdl::trc;
namespace le = nvdl::le;

namespace {

std::vector<unsigned char> bytesOf(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// A section of a fixed size, to own a table in tests.
class Fixed final : public CTrcBaseSection {
public:
    explicit Fixed(std::int64_t size) : m_size(size) {}
    std::int64_t GetSectionSize() override { return m_size; }
    CTrcTableManagment* GetToc() override { return &toc; }
    CTrcTableManagment toc;

private:
    std::int64_t m_size;
};

}  // namespace

TEST(TrcFile, OpeningReadingWritingAndSizes) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("a.trc").string();
    CTrcFile file;
    EXPECT_FALSE(file.Open(name.c_str()));  // must exist
    EXPECT_FALSE(file.Create("", 0));
    EXPECT_FALSE(file.Create(dir.file("missing/a.trc").string().c_str(), 0));
    ASSERT_TRUE(file.Create(name.c_str(), 20040309));
    EXPECT_STREQ(file.GetFilename(), name.c_str());
    EXPECT_EQ(file.GetFileVersion(), -1);  // empty file
    EXPECT_EQ(file.GetPosition(), 0);

    const unsigned char bytes[] = {0x75, 0xCA, 0x31, 0x01, 9, 9};  // 20040309
    EXPECT_FALSE(file.Write(bytes, 0));
    ASSERT_TRUE(file.Write(bytes, sizeof bytes));
    EXPECT_EQ(file.GetFileVersion(), 20040309);
    EXPECT_EQ(file.GetPosition(), 0);

    unsigned char back[8] = {};
    EXPECT_TRUE(file.Seek(4, 0));
    EXPECT_FALSE(file.Read(back, 0));
    EXPECT_FALSE(file.Read(back, 3));  // two bytes remain
    EXPECT_TRUE(file.Seek(-2, 2));
    EXPECT_TRUE(file.Read(back, 2));
    EXPECT_EQ(back[1], 9);
    EXPECT_FALSE(file.Seek(0, 3));
    EXPECT_FALSE(file.Seek(-100, 1));

    // Sizes only grow, and the position stays where it was.
    EXPECT_TRUE(file.Seek(3, 0));
    EXPECT_TRUE(file.SetFileSize(5'000'000'000LL));  // a sparse file above 4 GiB
    EXPECT_EQ(file.GetFileSize(), 5'000'000'000LL);
    EXPECT_EQ(file.GetPosition(), 3);
    EXPECT_TRUE(file.SetFileSize(10));
    EXPECT_EQ(file.GetFileSize(), 5'000'000'000LL);
    EXPECT_TRUE(file.Seek(4'999'999'999LL, 0));
    EXPECT_TRUE(file.Write(bytes, 1));
    EXPECT_TRUE(file.Seek(-1, 2));
    EXPECT_TRUE(file.Read(back, 1));
    EXPECT_EQ(back[0], 0x75);
    file.Close();

    ASSERT_TRUE(file.Open(name.c_str()));
    EXPECT_TRUE(file.IsReadOnly());
    EXPECT_FALSE(file.Write(bytes, 1));
    EXPECT_TRUE(file.SetFileSize(6'000'000'000LL));  // success, nothing done
    EXPECT_EQ(file.GetFileSize(), 5'000'000'000LL);
    ASSERT_TRUE(file.ReOpen(name.c_str()));
    EXPECT_FALSE(file.IsReadOnly());
    EXPECT_EQ(file.GetFileVersion(), 20040309);  // contents kept
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    EXPECT_EQ(file.GetFileSize(), 0);  // truncated
    EXPECT_TRUE(file.WriteDummyData(1000));
    EXPECT_EQ(file.GetFileSize(), 1000);
    EXPECT_EQ(file.Close(), 1);
    EXPECT_FALSE(file.IsOpened());
    EXPECT_EQ(file.GetFileSize(), -1);
}

TEST(TrcTable, LayoutOnDiskAndReadingBack) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("t.trc").string();
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Fixed owner(10'000);
    Fixed child(123);
    child.SetSectionType(15);
    child.SetVersionNumber(20071205);
    child.SetSectionName("A_NAME_OF_FORTY_CHARACTERS_0123456789ABC");
    child.SetSectionOffset(864);
    Fixed second(7);
    second.SetSectionOffset(987);
    owner.toc.Add(child);
    owner.toc.Add(second);
    EXPECT_EQ(child.GetSectionIndex(), 0);
    EXPECT_EQ(second.GetSectionIndex(), 1);
    EXPECT_EQ(owner.toc.GetTocSize(-1), 96 + 2 * 168);
    EXPECT_EQ(owner.toc.GetTocSize(0), 96);
    EXPECT_EQ(owner.toc.GetItem(-1), nullptr);
    EXPECT_EQ(owner.toc.GetItem(2), nullptr);
    ASSERT_TRUE(owner.toc.Write(&file, &owner));
    EXPECT_EQ(file.GetFileSize(), 10'000);  // the table makes the file as long as its owner
    file.Close();

    // The bytes, built from the table's layout: head 96, then entries of 168.
    std::vector<unsigned char> b = bytesOf(name);
    EXPECT_EQ(le::i32(&b[0]), 20040309);
    EXPECT_EQ(le::i32(&b[4]), 2);
    EXPECT_EQ(static_cast<std::int64_t>(le::u64(&b[8])), 10'000);
    EXPECT_TRUE(std::all_of(&b[16], &b[96], [](unsigned char c) { return c == 0; }));
    const unsigned char* e = &b[96];
    EXPECT_EQ(le::i32(e + 0), 20071205);
    EXPECT_EQ(le::i32(e + 4), 15);
    EXPECT_EQ(le::i32(e + 8), 0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(e + 12)), "A_NAME_OF_FORTY_CHARACTERS_0123");
    EXPECT_EQ(static_cast<std::int64_t>(le::u64(e + 48)), 864);
    EXPECT_EQ(static_cast<std::int64_t>(le::u64(e + 56)), 123);
    EXPECT_EQ(le::i32(e + 168 + 8), 1);

    // An index field that says 7 at position 1 reads back as 1.
    le::put32(&b[96 + 168 + 8], 7);
    std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), b.size());
    ASSERT_TRUE(file.Open(name.c_str()));
    CTrcTableManagment read;
    ASSERT_TRUE(read.Read(&file));
    ASSERT_EQ(read.GetCount(), 2);
    EXPECT_EQ(read.GetItem(1)->index, 1);
    EXPECT_EQ(read.GetItem(0)->name, "A_NAME_OF_FORTY_CHARACTERS_0123");
    EXPECT_EQ(read.GetItem(1)->sectionOffset, 987);
}

TEST(TrcTable, DamagedHeadsAreRefused) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("d.trc").string();
    struct Case {
        std::int32_t version, count;
        bool readable;
    } cases[] = {{20040309, 0, true}, {20040308, 0, false}, {20040309, -1, false},
                 {20040309, 1, false} /* entry missing */, {20040309, 0x7fffffff, false}};
    for (const Case& c : cases) {
        std::vector<unsigned char> b(96, 0);
        le::put32(&b[0], static_cast<std::uint32_t>(c.version));
        le::put32(&b[4], static_cast<std::uint32_t>(c.count));
        std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), b.size());
        CTrcFile file;
        ASSERT_TRUE(file.Open(name.c_str()));
        CTrcTableManagment toc;
        EXPECT_EQ(toc.Read(&file) != 0, c.readable) << c.version << " " << c.count;
    }
}

TEST(TrcParameters, RoundTripAndTheOlderLayout) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("p.trc").string();
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Fixed owner(4096);
    CTrcParametersSection list;
    for (const char* text : {"alpha", "beta", ""}) {
        auto p = std::make_unique<CTrcParameterSection>();
        p->SetName(text);
        p->SetValue((std::string(text) + "=1").c_str());
        list.Add(std::move(p));
    }
    list.GetItem(2)->SetName(std::string(200, 'n').c_str());
    list.SetSectionOffset(96 + 168);
    list.UpdateTocSections();
    EXPECT_EQ(list.GetSectionSize(), 96 + 3 * 168 + 3 * 460);
    owner.toc.Add(list);
    ASSERT_TRUE(file.Seek(0, 0));
    ASSERT_TRUE(owner.toc.Write(&file, &owner));
    ASSERT_TRUE(list.Write(&owner, &file));

    // The third record rewritten in the older layout, with a name of 99 characters.
    const std::int64_t third = list.GetItem(2)->GetSectionOffset();
    std::vector<unsigned char> old(460, 0);
    le::put32(old.data(), 20040309);
    std::memset(&old[4], 'o', 99);
    std::memcpy(&old[104], "old value", 9);
    ASSERT_TRUE(file.Seek(third, 0));
    ASSERT_TRUE(file.Write(old.data(), 460));
    file.Close();

    ASSERT_TRUE(file.Open(name.c_str()));
    Fixed readOwner(0);
    ASSERT_TRUE(file.Seek(0, 0));
    ASSERT_TRUE(readOwner.toc.Read(&file));
    CTrcParametersSection back;
    back.SetSectionIndex(0);
    ASSERT_TRUE(back.Read(&readOwner, &file));
    ASSERT_EQ(back.GetCount(), 3);
    EXPECT_STREQ(back.GetItem(0)->GetName(), "alpha");
    EXPECT_STREQ(back.GetItem(1)->GetValue(), "beta=1");
    EXPECT_STREQ(back.GetItem(1)->GetSectionName(), "PARAMETER2");
    EXPECT_EQ(std::string(back.GetItem(2)->GetName()), std::string(99, 'o'));
    EXPECT_STREQ(back.GetItem(2)->GetValue(), "old value");
    EXPECT_EQ(back.GetItem(2)->GetVersionNumber(), 20080314);
    file.Close();

    // A record newer than the current layout is refused.
    ASSERT_TRUE(file.ReOpen(name.c_str()));
    le::put32(old.data(), 20080315);
    ASSERT_TRUE(file.Seek(third, 0));
    ASSERT_TRUE(file.Write(old.data(), 460));
    EXPECT_FALSE(back.Read(&readOwner, &file));
}
