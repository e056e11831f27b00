// Files above 4 GiB and streams of 4 GiB or more, written sparsely so that the test stays quick:
// sectors that are never written are holes in the file. Also the move from 512-byte to 4096-byte
// sectors when a stream outgrows the smaller form.
#include <gtest/gtest.h>

#include "CompoundTestSupport.h"

namespace nvdl::test {
namespace {

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

int sectorShiftOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    unsigned char header[32] = {};
    in.read(reinterpret_cast<char*>(header), sizeof header);
    return header[30] | header[31] << 8;
}

void writeAt(IStream* s, std::uint64_t position, const Bytes& bytes) {
    ASSERT_EQ(s->Seek(static_cast<std::int64_t>(position), STREAM_SEEK_SET, nullptr), S_OK);
    writeAll(s, bytes);
}

Bytes readAt(IStream* s, std::uint64_t position, std::size_t length) {
    Bytes out(length);
    ULONG got = 0;
    EXPECT_EQ(s->Seek(static_cast<std::int64_t>(position), STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(s->Read(out.data(), static_cast<ULONG>(length), &got), S_OK);
    out.resize(got);
    return out;
}

Bytes part(const Bytes& bytes, std::size_t from, std::size_t to) {
    return Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.begin() + static_cast<std::ptrdiff_t>(to));
}

TEST(CompoundLargeFileTest, GrowingPastTwoGiBMovesToLargeSectorsAndFilesPassFourGiB) {
    TempDir dir;
    auto file = dir.file("huge.wkd");
    const std::uint64_t bigSize = 5 * kGiB + 123;
    // Byte positions: the first two written while 512-byte sectors hold them, then around the 31- and
    // 32-bit limits, a sector boundary above 4 GiB, and the end.
    const std::vector<std::uint64_t> marks = {0, 2 * kGiB - 6, 2 * kGiB - 1, 2 * kGiB + 8, 4 * kGiB - 2,
                                              4 * kGiB + 3 * 4096 - 3, bigSize - 5};
    auto writeMark = [](IStream* s, std::uint64_t m) { writeAt(s, m, content(std::to_string(m), 5)); };
    const Bytes earlyBytes = content("Blocks/Early", 305000), tinyBytes = content("Blocks/Tiny", 101);
    {
        Ref<IStorage> root, blocks;
        ASSERT_EQ(createCompoundFile(file, kCreate, root.out()), S_OK);
        ASSERT_EQ(root->CreateStorage(u"Blocks", kCreate, 0, 0, blocks.out()), S_OK);
        Ref<IStream> big, early, tiny;
        ASSERT_EQ(blocks->CreateStream(u"Early", kCreate, 0, 0, early.out()), S_OK);
        writeAll(early.get(), part(earlyBytes, 0, 300000));
        ASSERT_EQ(blocks->CreateStream(u"Tiny", kCreate, 0, 0, tiny.out()), S_OK);
        writeAll(tiny.get(), part(tinyBytes, 0, 100));
        ASSERT_EQ(blocks->CreateStream(u"Meas0", kCreate, 0, 0, big.out()), S_OK);
        ASSERT_EQ(big->SetSize(2 * kGiB), S_OK);  // the most 512-byte sectors allow
        writeMark(big.get(), marks[0]);
        writeMark(big.get(), marks[1]);
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        EXPECT_EQ(sectorShiftOf(file), 9);
        ASSERT_EQ(big->SetSize(2 * kGiB + 1), S_OK);
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
        EXPECT_EQ(sectorShiftOf(file), 12);

        ASSERT_EQ(big->SetSize(bigSize), S_OK);
        for (std::size_t i = 2; i < marks.size(); ++i) writeMark(big.get(), marks[i]);
        // Streams keep working across the change, the small ones in the mini stream as well.
        writeAt(early.get(), 300000, part(earlyBytes, 300000, 305000));
        writeAt(tiny.get(), 100, part(tinyBytes, 100, 101));
        // This one lies in the file after the first 5 GiB.
        putStream(blocks.get(), u"Meas1", content("Blocks/Meas1", 100000));
        ASSERT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    EXPECT_GT(std::filesystem::file_size(file), 5 * kGiB);

    Ref<IStorage> root, blocks;
    ASSERT_EQ(openCompoundFile(file, kRead, root.out()), S_OK);
    ASSERT_EQ(root->OpenStorage(u"Blocks", nullptr, kRead, nullptr, 0, blocks.out()), S_OK);
    Ref<IStream> big;
    ASSERT_EQ(blocks->OpenStream(u"Meas0", nullptr, kRead, 0, big.out()), S_OK);
    for (std::uint64_t m : marks) EXPECT_EQ(readAt(big.get(), m, 5), content(std::to_string(m), 5)) << m;
    // A read across the 4 GiB position, and one past the end.
    const Bytes mark = content(std::to_string(4 * kGiB - 2), 5);
    EXPECT_EQ(readAt(big.get(), 4 * kGiB - 4, 8), (Bytes{0, 0, mark[0], mark[1], mark[2], mark[3], mark[4], 0}));
    EXPECT_EQ(readAt(big.get(), bigSize - 5, 100).size(), 5u);
    std::uint64_t end = 0;
    ASSERT_EQ(big->Seek(0, STREAM_SEEK_END, &end), S_OK);
    EXPECT_EQ(end, bigSize);
    EXPECT_EQ(getStream(blocks.get(), u"Meas1"), content("Blocks/Meas1", 100000));
    EXPECT_EQ(getStream(blocks.get(), u"Early"), earlyBytes);
    EXPECT_EQ(getStream(blocks.get(), u"Tiny"), tinyBytes);

    // olefile agrees on sizes and reads the streams that were moved or lie past 5 GiB.
    const std::string none = "{00000000-0000-0000-0000-000000000000}";
    EXPECT_EQ(olefileComplaints(file, {{"/", {"storage", 0, none}},
                                       {"Blocks", {"storage", 0, none}},
                                       {"Blocks/Early", {"stream", 305000, "-"}},
                                       {"Blocks/Meas0", {"stream", bigSize, "-"}},
                                       {"Blocks/Meas1", {"stream", 100000, "-"}},
                                       {"Blocks/Tiny", {"stream", 101, "-"}}}),
              "");
}

}  // namespace
}  // namespace nvdl::test
