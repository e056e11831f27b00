// Converting a TEAC recording: Convert drives the test reader of another module (teac/) and writes a
// project file that loads back with one workspace of one time record per channel.
#include <gtest/gtest.h>

#include <fstream>

#include "ProjectTestSupport.h"
#include "SettingsFileTest.h"
#include "nvdl/IMeasurement.h"
#include "nvdl/ITeacReader.h"
#include "platform/Host.h"
#include "project/Project.h"
#include "teac/TeacSignal.h"

namespace nvdl::test {
namespace {

class TeacConversion : public SettingsFileTest {
protected:
    void SetUp() override {
        SettingsFileTest::SetUp();
        target_ = dir_ / "converted.vpj";
    }
    void TearDown() override {
        host::setProgressHandler({});
        SettingsFileTest::TearDown();
    }
    // ".teac" files are of the TEAC reader's class, which is their loader and is served by `library`.
    void registerReader(const std::string& library) {
        const std::string cls = formatGuid(CLSID_TeacRecordingReader), key = "HKEY_CLASSES_ROOT\\CLSID\\" + cls;
        std::vector<std::pair<std::string, Values>> keys = {{key + "\\CLSIDLoader", {{"", cls}}},
                                                            {"HKEY_CLASSES_ROOT\\Test.Teac\\CLSID", {{"", cls}}},
                                                            {"HKEY_CLASSES_ROOT\\.teac", {{"", "Test.Teac"}}}};
        if (!library.empty()) keys.push_back({key + "\\InprocServer32", {{"", library}}});
        writeSettings(keys);
    }
    // Converts a recording of the reader's settings `recording`; the count comes back in `count`.
    HRESULT convert(const std::string& recording, LONG& count) {
        std::ofstream(dir_ / "rec.teac") << recording;
        ComPtr<IProject> project = newProject();
        const Bstr source(std::string_view{(dir_ / "rec.teac").string()}), target(std::string_view{target_.string()});
        return project->Convert(source.get(), target.get(), &count);
    }
    // The measurements of the one workspace of the converted project.
    ComPtr<ICollection> convertedMeasurements(ComPtr<IProject>& project) {
        project = newProject();
        EXPECT_EQ(loadProject(project.get(), target_), S_OK);
        ComPtr<ICollection> workspaces, measurements;
        project->get_Workspaces(workspaces.out());
        EXPECT_EQ(namesOf(workspaces.get()), std::vector<std::string>{"Workspace1"});
        if (countOf(workspaces.get()) == 1)
            ComPtr<IWorkspace>::query(itemAt(workspaces.get(), 0).get())->get_Measurements(measurements.out());
        return measurements;
    }
    // Each record holds `samples` samples of its channel's sine, with the channel's name and unit.
    void expectRecords(ICollection* measurements, long channels, long samples, double rate) {
        const char* units[] = {"Pa", "m/s^2", "V"};
        ASSERT_EQ(countOf(measurements), channels);
        for (long c = 0; c < channels; ++c) {
            ComPtr<IMeasurement> m = ComPtr<IMeasurement>::query(itemAt(measurements, c).get());
            EXPECT_EQ(getText(m.get(), u"Name"), "Meas<" + std::to_string(c) + ">");
            EXPECT_EQ(getText(m.get(), u"StorageUnitY"), units[c % 3]);
            EXPECT_EQ(getText(m.get(), u"Response"), "Ch" + std::to_string(c + 1));
            float increment = 0;
            LONG size = -1;
            m->get_XIncrement(&increment);
            m->get_FileSamples(&size);
            EXPECT_FLOAT_EQ(increment, static_cast<float>(1.0 / rate));
            ASSERT_EQ(size, samples) << c;
            std::vector<float> values(static_cast<std::size_t>(samples));
            if (samples > 0) m->GetYValues(0, static_cast<LONG>(samples), values.data(), nullptr);
            for (long i = 0; i < samples; ++i)
                ASSERT_EQ(values[static_cast<std::size_t>(i)], teacSample(c, i, rate)) << c << " " << i;
        }
    }

    std::filesystem::path target_;
};

TEST_F(TeacConversion, EveryChannelBecomesARecordOfTheOneWorkspace) {
    registerReader(NVDL_TEST_TEAC_READER);
    const struct {
        long channels, samples, block, rate;
    } rows[] = {{3, 1000, 256, 2048}, {1, 512, 512, 1000}, {4, 70, 64, 500}, {2, 0, 64, 1000},
                  {1, 5600000, 65536, 48000}};  // passes the byte count of a commit on the way
    for (const auto& row : rows) {
        SCOPED_TRACE(row.channels * 1000000 + row.samples);
        std::ofstream(target_) << "an older file of another kind, replaced";
        std::vector<int> percents;
        host::setProgressHandler([&](int percent, const std::string&) { return percents.push_back(percent), true; });
        LONG count = 0;
        ASSERT_EQ(convert("channels " + std::to_string(row.channels) + "\nsamples " + std::to_string(row.samples) +
                              "\nblock " + std::to_string(row.block) + "\nrate " + std::to_string(row.rate),
                          count),
                  S_OK);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(percents.size(), static_cast<std::size_t>((row.samples + row.block - 1) / row.block));
        EXPECT_EQ(percents.empty() ? 100 : percents.back(), 100);
        ComPtr<IProject> project;
        ComPtr<ICollection> measurements = convertedMeasurements(project);
        expectRecords(measurements.get(), row.channels, row.samples, static_cast<double>(row.rate));
    }
}

TEST_F(TeacConversion, FailuresLeaveTheCountAtMinusOne) {
    const struct {
        std::string library, recording;
        HRESULT expected;
    } rows[] = {
        {NVDL_TEST_TEAC_READER, "channels 2 samples 10 block 5 rate 100 status -1", E_FAIL},  // open reports failure
        {NVDL_TEST_TEAC_READER, "channels 2 samples 10 block 5 rate 100 closed 1", E_FAIL},   // open test says 0
        {NVDL_TEST_TEAC_READER, "channels 0 samples 10 block 5 rate 100", E_FAIL},             // no channel
        {NVDL_TEST_TEAC_READER, "channels 2 samples 10 block 5 rate 0", E_FAIL},               // no sample frequency
        {"", "channels 2 samples 10 block 5 rate 100", REGDB_E_CLASSNOTREG},
        {"libm.so.6", "channels 2 samples 10 block 5 rate 100", CO_E_ERRORINDLL},
    };
    for (const auto& row : rows) {
        registerReader(row.library);
        LONG count = 0;
        EXPECT_EQ(convert(row.recording, count), row.expected) << row.recording << " " << row.library;
        EXPECT_EQ(count, -1) << row.recording;
    }
    ComPtr<IProject> project = newProject();
    EXPECT_EQ(dynamic_cast<CProject*>(CFrameBase::of(project.get()))->ConvertTEACtoVPJ("a.teac", "b.vpj", nullptr), E_FAIL);
}

TEST_F(TeacConversion, ACancelEndsTheCopyAndLeavesAReadableFile) {
    registerReader(NVDL_TEST_TEAC_READER);
    int reports = 0;
    host::setProgressHandler([&](int, const std::string&) { return ++reports < 2; });
    LONG count = 0;
    EXPECT_EQ(convert("channels 2 samples 1000 block 100 rate 1000", count), E_ABORT);
    EXPECT_EQ(count, -1);
    EXPECT_EQ(reports, 2);
    ComPtr<IProject> project;
    ComPtr<ICollection> measurements = convertedMeasurements(project);
    expectRecords(measurements.get(), 2, 200, 1000.0);
}

}  // namespace
}  // namespace nvdl::test
