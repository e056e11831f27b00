// The recorder section of a recording file: its layout from the setup, reading it back, data
// through the input and tacho views and by whole scans, files without status records, recordings
// above 4 GiB and damaged ones.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/TrcFile.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"

using namespace nvdl::trc;
namespace le = nvdl::le;

namespace {

using Bytes = std::vector<unsigned char>;
constexpr std::int64_t kAt = 1000;  // where the recorder section stands in the test files

class Root final : public CTrcBaseSection {
public:
    std::int64_t GetSectionSize() override { return 0; }
    CTrcTableManagment* GetToc() override { return &toc; }
    CTrcTableManagment toc;
};

struct Config {
    long dataSize, blocksize;
    std::vector<long> usages;  // one per input channel
    std::vector<int> tachos;   // whether each tacho channel is active
    long scans;
};

// A recording laid out and written from a setup, and a reader of the same file opened read only.
struct Recording {
    explicit Recording(const Config& c) : config(c) {
        EXPECT_TRUE(file.Create(name.c_str(), 0));
        writer.Init(&file, &root);
        writer.GetHeader().SetDataSize(c.dataSize);
        CTrcSetupSection& setup = writer.GetHeader().GetSetup();
        setup.GetAcquisition().SetBlocksize(c.blocksize);
        for (long usage : c.usages) {
            setup.GetInputs().Add(std::make_unique<CTrcInputChannel>());
            setup.GetInputs().GetItem(setup.GetInputs().GetTotalChannels() - 1)->SetUsage(usage);
        }
        for (int active : c.tachos) {
            setup.GetTachos().Add(std::make_unique<CTrcTachoChannel>());
            setup.GetTachos().GetItem(setup.GetTachos().GetTotalChannels() - 1)->GetCola().SetActivated(active);
        }
        setup.GetProcessing().SetAverageNumber(c.scans);
        writer.SetSectionOffset(kAt);
        writer.UpdateTocSections();
        root.toc.Add(writer);
        EXPECT_TRUE(file.SetFileSize(kAt + writer.GetSectionSize() + 96));  // sections follow
        EXPECT_TRUE(writer.Write());
        writer.GetHeader().DescribeScans(g);
        stride = (g.usedInputs + g.usedTachos) * (c.blocksize * (c.dataSize ? 4 : 2) + 12);
    }
    int openReader() {
        readFile.Open(name.c_str());
        readRoot.toc.Add(std::make_unique<TocEntry>(*root.toc.GetItem(0)));
        reader.Init(&readFile, &readRoot);
        reader.SetSectionIndex(0);
        return reader.Read();
    }
    Bytes raw(std::int64_t offset, std::int64_t size) {
        Bytes b(static_cast<std::size_t>(size));
        EXPECT_TRUE(file.Seek(offset, 0) && file.Read(b.data(), size));
        return b;
    }

    Config config;
    nvdl::test::TempDir dir;
    std::string name = dir.file("r.trc").string();
    CTrcFile file, readFile;
    Root root, readRoot;
    CTrcRecorderSection writer, reader;
    ScanGeometry g;
    std::int64_t stride;
};

CTrcRecorderChannelSection& viewOf(CTrcRecorderSection& r, const Config& c, long number) {
    if (number <= static_cast<long>(c.usages.size())) return r.GetInputSection();
    return r.GetTachoSection();
}

Bytes partOfScan(long scan, int part, std::int64_t size) {
    Bytes b(static_cast<std::size_t>(size));
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = static_cast<unsigned char>(scan * 131 + part * 57 + i * 7);
    return b;
}

// Writes every scan through both views, with a status record per used channel unless told not to.
void writeScans(Recording& r, bool infos) {
    const ScanGeometry& g = r.g;
    for (long s = 1; s <= r.config.scans; ++s) {
        const Bytes in = partOfScan(s, 0, g.usedInputs * g.blockBytes());
        const Bytes rpm = partOfScan(s, 1, g.usedTachos * g.blockBytes());
        ASSERT_TRUE(r.writer.GetInputSection().WriteScan(s, in.data(), g.usedInputs * g.blocksize));
        ASSERT_EQ(r.writer.GetTachoSection().WriteScan(s, rpm.data(), g.usedTachos * g.blocksize) != 0, !rpm.empty());
        for (long n = 1; infos && n <= g.totalInputs() + g.totalTachos(); ++n) {
            CTrcScanInfo info;
            info.SetStatus(s % 3);
            info.SetRange(static_cast<float>(s + n));
            viewOf(r.writer, r.config, n).WriteInfo(s, n, info);  // refused for unused channels
        }
    }
}

}  // namespace

