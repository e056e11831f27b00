// The compound-file layer through its interfaces: trees, streams, names, replacing and removing.
#include <gtest/gtest.h>

#include "CompoundTestSupport.h"
#include "platform/CompoundName.h"

namespace nvdl::test {
namespace {

const CLSID kClass{0x5B44CB71, 0xF17B, 0x4140, {0x9D, 0x50, 0xEC, 0x6F, 0x33, 0xB8, 0x96, 0xB8}};

class CompoundStorageTest : public ::testing::TestWithParam<bool> {
protected:
    void create(Ref<IStorage>& root) { ASSERT_EQ(createCompoundFile(path, kCreate, root.out(), {GetParam()}), S_OK); }
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

TEST_P(CompoundStorageTest, ElementsComeInStorageOrderAndReadBack) {
    Ref<IStorage> root;
    create(root);
    for (const char16_t* name : {u"beta", u"Alpha", u"b", u"ZZ", u"aa", u"Gamma1", u"\u00e9t\u00e9"})
        putStream(root.get(), name, {});
    const std::vector<std::u16string> expected = {u"b", u"aa", u"ZZ", u"\u00e9t\u00e9", u"beta", u"Alpha", u"Gamma1"};
    EXPECT_EQ(names(root.get()), expected);
    reopen(root);
    EXPECT_EQ(names(root.get()), expected);

    // Enough elements to fill many directory sectors.
    reopen(root, kWrite);
    std::map<std::u16string, std::size_t> sizes;
    for (int i = 0; i < 700; ++i) {
        std::string name = "S" + std::to_string(i * 7919 % 1000);
        sizes[u16(name)] = i % 3 == 0 ? 5000 : 10;
        putStream(root.get(), u16(name), content(name, sizes[u16(name)]));
    }
    reopen(root);
    std::vector<STATSTG> elements;
    ASSERT_EQ(root->EnumElements(&elements), S_OK);
    ASSERT_EQ(elements.size(), 707u);
    for (std::size_t i = 1; i < elements.size(); ++i)
        EXPECT_LT(cfb::compareNames(elements[i - 1].name, elements[i].name), 0);
    for (const STATSTG& e : elements) {
        EXPECT_EQ(e.cbSize, sizes[e.name]);
        EXPECT_EQ(getStream(root.get(), e.name), content(utf16ToUtf8(e.name), sizes[e.name]));
    }
}

TEST_P(CompoundStorageTest, StreamsWrittenAtTheSameTimeStayApart) {
    Ref<IStorage> root;
    create(root);
    const std::vector<std::u16string> names = {u"one", u"two", u"three"};
    std::vector<Ref<IStream>> streams(3);
    std::vector<Bytes> full;
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(root->CreateStream(names[i].c_str(), kCreate, 0, 0, streams[i].out()), S_OK);
        full.push_back(content(utf16ToUtf8(names[i]), 30000 + 1000 * i));
    }
    // Interleaved chunks of odd sizes: all three cross the mini-stream cutoff while the others grow.
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
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(getStream(root.get(), names[i]), full[i]);
}

TEST_P(CompoundStorageTest, SizeChangesKeepDataAndNewBytesReadZero) {
    Ref<IStorage> root;
    create(root);
    // Fill space, then free it, so that the next stream reuses sectors that held data.
    putStream(root.get(), u"filler", Bytes(40000, 0xEE));
    putStream(root.get(), u"small", Bytes(3000, 0xDD));
    ASSERT_EQ(root->DestroyElement(u"filler"), S_OK);
    ASSERT_EQ(root->DestroyElement(u"small"), S_OK);

    Ref<IStream> s;
    ASSERT_EQ(root->CreateStream(u"data", kCreate, 0, 0, s.out()), S_OK);
    Bytes expected = content("data", 1000);
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
    EXPECT_EQ(getStream(root.get(), u"data"), expected);
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
    Ref<IStorage> st;
    EXPECT_EQ(root->CreateStream(std::u16string(31, u'x').c_str(), kCreate, 0, 0, s.out()), S_OK);
    const std::u16string tooLong(32, u'x');
    for (const char16_t* bad : {u"", u"a/b", u"a\\b", u"a:b", u"a!b", tooLong.c_str()}) {
        EXPECT_EQ(root->CreateStream(bad, kCreate, 0, 0, s.out()), STG_E_INVALIDNAME);
        EXPECT_EQ(root->CreateStorage(bad, kCreate, 0, 0, st.out()), STG_E_INVALIDNAME);
        EXPECT_EQ(root->OpenStream(bad, nullptr, kRead, 0, s.out()), STG_E_INVALIDNAME);
    }
    EXPECT_EQ(root->CreateStream(nullptr, kCreate, 0, 0, s.out()), STG_E_INVALIDPOINTER);

    // Names compare without regard to case, Latin-1 and Greek letters included.
    putStream(root.get(), u"Data\u00e9\u03b1", {7});
    EXPECT_EQ(getStream(root.get(), u"DATA\u00c9\u0391"), Bytes{7});
    EXPECT_EQ(root->CreateStream(u"data\u00e9\u03b1", kWrite, 0, 0, s.out()), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(root->OpenStream(u"Datae\u03b1", nullptr, kRead, 0, s.out()), STG_E_FILENOTFOUND);
    // A storage is not opened as a stream, nor the other way round.
    ASSERT_EQ(root->CreateStorage(u"store", kCreate, 0, 0, st.out()), S_OK);
    EXPECT_EQ(root->OpenStream(u"store", nullptr, kRead, 0, s.out()), STG_E_FILENOTFOUND);
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
    std::vector<STATSTG> elements;
    EXPECT_EQ(sub->EnumElements(&elements), STG_E_REVERTED);
    EXPECT_EQ(root->DestroyElement(u"sub"), STG_E_FILENOTFOUND);
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    EXPECT_LT(std::filesystem::file_size(path), sizeWithSub - 90000);
    EXPECT_EQ(names(root.get()), std::vector<std::u16string>{u"MEAS0"});
}

TEST_P(CompoundStorageTest, ReopenedForWritingRenamesAndReplacesKeepingTheRest) {
    Ref<IStorage> root;
    create(root);
    for (const char16_t* name : {u"a", u"b", u"swap"}) putStream(root.get(), name, content("x", 5000));
    reopen(root, kWrite);
    EXPECT_EQ(root->RenameElement(u"a", u"B"), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(root->RenameElement(u"missing", u"c"), STG_E_FILENOTFOUND);
    EXPECT_EQ(root->RenameElement(u"a", u"c:"), STG_E_INVALIDNAME);
    ASSERT_EQ(root->RenameElement(u"a", u"longer name"), S_OK);
    ASSERT_EQ(root->RenameElement(u"b", u"B"), S_OK);  // a change of case only
    putStream(root.get(), u"swap", content("new", 70000));
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    reopen(root);
    EXPECT_EQ(names(root.get()), (std::vector<std::u16string>{u"B", u"swap", u"longer name"}));
    EXPECT_EQ(getStream(root.get(), u"longer name"), content("x", 5000));
    EXPECT_EQ(getStream(root.get(), u"B"), content("x", 5000));
    EXPECT_EQ(getStream(root.get(), u"swap"), content("new", 70000));
}

TEST_P(CompoundStorageTest, OpenModesAreHonoured) {
    Ref<IStorage> root;
    create(root);
    putStream(root.get(), u"s", {});
    root.reset();
    EXPECT_EQ(createCompoundFile(path, kWrite, root.out()), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(openCompoundFile(dir.file("missing"), kRead, root.out()), STG_E_FILENOTFOUND);
    EXPECT_EQ(openCompoundFile(path, 3, root.out()), STG_E_INVALIDFLAG);
    EXPECT_EQ(isCompoundFile(path), S_OK);
    EXPECT_EQ(isCompoundFile(dir.file("missing")), STG_E_FILENOTFOUND);

    // Read-only files refuse changes.
    reopen(root);
    Ref<IStream> s;
    EXPECT_EQ(root->OpenStream(u"s", nullptr, kWrite, 0, s.out()), STG_E_ACCESSDENIED);
    ASSERT_EQ(root->OpenStream(u"s", nullptr, kRead, 0, s.out()), S_OK);
    std::uint8_t b = 1;
    EXPECT_EQ(s->Write(&b, 1, nullptr), STG_E_ACCESSDENIED);
    EXPECT_EQ(s->SetSize(10), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->CreateStream(u"t", kCreate, 0, 0, s.out()), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->DestroyElement(u"s"), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->SetClass(kClass), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->Commit(STGC_DEFAULT), S_OK);
}

INSTANTIATE_TEST_SUITE_P(SectorSizes, CompoundStorageTest, ::testing::Bool(), sectorSizeName);

}  // namespace
}  // namespace nvdl::test
