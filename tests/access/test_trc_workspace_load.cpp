// Recordings loaded into a workspace through the loader registry: the setup, one measurement per
// used channel pointing into the file with its values in physical units, the stored measurements
// when all sections are imported, and blocks paged from the file on demand.
#include <gtest/gtest.h>

#include <cmath>

#include "../frame/TestHelpers.h"
#include "../project/SettingsFileTest.h"
#include "../project/WorkspaceTestSupport.h"
#include "RecordingBuilder.h"
#include "nvdl/SafeArray.h"

using namespace nvdl;
using namespace nvdl::testing;
using nvdl::test::collectionNamed;
using nvdl::test::countOf;

namespace {

constexpr const char* kSettingsKey = "HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings";

class TrcWorkspaceLoad : public nvdl::test::SettingsFileTest {
protected:
    std::string path(const char* name) const { return (dir_ / name).string(); }
    void settings(const Values& values) { writeSettings({{kSettingsKey, values}}); }

    ComPtr<IWorkspace> load(const std::string& file) {
        ComPtr<IWorkspace> ws = nvdl::test::newWorkspace();
        const Bstr name(std::string_view{file});
        Variant loader;
        EXPECT_EQ(ws->Load(name.get(), loader), S_OK) << file;
        return ws;
    }
    static ComPtr<IMeasurement> item(ICollection* c, LONG index) {
        return ComPtr<IMeasurement>::query(nvdl::test::itemAt(c, index).get());
    }
    static std::vector<float> yReal(IMeasurement* m) {
        Variant v;
        EXPECT_EQ(m->get_YRealArray(&v), S_OK);
        std::span<float> values = floatArrayData(v.parray);
        return {values.begin(), values.end()};
    }
    static std::string text(IMeasurement* m, const char16_t* name) { return nvdl::test::getText(m, name); }
};

RecordingPlan mixedPlan(bool floats) {
    RecordingPlan plan;
    plan.floats = floats;
    plan.block = 32;
    plan.scans = 4;
    plan.sampleFrequency = 512.0f;
    plan.inputs = {{"Force", 5.0f, true, "N", 1.0f, "V/EU"},
                   {"Spare", 1.0f, false},
                   {"Accel", 2.0f, true, "V", 100.0f, "mV/EU"}};
    plan.tachoEndRpm = {3000.0f};
    plan.stored = {{"Autopower Force", 20, false, 1}, {"FRF Accel", 12, true, 1102}};
    plan.sample = [](long number, std::int64_t i) { return static_cast<float>(number * 1000 + i % 50 - 25); };
    return plan;
}

TEST_F(TrcWorkspaceLoad, ChannelsArriveInPhysicalUnits) {
    for (bool floats : {true, false}) {
        SCOPED_TRACE(floats ? "float samples" : "16-bit samples");
        settings({});
        const RecordingPlan plan = mixedPlan(floats);
        ASSERT_TRUE(writeRecording(path("run.trc"), plan));
        ComPtr<IWorkspace> ws = load(path("run.trc"));
        ComPtr<ICollection> ms = collectionNamed(ws.get(), u"Measurements");
        ASSERT_EQ(countOf(ms.get()), 3);  // two used inputs and the tacho; stored ones not asked for
        EXPECT_EQ(countOf(collectionNamed(ws.get(), u"Setups").get()), 1);

        struct Expected { const char* name; long number; double scale; const char* address; };
        // 16-bit samples are in full-scale units of the range; the tacho's range is twice its end rpm
        // and its values are rotation speed in the base unit (rad/s).
        const double rpm = 2.0 * std::acos(-1.0) / 60.0;
        const Expected expected[] = {
            {"Force", 1, floats ? 1.0 : 5.0 / 32767.0, "nv_bench.io_newtrc:Recorder(Input):0"},
            {"Accel", 3, (floats ? 1.0 : 2.0 / 32767.0) * 10.0, "nv_bench.io_newtrc:Recorder(Input):2"},
            {"Tacho 1", 4, (floats ? 1.0 : 6000.0 / 32767.0) * rpm, "nv_bench.io_newtrc:Recorder(Rpm):0"},
        };
        for (LONG i = 0; i < 3; ++i) {
            ComPtr<IMeasurement> m = item(ms.get(), i);
            const Expected& e = expected[i];
            EXPECT_EQ(text(m.get(), u"Response"), e.name);
            EXPECT_EQ(text(m.get(), u"ChannelFileID"), e.address);
            EXPECT_NE(text(m.get(), u"Name").find(std::string("(") + e.name + "," + e.name + ")"), std::string::npos);
            float increment = 0;
            m->get_XIncrement(&increment);
            EXPECT_FLOAT_EQ(increment, 1.0f / 512.0f);
            const std::vector<float> values = yReal(m.get());
            ASSERT_EQ(values.size(), 128u);
            for (std::size_t k : {0u, 17u, 127u})
                EXPECT_NEAR(values[k], plan.sample(e.number, static_cast<std::int64_t>(k)) * e.scale,
                            1e-4 * std::abs(values[k]) + 1e-6)
                    << e.name << " at " << k;
        }
        ws = {};
    }
}

TEST_F(TrcWorkspaceLoad, ImportOfAllSectionsBringsStoredMeasurements) {
    settings({{"ImportAllTRCFlag", "1"}});
    RecordingPlan plan = mixedPlan(true);
    ASSERT_TRUE(writeRecording(path("run.trc"), plan));
    ComPtr<IWorkspace> ws = load(path("run.trc"));
    ComPtr<ICollection> ms = collectionNamed(ws.get(), u"Measurements");
    ASSERT_EQ(countOf(ms.get()), 5);
    ComPtr<IMeasurement> frf = item(ms.get(), 4);
    EXPECT_EQ(text(frf.get(), u"Name"), "FRF Accel");
    EXPECT_EQ(text(frf.get(), u"ChannelFileID"), "nv_bench.io_newtrc:Measurements:1");
    const std::vector<float> re = yReal(frf.get());
    ASSERT_EQ(re.size(), 12u);
    Variant im, x;
    ASSERT_EQ(frf->get_YImagArray(&im), S_OK);
    ASSERT_EQ(frf->get_XArray(&x), S_OK);
    for (long i = 0; i < 12; ++i) {
        EXPECT_FLOAT_EQ(re[static_cast<std::size_t>(i)], storedValue(2, i));
        EXPECT_FLOAT_EQ(floatArrayData(im.parray)[static_cast<std::size_t>(i)], storedImag(2, i));
        EXPECT_FLOAT_EQ(floatArrayData(x.parray)[static_cast<std::size_t>(i)], storedX(2, i));
    }
}

// A channel longer than a block arrives as a min/max picture and pages its blocks from the file.
TEST_F(TrcWorkspaceLoad, LongChannelsArriveReducedAndPageOnDemand) {
    settings({{"LongFileFeature", "1"}, {"MaxBlockSize", "64"}});
    RecordingPlan plan;
    plan.block = 64;
    plan.scans = 8;  // 512 samples: 32 steps of 16 samples
    plan.inputs = {{"Long"}};
    plan.sample = [](long, std::int64_t i) { return static_cast<float>((i * 37) % 101); };
    ASSERT_TRUE(writeRecording(path("long.trc"), plan));
    ComPtr<IWorkspace> ws = load(path("long.trc"));
    ComPtr<IMeasurement> m = item(collectionNamed(ws.get(), u"Measurements").get(), 0);
    LONG size = 0, fileSamples = 0;
    float factor = 0;
    m->get_Size(&size);
    m->get_FileSamples(&fileSamples);
    m->get_CompressionFactor(&factor);
    EXPECT_EQ(size, 64);
    EXPECT_EQ(fileSamples, 512);
    EXPECT_FLOAT_EQ(factor, 8.0f);
    const std::vector<float> picture = yReal(m.get());
    ASSERT_EQ(picture.size(), 64u);
    for (std::size_t step = 0; step < 32; ++step) {
        float lo = 1e9f, hi = -1e9f;
        for (std::int64_t i = 0; i < 16; ++i) {
            const float v = plan.sample(1, static_cast<std::int64_t>(step) * 16 + i);
            lo = std::min(lo, v);
            hi = std::max(hi, v);
        }
        EXPECT_EQ(picture[2 * step], lo) << step;
        EXPECT_EQ(picture[2 * step + 1], hi) << step;
    }
    // A span that fits a block comes straight from the file: every value at its own index.
    ASSERT_EQ(m->ReadData(100, 50), S_OK);
    for (LONG index : {100L, 120L, 149L}) {
        float value = 0;
        ASSERT_EQ(m->get_YReal(index, &value), S_OK);
        EXPECT_EQ(value, plan.sample(1, index)) << index;
    }
}

TEST_F(TrcWorkspaceLoad, FilesThatCannotBeLoaded) {
    settings({});
    RecordingPlan plan = mixedPlan(true);
    ASSERT_TRUE(writeRecording(path("run.trc"), plan));
    std::filesystem::resize_file(path("run.trc"), 200);  // the recorder's section is gone
    ComPtr<IWorkspace> ws = nvdl::test::newWorkspace();
    Variant loader = Variant::fromAnsi("nv_bench.io_newtrc");
    for (const std::string& file : {path("run.trc"), path("missing.trc")}) {
        const Bstr name(std::string_view{file});
        EXPECT_TRUE(FAILED(ws->Load(name.get(), loader))) << file;
        EXPECT_EQ(countOf(collectionNamed(ws.get(), u"Measurements").get()), 0);
    }
}

}  // namespace
