// The block writer's calibration: samples go out as they are, or as factor times sample plus offset,
// where the factor comes from the sensitivity ("mV/EU"), the gain and the Y unit's scale, and the
// offset from the Y unit; the parameters named in a source measurement begin a record.
#include "PagingFixture.h"
#include "PersistenceTestSupport.h"
#include "measurement/MeasurementBlockWriter.h"
#include "nvdl/Storage.h"
#include "platform/ComPtr.h"
#include "platform/LittleEndian.h"

using namespace nvdl;
using namespace nvdl::test;

namespace {

class BlockWriterCalibration : public PagingSettings {
protected:
    // Writes one block of `samples` with the calibration of the arguments and reads the stored floats back.
    std::vector<float> written(std::u16string_view yUnit, std::u16string_view sensitivityUnit, double sensitivity, double gain,
                               SHORT useCalibration, const std::vector<float>& samples) {
        ComPtr<IStorage> root;
        EXPECT_EQ(createCompoundFile(dir_ / "calibration.cfb", STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
        ComPtr<CMeasurement> source(CMeasurement::createMeasurement());
        auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(source.get()));
        Bstr name{std::string_view{"Meas0"}}, xUnit{std::string_view{"s"}}, y{yUnit};
        Bstr sensitivityText{sensitivityUnit}, none{std::string_view{}};
        EXPECT_EQ(writer->Create(root.get(), name.get()), S_OK);
        const LONG n = static_cast<LONG>(samples.size());
        EXPECT_EQ(writer->BeginTimeRecord(1, n, 100.0, 0.0f, xUnit.get(), y.get(), none.get(), sensitivityText.get(),
                                          sensitivity, gain, nullptr),
                  S_OK);
        EXPECT_EQ(writer->WriteBlock(samples.data(), n, useCalibration), S_OK);
        EXPECT_EQ(writer->Finish(nullptr), S_OK);
        writer->Close();
        ComPtr<IStream> stream;
        EXPECT_EQ(root->OpenStream(u"Meas0", nullptr, 0x10, 0, stream.out()), S_OK);
        std::vector<std::uint8_t> bytes(920 + samples.size() * 4);
        ULONG got = 0;
        EXPECT_EQ(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got), S_OK);
        EXPECT_EQ(got, bytes.size());
        std::vector<float> values(samples.size());
        for (std::size_t i = 0; i < values.size(); ++i) values[i] = le::f32(bytes.data() + 920 + 4 * i);
        return values;
    }
};

TEST_F(BlockWriterCalibration, SamplesAsTheyAreOrScaledAndShifted) {
    useSettings(32768);
    env_.set("NVDL_UNIT_SERVICE", std::nullopt);
    std::vector<float> samples(1001);
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<float>(i) * 0.5f - 100.0f;

    // Without calibration (0, or any value but -1) the samples are stored bit for bit.
    EXPECT_EQ(written(u"g", u"mV/EU", 100.0, 2.0, 0, samples), samples);
    EXPECT_EQ(written(u"g", u"mV/EU", 100.0, 2.0, 1, samples), samples);

    // 1000 / 100 mV/EU, divided by the gain 2, times the scale of "g".
    std::vector<float> scaled = written(u"g", u"mV/EU", 100.0, 2.0, -1, samples);
    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ(scaled[i], static_cast<float>(1000.0 / 100.0 / 2.0 * 9.80665 * samples[i])) << i;

    // Another sensitivity unit leaves the factor at the unit's scale; a unit with an offset shifts.
    std::vector<float> shifted = written(u"°C", u"pC/EU", 100.0, 0.0, -1, samples);
    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_NEAR(shifted[i], static_cast<float>(samples[i] + 273.15), 1e-4) << i;
}

}  // namespace

namespace {

TEST_F(BlockWriterCalibration, ARecordBegunFromParametersEndsWithThemAndReadsBack) {
    useSettings(32768);
    ComPtr<IMeasurement> source(CMeasurement::createMeasurement());
    addParameter(source.get(), "Blocksize", "4");
    addParameter(source.get(), "SampleFrequency", "200");
    addParameter(source.get(), "X-Unit", "s");
    addParameter(source.get(), "Y-Unit", "Pa");
    addParameter(source.get(), "Operator", "A. N. Other");

    ComPtr<IStorage> root;
    ASSERT_EQ(createCompoundFile(dir_ / "parameters.cfb", STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
    ComPtr<CMeasurement> holder(CMeasurement::createMeasurement());
    auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(holder.get()));
    Bstr name{std::string_view{"Meas0"}};
    ASSERT_EQ(writer->Create(root.get(), name.get()), S_OK);
    ASSERT_EQ(writer->BeginFromParameters(source.get()), S_OK);
    const float first[4] = {1, 2, 3, 4}, second[4] = {5, 6, 7, 8};
    ASSERT_EQ(writer->WriteBlock(first, 4, 0), S_OK);
    ASSERT_EQ(writer->WriteBlock(second, 4, 0), S_OK);
    EXPECT_EQ(writer->WriteBlock(first, 5, 0), E_INVALIDARG);  // more than a block
    ComPtr<ICollection> given;
    ASSERT_EQ(source->get_Parameters(given.out()), S_OK);
    ASSERT_EQ(writer->Finish(given.get()), S_OK);
    writer->Close();

    ComPtr<IStream> stream;
    ASSERT_EQ(root->OpenStream(u"Meas0", nullptr, 0x10, 0, stream.out()), S_OK);
    ComPtr<CMeasurement> back(CMeasurement::createMeasurement());
    ASSERT_EQ(loadRecord(back.get(), stream.get()), S_OK);
    EXPECT_EQ(value(back.get(), &IMeasurement::get_FileSamples), 8);
    EXPECT_FLOAT_EQ(value(back.get(), &IMeasurement::get_XIncrement), 0.005f);
    std::vector<float> samples(8);
    ASSERT_EQ(back->GetYValues(0, 8, samples.data(), nullptr), S_OK);
    EXPECT_EQ(samples, (std::vector<float>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(parameters(back.get()), (std::vector<std::string>{"Blocksize=4", "SampleFrequency=200", "X-Unit=s",
                                                                "Y-Unit=Pa", "Operator=A. N. Other"}));
}

TEST_F(BlockWriterCalibration, ParametersThatCannotBeginARecord) {
    useSettings(32768);
    ComPtr<IStorage> root;
    ASSERT_EQ(createCompoundFile(dir_ / "refused.cfb", STGM_CREATE | STGM_READWRITE, root.out()), S_OK);
    ComPtr<CMeasurement> holder(CMeasurement::createMeasurement());
    auto writer = ComPtr<IMeasurementBlockWriter>::query(static_cast<IMeasurement*>(holder.get()));
    Bstr name{std::string_view{"Meas0"}};
    ASSERT_EQ(writer->Create(root.get(), name.get()), S_OK);

    ComPtr<IMeasurement> missing(CMeasurement::createMeasurement());
    addParameter(missing.get(), "Blocksize", "4");
    EXPECT_EQ(writer->BeginFromParameters(missing.get()), E_POINTER);

    ComPtr<IMeasurement> empty(CMeasurement::createMeasurement());
    addParameter(empty.get(), "Blocksize", "0");
    addParameter(empty.get(), "SampleFrequency", "200");
    addParameter(empty.get(), "X-Unit", "s");
    addParameter(empty.get(), "Y-Unit", "Pa");
    EXPECT_EQ(writer->BeginFromParameters(empty.get()), E_FAIL);
    writer->Close();
}

}  // namespace