TEST(TrcRecorderSection, LayoutOnDiskAndReadingBack) {
    Recording r({0, 1024, {1, 1}, {}, 3});  // 16-bit samples: a scan of 2 x (2048 + 12) bytes
    EXPECT_EQ(r.stride, 4120);
    r.writer.GetHeader().SetEnabled(1);
    r.writer.GetHeader().SetScalingFactor(0.25f);
    ASSERT_TRUE(r.writer.GetHeader().Update());
    const std::int64_t header = kAt + 96 + 3 * 168, setup = header + 2080 + 96 + 168;
    const std::int64_t stream = setup + r.writer.GetHeader().GetSetup().GetSectionSize();
    EXPECT_EQ(r.writer.GetSectionSize(), stream - kAt + 3 * 4120);
    const CTrcTableManagment& toc = *r.writer.GetToc();
    EXPECT_EQ(r.writer.GetHeader().GetToc()->GetItem(0)->sectionOffset, setup);
    for (long i : {0, 1, 2}) EXPECT_EQ(toc.GetItem(i)->sectionOffset, i ? stream : header);
    EXPECT_EQ(toc.GetItem(1)->sectionSize + toc.GetItem(2)->sectionSize, 3 * 4120);  // no tachos
    const Bytes block = r.raw(header, 28);
    EXPECT_EQ(le::i32(&block[0]), 20040309);
    EXPECT_EQ(le::i32(&block[4]), 1);
    EXPECT_EQ(le::i32(&block[8]), 0);
    EXPECT_EQ(le::f32(&block[24]), 0.25f);

    ASSERT_TRUE(r.openReader());
    EXPECT_EQ(r.reader.GetHeader().GetSetup().GetAcquisition().GetBlocksize(), 1024);
    EXPECT_EQ(r.reader.GetInputSection().GetSectionSize(), 3 * 4120);
    EXPECT_EQ(r.reader.GetInputSection().GetStatusSize(), 3 * 2 * 12);
    r.readFile.Close();
    EXPECT_TRUE(r.reader.Read());  // read once, not again
}

TEST(TrcRecorderSection, SamplesAndRecordsThroughTheViewsAndByScan) {
    const Config configs[] = {
        {2, 8, {1, 0, 1}, {0, 1}, 3},  // tacho 2 is channel 5; input 2 and tacho 1 unused
        {0, 16, {1, 1}, {}, 2},
        {2, 4, {0, 1}, {1, 1}, 2},
    };
    for (const Config& c : configs) {
        Recording r(c);
        writeScans(r, true);
        ASSERT_TRUE(r.openReader());
        const ScanGeometry& g = r.g;
        const long inputs = static_cast<long>(g.totalInputs());
        for (long n = 1; n <= inputs + g.totalTachos(); ++n) {
            CTrcRecorderChannelSection& view = viewOf(r.reader, c, n);
            const long index = view.GetChannelIndex(n);
            const bool used = (n > inputs ? c.tachos[n - inputs - 1] : c.usages[n - 1]) != 0;
            EXPECT_EQ(index >= 0, used) << n;
            Bytes whole(static_cast<std::size_t>(c.scans * g.blockBytes()));
            CTrcScanInfo info;
            ASSERT_EQ(view.ReadChannel(n, 0, whole.data(), c.scans * c.blocksize) != 0, used) << n;
            ASSERT_EQ(view.ReadInfo(2, n, info) != 0, used) << n;
            if (!used) continue;
            const Bytes last = partOfScan(c.scans, n > inputs, (index + 1) * g.blockBytes());
            EXPECT_TRUE(std::equal(last.end() - g.blockBytes(), last.end(), whole.end() - g.blockBytes())) << n;
            EXPECT_EQ(info.GetStatus(), 2);
            EXPECT_EQ(info.GetRange(), 2.0f + n);
        }

        // The last scan whole: the inputs' records come from behind all the samples of the scan.
        const long channels = static_cast<long>(g.usedInputs + g.usedTachos);
        const std::int64_t inputBytes = g.usedInputs * g.blockBytes(), bd12 = g.blockBytes() + 12;
        Bytes scan(static_cast<std::size_t>(channels * g.blockBytes()));
        std::vector<CTrcScanInfo> infos(static_cast<std::size_t>(channels));
        ASSERT_TRUE(r.reader.ReadScan(c.scans, scan.data(), channels * c.blocksize, channels, infos.data()));
        const Bytes file = r.raw(r.reader.GetInputSection().GetSectionOffset() + (c.scans - 1) * r.stride, r.stride);
        EXPECT_TRUE(std::equal(scan.begin(), scan.begin() + inputBytes, file.begin()));
        EXPECT_TRUE(std::equal(scan.begin() + inputBytes, scan.end(), file.begin() + g.usedInputs * bd12));
        for (long i = 0; i < channels; ++i) {
            const std::int64_t at = i < g.usedInputs
                                        ? channels * g.blockBytes() + i * 12
                                        : g.usedInputs * bd12 + g.usedTachos * g.blockBytes() + (i - g.usedInputs) * 12;
            EXPECT_EQ(le::i32(&file[at]), infos[i].GetVersionNumber()) << i;
            EXPECT_EQ(le::i32(&file[at + 4]), infos[i].GetStatus()) << i;
            EXPECT_EQ(le::f32(&file[at + 8]), infos[i].GetRange()) << i;
        }
    }
}

