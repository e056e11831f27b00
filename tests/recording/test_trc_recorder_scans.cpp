// The scan stream of a recording by hand-made geometry: positions of channels, and the requests
// that must be refused, damaged geometry included.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "../platform/TempDir.h"
#include "recording/TrcFile.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcScanStream.h"

using namespace nvdl::trc;

namespace {

using Bytes = std::vector<unsigned char>;

ScanGeometry makeGeometry(std::int64_t d, std::int64_t b, Bytes inputs, Bytes tachos, std::int64_t scans,
                          std::int64_t q) {
    const auto used = [](const Bytes& flags) { return std::count(flags.begin(), flags.end(), 1); };
    return {d, b, used(inputs), used(tachos), scans, 5, q, std::move(inputs), std::move(tachos)};
}
// Float samples, inputs 1, 3 and 4 used, tacho 2 (channel number 6) used.
ScanGeometry mixed() { return makeGeometry(4, 8, {1, 0, 1, 1}, {0, 1}, 5, 1000); }

std::int64_t streamEnd(const ScanGeometry& g) { return g.streamOffset + g.maxScans * g.stride(); }

// A zero-filled file of `size` bytes.
struct ScanFile {
    explicit ScanFile(std::int64_t size) {
        EXPECT_TRUE(file.Create(dir.file("s.trc").string().c_str(), 0) && file.SetFileSize(size));
    }
    nvdl::test::TempDir dir;
    CTrcFile file;
};

}  // namespace

TEST(TrcScanGeometry, StrideChannelPositionsAndBounds) {
    EXPECT_EQ(makeGeometry(2, 1024, {1, 1}, {}, 1, 0).stride(), 4120);
    ScanGeometry g = mixed();
    const long inputs[] = {0, -1, 1, 2, -1, -1, -1}, tachos[] = {-1, -1, -1, -1, -1, 0, -1};  // 5 is tacho 1
    for (long n = 1; n <= 7; ++n) {
        EXPECT_EQ(g.channelIndex(ScanPart::Input, n), inputs[n - 1]) << n;
        EXPECT_EQ(g.channelIndex(ScanPart::Tacho, n), tachos[n - 1]) << n;
    }
    g.scans = std::int64_t{1} << 60;  // more scans recorded than there is room for counts too
    EXPECT_FALSE(g.bounded());
    EXPECT_EQ(g.sectionSize(ScanPart::Input), 0);
}

TEST(TrcScanStream, ChannelRequestsOutsideTheGeometryAreRefused) {
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
        {"tacho number in inputs", ScanPart::Input, 6, 0, 8, none},
        {"unused tacho", ScanPart::Tacho, 5, 0, 8, none},
        {"count 0", ScanPart::Input, 1, 0, 0, none},
        {"count above B x M", ScanPart::Input, 1, 0, 41, none},
        {"negative position", ScanPart::Input, 1, -1, 8, none},
        {"run past the stream", ScanPart::Input, 1, 33, 8, none},
        {"no room", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.maxScans = 0; }},
        {"no used input", ScanPart::Tacho, 6, 0, 8, [](ScanGeometry& g) { g.usedInputs = 0; }},
        {"no used tacho", ScanPart::Tacho, 6, 0, 8, [](ScanGeometry& g) { g.usedTachos = 0; }},
        {"more flags than used", ScanPart::Input, 4, 0, 8, [](ScanGeometry& g) { g.usedInputs = 2; }},
        {"huge room", ScanPart::Input, 1, 0, 8, [](ScanGeometry& g) { g.maxScans = INT64_MAX; }},
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
    Bytes after(static_cast<std::size_t>(streamEnd(mixed()) + 100), 1);
    ASSERT_TRUE(f.file.Seek(0, 0) && f.file.Read(after.data(), static_cast<std::int64_t>(after.size())));
    EXPECT_EQ(after, Bytes(after.size(), 0)) << "nothing was written";
}

TEST(TrcScanStream, ScansUpToTheRecordedCount) {
    ScanGeometry g = mixed();
    g.scans = 3;  // room for 5
    ScanFile f(streamEnd(g) + 100);
    ScanStream inputs(&f.file, g, ScanPart::Input), tachos(&f.file, g, ScanPart::Tacho);
    Bytes buffer(200);
    CTrcScanInfo info;
    EXPECT_TRUE(inputs.ReadScan(3, buffer.data(), 24) && tachos.WriteScan(3, buffer.data(), 8));
    EXPECT_FALSE(inputs.ReadScan(4, buffer.data(), 24) || tachos.WriteScan(4, buffer.data(), 8));
    EXPECT_FALSE(inputs.ReadInfo(4, 1, info) || inputs.ReadInfo(0, 1, info));
    EXPECT_FALSE(inputs.ReadScan(1, buffer.data(), INT64_MAX / 2));  // the count in bytes overflows
    ASSERT_TRUE(f.file.Seek(7, 0));
    EXPECT_FALSE(inputs.ReadScan(1, buffer.data(), 23) || tachos.WriteScan(1, buffer.data(), 9));
    EXPECT_EQ(f.file.GetPosition(), 7) << "a refused scan does not touch the file";
    g.streamOffset = f.file.GetFileSize() - 3 * 8 * 4;  // the first input record at the end
    EXPECT_FALSE(inputs.ReadInfo(1, 1, info) || inputs.WriteInfo(1, 1, info));
}
