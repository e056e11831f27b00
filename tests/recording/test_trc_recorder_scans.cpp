// The scan stream of a recording by hand-made geometry: where samples and status records stand,
// the moves by channel and by scan, and the requests that must be refused.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/TrcFile.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcScanStream.h"

using namespace nvdl::trc;
namespace le = nvdl::le;

namespace {

using Bytes = std::vector<unsigned char>;

ScanGeometry makeGeometry(std::int64_t d, std::int64_t b, Bytes inputs, Bytes tachos, std::int64_t scans,
                          std::int64_t maxScans, std::int64_t q) {
    ScanGeometry g;
    g.sampleBytes = d;
    g.blocksize = b;
    g.usedInputs = std::count(inputs.begin(), inputs.end(), 1);
    g.usedTachos = std::count(tachos.begin(), tachos.end(), 1);
    g.scans = scans;
    g.maxScans = maxScans;
    g.streamOffset = q;
    g.inputUsed = std::move(inputs);
    g.tachoUsed = std::move(tachos);
    return g;
}

// float samples, inputs 1, 3 and 4 used, tacho 2 (channel number 6) used.
ScanGeometry mixed() { return makeGeometry(4, 8, {1, 0, 1, 1}, {0, 1}, 5, 5, 1000); }
// 16-bit samples, two inputs, no tachos.
ScanGeometry plain() { return makeGeometry(2, 16, {1, 1}, {}, 4, 4, 300); }

// Offsets worked out from the layout of a scan: inputs' samples, inputs' records, tachos' samples,
// tachos' records; every channel of a part holds one block of B samples per scan.
std::int64_t strideOf(const ScanGeometry& g) {
    return (g.usedInputs + g.usedTachos) * (g.blocksize * g.sampleBytes + 12);
}
std::int64_t sampleOffset(const ScanGeometry& g, ScanPart part, std::int64_t c, std::int64_t sample) {
    const std::int64_t scan = sample / g.blocksize, within = sample % g.blocksize;
    const std::int64_t partAt = part == ScanPart::Input ? 0 : g.usedInputs * (g.blocksize * g.sampleBytes + 12);
    return g.streamOffset + scan * strideOf(g) + partAt + (c * g.blocksize + within) * g.sampleBytes;
}
std::int64_t infoOffset(const ScanGeometry& g, ScanPart part, std::int64_t c, std::int64_t scan) {
    const std::int64_t bd = g.blocksize * g.sampleBytes;
    const std::int64_t partAt = part == ScanPart::Input ? g.usedInputs * bd : g.usedInputs * (bd + 12) + g.usedTachos * bd;
    return g.streamOffset + (scan - 1) * strideOf(g) + partAt + c * 12;
}

unsigned char patternAt(std::int64_t offset) {
    std::uint64_t x = static_cast<std::uint64_t>(offset) * 0x9E3779B97F4A7C15ull;
    return static_cast<unsigned char>(x >> 56);
}

// A file of `size` bytes whose every byte tells its offset, to see where a read came from.
class ScanFile {
public:
    explicit ScanFile(std::int64_t size) {
        Bytes bytes(static_cast<std::size_t>(size));
        for (std::int64_t i = 0; i < size; ++i) bytes[static_cast<std::size_t>(i)] = patternAt(i);
        EXPECT_TRUE(file.Create(dir.file("s.trc").string().c_str(), 0));
        EXPECT_TRUE(file.Write(bytes.data(), size));
    }
    Bytes at(std::int64_t offset, std::int64_t size) {
        Bytes b(static_cast<std::size_t>(size));
        EXPECT_TRUE(file.Seek(offset, 0) && file.Read(b.data(), size));
        return b;
    }
    nvdl::test::TempDir dir;
    CTrcFile file;
};

std::int64_t streamEnd(const ScanGeometry& g) { return g.streamOffset + g.maxScans * strideOf(g); }

}  // namespace