TEST(TrcRecorderSection, ChannelRunsAcrossBlocks) {
    Recording r({2, 8, {1, 0, 1}, {}, 4});  // input 3 is the second used channel
    writeScans(r, false);
    CTrcRecorderInputSection& in = r.writer.GetInputSection();
    Bytes run(20 * 4);
    ASSERT_TRUE(in.ReadChannel(3, 5, run.data(), 20));  // the tail of a block first
    for (long j = 5; j < 25; ++j) {
        const Bytes scan = partOfScan(j / 8 + 1, 0, 2 * 8 * 4);
        EXPECT_TRUE(std::equal(&scan[(8 + j % 8) * 4], &scan[(8 + j % 8) * 4 + 4], &run[(j - 5) * 4])) << j;
    }
    // A write over three blocks reaches two of them: the third is left as it was.
    ASSERT_TRUE(in.WriteChannel(3, 5, Bytes(12 * 4, 0xFF).data(), 12));
    ASSERT_TRUE(in.ReadChannel(3, 5, run.data(), 12));
    EXPECT_EQ(Bytes(run.begin(), run.begin() + 44), Bytes(44, 0xFF));
    EXPECT_TRUE(std::equal(&run[44], &run[48], &partOfScan(3, 0, 64)[32]));
    // A run cut short by the end of the file comes back as far as the file goes.
    std::filesystem::resize_file(r.name, in.GetSectionOffset() + 2 * r.stride + 10);
    Bytes all(32 * 4, 0xEE);
    ASSERT_TRUE(in.ReadChannel(1, 0, all.data(), 32));
    for (long s : {1, 2}) EXPECT_TRUE(std::equal(&all[(s - 1) * 32], &all[s * 32], &partOfScan(s, 0, 64)[0])) << s;
    EXPECT_EQ(Bytes(all.begin() + 64, all.end()), Bytes(64, 0xEE));
    EXPECT_FALSE(in.ReadChannel(3, 16, all.data(), 8));  // the first piece already behind the end
}

TEST(TrcRecorderSection, AFileWithoutStatusRecords) {
    for (long scans : {3L, 1L}) {
        Recording r({0, 16, {1, 1}, {}, scans});
        writeScans(r, false);
        ASSERT_TRUE(r.openReader());
        Bytes scan(64);
        CTrcScanInfo infos[2];
        const float remembered = scans > 1 ? 10.0f : 0.0f;
        struct Step {
            long scan;
            std::int64_t count;
            long infoCount;
            bool ok;
            float range;                          // what every record reads
        } steps[] = {{scans, 32, 2, true, 0.0f},  // the last scan alone tells nothing
                     {1, 32, 2, true, remembered}, {scans, 32, 2, true, remembered},
                     {0, 32, 2, false, 0},         {scans + 1, 32, 2, false, 0},
                     {1, 31, 2, false, 0},         {1, 33, 2, false, 0},
                     {1, 32, 1, false, 0}};
        EXPECT_FALSE(r.reader.GetInputSection().ReadScan(1, scan.data(), 31));  // counts of the views too
        EXPECT_FALSE(r.reader.GetInputSection().ReadScan(0, scan.data(), 32));
        for (const Step& s : steps) {
            ASSERT_EQ(r.reader.ReadScan(s.scan, scan.data(), s.count, s.infoCount, infos) != 0, s.ok) << s.scan;
            for (const CTrcScanInfo& info : infos) {
                if (!s.ok) break;
                EXPECT_EQ(info.GetRange(), s.range) << scans << " " << s.scan;
                EXPECT_EQ(info.GetStatus(), 0);
                EXPECT_EQ(info.GetVersionNumber(), s.range != 0 ? 20040309 : 0);
            }
        }
    }
}

