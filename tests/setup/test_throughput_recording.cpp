// The throughput section as the script's door to recordings.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "../access/RecordingBuilder.h"
#include "../project/SettingsFileTest.h"
#include "access/SetupAccess.h"
#include "access/TrcLoader.h"
#include "nvdl/Bstr.h"
#include "platform/FileSizeText.h"
#include "platform/Host.h"
#include "setup/InputChannel.h"
#include "setup/Throughput.h"

namespace nvdl {
namespace {

class ThroughputRecording : public test::SettingsFileTest {
protected:
    IThroughput* t() { return access::frameOf<CThroughput>(object.get()); }
    Bstr name(const char* file) const { return Bstr(std::string_view(*file ? (dir_ / file).string() : "")); }
    HRESULT open(const char* file) { return t()->Open(name(file).get(), &bits, &scaling, &result); }
    SHORT opened() {
        SHORT value = 5;
        EXPECT_EQ(t()->get_IsOpened(&value), E_FAIL);  // whether open or not
        return value;
    }
    ComPtr<IDispatch> object{CThroughput::create()};
    LONG bits = 0, result = 0;
    float scaling = 0;
};

TEST_F(ThroughputRecording, OpenReadAndClose) {
    testing::RecordingPlan plan;
    plan.floats = false;
    plan.block = 8;
    plan.inputs = {{"a", 10.0f}, {"b", 2.0f}};
    plan.tachoEndRpm = {1200.0f};
    ASSERT_TRUE(testing::writeRecording((dir_ / "r.trc").string(), plan));
    {
        trc::CTrc disabled;  // a recorder header with Enabled 0
        testing::fillRecorder(disabled, plan);
        disabled.GetRecorder().GetHeader().SetEnabled(0);
        ASSERT_TRUE(disabled.Create((dir_ / "off.trc").string().c_str()) && disabled.GetRecorder().Write());
    }
    ComPtr<ISetup> setup;
    EXPECT_EQ(t()->get_ThroughputSetup(setup.out()), E_FAIL);
    for (const char* refused : {"off.trc", "missing.trc", ""}) {
        ASSERT_EQ(open("r.trc"), S_OK);
        EXPECT_EQ(open(refused), E_FAIL) << refused;
        EXPECT_EQ(opened(), 0) << refused;
    }
    EXPECT_EQ(t()->Open(nullptr, &bits, &scaling, &result), E_FAIL);
    EXPECT_EQ(t()->Close(&result), S_OK);
    EXPECT_EQ(result, -1);  // nothing was open

    ASSERT_EQ(open("r.trc"), S_OK);
    EXPECT_EQ(bits, 16);
    EXPECT_EQ(opened(), -1);
    ASSERT_EQ(t()->get_ThroughputSetup(setup.out()), S_OK);
    EXPECT_EQ(access::collectionOf(*access::frameOf<CSetup>(setup.get()), &CSetup::get_InputChannels)->size(), 2u);
    const LONG numbers[] = {2, 1};
    float data[16], range[2], rpm[8];
    LONG status[2] = {9, 9};
    EXPECT_EQ(t()->ReadRPMScan(8, rpm, &result), S_OK);
    EXPECT_NEAR(rpm[1], plan.sample(3, 1) * 2400.0f / 32767.0f, 1e-3f);
    ASSERT_EQ(t()->ReadScan(2, numbers, 8, data, status, range, &result), S_OK);
    EXPECT_EQ(result, 0);
    EXPECT_NEAR(data[8 + 3], plan.sample(1, 3) * 10.0f / 32767.0f, 1e-5f);
    EXPECT_EQ(range[0], 2.0f);
    EXPECT_EQ(t()->ReadScan(2, numbers, 8, data, status, range, nullptr), E_FAIL);
    EXPECT_EQ(t()->Close(&result), S_OK);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(t()->ReadScan(2, numbers, 8, data, status, range, &result), E_FAIL);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(t()->get_ThroughputSetup(setup.out()), S_OK);  // kept until the next Open
}

TEST_F(ThroughputRecording, CutAndReadMeasurementRefuseEmptyNames) {
    std::vector<std::string> shown;
    host::setMessageBoxHandler([&](const std::string& text, const std::string&, unsigned) {
        shown.push_back(text);
        return host::IDOK;
    });
    EXPECT_EQ(t()->Cut(name("").get(), name("x.trc").get(), 0.0f, 1.0f, &result), E_FAIL);
    EXPECT_EQ(t()->Cut(name("x.trc").get(), nullptr, 0.0f, 1.0f, &result), E_FAIL);
    host::setMessageBoxHandler({});
    EXPECT_EQ(shown, (std::vector<std::string>{"Invalid input filename", "Invalid output filename"}));
    IMeasurement* measurement = reinterpret_cast<IMeasurement*>(0x1);
    EXPECT_EQ(t()->ReadMeasurement(nullptr, 1, &measurement, &result), E_POINTER);
    EXPECT_EQ(measurement, nullptr);
    EXPECT_EQ(result, -1);
}

TEST_F(ThroughputRecording, EstimateIsCountTimesTheFileTheSetupMakesAndFreeSpaceIsTold) {
    ComPtr<IDispatch> setupObject(CSetup::create());
    CSetup& setup = *access::frameOf<CSetup>(setupObject.get());
    ComPtr<IDispatch> input(CInputChannel::create());
    access::frameOf<CInputChannel>(input.get())->m_fields.Usage = 1;
    ASSERT_TRUE(SUCCEEDED(access::append(*access::collectionOf(setup, &CSetup::get_InputChannels), input.get())));
    {
        access::CTrcLoader maker;
        ASSERT_TRUE(maker.PrepareNew((dir_ / "full.trc").string().c_str()) && maker.ApplySetup(&setup, 1));
    }
    regional({{"sThousand", "."}, {"sDecimal", ","}});
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(dir_);
    std::ofstream(dir_ / "dummy.trc") << "left from before";
    Bstr text;
    EXPECT_EQ(t()->EstimatedFileSize(&setup, 0, text.out()), E_FAIL);
    ASSERT_EQ(t()->EstimatedFileSize(&setup, 3, text.out()), S_OK);
    EXPECT_FALSE(std::filesystem::exists(dir_ / "dummy.trc"));
    std::filesystem::current_path(before);
    EXPECT_EQ(text.ansi(), fileSizeText(3 * std::filesystem::file_size(dir_ / "full.trc"), ".", ","));

    // The disk of a path: its folder, or the name itself when it has none; it must exist.
    for (const std::string& path : {(dir_ / "not-yet.trc").string(), std::string("  "), std::string("/")})
        EXPECT_EQ(t()->FreeDiskSize(Bstr(std::string_view(path)).get(), text.out()), S_OK) << path;
    EXPECT_TRUE(std::regex_match(text.ansi(), std::regex("[0-9.]+,[0-9]{2} [KMG]B"))) << text.ansi();
    for (const char* path : {"/no/such/folder/x.trc", "no-such-name"})
        EXPECT_EQ(t()->FreeDiskSize(Bstr(std::string_view(path)).get(), text.out()), E_FAIL) << path;
}

TEST(FileSizeText, UnitsDecimalsAndSeparators) {
    constexpr std::uint64_t M = 1024 * 1024;
    for (auto [bytes, text] : {std::pair{M - 1, "1,023.99 KB"}, {M + M / 2, "1.50 MB"}, {5000 * M * 1024, "5,000.00 GB"}})
        EXPECT_EQ(fileSizeText(bytes, ",", "."), text);
}

}  // namespace
}  // namespace nvdl
