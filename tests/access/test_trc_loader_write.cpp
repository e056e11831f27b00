// A recording made through the loader from a setup, read back by another loader.
#include <gtest/gtest.h>

#include <fstream>

#include "LoaderTest.h"
#include "access/SetupAccess.h"
#include "access/TrcLoader.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcTestDefinition.h"
#include "setup/Acquisition.h"
#include "setup/InputChannel.h"
#include "setup/Processing.h"

namespace nvdl::access {
namespace {

constexpr long B = 8;

class TrcLoaderWrite : public testing::LoaderTest {
protected:
    // Three inputs of range 4, the middle one unused; blocksize B, three scans.
    void SetUp() override {
        LoaderTest::SetUp();
        sectionOf<CAcquisition>(setup(), &CSetup::get_Acquisition)->m_fields.Blocksize = B;
        sectionOf<CProcessing>(setup(), &CSetup::get_Processing)->m_fields.AverageNumber = 3;
        for (std::int32_t usage : {1, 0, 1}) {
            ComPtr<IDispatch> item(CInputChannel::create());
            frameOf<CInputChannel>(item.get())->m_fields = {.Usage = usage, .Range = 4.0f};
            ASSERT_TRUE(SUCCEEDED(append(*collectionOf(setup(), &CSetup::get_InputChannels), item.get())));
        }
    }
    CSetup& setup() { return *frameOf<CSetup>(object.get()); }
    ComPtr<IDispatch> object{CSetup::create()};
};

TEST_F(TrcLoaderWrite, ScansStatusRecordsCreatorAndScanCountComeBack) {
    for (long bits : {32L, 16L}) {
        CTrcLoader writer;
        ASSERT_TRUE(writer.PrepareNew(path("made.trc").c_str()) && writer.SetDataFormat(bits, 1.0f));
        ASSERT_TRUE(writer.ApplySetup(&setup(), 1));
        std::vector<float> values(2 * B);
        std::vector<std::int16_t> samples(2 * B);
        for (long s = 1; s <= 3; ++s) {
            for (long j = 0; j < 2 * B; ++j) samples[j] = static_cast<std::int16_t>(values[j] = s * 100.0f + j);
            const long status[] = {s, s + 1};
            const float range[] = {1.5f * s, 2.5f * s};
            // The other sample format, scan 0, more channels than used and a short buffer are refused.
            EXPECT_FALSE(bits == 32 ? writer.WriteScanInt16(s, 2, samples.data(), 2 * B)
                                    : writer.WriteScanFloat(s, 2, values.data(), 2 * B));
            for (auto [scan, channels, count] : {std::tuple{0L, 2L, 2 * B}, {s, 3L, 2 * B}, {s, 2L, 2 * B - 1}})
                EXPECT_FALSE(writer.WriteScanFloat(scan, channels, values.data(), count));
            ASSERT_TRUE(bits == 32 ? writer.WriteScanFloat(s, 2, values.data(), 2 * B)
                                   : writer.WriteScanInt16(s, 2, samples.data(), 2 * B));
            ASSERT_TRUE(writer.WriteInputInfo(s, 5, status, range));  // cut to the used inputs
        }
        ASSERT_TRUE(writer.SetCreator("bench") && writer.SetScanCount(2));
        writer.CloseFile();

        CTrcLoader reader;
        ASSERT_TRUE(reader.OpenFile(path("made.trc").c_str()));
        const long numbers[] = {1, 3};
        std::vector<float> data(2 * B);
        long status[2];
        float range[2];
        for (long s = 1; s <= 2; ++s) {
            ASSERT_TRUE(reader.ReadScan(2, numbers, B, data.data(), status, range, 0)) << bits;
            for (long j = 0; j < 2 * B; j += 3)
                EXPECT_NEAR(data[j], (s * 100.0f + j) * (bits == 32 ? 1.0f : 4.0f / 32767.0f), 1e-5f) << bits;
            EXPECT_EQ(status[1], s + 1);
            EXPECT_EQ(range[1], 2.5f * s);
        }
        EXPECT_FALSE(reader.ReadScan(2, numbers, B, data.data(), status, range, 0));  // the count is 2 now
        ComPtr<ISetup> built(reader.BuildSetup());
        ASSERT_TRUE(built);
        EXPECT_EQ(frameOf<CSetup>(built.get())->m_fields.Creator, "bench");
        EXPECT_EQ(sectionOf<CAcquisition>(*frameOf<CSetup>(built.get()), &CSetup::get_Acquisition)->m_fields.Blocksize, B);
        EXPECT_EQ(collectionOf(*frameOf<CSetup>(built.get()), &CSetup::get_InputChannels)->size(), 3u);
        reader.CloseFile();
        EXPECT_EQ(reader.BuildSetup(), nullptr);
    }
}

TEST_F(TrcLoaderWrite, TestDefinitionIsEmbeddedWhole) {
    std::string content(5000, 'x');  // more than one piece
    for (std::size_t i = 0; i < content.size(); i += 7) content[i] = static_cast<char>(i);
    const std::string definition = path("plan.tdf");
    std::ofstream(definition, std::ios::binary) << content;
    CTrcLoader writer;
    EXPECT_FALSE(writer.SetTestDefinitionFile(definition.c_str()));  // nothing armed
    ASSERT_TRUE(writer.PrepareNew(path("def.trc").c_str()));
    EXPECT_FALSE(writer.StoreTestDefinition(definition.c_str()));  // no file made yet
    ASSERT_TRUE(writer.SetTestDefinitionFile(definition.c_str()));
    ASSERT_TRUE(writer.ApplySetup(&setup(), 1));
    writer.CloseFile();

    trc::CTrc reader;
    ASSERT_TRUE(reader.Open(path("def.trc").c_str()) && reader.GetTestDefinition().Read());
    EXPECT_STREQ(reader.GetTestDefinition().GetHeader().GetFilename(), "plan.tdf");
    std::string back(content.size(), '\0');
    ASSERT_TRUE(reader.GetTestDefinition().GetData().Read(0, reinterpret_cast<unsigned char*>(back.data()), 5000));
    EXPECT_EQ(back, content);
}

}  // namespace
}  // namespace nvdl::access