TEST(TrcRecorderSection, TheLastScanOfARecordingAbove4GiB) {
    Recording r({2, 65536, {1, 1}, {1}, 5500});  // 5500 scans of 786468 bytes
    EXPECT_GT(r.file.GetFileSize(), std::int64_t{1} << 32);
    const Bytes in = partOfScan(1, 0, 2 * 65536 * 4), rpm = partOfScan(1, 1, 65536 * 4);
    ASSERT_TRUE(r.writer.GetInputSection().WriteScan(5500, in.data(), 2 * 65536));
    ASSERT_TRUE(r.writer.GetTachoSection().WriteScan(5500, rpm.data(), 65536));
    ASSERT_TRUE(r.openReader());
    Bytes channel(65536 * 4), scan(3 * 65536 * 4);
    ASSERT_TRUE(r.reader.GetInputSection().ReadChannel(2, 5499LL * 65536, channel.data(), 65536));
    EXPECT_TRUE(std::equal(channel.begin(), channel.end(), in.begin() + 65536 * 4));
    CTrcScanInfo infos[3];
    ASSERT_TRUE(r.reader.ReadScan(5500, scan.data(), 3 * 65536, 3, infos));
    EXPECT_TRUE(std::equal(in.begin(), in.end(), scan.begin()));
    EXPECT_TRUE(std::equal(rpm.begin(), rpm.end(), scan.begin() + in.size()));
}

TEST(TrcRecorderSection, DamagedRecordingsGiveNothing) {
    // A setup that describes a stream no file can hold.
    Recording huge({2, 16, {1}, {1}, 2});
    huge.writer.GetHeader().GetSetup().GetAcquisition().SetBlocksize(1 << 30);
    huge.writer.GetHeader().GetSetup().GetProcessing().SetAverageNumber(1 << 30);
    Bytes buffer(64);
    CTrcScanInfo infos[2];
    EXPECT_EQ(huge.writer.GetInputSection().GetSectionSize(), 0);
    EXPECT_FALSE(huge.writer.GetInputSection().ReadChannel(1, 0, buffer.data(), 16));
    EXPECT_FALSE(huge.writer.GetInputSection().ReadScan(1, buffer.data(), 16));
    EXPECT_FALSE(huge.writer.ReadScan(1, buffer.data(), 32, 2, infos));
    // Files damaged after writing: a value put at an offset; -1 lowers the version of the recorder's
    // entry in the root table, -2 cuts the file inside the header.
    const std::int64_t header = kAt + 96 + 3 * 168;
    const std::int64_t damages[][2] = {{kAt + 4, 2} /* a table of two */,
                                       {header, 20040308},
                                       {header + 2080 + 4, 0} /* no setup */,
                                       {kAt + 96 + 48, 1 << 30},
                                       {-1, 0},
                                       {-2, 0}};
    for (const auto& d : damages) {
        Recording r({2, 16, {1}, {}, 2});
        std::uint8_t bytes[4];
        le::put32(bytes, static_cast<std::uint32_t>(d[1]));
        if (d[0] == -1) r.root.toc.GetItem(0)->version = 20040308;
        if (d[0] == -2) std::filesystem::resize_file(r.name, header + 100);
        ASSERT_TRUE(d[0] < 0 || (r.file.Seek(d[0], 0) && r.file.Write(bytes, 4)));
        EXPECT_FALSE(r.openReader()) << d[0];
        EXPECT_FALSE(r.reader.IsRead());
    }
}