TEST(TrcScanGeometry, StrideAndChannelPositions) {
    EXPECT_EQ(makeGeometry(2, 1024, {1, 1}, {}, 1, 1, 0).stride(), 4120);
    const ScanGeometry g = mixed();
    EXPECT_EQ(g.stride(), 4 * (32 + 12));
    EXPECT_EQ(g.sectionSize(ScanPart::Input), 5 * 3 * 44);
    EXPECT_EQ(g.statusSize(ScanPart::Tacho), 5 * 1 * 12);
    struct Case {
        ScanPart part;
        long number, index;
    } cases[] = {{ScanPart::Input, 1, 0},  {ScanPart::Input, 2, -1}, {ScanPart::Input, 4, 2},
                 {ScanPart::Input, 0, -1}, {ScanPart::Input, 5, -1}, {ScanPart::Tacho, 5, -1} /* unused tacho */,
                 {ScanPart::Tacho, 6, 0},  {ScanPart::Tacho, 1, -1}, {ScanPart::Tacho, 7, -1}};
    for (const Case& c : cases) EXPECT_EQ(g.channelIndex(c.part, c.number), c.index) << c.number;

    ScanGeometry huge = mixed();
    huge.blocksize = std::int64_t{1} << 61;
    EXPECT_FALSE(huge.bounded());
    EXPECT_EQ(huge.sectionSize(ScanPart::Input), 0);
    huge = mixed();
    huge.scans = std::int64_t{1} << 60;  // more scans recorded than there is room for is bounded too
    EXPECT_FALSE(huge.bounded());
}

TEST(TrcScanStream, ChannelRunsComeFromTheirBlocks) {
    struct Case {
        ScanGeometry (*geometry)();
        ScanPart part;
        long number;
        std::int64_t position, count;
    } cases[] = {
        {mixed, ScanPart::Input, 1, 0, 8},   {mixed, ScanPart::Input, 3, 5, 20},  // tail of a block first
        {mixed, ScanPart::Input, 4, 0, 40},  {mixed, ScanPart::Tacho, 6, 3, 10},
        {plain, ScanPart::Input, 2, 15, 2},  {plain, ScanPart::Input, 1, 0, 64},
    };
    for (const Case& c : cases) {
        const ScanGeometry g = c.geometry();
        ScanFile f(streamEnd(g) + 100);
        const long index = g.channelIndex(c.part, c.number);
        Bytes expected;
        for (std::int64_t s = c.position; s < c.position + c.count; ++s) {
            const Bytes sample = f.at(sampleOffset(g, c.part, index, s), g.sampleBytes);
            expected.insert(expected.end(), sample.begin(), sample.end());
        }
        Bytes got(expected.size());
        ASSERT_TRUE(ScanStream(&f.file, g, c.part).ReadChannel(c.number, c.position, got.data(), c.count))
            << c.number << " " << c.position;
        EXPECT_EQ(got, expected) << c.number << " " << c.position;
    }
}

TEST(TrcScanStream, WritesReachTwoBlocksAtMost) {
    const ScanGeometry g = mixed();
    struct Case {
        std::int64_t position, count, written;  // samples that land in the file
    } cases[] = {{5, 11, 11}, {0, 8, 8}, {5, 12, 11} /* three blocks: the third is left as it was */};
    for (const Case& c : cases) {
        ScanFile f(streamEnd(g) + 100);
        Bytes data(static_cast<std::size_t>(c.count * 4));
        for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(~patternAt(i) + 1);
        ASSERT_TRUE(ScanStream(&f.file, g, ScanPart::Input).WriteChannel(3, c.position, data.data(), c.count));
        for (std::int64_t s = 0; s < c.count; ++s) {
            const std::int64_t offset = sampleOffset(g, ScanPart::Input, 1, c.position + s);
            const Bytes want = s < c.written ? Bytes(data.begin() + s * 4, data.begin() + s * 4 + 4)
                                             : Bytes{patternAt(offset), patternAt(offset + 1), patternAt(offset + 2),
                                                     patternAt(offset + 3)};
            EXPECT_EQ(f.at(offset, 4), want) << c.position << "+" << s;
        }
    }
}

