// The averaged channel analysis called directly: how records are cut into blocks, how the block
// estimates are averaged and scaled, spans read from records paged from a recording, and the
// third-octave bands of an autopower.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "access/RecordingBuilder.h"
#include "analysis/BlockPlan.h"
#include "analysis/BlockReader.h"
#include "analysis/ChannelAnalysis.h"
#include "analysis/ChannelFiles.h"
#include "analysis/Peaks.h"
#include "nvdl/nvdl.h"
#include "project/SettingsFileTest.h"

namespace nvdl::analysis {
namespace {

constexpr double kRate = 1024.0;

ComPtr<IMeasurement> timeRecord(const std::vector<float>& samples, const char* name) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(CreateObject(u"nv_bench.measurement", object.out()), S_OK);
    ComPtr<IMeasurement> m = ComPtr<IMeasurement>::query(object.get());
    m->put_Size(static_cast<LONG>(samples.size()));
    m->SetYValues(0, static_cast<LONG>(samples.size()), samples.data(), nullptr);
    m->put_XIncrement(static_cast<float>(1.0 / kRate));
    m->put_FunctionType(Variant::fromLong(1001));
    m->put_Response(Bstr(std::string_view(name)).get());
    return m;
}

// A sine of `amplitude` at `hz` over `n` samples, with the amplitude `later` from sample `from` on.
std::vector<float> sine(std::size_t n, double hz, double amplitude, double later = 0.0, std::size_t from = SIZE_MAX) {
    std::vector<float> v(n);
    for (std::size_t i = 0; i < n; ++i)
        v[i] = static_cast<float>((i < from ? amplitude : later) * std::sin(2.0 * std::numbers::pi * hz * i / kRate));
    return v;
}

float valueAt(IMeasurement* m, LONG line) {
    float v = 0.0f;
    m->get_YReal(line, &v);
    return v;
}

TEST(MainJobBlocks, OverlapSetsTheStepAndTheRecordTheCount) {
    struct Case {
        std::int64_t samples;
        long block;
        double overlap;
        long averages;
        long step, count;  // count 0: refused
    };
    const Case cases[] = {
        {10000, 1000, 50.0, 0, 500, 19}, {10000, 1000, 0.0, 0, 1000, 10}, {10000, 1000, 75.0, 0, 250, 37},
        {1000, 1000, 50.0, 0, 500, 1},   {10000, 1000, 50.0, 5, 500, 5},  {10000, 1000, 66.7, 0, 333, 28},
        {10000, 1000, 50.0, 20, 0, 0},   {999, 1000, 0.0, 0, 0, 0},       {10000, 1000, 100.0, 0, 0, 0},
        {10000, 1, 0.0, 0, 0, 0},        {10000, 1000, -5.0, 0, 0, 0},
    };
    for (const Case& c : cases) {
        BlockPlan plan;
        std::string error;
        const bool planned = planBlocks(c.samples, c.block, c.overlap, c.averages, plan, error);
        SCOPED_TRACE(std::to_string(c.samples) + " samples, overlap " + std::to_string(c.overlap));
        ASSERT_EQ(planned, c.count > 0) << error;
        if (!planned) {
            EXPECT_FALSE(error.empty());
            continue;
        }
        EXPECT_EQ(plan.step, c.step);
        EXPECT_EQ(plan.count, c.count);
        EXPECT_LE(plan.start(plan.count - 1) + c.block, c.samples);
    }
}

// A sine on a line: its autopower is its mean square, its density sums to the same, and a second
// channel twice the first has an FRF of 2 and a coherence of 1 at the line.
TEST(MainJobAnalysis, SpectraOfASineAreScaledAsPowers) {
    const std::vector<float> x = sine(8192, 64.0, 3.0);
    std::vector<float> y(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) y[i] = 2.0f * x[i] + 0.01f * static_cast<float>((i * 7919) % 13) - 0.06f;
    ComPtr<IMeasurement> force = timeRecord(x, "x"), response = timeRecord(y, "y");
    AnalysisOptions options;
    options.block = 1024;
    ChannelAnalysis result;
    std::string error;
    ASSERT_TRUE(analyseChannels({force.get(), response.get()}, options, {}, result, error)) << error;
    EXPECT_EQ(result.averages, 15);
    EXPECT_FLOAT_EQ(result.windowBandwidth, 1.5f);
    const ChannelSpectra& in = result.channels[0];
    const LONG line = 64;  // 1 Hz lines
    EXPECT_NEAR(valueAt(in.autopower.get(), line), 4.5, 0.01);
    double power = 0.0;
    for (LONG i = line - 3; i <= line + 3; ++i) power += valueAt(in.psd.get(), i);  // times 1 Hz
    EXPECT_NEAR(power, 4.5, 0.01);
    EXPECT_FALSE(in.frf) << "the reference has no FRF of its own";
    const ChannelSpectra& out = result.channels[1];
    float re = 0, im = 0;
    out.frf->get_YReal(line, &re);
    out.frf->get_YImag(line, &im);
    EXPECT_NEAR(std::hypot(re, im), 2.0, 1e-3);
    EXPECT_NEAR(valueAt(out.coherence.get(), line), 1.0, 1e-3);
    EXPECT_NEAR(valueAt(out.cross.get(), line), 9.0, 0.02);
    LONG averages = 0;
    out.frf->get_Averages(&averages);
    EXPECT_EQ(averages, 15);
}

// Blocks without overlap from a record whose second half is three times louder: all blocks average
// both halves, the first two only the quiet one.
TEST(MainJobAnalysis, AveragesTakeTheBlocksFromTheStart) {
    const ComPtr<IMeasurement> record = timeRecord(sine(4096, 32.0, 1.0, 3.0, 2048), "x");
    for (const auto& [averages, expected] : {std::pair{0L, 2.5}, std::pair{2L, 0.5}, std::pair{3L, 1.0 / 3 * 5.5}}) {
        AnalysisOptions options;
        options.block = 1024;
        options.overlap = 0.0;
        options.averages = averages;
        ChannelAnalysis result;
        std::string error;
        ASSERT_TRUE(analyseChannels({record.get()}, options, {}, result, error)) << error;
        EXPECT_NEAR(valueAt(result.channels[0].autopower.get(), 32), expected, 1e-3) << averages << " averages";
    }
}

TEST(MainJobAnalysis, RefusesWhatIsNoTimeRecord) {
    const ComPtr<IMeasurement> a = timeRecord(sine(2048, 10.0, 1.0), "a"), b = timeRecord(sine(2048, 10.0, 1.0), "b");
    b->put_XIncrement(0.5f / kRate);
    AnalysisOptions options;
    options.block = 512;
    ChannelAnalysis result;
    std::string error;
    EXPECT_FALSE(analyseChannels({a.get(), b.get()}, options, {}, result, error));
    EXPECT_NE(error.find("sampling rate"), std::string::npos) << error;
    b->put_FunctionType(Variant::fromLong(1002));
    EXPECT_FALSE(analyseChannels({a.get(), b.get()}, options, {}, result, error));
    EXPECT_NE(error.find("not an equidistant time record"), std::string::npos) << error;
}

// A sine in the middle of the 250 Hz third-octave band puts its rms value into that band only.
TEST(MainJobAnalysis, BandsHoldTheRootMeanSquareOfTheirLines) {
    const ComPtr<IMeasurement> record = timeRecord(sine(4096, 250.0, 2.0), "x");
    AnalysisOptions options;
    options.block = 1024;
    ChannelAnalysis result;
    ComPtr<IMeasurement> bands;
    std::string error;
    ASSERT_TRUE(analyseChannels({record.get()}, options, {}, result, error)) << error;
    ASSERT_TRUE(octaveBands(result.channels[0].autopower.get(), 3, result.windowBandwidth, bands, error)) << error;
    const std::vector<double> levels = magnitudes(bands.get());
    ASSERT_FALSE(levels.empty());
    const auto loudest = std::max_element(levels.begin(), levels.end()) - levels.begin();
    std::vector<float> centres(levels.size());
    bands->GetXValues(0, static_cast<LONG>(levels.size()), centres.data());
    EXPECT_NEAR(centres[static_cast<std::size_t>(loudest)], 251.2, 0.5);
    EXPECT_NEAR(levels[static_cast<std::size_t>(loudest)], 2.0 / std::sqrt(2.0), 0.01);
    double rest = 0.0;
    for (std::size_t i = 0; i < levels.size(); ++i)
        if (static_cast<long>(i) != loudest) rest += levels[i] * levels[i];
    EXPECT_LT(rest, 1e-3);
}

// Channels of a long recording come paged from the file; a span comes from the right place
// wherever the block the record holds happens to start.
class MainJobPagedRecords : public test::SettingsFileTest {};

TEST_F(MainJobPagedRecords, SpansAreReadFromTheirOwnSamples) {
    writeSettings({{"HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings",
                    {{"LongFileFeature", "1"}, {"MaxBlockSize", "1024"}}}});
    testing::RecordingPlan plan;
    plan.block = 512;
    plan.scans = 16;
    plan.inputs = {{"Paged"}};
    plan.sample = [](long, std::int64_t i) { return static_cast<float>(i % 4093); };
    const std::string file = (dir_ / "paged.trc").string();
    ASSERT_TRUE(testing::writeRecording(file, plan));
    TimeRecords loaded;
    std::string error;
    ASSERT_TRUE(loadTimeRecords(file, loaded, error)) << error;
    IMeasurement* record = loaded.records.front().get();
    LONG size = 0;
    record->get_Size(&size);
    ASSERT_EQ(size, 1024) << "the record is held a block at a time";
    ASSERT_EQ(recordLength(record), 8192);
    std::vector<float> span(512);
    for (std::int64_t start : {0L, 700L, 1000L, 3000L, 7680L, 500L}) {
        ASSERT_TRUE(readSpan(record, start, 512, span.data(), error)) << start << ": " << error;
        for (std::size_t i : {std::size_t{0}, std::size_t{311}, std::size_t{511}})
            EXPECT_EQ(span[i], plan.sample(1, start + static_cast<std::int64_t>(i))) << start << " + " << i;
    }
    EXPECT_FALSE(readSpan(record, 7800, 512, span.data(), error)) << "past the end";
    std::vector<float> wide(2048);
    EXPECT_FALSE(readSpan(record, 0, 2048, wide.data(), error)) << "longer than a block";
}

}  // namespace
}  // namespace nvdl::analysis
