// A whole recording: written through its root with a setup, int16 or float scans, a tacho, unused
// channels, status records, stored measurements with sub-measurements and an embedded test
// definition, then opened and read back; the tiling of the top sections is checked in the bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <vector>

#include "../platform/RunTool.h"
#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/Trc.h"
#include "recording/TrcFile.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcSetupsSection.h"
#include "recording/TrcSubMeasurement.h"
#include "recording/TrcTestDefinition.h"

using namespace nvdl::trc;
namespace le = nvdl::le;

namespace {

using nvdl::test::runTool;

constexpr std::int64_t T(std::int64_t n) { return 96 + 168 * n; }

constexpr long kBlock = 16, kScans = 5;
const float kRanges[] = {5.0f, 2.0f, 10.0f};  // input 2 is not used

// The sample of channel c (1-based over all channels) at position i of the recording.
float sampleOf(long c, long i) { return static_cast<float>(c * 1000 + i % 700) * 0.25f; }
std::int16_t rawOf(long c, long i) { return static_cast<std::int16_t>(c * 1000 + i % 700); }

void fillSetup(CTrcSetupSection& setup) {
    setup.GetAcquisition().SetBlocksize(kBlock);
    setup.GetAcquisition().SetSampleFrequency(2048.0f);
    setup.GetProcessing().SetAverageNumber(kScans);
    for (int c = 0; c < 3; ++c) {
        auto input = std::make_unique<CTrcInputChannel>();
        input->SetName(("Point " + std::to_string(c + 1)).c_str());
        input->SetUsage(c == 1 ? 0 : 1);
        input->SetRange(kRanges[c]);
        setup.GetInputs().Add(std::move(input));
    }
    auto tacho = std::make_unique<CTrcTachoChannel>();
    tacho->GetRpm().SetName("Shaft");
    tacho->GetRpm().SetActivated(1);
    tacho->GetRpm().SetEndRPM(6000.0f);
    setup.GetTachos().Add(std::move(tacho));
}

void addMeasurement(CTrcMeasurementsSection& list, const char* name, long size, int complex, long axis, int subs) {
    auto m = std::make_unique<CTrcMeasurementSection>();
    m->GetHeader().SetName(name);
    m->GetHeader().SetFunctionType(12 + subs);
    m->GetHeader().SetSize(size);
    m->GetHeader().SetComplex(complex);
    m->GetHeader().SetXAxisType(axis);
    for (int s = 0; s < subs; ++s) {
        auto sub = std::make_unique<CTrcSubMeasurementSection>();
        sub->GetHeader().SetName(("sub " + std::to_string(s)).c_str());
        sub->GetHeader().SetSize(size / 2);
        m->GetMeasurements().Add(std::move(sub));
    }
    list.Add(std::move(m));
}

std::vector<float> ramp(long n, float from) {
    std::vector<float> v(static_cast<std::size_t>(n));
    for (long i = 0; i < n; ++i) v[static_cast<std::size_t>(i)] = from + static_cast<float>(i);
    return v;
}

// Writes a recording; dataSize 0 stores int16 samples, 2 floats.
void writeRecording(const std::string& name, long dataSize) {
    CTrc trc;
    CTrcRecorderSection& recorder = trc.GetRecorder();
    recorder.GetHeader().SetEnabled(1);
    recorder.GetHeader().SetDataSize(dataSize);
    fillSetup(recorder.GetHeader().GetSetup());
    addMeasurement(trc.GetMeasurements(), "Autopower Point 1", 64, 0, 1, 0);
    addMeasurement(trc.GetMeasurements(), "FRF Point 3", 40, 1, 1102, 2);
    trc.GetTestDefinition().GetHeader().SetFilename("plan.txt");
    trc.GetTestDefinition().GetHeader().SetDataSize(11);
    ASSERT_TRUE(trc.Create(name.c_str()));
    ASSERT_TRUE(trc.GetSetups().Write());
    ASSERT_TRUE(recorder.Write());
    ASSERT_TRUE(trc.GetMeasurements().Write());
    ASSERT_TRUE(trc.GetTestDefinition().Write());
    ASSERT_TRUE(trc.GetTestDefinition().GetData().Write(0, reinterpret_cast<const unsigned char*>("hello plan!"), 11));

    const long D = dataSize == 0 ? 2 : 4;
    for (long channel : {1L, 3L, 4L}) {
        std::vector<unsigned char> samples(static_cast<std::size_t>(kBlock * D));
        for (long s = 1; s <= kScans; ++s) {
            for (long i = 0; i < kBlock; ++i) {
                const long at = (s - 1) * kBlock + i;
                if (D == 2) le::put16(&samples[static_cast<std::size_t>(i * 2)], static_cast<std::uint16_t>(rawOf(channel, at)));
                else le::putF32(&samples[static_cast<std::size_t>(i * 4)], sampleOf(channel, at));
            }
            auto& part = channel == 4 ? static_cast<CTrcRecorderChannelSection&>(recorder.GetTachoSection())
                                      : recorder.GetInputSection();
            ASSERT_TRUE(part.WriteChannel(channel, (s - 1) * kBlock, samples.data(), kBlock));
            CTrcScanInfo info;
            info.SetStatus(s == 3 && channel == 3 ? 1 : 0);
            info.SetRange(kRanges[channel == 4 ? 0 : channel - 1] + static_cast<float>(s));
            ASSERT_TRUE(part.WriteInfo(s, channel, info));
        }
    }
    for (long i = 0; i < trc.GetMeasurements().GetCount(); ++i) {
        CTrcMeasurementSection& m = *trc.GetMeasurements().GetItem(i);
        const long n = m.GetHeader().GetSize();
        ASSERT_TRUE(m.GetData().GetY().WriteReal(0, ramp(n, 100.0f * static_cast<float>(i)).data(), n));
        if (m.GetHeader().GetComplex()) {
            ASSERT_TRUE(m.GetData().GetY().WriteImag(0, ramp(n, -5.0f).data(), n));
        }
        if (m.GetHeader().GetXAxisType() == 1102) {
            ASSERT_TRUE(m.GetData().GetX().Write(0, ramp(n, 0.5f).data(), n));
        }
        for (long s = 0; s < m.GetMeasurements().GetCount(); ++s) {
            CTrcSubMeasurementSection& sub = *m.GetMeasurements().GetItem(s);
            ASSERT_TRUE(sub.GetData().GetY().WriteReal(0, ramp(n / 2, 7.0f * static_cast<float>(s + 1)).data(), n / 2));
        }
    }
    ASSERT_TRUE(trc.Close());
}

std::vector<unsigned char> bytesOf(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

TEST(TrcRecording, TopSectionsTileTheFile) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("tiles.trc").string();
    writeRecording(name, 2);
    const std::vector<unsigned char> b = bytesOf(name);
    ASSERT_GE(b.size(), static_cast<std::size_t>(T(4)));
    EXPECT_EQ(le::i32(&b[0]), 20040309);
    EXPECT_EQ(le::i32(&b[4]), 4);
    EXPECT_EQ(le::u64(&b[8]), b.size());  // the root's size is the file's

    // The setup's size from its block, its table's room and its fifteen subsections.
    const std::int64_t setup = 2156 + T(14) + T(0) + (T(3) + 3 * 2768) + T(0) + 2104 + (T(1) + 2304) + 2472 + 2140 +
                               2364 + 2072 + 2064 + (2064 + T(2) + 2 * T(0)) + 4228 + 2180 + 5244 + T(0);
    const std::int64_t stream = kScans * 3 * (kBlock * 4 + 12);
    const struct {
        std::int32_t type, version;
        const char* name;
        std::int64_t size;  // -1: not computed here
    } expected[] = {{12, 20040309, "SETUPS_SECTION", T(0)},
                    {11, 20040309, "RECORDER_SECTION", T(3) + 2080 + T(1) + setup + stream},
                    {2, 20040309, "MEASUREMENTS_SECTION", -1},
                    {33, 20050713, "TESTDEF_SECTION", T(2) + 2156 + T(0) + 11}};
    std::int64_t offset = T(4);
    for (int i = 0; i < 4; ++i) {
        const unsigned char* e = &b[static_cast<std::size_t>(96 + 168 * i)];
        EXPECT_EQ(le::i32(e), expected[i].version) << i;
        EXPECT_EQ(le::i32(e + 4), expected[i].type) << i;
        EXPECT_EQ(le::i32(e + 8), i);
        EXPECT_STREQ(reinterpret_cast<const char*>(e + 12), expected[i].name);
        EXPECT_EQ(static_cast<std::int64_t>(le::u64(e + 48)), offset) << i;
        const std::int64_t size = static_cast<std::int64_t>(le::u64(e + 56));
        if (expected[i].size >= 0) {
            EXPECT_EQ(size, expected[i].size) << i;
        }
        offset += size;
    }
    EXPECT_EQ(offset, static_cast<std::int64_t>(b.size()));

    // The first sample of used input 3 (the second used channel) in scan 2.
    const std::int64_t q = T(4) + T(0) + T(3) + 2080 + T(1) + setup;
    const std::int64_t at = q + (kBlock * 4 + 12) * 3 + kBlock * 4;
    EXPECT_EQ(le::f32(&b[static_cast<std::size_t>(at)]), sampleOf(3, kBlock));
    // The test definition's bytes close the file.
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&b[b.size() - 11]), 11), "hello plan!");
}