TEST(TrcScanStream, ScansAndStatusRecordsAtTheirOffsets) {
    const ScanGeometry g = mixed();
    ScanFile f(streamEnd(g) + 100);
    ScanStream inputs(&f.file, g, ScanPart::Input), tachos(&f.file, g, ScanPart::Tacho);
    Bytes in(3 * 8 * 4), rpm(8 * 4);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = static_cast<unsigned char>(i + 1);
    for (std::size_t i = 0; i < rpm.size(); ++i) rpm[i] = static_cast<unsigned char>(200 + i);
    ASSERT_TRUE(inputs.WriteScan(2, in.data(), 24));
    ASSERT_TRUE(tachos.WriteScan(5, rpm.data(), 8));
    EXPECT_EQ(f.at(g.streamOffset + strideOf(g), 96), in);
    EXPECT_EQ(f.at(g.streamOffset + 4 * strideOf(g) + 3 * (32 + 12), 32), rpm);
    Bytes back(in.size());
    ASSERT_TRUE(inputs.ReadScan(2, back.data(), 24));
    EXPECT_EQ(back, in);

    CTrcScanInfo info;
    info.SetStatus(kStatusOverloadHeld);
    info.SetRange(2.5f);
    ASSERT_TRUE(inputs.WriteInfo(2, 4, info));
    ASSERT_TRUE(tachos.WriteInfo(5, 6, info));
    for (std::int64_t offset : {infoOffset(g, ScanPart::Input, 2, 2), infoOffset(g, ScanPart::Tacho, 0, 5)}) {
        const Bytes raw = f.at(offset, 12);
        EXPECT_EQ(le::i32(raw.data()), 20040309);
        EXPECT_EQ(le::i32(raw.data() + 4), 2);
        EXPECT_EQ(le::f32(raw.data() + 8), 2.5f);
    }
    CTrcScanInfo got;
    ASSERT_TRUE(tachos.ReadInfo(5, 6, got));
    EXPECT_TRUE(got.IsOverload());
    EXPECT_EQ(got.GetRange(), 2.5f);

    // A record that was never written reads as all zero, its version too.
    ASSERT_TRUE(f.file.SetFileSize(f.file.GetFileSize() + 20'000));
    ScanGeometry behind = g;
    behind.streamOffset = streamEnd(g) + 100;
    ASSERT_TRUE(ScanStream(&f.file, behind, ScanPart::Input).ReadInfo(1, 1, got));
    EXPECT_EQ(got.GetVersionNumber(), 0);
    EXPECT_EQ(got.GetStatus(), 0);
    EXPECT_EQ(got.GetRange(), 0.0f);
}

TEST(TrcScanStream, RequestsOutsideTheGeometryAreRefused) {
    using Change = std::function<void(ScanGeometry&)>;
    const Change none = [](ScanGeometry&) {};
    struct Case {
        const char* what;
        ScanPart part;
        long number;
        std::int64_t position, count;
        Change change;
    } cases[] = {
        {"unused input", ScanPart::Input, 2, 0, 8, none},
        {"number 0", ScanPart::Input, 0, 0, 8, none},
        {"tacho number in inputs", ScanPart::Input, 6, 0, 8, none},
        {"unused tacho", ScanPart::Tacho, 5, 0, 8, none},
        {"past the last channel", ScanPart::Tacho, 7, 0, 8, none},
        {"count 0", ScanPart::Input, 1, 0, 0, none},
        {"count above B x M", ScanPart::Input, 1, 0, 41, none},
        {"negative position", ScanPart::Input, 1, -1, 8, none},
        {"run past the stream", ScanPart::Input, 1, 33, 8, none},
        {"no sample size", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.sampleBytes = 0; }},
        {"no room", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.maxScans = 0; }},
        {"no blocksize", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.blocksize = 0; }},
        {"no used input", ScanPart::Tacho, 6, 0, 8, [](ScanGeometry& g) { g.usedInputs = 0; }},
        {"no used tacho", ScanPart::Tacho, 6, 0, 8, [](ScanGeometry& g) { g.usedTachos = 0; }},
        {"more flags than used", ScanPart::Input, 4, 0, 8, [](ScanGeometry& g) { g.usedInputs = 2; }},
        {"huge blocksize", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.blocksize = std::int64_t{1} << 62; }},
        {"huge room", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.maxScans = INT64_MAX; }},
        {"negative stream", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.streamOffset = -50; }},
        {"stream behind the file", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.streamOffset = 1 << 20; }},
    };
    ScanFile f(streamEnd(mixed()) + 100);
    for (const Case& c : cases) {
        ScanGeometry g = mixed();
        c.change(g);
        ScanStream stream(&f.file, g, c.part);
        Bytes buffer(400, 0xAA);
        EXPECT_FALSE(stream.ReadChannel(c.number, c.position, buffer.data(), c.count)) << c.what;
        EXPECT_FALSE(stream.WriteChannel(c.number, c.position, buffer.data(), c.count)) << c.what;
        EXPECT_EQ(buffer, Bytes(400, 0xAA)) << c.what;
    }
    const Bytes after = f.at(0, streamEnd(mixed()) + 100);
    for (std::size_t i = 0; i < after.size(); ++i) ASSERT_EQ(after[i], patternAt(static_cast<std::int64_t>(i))) << i;
}

