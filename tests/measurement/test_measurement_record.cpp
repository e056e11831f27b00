// A measurement from the flat record of an outside producer, and the sizing of its vectors.
#include "PersistenceTestSupport.h"
#include "measurement/FlatRecord.h"

namespace nvdl::test {
namespace {

ByteRecord spectrumRecord() {
    ByteRecord r(1400);
    r.text(0, 100, "Spectrum run 3");
    r.text(100, 50, "Spectrum");
    r.i16(156, 2);
    r.text(158, 50, "acc");
    r.text(260, 50, "Arbitrary");
    r.f32(312, 10.0f);
    r.f32(316, 0.5f);
    r.i32(320, -1);
    r.i32(376, 3);
    r.i32(380, 1);
    r.i32(384, -1);
    r.text(500, 50, "Hanning");
    r.f64(560, 38051.5);
    r.text(668, 50, "A");
    r.i32(884, -1);
    r.i32(896, 2);
    r.f64(1016, 4.5);  // signal range maximum
    r.text(1088, 50, "Sensor;B&K 4507");
    r.text(1196, 50, "Operator");
    r.text(1246, 50, "jk");
    r.i32(1192, 1);
    r.append("Gain");
    r.append("2.0");
    r.i32(868, 9);  // the parameter text
    r.i32(888, 1);
    r.appendFloats({100.f, 200.f, 400.f});  // X
    r.appendFloats({1.f, 2.f, 3.f});        // Y real
    r.appendFloats({-1.f, -2.f, -3.f});     // Y imaginary
    return r;
}

TEST(MeasurementRecord, HeadAndTailFillTheMeasurement) {
    CMeasurement* m = CMeasurement::createMeasurement();
    ByteRecord r = spectrumRecord();
    ASSERT_TRUE(m->Initialize(r.bytes.data(), r.bytes.size()));
    expectTexts(m, {{u"Name", "Spectrum run 3"}, {u"FunctionType", "1002"}, {u"ResponseChannel", "2"},
                    {u"XAxisType", "1104"}, {u"WindowType", "1302"}, {u"AcousticWeighting", "A"}, {u"Power", "2"},
                    {u"Size", "3"}});
    EXPECT_EQ(m->xValues(), (std::vector<float>{100.f, 200.f, 400.f}));
    EXPECT_EQ(m->yReal(), (std::vector<float>{1.f, 2.f, 3.f}));
    EXPECT_EQ(m->yImag(), (std::vector<float>{-1.f, -2.f, -3.f}));
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Sensor=B&K 4507", "Operator=jk", "Gain=2.0"}));
    ISignalRange* range = nullptr;
    m->get_SignalRange(&range);
    double max = 0;
    range->get_Max(&max);
    EXPECT_EQ(max, 4.5);
    range->Release();
    m->Release();
}

TEST(MeasurementRecord, ShortOrLyingRecordsAreRefused) {
    CMeasurement* m = CMeasurement::createMeasurement();
    ByteRecord r = spectrumRecord();
    EXPECT_FALSE(m->Initialize(r.bytes.data(), 1399));
    EXPECT_FALSE(m->Initialize(nullptr, 5000));
    EXPECT_FALSE(m->Initialize(r.bytes.data(), r.bytes.size() - 4));  // the imaginary vector is cut
    ByteRecord lying = spectrumRecord();
    lying.i32(868, 1 << 30);  // parameter text longer than the record
    EXPECT_FALSE(m->Initialize(lying.bytes.data(), lying.bytes.size()));
    m->Release();
}

// A measurement written as a record reads back as the same measurement; the hand-built record
// reads back byte for byte.
TEST(MeasurementRecord, WrittenRecordsReadBack) {
    CMeasurement* source = CMeasurement::createMeasurement();
    ByteRecord hand = spectrumRecord();
    ASSERT_TRUE(source->Initialize(hand.bytes.data(), hand.bytes.size()));
    flat::Record record = flat::recordOf(*source);
    const std::vector<std::uint8_t> bytes = flat::writeRecord(record);
    EXPECT_EQ(bytes.size(), 1400u + 16 + 12 + 9 + 9 * 4);  // three pairs of texts, then X, Y real, Y imaginary

    flat::Record back;
    std::size_t length = 0;
    ASSERT_TRUE(flat::readRecord(bytes.data(), bytes.size(), back, &length));
    EXPECT_EQ(length, bytes.size());
    EXPECT_EQ(back.re, (std::vector<float>{1.f, 2.f, 3.f}));
    EXPECT_EQ(back.x, (std::vector<float>{100.f, 200.f, 400.f}));
    EXPECT_FALSE(flat::readRecord(bytes.data(), bytes.size() - 1, back));  // one float short

    CMeasurement* copy = CMeasurement::createMeasurement();
    ASSERT_TRUE(copy->Initialize(bytes.data(), bytes.size()));
    expectTexts(copy, {{u"Name", "Spectrum run 3"}, {u"FunctionType", "1002"}, {u"ResponseChannel", "2"},
                       {u"XAxisType", "1104"}, {u"XIncrement", "0.5"}, {u"WindowType", "1302"}, {u"Power", "2"}});
    EXPECT_EQ(copy->yImag(), (std::vector<float>{-1.f, -2.f, -3.f}));
    EXPECT_EQ(parameters(copy), (std::vector<std::string>{"Sensor=B&K 4507", "Operator=jk", "Gain=2.0"}));
    copy->Release();
    source->Release();
}

TEST(MeasurementSize, VectorsFollowTheSize) {
    CMeasurement* m = CMeasurement::createMeasurement();
    EXPECT_EQ(m->put_Size(-1), E_INVALIDARG);
    EXPECT_TRUE(m->yReal().empty());
    ASSERT_EQ(m->put_Size(4), S_OK);
    const float values[] = {1, 2, 3, 4};
    m->SetYValues(0, 4, values, nullptr);
    m->put_Complex(VARIANT_TRUE);
    ASSERT_EQ(m->put_Size(6), S_OK);
    EXPECT_EQ(m->yReal(), (std::vector<float>{1, 2, 3, 4, 0, 0}));
    EXPECT_EQ(m->yImag().size(), 6u);
    float out[8];
    m->GetYValues(2, 8, out, nullptr);
    EXPECT_EQ(out[0], 3.0f);
    EXPECT_EQ(out[4], 0.0f);
    EXPECT_EQ(out[7], 0.0f);  // beyond Size: zeros, never a read past the vector
    EXPECT_EQ(m->ReadYRealArray(out, 7, 0), E_FAIL);
    EXPECT_EQ(m->GetBlockNumber(0), 1);
    EXPECT_EQ(m->GetBlockNumber(6), -1);
    ASSERT_EQ(m->put_Size(0), S_OK);  // brings the block size of the settings back
    LONG fileSamples = -1;
    m->get_FileSamples(&fileSamples);
    EXPECT_EQ(fileSamples, 0);
    m->Release();
}

}  // namespace
}  // namespace nvdl::test