TEST(TrcRecording, ReadsBackWhatWasWritten) {
    nvdl::test::TempDir dir;
    for (long dataSize : {0L, 2L}) {
        SCOPED_TRACE(dataSize);
        const std::string name = dir.file("r" + std::to_string(dataSize) + ".trc").string();
        writeRecording(name, dataSize);
        CTrc trc;
        ASSERT_TRUE(trc.Open(name.c_str()));
        EXPECT_FALSE(trc.GetRecorder().IsRead());  // opening reads the root table only
        ASSERT_TRUE(trc.GetRecorder().Read());
        CTrcSetupSection& setup = trc.GetRecorder().GetHeader().GetSetup();
        EXPECT_EQ(trc.GetRecorder().GetHeader().GetDataSize(), dataSize);
        EXPECT_EQ(setup.GetAcquisition().GetBlocksize(), kBlock);
        EXPECT_EQ(setup.GetProcessing().GetAverageNumber(), kScans);
        ASSERT_EQ(setup.GetInputs().GetTotalChannels(), 3);
        EXPECT_EQ(setup.GetInputs().GetUsedChannels(), 2);
        EXPECT_STREQ(setup.GetInputs().GetItem(2)->GetName(), "Point 3");
        EXPECT_FLOAT_EQ(setup.GetTachos().GetItem(0)->GetEndRPM(), 6000.0f);

        // A span across blocks, starting inside one, of every used channel.
        const long first = kBlock / 2, count = 3 * kBlock;
        for (long channel : {1L, 3L, 4L}) {
            auto& part = channel == 4 ? static_cast<CTrcRecorderChannelSection&>(trc.GetRecorder().GetTachoSection())
                                      : trc.GetRecorder().GetInputSection();
            std::vector<unsigned char> span(static_cast<std::size_t>(count * 4));
            ASSERT_TRUE(part.ReadChannel(channel, first, span.data(), count));
            for (long i = 0; i < count; i += 7) {
                if (dataSize == 0) EXPECT_EQ(le::i16(&span[static_cast<std::size_t>(i * 2)]), rawOf(channel, first + i));
                else EXPECT_EQ(le::f32(&span[static_cast<std::size_t>(i * 4)]), sampleOf(channel, first + i));
            }
            CTrcScanInfo info;
            ASSERT_TRUE(part.ReadInfo(3, channel, info));
            EXPECT_EQ(info.GetStatus(), channel == 3 ? 1 : 0);
            EXPECT_FLOAT_EQ(info.GetRange(), kRanges[channel == 4 ? 0 : channel - 1] + 3.0f);
        }
        EXPECT_FALSE(trc.GetRecorder().GetInputSection().ReadChannel(2, 0, nullptr, 1));  // unused

        ASSERT_TRUE(trc.GetMeasurements().Read(-1));
        ASSERT_EQ(trc.GetMeasurements().GetCount(), 2);
        CTrcMeasurementSection& frf = *trc.GetMeasurements().GetItem(1);
        EXPECT_STREQ(frf.GetHeader().GetName(), "FRF Point 3");
        EXPECT_EQ(frf.GetHeader().GetSize(), 40);
        ASSERT_EQ(frf.GetMeasurements().GetCount(), 2);
        float v[3];
        ASSERT_TRUE(frf.GetData().GetY().ReadImag(37, v, 3));
        EXPECT_EQ(v[2], -5.0f + 39.0f);
        ASSERT_TRUE(frf.GetData().GetX().Read(0, v, 1));
        EXPECT_EQ(v[0], 0.5f);
        ASSERT_TRUE(frf.GetMeasurements().GetItem(1)->GetData().GetY().ReadReal(19, v, 1));
        EXPECT_EQ(v[0], 14.0f + 19.0f);
        ASSERT_TRUE(trc.GetMeasurements().GetItem(0)->GetData().GetY().ReadReal(63, v, 1));
        EXPECT_EQ(v[0], 63.0f);

        ASSERT_TRUE(trc.GetTestDefinition().Read());
        unsigned char text[5] = {};
        ASSERT_TRUE(trc.GetTestDefinition().GetData().Read(6, text, 4));
        EXPECT_STREQ(reinterpret_cast<char*>(text), "plan");
        ASSERT_TRUE(trc.GetSetups().Read());
        EXPECT_EQ(trc.GetSetups().GetCount(), 0);
        EXPECT_TRUE(trc.Close());
        EXPECT_FALSE(trc.IsOpened());
    }
}

