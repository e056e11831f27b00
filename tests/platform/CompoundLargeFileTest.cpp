// Files above 4 GiB and streams of 4 GiB or more, written sparsely so that the test stays quick:
// sectors that are never written are holes in the file. Also the move from 512-byte to 4096-byte
// sectors when a stream outgrows the smaller form.
#include <fstream>

#include <gtest/gtest.h>

#include "CompoundTestSupport.h"

namespace nvdl::test {
namespace {

constexpr DWORD kCreate = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kRead = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

int sectorShiftOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    unsigned char header[32] = {};
    in.read(reinterpret_cast<char*>(header), sizeof header);
    return header[30] | header[31] << 8;
}

void writeAt(IStream* s, std::uint64_t position, const std::vector<std::uint8_t>& bytes) {
    ASSERT_EQ(s->Seek(static_cast<std::int64_t>(position), STREAM_SEEK_SET, nullptr), S_OK);
    writeAll(s, bytes);
}

std::vector<std::uint8_t> readAt(IStream* s, std::uint64_t position, std::size_t length) {
    std::vector<std::uint8_t> out(length);
    ULONG got = 0;
    EXPECT_EQ(s->Seek(static_cast<std::int64_t>(position), STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(s->Read(out.data(), static_cast<ULONG>(length), &got), S_OK);
    out.resize(got);
    return out;
}

TEST(CompoundLargeFileTest, SmallSectorsHoldTwoGiBAndMoveToLargeSectorsBeyond) {
    TempDir dir;
    auto file = dir.file("move.wkd");
    Ref<IStorage> root;
    ASSERT_EQ(createCompoundFile(file, kCreate, root.out()), S_OK);
    Ref<IStream> early, big, tiny;
    ASSERT_EQ(root->CreateStream(u"early", kCreate, 0, 0, early.out()), S_OK);
    writeAll(early.get(), content("early", 300000));
    ASSERT_EQ(root->CreateStream(u"tiny", kCreate, 0, 0, tiny.out()), S_OK);
    writeAll(tiny.get(), content("tiny", 100));
    ASSERT_EQ(root->CreateStream(u"big", kCreate, 0, 0, big.out()), S_OK);
    writeAt(big.get(), 0, {1, 2, 3});

    ASSERT_EQ(big->SetSize(2 * kGiB), S_OK);  // the most 512-byte sectors allow
    writeAt(big.get(), 2 * kGiB - 2, {0xAB, 0xCD});
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    EXPECT_EQ(sectorShiftOf(file), 9);

    ASSERT_EQ(big->SetSize(2 * kGiB + 1), S_OK);
    writeAt(big.get(), 2 * kGiB, {0xEF});
    // Streams keep working across the change, the small ones in the mini stream as well.
    writeAt(early.get(), 300000, content("more", 5000));
    writeAt(tiny.get(), 100, {9});
    ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    EXPECT_EQ(sectorShiftOf(file), 12);
    early.reset();
    big.reset();
    tiny.reset();
    root.reset();

    ASSERT_EQ(openCompoundFile(file, kRead, root.out()), S_OK);
    ASSERT_EQ(root->OpenStream(u"big", nullptr, kRead, 0, big.out()), S_OK);
    EXPECT_EQ(readAt(big.get(), 0, 4), (std::vector<std::uint8_t>{1, 2, 3, 0}));
    EXPECT_EQ(readAt(big.get(), 2 * kGiB - 3, 10), (std::vector<std::uint8_t>{0, 0xAB, 0xCD, 0xEF}));
    ASSERT_EQ(root->OpenStream(u"early", nullptr, kRead, 0, early.out()), S_OK);
    std::vector<std::uint8_t> expected = content("early", 300000);
    std::vector<std::uint8_t> more = content("more", 5000);
    expected.insert(expected.end(), more.begin(), more.end());
    EXPECT_EQ(readAll(early.get()), expected);
    ASSERT_EQ(root->OpenStream(u"tiny", nullptr, kRead, 0, tiny.out()), S_OK);
    expected = content("tiny", 100);
    expected.push_back(9);
    EXPECT_EQ(readAll(tiny.get()), expected);
}

TEST(CompoundLargeFileTest, FileAboveFourGiBWithAStreamAboveFourGiB) {
    TempDir dir;
    auto file = dir.file("huge.wkd");
    const std::uint64_t bigSize = 5 * kGiB + 123;
    // Byte positions around the 31- and 32-bit limits, a sector boundary above 4 GiB, and the end.
    const std::vector<std::uint64_t> marks = {0,           2 * kGiB - 1,       2 * kGiB + 8,
                                              4 * kGiB - 2, 4 * kGiB + 3 * 4096 - 3, bigSize - 5};
    {
        Ref<IStorage> root;
        ASSERT_EQ(createCompoundFile(file, kCreate, root.out()), S_OK);
        Ref<IStorage> blocks;
        ASSERT_EQ(root->CreateStorage(u"Blocks", kCreate, 0, 0, blocks.out()), S_OK);
        Ref<IStream> big;
        ASSERT_EQ(blocks->CreateStream(u"Meas0", kCreate, 0, 0, big.out()), S_OK);
        ASSERT_EQ(big->SetSize(bigSize), S_OK);
        for (std::uint64_t m : marks) writeAt(big.get(), m, content(std::to_string(m), 5));
        // This one lies in the file after the first 5 GiB.
        Ref<IStream> after;
        ASSERT_EQ(blocks->CreateStream(u"Meas1", kCreate, 0, 0, after.out()), S_OK);
        writeAll(after.get(), content("Blocks/Meas1", 100000));
        Ref<IStream> small;
        ASSERT_EQ(blocks->CreateStream(u"Meas2", kCreate, 0, 0, small.out()), S_OK);
        writeAll(small.get(), content("Blocks/Meas2", 1000));
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    EXPECT_GT(std::filesystem::file_size(file), 5 * kGiB);

    Ref<IStorage> root;
    ASSERT_EQ(openCompoundFile(file, kRead, root.out()), S_OK);
    Ref<IStorage> blocks;
    ASSERT_EQ(root->OpenStorage(u"Blocks", nullptr, kRead, nullptr, 0, blocks.out()), S_OK);
    Ref<IStream> big;
    ASSERT_EQ(blocks->OpenStream(u"Meas0", nullptr, kRead, 0, big.out()), S_OK);
    STATSTG st;
    ASSERT_EQ(big->Stat(&st, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(st.cbSize, bigSize);
    for (std::uint64_t m : marks) EXPECT_EQ(readAt(big.get(), m, 5), content(std::to_string(m), 5)) << m;
    // A read across the 4 GiB position, and one past the end.
    std::vector<std::uint8_t> across = {0, 0};
    std::vector<std::uint8_t> mark = content(std::to_string(4 * kGiB - 2), 5);
    across.insert(across.end(), mark.begin(), mark.end());
    across.push_back(0);
    EXPECT_EQ(readAt(big.get(), 4 * kGiB - 4, 8), across);
    EXPECT_EQ(readAt(big.get(), bigSize - 5, 100).size(), 5u);
    std::uint64_t end = 0;
    ASSERT_EQ(big->Seek(0, STREAM_SEEK_END, &end), S_OK);
    EXPECT_EQ(end, bigSize);
    Ref<IStream> after;
    ASSERT_EQ(blocks->OpenStream(u"Meas1", nullptr, kRead, 0, after.out()), S_OK);
    EXPECT_EQ(readAll(after.get()), content("Blocks/Meas1", 100000));

    // olefile agrees on sizes and reads the streams that lie past 5 GiB.
    std::ofstream manifest(dir.file("huge.manifest"));
    manifest << "/\tstorage\t0\t{00000000-0000-0000-0000-000000000000}\n"
             << "Blocks\tstorage\t0\t{00000000-0000-0000-0000-000000000000}\n"
             << "Blocks/Meas0\tstream\t" << bigSize << "\t-\n"
             << "Blocks/Meas1\tstream\t100000\t-\n"
             << "Blocks/Meas2\tstream\t1000\t-\n";
    manifest.close();
    std::string report;
    EXPECT_EQ(runOracle("olefile-check " + quoted(file) + " " + quoted(dir.file("huge.manifest")), &report), 0)
        << report;
}

}  // namespace
}  // namespace nvdl::test
