// The loader's own settings, file states, data format and conversions to physical units.
#include <gtest/gtest.h>

#include "../project/SettingsFileTest.h"
#include "RecordingBuilder.h"
#include "access/TrcLoader.h"

using nvdl::access::CTrcLoader;
using namespace nvdl::testing;

namespace {

class TrcLoaderCore : public nvdl::test::SettingsFileTest {
protected:
    std::string path(const char* name) const { return (dir_ / name).string(); }
    void settings(const Values& values) {
        writeSettings({{"HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings", values}});
    }
};

TEST_F(TrcLoaderCore, SettingsGiveBlockSizeAndFeature) {
    settings({});
    CTrcLoader plain;
    EXPECT_EQ(plain.GetMaxBlockSize(), 32768);
    EXPECT_EQ(plain.GetLongFileFeature(), 0);
    settings({{"MaxBlockSize", "1000"}, {"LongFileFeature", "1"}});
    CTrcLoader configured;
    EXPECT_EQ(configured.GetMaxBlockSize(), 1000);
    EXPECT_EQ(configured.GetLongFileFeature(), 1);
    ASSERT_TRUE(configured.SetMaxBlockSize(4096));
    EXPECT_EQ(CTrcLoader().GetMaxBlockSize(), 4096);
}

TEST_F(TrcLoaderCore, OpenCloseAndDataFormat) {
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
    EXPECT_FALSE(loader.GetLog().IsStarted());  // the trace stays off
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

TEST(TrcLoaderConversions, SamplesScansAndUnits) {
    EXPECT_FLOAT_EQ(CTrcLoader::ScaleSample(32767, CTrcLoader::ScaleOfRange(10.0f)), 10.0f);
    EXPECT_FLOAT_EQ(CTrcLoader::ScaleSample(32767, CTrcLoader::ScaleOfRange(0.0f)), 1.0f);
    EXPECT_EQ(CTrcLoader::ScaleSample(100, 0.0f), 0.0f);

    struct Case { std::int64_t sample, total; long block, scan; };
    for (const Case& c : {Case{2500, 2000, 1000, 2}, Case{1999, 2000, 1000, 1}, Case{0, 2000, 1000, 0},
                          Case{-1, 2000, 1000, -1}, Case{5, 0, 1000, -1}, Case{5, 2000, 0, -1}})
        EXPECT_EQ(CTrcLoader::ScanFromSample(c.sample, c.total, c.block), c.scan) << c.sample;

    float offset = 0.0f, factor = 0.0f;
    ASSERT_TRUE(CTrcLoader::GetUnitConversion("V", 100.0f, "mv/eu", 0.0f, 0.0f, &offset, &factor));
    EXPECT_FLOAT_EQ(factor, 10.0f);
    ASSERT_TRUE(CTrcLoader::GetUnitConversion("V", 100.0f, "V/EU", 4.0f, 0.0f, &offset, &factor));
    EXPECT_FLOAT_EQ(factor, 25.0f);  // a pre-gain divides
    // A unit with a scale: millivolts are a thousandth of a volt, the channel offset in those units.
    ASSERT_TRUE(CTrcLoader::GetUnitConversion("mV", 1.0f, "V/EU", 0.0f, 2.0f, &offset, &factor));
    EXPECT_FLOAT_EQ(factor, 0.001f);
    EXPECT_FLOAT_EQ(offset, -0.002f);
    EXPECT_NEAR(CTrcLoader::GetRpmFactor(), 0.10471976f, 1e-6f);
}

}  // namespace