TEST(TrcRecording, FilesThatAreNoRecordings) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("bad.trc").string();
    CTrc trc;
    EXPECT_FALSE(trc.Open(dir.file("missing.trc").string().c_str()));
    std::ofstream(name, std::ios::binary).flush();  // zero bytes
    EXPECT_FALSE(trc.Open(name.c_str()));
    {
        std::vector<unsigned char> b(96, 0);
        le::put32(b.data(), 20040309);  // a root table of no entries
        std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), 96);
    }
    ASSERT_TRUE(trc.Open(name.c_str()));
    EXPECT_FALSE(trc.GetRecorder().Read());
    EXPECT_FALSE(trc.GetMeasurements().Read(-1));
    EXPECT_FALSE(trc.GetTestDefinition().Read());
    EXPECT_FALSE(trc.GetRecorder().IsRead());
}

namespace {

}  // namespace

TEST(TrcRecording, ToolListsChannelsAndMeasurements) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("listed.trc").string();
    writeRecording(name, 0);
    int status = -1;
    EXPECT_EQ(runTool("info " + name, status),
              "recording\t20040309\t5\t16\t2048\n"
              "channel\t1\tPoint 1\t1\t5\n"
              "channel\t2\tPoint 2\t0\t2\n"
              "channel\t3\tPoint 3\t1\t10\n"
              "channel\t4\tShaft\t1\t12000\n"
              "measurement\t0\tAutopower Point 1\t12\t64\t0\n"
              "measurement\t1\tFRF Point 3\t14\t40\t2\n");
    EXPECT_EQ(status, 0);
    std::filesystem::resize_file(name, 2000);  // the recorder's setup cut off
    EXPECT_EQ(runTool("info " + name, status), "");
    EXPECT_NE(status, 0);
}
