// The compound-file layer through its interfaces: trees, streams, names, replacing and removing.
#include <map>

#include <gtest/gtest.h>

#include "CompoundTestSupport.h"
#include "platform/CompoundName.h"

namespace nvdl::test {
namespace {

constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kWrite = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
const CLSID kClass{0x5B44CB71, 0xF17B, 0x4140, {0x9D, 0x50, 0xEC, 0x6F, 0x33, 0xB8, 0x96, 0xB8}};

class CompoundStorageTest : public ::testing::TestWithParam<bool> {
protected:
    void create(Ref<IStorage>& root) {
        CompoundFileOptions options;
        options.largeSectors = GetParam();
        ASSERT_EQ(createCompoundFile(path, kCreate, root.out(), options), S_OK);
    }
    void reopen(Ref<IStorage>& root, DWORD mode = kRead) {
        root.reset();
        ASSERT_EQ(openCompoundFile(path, mode, root.out()), S_OK);
    }
    std::vector<std::u16string> names(IStorage* storage) {
        std::vector<STATSTG> elements;
        EXPECT_EQ(storage->EnumElements(&elements), S_OK);
        std::vector<std::u16string> out;
        for (const STATSTG& e : elements) out.push_back(e.name);
        return out;
    }

    TempDir dir;
    std::filesystem::path path = dir.file("test.wkd");
};

TEST_P(CompoundStorageTest, TreeWithStreamsOfEverySizeClassReadsBack) {
    const std::vector<std::size_t> sizes = {0, 1, 63, 64, 65, 4095, 4096, 4097, 70000};
    {
        Ref<IStorage> root;
        create(root);
        ASSERT_EQ(root->SetClass(kClass), S_OK);
        Ref<IStorage> blocks;
        ASSERT_EQ(root->CreateStorage(u"Blocks", kCreate, 0, 0, blocks.out()), S_OK);
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            std::string name = "Meas" + std::to_string(i);
            Ref<IStream> s;
            ASSERT_EQ(blocks->CreateStream(u16(name).c_str(), kCreate, 0, 0, s.out()), S_OK);
            writeAll(s.get(), content(name, sizes[i]));
        }
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    Ref<IStorage> root;
    reopen(root);
    STATSTG st;
    ASSERT_EQ(root->Stat(&st, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(st.type, STGTY_STORAGE);
    EXPECT_EQ(st.clsid, kClass);
    Ref<IStorage> blocks;
    ASSERT_EQ(root->OpenStorage(u"Blocks", nullptr, kRead, nullptr, 0, blocks.out()), S_OK);
    std::vector<STATSTG> elements;
    ASSERT_EQ(blocks->EnumElements(&elements), S_OK);
    ASSERT_EQ(elements.size(), sizes.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        std::string name = "Meas" + std::to_string(i);
        EXPECT_EQ(elements[i].name, u16(name));
        EXPECT_EQ(elements[i].type, STGTY_STREAM);
        EXPECT_EQ(elements[i].cbSize, sizes[i]);
        Ref<IStream> s;
        ASSERT_EQ(blocks->OpenStream(u16(name).c_str(), nullptr, kRead, 0, s.out()), S_OK);
        EXPECT_EQ(readAll(s.get()), content(name, sizes[i])) << name;
    }
}

TEST_P(CompoundStorageTest, EnumerationFollowsStorageOrder) {
    Ref<IStorage> root;
    create(root);
    for (const char16_t* name : {u"beta", u"Alpha", u"b", u"ZZ", u"aa", u"Gamma1", u"\u00e9t\u00e9"}) {
        Ref<IStream> s;
        ASSERT_EQ(root->CreateStream(name, kCreate, 0, 0, s.out()), S_OK);
    }
    const std::vector<std::u16string> expected = {u"b", u"aa", u"ZZ", u"\u00e9t\u00e9", u"beta", u"Alpha", u"Gamma1"};
    EXPECT_EQ(names(root.get()), expected);
    reopen(root);
    EXPECT_EQ(names(root.get()), expected);
}

TEST_P(CompoundStorageTest, ManyElementsAndDeepNesting) {
    Ref<IStorage> root;
    create(root);
    Ref<IStorage> level;
    ASSERT_EQ(root->CreateStorage(u"L0", kCreate, 0, 0, level.out()), S_OK);
    for (int depth = 1; depth < 20; ++depth) {
        Ref<IStorage> next;
        ASSERT_EQ(level->CreateStorage(u16("L" + std::to_string(depth)).c_str(), kCreate, 0, 0, next.out()), S_OK);
        swap(level, next);
    }
    level.reset();
    std::map<std::u16string, std::size_t> sizes;
    for (int i = 0; i < 700; ++i) {
        Ref<IStream> s;
        std::string name = "S" + std::to_string(i * 7919 % 1000);
        ASSERT_EQ(root->CreateStream(u16(name).c_str(), kCreate, 0, 0, s.out()), S_OK);
        sizes[u16(name)] = i % 3 == 0 ? 5000 : 10;
        writeAll(s.get(), content(name, sizes[u16(name)]));
    }
    reopen(root);
    std::vector<STATSTG> elements;
    ASSERT_EQ(root->EnumElements(&elements), S_OK);
    ASSERT_EQ(elements.size(), 701u);
    for (std::size_t i = 1; i < elements.size(); ++i)
        EXPECT_LT(cfb::compareNames(elements[i - 1].name, elements[i].name), 0);
    for (const STATSTG& e : elements) {
        if (e.type == STGTY_STORAGE) continue;
        EXPECT_EQ(e.cbSize, sizes.at(e.name));
        Ref<IStream> s;
        ASSERT_EQ(root->OpenStream(e.name.c_str(), nullptr, kRead, 0, s.out()), S_OK);
        EXPECT_EQ(readAll(s.get()), content(utf16ToUtf8(e.name), sizes.at(e.name)));
    }
    ASSERT_EQ(root->OpenStorage(u"L0", nullptr, kRead, nullptr, 0, level.out()), S_OK);
    for (int depth = 1; depth < 20; ++depth) {
        Ref<IStorage> next;
        ASSERT_EQ(level->OpenStorage(u16("L" + std::to_string(depth)).c_str(), nullptr, kRead, nullptr, 0, next.out()),
                  S_OK);
        swap(level, next);
    }
    EXPECT_TRUE(names(level.get()).empty());
}

TEST_P(CompoundStorageTest, StreamsWrittenAtTheSameTimeStayApart) {
    Ref<IStorage> root;
    create(root);
    const std::vector<std::string> names = {"one", "two", "three"};
    std::vector<Ref<IStream>> streams(3);
    for (std::size_t i = 0; i < 3; ++i)
        ASSERT_EQ(root->CreateStream(u16(names[i]).c_str(), kCreate, 0, 0, streams[i].out()), S_OK);
    // Interleaved chunks of odd sizes: all three cross the mini-stream cutoff while the others grow.
    std::vector<std::vector<std::uint8_t>> full;
    for (std::size_t i = 0; i < 3; ++i) full.push_back(content(names[i], 30000 + 1000 * i));
    std::vector<std::size_t> at(3, 0);
    for (std::size_t round = 0; round < 400; ++round)
        for (std::size_t i = 0; i < 3; ++i) {
            std::size_t n = std::min<std::size_t>(97 + 61 * i + round % 13, full[i].size() - at[i]);
            ULONG written;
            ASSERT_EQ(streams[i]->Write(full[i].data() + at[i], static_cast<ULONG>(n), &written), S_OK);
            at[i] += n;
        }
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(at[i], full[i].size());
        EXPECT_EQ(readAll(streams[i].get()), full[i]);
        streams[i].reset();
    }
    reopen(root);
    for (std::size_t i = 0; i < 3; ++i) {
        Ref<IStream> s;
        ASSERT_EQ(root->OpenStream(u16(names[i]).c_str(), nullptr, kRead, 0, s.out()), S_OK);
        EXPECT_EQ(readAll(s.get()), full[i]);
    }
}

TEST_P(CompoundStorageTest, SizeChangesKeepDataAndNewBytesReadZero) {
    Ref<IStorage> root;
    create(root);
    // Fill space, then free it, so that the next stream reuses sectors that held data.
    {
        Ref<IStream> s;
        ASSERT_EQ(root->CreateStream(u"filler", kCreate, 0, 0, s.out()), S_OK);
        writeAll(s.get(), std::vector<std::uint8_t>(40000, 0xEE));
        Ref<IStream> small;
        ASSERT_EQ(root->CreateStream(u"small", kCreate, 0, 0, small.out()), S_OK);
        writeAll(small.get(), std::vector<std::uint8_t>(3000, 0xDD));
    }
    ASSERT_EQ(root->DestroyElement(u"filler"), S_OK);
    ASSERT_EQ(root->DestroyElement(u"small"), S_OK);

    Ref<IStream> s;
    ASSERT_EQ(root->CreateStream(u"data", kCreate, 0, 0, s.out()), S_OK);
    std::vector<std::uint8_t> expected = content("data", 1000);
    writeAll(s.get(), expected);
    for (std::uint64_t size : {3000u, 20000u, 500u, 4096u, 4095u, 9000u, 0u, 7000u}) {
        ASSERT_EQ(s->SetSize(size), S_OK);
        expected.resize(size, 0);
        EXPECT_EQ(readAll(s.get()), expected) << "size " << size;
    }
    // A write after a gap: the gap reads as zero.
    ASSERT_EQ(s->Seek(12000, STREAM_SEEK_SET, nullptr), S_OK);
    writeAll(s.get(), {1, 2, 3});
    expected.resize(12000, 0);
    expected.insert(expected.end(), {1, 2, 3});
    EXPECT_EQ(readAll(s.get()), expected);
    s.reset();
    reopen(root);
    ASSERT_EQ(root->OpenStream(u"data", nullptr, kRead, 0, s.out()), S_OK);
    EXPECT_EQ(readAll(s.get()), expected);
}

TEST_P(CompoundStorageTest, SeekAndReadAtTheEdges) {
    Ref<IStorage> root;
    create(root);
    Ref<IStream> s;
    ASSERT_EQ(root->CreateStream(u"s", kCreate, 0, 0, s.out()), S_OK);
    writeAll(s.get(), content("s", 5000));
    std::uint64_t pos = 0;
    EXPECT_EQ(s->Seek(-10, STREAM_SEEK_END, &pos), S_OK);
    EXPECT_EQ(pos, 4990u);
    std::uint8_t buf[64];
    ULONG got = 99;
    EXPECT_EQ(s->Read(buf, sizeof buf, &got), S_OK);
    EXPECT_EQ(got, 10u);
    EXPECT_EQ(s->Read(buf, sizeof buf, &got), S_OK);
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(s->Seek(-1, STREAM_SEEK_SET, &pos), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(s->Seek(0, 7, &pos), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(s->Seek(1000000, STREAM_SEEK_SET, &pos), S_OK);
    EXPECT_EQ(s->Read(buf, sizeof buf, &got), S_OK);
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(s->Read(nullptr, 4, &got), STG_E_INVALIDPOINTER);
}

TEST_P(CompoundStorageTest, NamesFollowTheFormatsRules) {
    Ref<IStorage> root;
    create(root);
    Ref<IStream> s;
    std::u16string longest(31, u'x');
    EXPECT_EQ(root->CreateStream(longest.c_str(), kCreate, 0, 0, s.out()), S_OK);
    std::u16string tooLong(32, u'x');
    EXPECT_EQ(root->CreateStream(tooLong.c_str(), kCreate, 0, 0, s.out()), STG_E_INVALIDNAME);
    for (const char16_t* bad : {u"", u"a/b", u"a\\b", u"a:b", u"a!b"}) {
        EXPECT_EQ(root->CreateStream(bad, kCreate, 0, 0, s.out()), STG_E_INVALIDNAME);
        Ref<IStorage> st;
        EXPECT_EQ(root->CreateStorage(bad, kCreate, 0, 0, st.out()), STG_E_INVALIDNAME);
        EXPECT_EQ(root->OpenStream(bad, nullptr, kRead, 0, s.out()), STG_E_INVALIDNAME);
    }
    EXPECT_EQ(root->OpenStream(tooLong.c_str(), nullptr, kRead, 0, s.out()), STG_E_INVALIDNAME);
    EXPECT_EQ(root->CreateStream(nullptr, kCreate, 0, 0, s.out()), STG_E_INVALIDPOINTER);

    // Names compare without regard to case, Latin-1 and Greek letters included.
    ASSERT_EQ(root->CreateStream(u"Data\u00e9\u03b1", kCreate, 0, 0, s.out()), S_OK);
    writeAll(s.get(), {7});
    Ref<IStream> same;
    EXPECT_EQ(root->OpenStream(u"DATA\u00c9\u0391", nullptr, kRead, 0, same.out()), S_OK);
    EXPECT_EQ(root->CreateStream(u"data\u00e9\u03b1", kWrite, 0, 0, same.out()), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(root->OpenStream(u"Datae\u03b1", nullptr, kRead, 0, same.out()), STG_E_FILENOTFOUND);
    // A storage is not opened as a stream, nor the other way round.
    Ref<IStorage> st;
    ASSERT_EQ(root->CreateStorage(u"store", kCreate, 0, 0, st.out()), S_OK);
    EXPECT_EQ(root->OpenStream(u"store", nullptr, kRead, 0, same.out()), STG_E_FILENOTFOUND);
    EXPECT_EQ(root->OpenStorage(u"Data\u00e9\u03b1", nullptr, kRead, nullptr, 0, st.out()), STG_E_FILENOTFOUND);
}

TEST_P(CompoundStorageTest, ReplacingAndDestroyingRevertOpenObjects) {
    Ref<IStorage> root;
    create(root);
    Ref<IStream> old;
    ASSERT_EQ(root->CreateStream(u"Meas0", kCreate, 0, 0, old.out()), S_OK);
    writeAll(old.get(), content("old", 9000));
    Ref<IStream> fresh;
    ASSERT_EQ(root->CreateStream(u"MEAS0", kCreate, 0, 0, fresh.out()), S_OK);
    std::uint8_t b = 0;
    EXPECT_EQ(old->Write(&b, 1, nullptr), STG_E_REVERTED);
    EXPECT_EQ(old->Read(&b, 1, nullptr), STG_E_REVERTED);
    STATSTG st;
    ASSERT_EQ(fresh->Stat(&st, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(st.name, u"MEAS0");
    EXPECT_EQ(st.cbSize, 0u);

    Ref<IStorage> sub;
    ASSERT_EQ(root->CreateStorage(u"sub", kCreate, 0, 0, sub.out()), S_OK);
    Ref<IStream> inner;
    ASSERT_EQ(sub->CreateStream(u"inner", kCreate, 0, 0, inner.out()), S_OK);
    writeAll(inner.get(), content("inner", 100000));
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    const auto sizeWithSub = std::filesystem::file_size(path);
    ASSERT_EQ(root->DestroyElement(u"SUB"), S_OK);
    EXPECT_EQ(inner->Write(&b, 1, nullptr), STG_E_REVERTED);
    EXPECT_EQ(sub->EnumElements(nullptr), STG_E_INVALIDPOINTER);
    std::vector<STATSTG> elements;
    EXPECT_EQ(sub->EnumElements(&elements), STG_E_REVERTED);
    EXPECT_EQ(root->DestroyElement(u"sub"), STG_E_FILENOTFOUND);
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    EXPECT_LT(std::filesystem::file_size(path), sizeWithSub - 90000);
    EXPECT_EQ(names(root.get()), std::vector<std::u16string>{u"MEAS0"});
}

TEST_P(CompoundStorageTest, RenameKeepsContentsAndRefusesTakenNames) {
    Ref<IStorage> root;
    create(root);
    for (const char16_t* name : {u"a", u"b"}) {
        Ref<IStream> s;
        ASSERT_EQ(root->CreateStream(name, kCreate, 0, 0, s.out()), S_OK);
        writeAll(s.get(), content("x", 5000));
    }
    EXPECT_EQ(root->RenameElement(u"a", u"B"), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(root->RenameElement(u"missing", u"c"), STG_E_FILENOTFOUND);
    EXPECT_EQ(root->RenameElement(u"a", u"c:"), STG_E_INVALIDNAME);
    ASSERT_EQ(root->RenameElement(u"a", u"longer name"), S_OK);
    ASSERT_EQ(root->RenameElement(u"b", u"B"), S_OK);  // a change of case only
    reopen(root);
    EXPECT_EQ(names(root.get()), (std::vector<std::u16string>{u"B", u"longer name"}));
    Ref<IStream> s;
    ASSERT_EQ(root->OpenStream(u"longer name", nullptr, kRead, 0, s.out()), S_OK);
    EXPECT_EQ(readAll(s.get()), content("x", 5000));
}

TEST_P(CompoundStorageTest, ReadOnlyFilesRefuseChanges) {
    {
        Ref<IStorage> root;
        create(root);
        Ref<IStream> s;
        ASSERT_EQ(root->CreateStream(u"s", kCreate, 0, 0, s.out()), S_OK);
    }
    Ref<IStorage> root;
    reopen(root);
    Ref<IStream> s;
    EXPECT_EQ(root->OpenStream(u"s", nullptr, kWrite, 0, s.out()), STG_E_ACCESSDENIED);
    ASSERT_EQ(root->OpenStream(u"s", nullptr, kRead, 0, s.out()), S_OK);
    std::uint8_t b = 1;
    EXPECT_EQ(s->Write(&b, 1, nullptr), STG_E_ACCESSDENIED);
    EXPECT_EQ(s->SetSize(10), STG_E_ACCESSDENIED);
    Ref<IStream> other;
    EXPECT_EQ(root->CreateStream(u"t", kCreate, 0, 0, other.out()), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->DestroyElement(u"s"), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->SetClass(kClass), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

TEST_P(CompoundStorageTest, ReopenedForWritingAStreamIsReplaced) {
    {
        Ref<IStorage> root;
        create(root);
        for (const char* name : {"keep", "swap"}) {
            Ref<IStream> s;
            ASSERT_EQ(root->CreateStream(u16(name).c_str(), kCreate, 0, 0, s.out()), S_OK);
            writeAll(s.get(), content(name, 50000));
        }
    }
    {
        Ref<IStorage> root;
        ASSERT_EQ(openCompoundFile(path, kWrite, root.out()), S_OK);
        ASSERT_EQ(root->DestroyElement(u"swap"), S_OK);
        Ref<IStream> s;
        ASSERT_EQ(root->CreateStream(u"swap", kCreate, 0, 0, s.out()), S_OK);
        writeAll(s.get(), content("new", 70000));
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    Ref<IStorage> root;
    reopen(root);
    Ref<IStream> s;
    ASSERT_EQ(root->OpenStream(u"keep", nullptr, kRead, 0, s.out()), S_OK);
    EXPECT_EQ(readAll(s.get()), content("keep", 50000));
    ASSERT_EQ(root->OpenStream(u"swap", nullptr, kRead, 0, s.out()), S_OK);
    EXPECT_EQ(readAll(s.get()), content("new", 70000));
}

TEST_P(CompoundStorageTest, CreatingOverAnExistingFileNeedsCreateFlag) {
    Ref<IStorage> root;
    create(root);
    root.reset();
    EXPECT_EQ(createCompoundFile(path, kWrite, root.out()), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(openCompoundFile(dir.file("missing"), kRead, root.out()), STG_E_FILENOTFOUND);
    EXPECT_EQ(openCompoundFile(path, 3, root.out()), STG_E_INVALIDFLAG);
    EXPECT_EQ(isCompoundFile(path), S_OK);
    EXPECT_EQ(isCompoundFile(dir.file("missing")), STG_E_FILENOTFOUND);
}

INSTANTIATE_TEST_SUITE_P(SectorSizes, CompoundStorageTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? std::string("Large") : std::string("Small");
                         });

}  // namespace
}  // namespace nvdl::test
