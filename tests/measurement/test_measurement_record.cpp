// A measurement from the flat record of an outside producer, and the sizing of its vectors.
#include <gtest/gtest.h>

#include <vector>

#include "../frame/TestHelpers.h"
#include "measurement/Measurement.h"
#include "platform/LittleEndian.h"

namespace nvdl::test {
namespace {

struct Record {
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(1400, 0);
    void text(std::size_t offset, std::size_t size, const std::string& s) { le::putText(&bytes[offset], size, s); }
    void i16(std::size_t offset, std::int16_t v) { le::put16(&bytes[offset], static_cast<std::uint16_t>(v)); }
    void i32(std::size_t offset, std::int32_t v) { le::put32(&bytes[offset], static_cast<std::uint32_t>(v)); }
    void f32(std::size_t offset, float v) { le::putF32(&bytes[offset], v); }
    void f64(std::size_t offset, double v) { le::putF64(&bytes[offset], v); }
    void append(const std::string& s) {
        std::size_t at = bytes.size();
        bytes.resize(at + s.size());
        std::copy(s.begin(), s.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    }
    void appendFloats(const std::vector<float>& values) {
        std::size_t at = bytes.size();
        bytes.resize(at + 4 * values.size());
        for (std::size_t i = 0; i < values.size(); ++i) le::putF32(&bytes[at + 4 * i], values[i]);
    }
};

Record spectrumRecord() {
    Record r;
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
    const std::string tail("Gain\0" "2.0\0", 9);
    r.i32(868, static_cast<std::int32_t>(tail.size()));
    r.i32(888, 1);
    r.append(tail);
    r.appendFloats({100.f, 200.f, 400.f});  // X
    r.appendFloats({1.f, 2.f, 3.f});        // Y real
    r.appendFloats({-1.f, -2.f, -3.f});     // Y imaginary
    return r;
}

TEST(MeasurementRecord, HeadAndTailFillTheMeasurement) {
    CMeasurement* m = CMeasurement::createMeasurement();
    Record r = spectrumRecord();
    ASSERT_TRUE(m->Initialize(r.bytes.data(), r.bytes.size()));
    IDispatch* d = m->dispatch();
    EXPECT_EQ(getText(d, u"Name"), "Spectrum run 3");
    EXPECT_EQ(getText(d, u"FunctionType"), "1002");
    EXPECT_EQ(getText(d, u"ResponseChannel"), "2");
    EXPECT_EQ(getText(d, u"XAxisType"), "1104");
    EXPECT_EQ(getText(d, u"WindowType"), "1302");
    EXPECT_EQ(getText(d, u"AcousticWeighting"), "A");
    EXPECT_EQ(getText(d, u"Power"), "2");
    EXPECT_EQ(getText(d, u"Size"), "3");
    EXPECT_EQ(m->xValues(), (std::vector<float>{100.f, 200.f, 400.f}));
    EXPECT_EQ(m->yReal(), (std::vector<float>{1.f, 2.f, 3.f}));
    EXPECT_EQ(m->yImag(), (std::vector<float>{-1.f, -2.f, -3.f}));
    ICollection* parameters = nullptr;
    m->get_Parameters(&parameters);
    LONG count = 0;
    parameters->get_Count(&count);
    EXPECT_EQ(count, 3);
    IDispatch* p = nullptr;
    ASSERT_EQ(parameters->Item(Variant::fromAnsi("sensor"), &p), S_OK);
    EXPECT_EQ(getText(p, u"Value"), "B&K 4507");
    p->Release();
    ASSERT_EQ(parameters->Item(Variant::fromAnsi("Gain"), &p), S_OK);
    EXPECT_EQ(getText(p, u"Value"), "2.0");
    p->Release();
    parameters->Release();
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
    Record r = spectrumRecord();
    EXPECT_FALSE(m->Initialize(r.bytes.data(), 1399));
    EXPECT_FALSE(m->Initialize(nullptr, 5000));
    EXPECT_FALSE(m->Initialize(r.bytes.data(), r.bytes.size() - 4));  // the imaginary vector is cut
    Record lying = spectrumRecord();
    lying.i32(868, 1 << 30);  // parameter text longer than the record
    EXPECT_FALSE(m->Initialize(lying.bytes.data(), lying.bytes.size()));
    m->Release();
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