TEST(TrcScanStream, ScanAndRecordNumbersAndCounts) {
    ScanGeometry g = mixed();
    g.scans = 3;  // room for 5
    ScanFile f(streamEnd(g) + 100);
    ScanStream inputs(&f.file, g, ScanPart::Input), tachos(&f.file, g, ScanPart::Tacho);
    Bytes buffer(200);
    CTrcScanInfo info;
    struct Case {
        long scan;
        std::int64_t inputCount, tachoCount;
        bool ok;
    } cases[] = {{1, 24, 8, true}, {3, 24, 8, true}, {0, 24, 8, false}, {4, 24, 8, false},
                 {1, 23, 7, false}, {1, 25, 9, false}, {1, INT64_MAX / 2, INT64_MAX / 2, false}};
    for (const Case& c : cases) {
        ASSERT_TRUE(f.file.Seek(7, 0));
        EXPECT_EQ(inputs.ReadScan(c.scan, buffer.data(), c.inputCount) != 0, c.ok) << c.scan << " " << c.inputCount;
        EXPECT_EQ(tachos.WriteScan(c.scan, buffer.data(), c.tachoCount) != 0, c.ok) << c.scan;
        if (!c.ok) {
            EXPECT_EQ(f.file.GetPosition(), 7) << "the file was not touched";
        }
        if (c.inputCount == 24) {
            EXPECT_EQ(inputs.ReadInfo(c.scan, 1, info) != 0, c.ok) << c.scan;
        }
    }
    EXPECT_FALSE(inputs.ReadInfo(1, 2, info));  // unused channel

    ScanGeometry noTachos = g;  // the input part needs no tachos, the tacho part one at least
    noTachos.usedTachos = 0;
    EXPECT_TRUE(ScanStream(&f.file, noTachos, ScanPart::Input).ReadScan(1, buffer.data(), 24));
    EXPECT_FALSE(ScanStream(&f.file, noTachos, ScanPart::Tacho).ReadScan(1, buffer.data(), 0));

    // A record at or behind the end of the file.
    ScanGeometry late = mixed();
    late.streamOffset = f.file.GetFileSize() - infoOffset(late, ScanPart::Input, 0, 1) + late.streamOffset;
    EXPECT_FALSE(ScanStream(&f.file, late, ScanPart::Input).ReadInfo(1, 1, info));
    EXPECT_FALSE(ScanStream(&f.file, late, ScanPart::Input).WriteInfo(1, 1, info));

    // Nothing is written to a file opened for reading.
    const std::string name = f.file.GetFilename();
    ASSERT_TRUE(f.file.Open(name.c_str()));
    EXPECT_TRUE(inputs.ReadScan(1, buffer.data(), 24));
    EXPECT_FALSE(inputs.WriteScan(1, buffer.data(), 24));
    EXPECT_FALSE(inputs.WriteChannel(1, 0, buffer.data(), 8));
    EXPECT_FALSE(inputs.WriteInfo(1, 1, info));
}

TEST(TrcScanStream, AChannelCutShortByTheEndOfTheFile) {
    const ScanGeometry g = plain();  // stride 88, the file ends 10 bytes into scan 3
    ScanFile f(g.streamOffset + 2 * strideOf(g) + 10);
    ScanStream inputs(&f.file, g, ScanPart::Input);
    Bytes got(128, 0xEE);
    ASSERT_TRUE(inputs.ReadChannel(1, 0, got.data(), 64));
    for (std::int64_t s = 0; s < 32; ++s)
        EXPECT_EQ(Bytes(got.begin() + s * 2, got.begin() + s * 2 + 2), f.at(sampleOffset(g, ScanPart::Input, 0, s), 2));
    EXPECT_EQ(Bytes(got.begin() + 64, got.end()), Bytes(64, 0xEE));
    // A run whose first piece already reaches the end fails.
    EXPECT_FALSE(inputs.ReadChannel(2, 32, got.data(), 32));
}
