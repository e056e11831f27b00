// The loader's settings, file states and conversions; scans read from recordings in physical units,
// and the tacho's samples of a scan.
#include <gtest/gtest.h>

#include <cmath>

#include "LoaderTest.h"
#include "RecordingBuilder.h"
#include "access/TrcLoader.h"

using nvdl::access::CTrcLoader;
using namespace nvdl::testing;

namespace {

// Inputs (the second unused), each with the factor its unit, sensitivity, type and pre-gain make.
const std::pair<InputPlan, float> kInputs[] = {
    {{"plain", 10.0f}, 1.0f},
    {{"unused", 10.0f, false}, 1.0f},
    {{"charge", 5.0f, true, "V", 100.0f, "mv/eu"}, 10.0f},  // the type's case does not matter
    {{"gained", 2.0f, true, "V", 2.0f, "V/EU", 4.0f}, 0.5f},
    {{"milli", 1.0f, true, "mV", 1.0f, "V/EU"}, 0.001f},
};

class TrcLoader : public LoaderTest {
protected:
    RecordingPlan plan(bool floats, std::vector<float> tachos = {}) {
        RecordingPlan p;
        p.floats = floats;
        p.block = 16;
        p.scans = 4;
        for (const auto& input : kInputs) p.inputs.push_back(input.first);
        p.tachoEndRpm = std::move(tachos);
        p.status = [](long number, long scan) { return (number + scan) % 3; };
        p.range = [](long number, long scan) { return static_cast<float>(number) + 0.25f * static_cast<float>(scan); };
        return p;
    }
    void open(CTrcLoader& loader, const RecordingPlan& p) {
        ASSERT_TRUE(writeRecording(path("r.trc"), p));
        ASSERT_TRUE(loader.OpenFile(path("r.trc").c_str()));
    }
    // A stored sample in range units: 16-bit samples scale by the range.
    static float inRange(const RecordingPlan& p, long number, std::int64_t i, float range) {
        return p.floats ? p.sample(number, i) : p.sample(number, i) * range / 32767.0f;
    }
    std::vector<float> data = std::vector<float>(8 * 16);
    long status[8] = {};
    float range[8] = {};
};

TEST_F(TrcLoader, SettingsGiveBlockSizeAndFeature) {
    settings({});
    EXPECT_EQ(std::pair(CTrcLoader().GetMaxBlockSize(), CTrcLoader().GetLongFileFeature()), std::pair(32768L, 0));
    settings(1000, 1);
    CTrcLoader configured;
    EXPECT_EQ(std::pair(configured.GetMaxBlockSize(), configured.GetLongFileFeature()), std::pair(1000L, 1));
    ASSERT_TRUE(configured.SetMaxBlockSize(4096));
    EXPECT_EQ(CTrcLoader().GetMaxBlockSize(), 4096);  // kept in the settings
}

TEST_F(TrcLoader, OpenCloseAndDataFormat) {
    RecordingPlan plan;
    plan.floats = false;
    plan.inputs = {{"a"}};
    ASSERT_TRUE(writeRecording(path("r.trc"), plan));
    CTrcLoader loader;
    long bits = 0;
    float scaling = 0.0f;
    EXPECT_FALSE(loader.GetDataFormat(&bits, &scaling));  // nothing open
    EXPECT_FALSE(loader.OpenFile(""));
    EXPECT_FALSE(loader.OpenFile(path("missing.trc").c_str()));
    ASSERT_TRUE(loader.OpenFile(path("r.trc").c_str()));
    ASSERT_TRUE(loader.GetDataFormat(&bits, &scaling));
    EXPECT_EQ(bits, 16);
    ASSERT_TRUE(loader.PrepareNew(path("new.trc").c_str()));  // closes the open file first
    EXPECT_FALSE(loader.IsFileOpened());
    EXPECT_EQ(loader.GetPreviousName(), "");
    for (long asked : {16L, 24L}) {
        ASSERT_TRUE(loader.SetDataFormat(asked, 1.0f));
        EXPECT_EQ(loader.GetRecorder().GetHeader().GetDataSize(), 0) << asked;
    }
    ASSERT_TRUE(loader.SetDataFormat(32, 2.5f));
    EXPECT_NE(loader.GetRecorder().GetHeader().GetDataSize(), 0);
    loader.CloseFile();
    EXPECT_EQ(loader.GetPreviousName(), path("new.trc"));
    EXPECT_FALSE(loader.SetDataFormat(32, 1.0f));  // neither open nor armed
}

TEST(TrcLoaderConversions, SamplesScansAndOffsets) {
    EXPECT_FLOAT_EQ(CTrcLoader::ScaleSample(32767, CTrcLoader::ScaleOfRange(0.0f)), 1.0f);  // no range: full scale 1
    EXPECT_EQ(CTrcLoader::ScaleSample(100, 0.0f), 0.0f);
    struct Case { std::int64_t sample, total; long block, scan; };
    for (const Case& c : {Case{2500, 2000, 1000, 2}, Case{1999, 2000, 1000, 1}, Case{0, 2000, 1000, 0},
                          Case{-1, 2000, 1000, -1}, Case{5, 0, 1000, -1}, Case{5, 2000, 0, -1}})
        EXPECT_EQ(CTrcLoader::ScanFromSample(c.sample, c.total, c.block), c.scan) << c.sample;
    // A unit with a scale: millivolts are a thousandth of a volt, the channel offset in those units.
    float offset = 0.0f, factor = 0.0f;
    ASSERT_TRUE(CTrcLoader::GetUnitConversion("mV", 1.0f, "V/EU", 0.0f, 2.0f, &offset, &factor));
    EXPECT_FLOAT_EQ(factor, 0.001f);
    EXPECT_FLOAT_EQ(offset, -0.002f);
}

TEST_F(TrcLoader, ScansComeInPhysicalUnitsWithStatusAndRangeAndMoveTheCursor) {
    const long numbers[] = {5, 1, 3, 4};
    for (bool floats : {true, false})
        for (int convert : {1, 0}) {
            const RecordingPlan p = plan(floats);
            CTrcLoader loader;
            open(loader, p);
            for (long s = 1; s <= p.scans; ++s) {
                ASSERT_TRUE(loader.ReadScan(4, numbers, 16, data.data(), status, range, convert)) << s;
                EXPECT_EQ(loader.GetCurrentScan(), s + 1);
                for (long k = 0; k < 4; ++k) {
                    const auto& [input, factor] = kInputs[numbers[k] - 1];
                    EXPECT_EQ(status[k], p.status(numbers[k], s));
                    EXPECT_EQ(range[k], p.range(numbers[k], s));
                    for (long i = 0; i < 16; i += 5) {
                        const float want = (convert ? factor : 1.0f) * inRange(p, numbers[k], (s - 1) * 16 + i, input.range);
                        EXPECT_NEAR(data[k * 16 + i], want, 1e-4f * std::abs(want)) << floats << convert << numbers[k];
                    }
                }
            }
            // Behind the last scan there is no status record to read.
            EXPECT_FALSE(loader.ReadScan(4, numbers, 16, data.data(), status, range, convert));
        }
}

TEST_F(TrcLoader, RefusedReadsLeaveTheCursorAndAWindowMovesOnlyTheSamples) {
    const RecordingPlan p = plan(true);
    CTrcLoader loader;
    open(loader, p);
    const long one[] = {1}, unused[] = {2}, five[] = {1, 3, 4, 5, 1};
    struct Case { long channels; const long* numbers; long blocksize; } cases[] = {
        {1, one, 15}, {1, one, 17}, {0, one, 16}, {5, five, 16}, {1, nullptr, 16}, {1, unused, 16}};
    for (const Case& c : cases) {
        EXPECT_FALSE(loader.ReadScan(c.channels, c.numbers, c.blocksize, data.data(), status, range, 1)) << c.blocksize;
        EXPECT_EQ(loader.GetCurrentScan(), 1);
    }
    // The status record follows the cursor, the samples the window's scan.
    ASSERT_TRUE(loader.SetScanWindow(2));
    ASSERT_TRUE(loader.ReadScan(1, one, 16, data.data(), status, range, 0));
    EXPECT_EQ(data[15], p.sample(1, 2 * 16 + 15));
    EXPECT_EQ(status[0], p.status(1, 1));
    EXPECT_EQ(range[0], p.range(1, 1));
}

TEST_F(TrcLoader, RpmScanReadsTheOneTachoOfTheNextScanWithoutMovingTheCursor) {
    const long one[] = {1};
    for (bool floats : {true, false}) {
        const RecordingPlan p = plan(floats, {3000.0f});
        CTrcLoader loader;
        open(loader, p);
        for (long s = 1; s <= 2; ++s) {
            ASSERT_TRUE(loader.ReadRpmScan(16, data.data()));
            EXPECT_EQ(loader.GetCurrentScan(), s);
            EXPECT_NEAR(data[3], inRange(p, 6, (s - 1) * 16 + 3, 6000.0f), 1e-3f) << floats;
            ASSERT_TRUE(loader.ReadScan(1, one, 16, data.data() + 16, status, range, 0));
        }
        EXPECT_FALSE(loader.ReadRpmScan(15, data.data()));
    }
    CTrcLoader two;
    open(two, plan(true, {3000.0f, 6000.0f}));
    EXPECT_FALSE(two.ReadRpmScan(16, data.data()));
}

}  // namespace
