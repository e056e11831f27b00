// The sine-reduction, shock-capture, time-filter, resampling, post-processing and throughput sections:
// defaults, texts, stream round trips, older stream generations, the throughput record's tag rules and
// byte layout, and the shock-capture limit profiles.
#include "SectionTestSupport.h"

#include <algorithm>
#include <stdexcept>

#include "nvdl/IShockCapture.h"
#include "nvdl/SafeArray.h"

namespace nvdl::test {
namespace {

struct SectionCase {
    const char16_t* progId;
    std::vector<PropertyText> defaults;
    std::vector<PropertyText> values;  // every property, away from its default
    std::size_t recordSize;
};

const SectionCase kSections[] = {
    {u"nv_bench.SinRed",
     {{"Name", "SinRed"}, {"COLAChannel", "0"}, {"NbPulseByRevolution", "1"}, {"StartFreq", "20"},
      {"EndFreq", "2000"}, {"EndTime", "300"}, {"StartMode", "550"}, {"IntervalMode", "550"}, {"FreqStep", "5"},
      {"ConditionsMode", "560"}, {"OrderResolution", "0.2"}, {"Harmonics", ""}, {"TriggerLevel", "0.001"},
      {"FreqPoints", "1024"}, {"FreqMode", "0"}, {"WindowType", "1300"}, {"WindowBandWidthLimit", "0.25"}},
     {{"Name", "Gearbox"}, {"COLAChannel", "4"}, {"NbPulseByRevolution", "36"}, {"StartFreq", "15"},
      {"EndFreq", "1500"}, {"StartTime", "2.5"}, {"EndTime", "90"}, {"StartMode", "551"}, {"EndMode", "551"},
      {"IntervalMode", "551"}, {"FreqStep", "2.5"}, {"TimeInterval", "0.25"}, {"ConditionsMode", "563"},
      {"OrderResolution", "0.125"}, {"Activated", "-1"}, {"Harmonics", "1;2;3"}, {"TriggerLevel", "0.5"},
      {"FreqPoints", "2048"}, {"FreqMode", "2"}, {"WindowType", "1302"}, {"WindowBandWidthLimit", "0.75"}},
     532},
    {u"nv_bench.ShockCapture",
     {{"Name", "ShockCapture"}, {"UpperLimitsCount", "0"}, {"LowerLimitsCount", "0"}, {"PulsePeak", "30"},
      {"PulseDuration", "11"}, {"Activated", "0"}, {"RefType", "0"}, {"LowPassExc", "10000"},
      {"LowPassResp", "10000"}},
     {{"Name", "Drop"}, {"PulsePeak", "50"}, {"PulseDuration", "6"}, {"Activated", "-1"}, {"RefType", "2"},
      {"LowPassExc", "5000"}, {"LowPassResp", "2500"}},
     136 + 2 * 384 * 4},
    {u"nv_bench.timefilter",
     {{"Type", "0"}, {"StartFrequency", "0"}, {"StopFrequency", "0"}},
     {{"Type", "3"}, {"StartFrequency", "100"}, {"StopFrequency", "2000"}},
     50 + 64},
    {u"nv_bench.Resampling",
     {{"Active", "0"}, {"SampleFrequency", "0"}, {"Blocksize", "0"}},
     {{"Active", "-1"}, {"SampleFrequency", "12800"}, {"Blocksize", "4096"}},
     50 + 60},
    {u"nv_bench.PostProcessing",
     {{"Activated", "0"}, {"ReplayStart", "0"}, {"ReplayStop", "0"}, {"Filename", ""}, {"Location", "0"},
      {"N2216ReadMode", "0"}},
     {{"Activated", "-1"}, {"ReplayStart", "1.5"}, {"ReplayStop", "8"}, {"Filename", "/data/run7.trc"},
      {"Location", "2"}, {"N2216ReadMode", "1"}},
     50 + 876},
    {u"nv_bench.throughput",
     {{"Filename", ""}, {"AutoIncrement", "0"}, {"Length", "0"}, {"Activated", "0"}, {"Period", "0"},
      {"Interval", "0"}, {"Location", "0"}},
     {{"Filename", "/rec/take.trc"}, {"AutoIncrement", "-1"}, {"Length", "12.5"}, {"Activated", "-1"},
      {"Period", "5"}, {"Interval", "60"}, {"Location", "3"}},
     992},
};

TEST(AnalysisSections, Defaults) {
    for (const SectionCase& c : kSections) {
        SCOPED_TRACE(narrow(c.progId));
        expectProperties(newObject(c.progId).get(), c.defaults);
    }
}

TEST(AnalysisSections, StreamRoundTripAndShortStreams) {
    for (const SectionCase& c : kSections) {
        SCOPED_TRACE(narrow(c.progId));
        expectRoundTrip(c.progId, c.values, c.recordSize);
    }
}

TEST(AnalysisSections, EnumerationTexts) {
    expectTranslations(newObject(u"nv_bench.SinRed").get(),
                       {{550, "RPM"}, {551, "Manual"}, {560, "Run Up"}, {561, "Run Down"}, {562, "Run Up & Down"},
                        {563, "Run Down & Up"}, {1300, ""}, {572, ""}});
    expectTranslations(newObject(u"nv_bench.ShockCapture").get(), {{0, ""}, {550, ""}});
}

// An older record: the newest bytes cut to the older size with the older tag at the head.
std::vector<std::uint8_t> olderRecord(std::vector<std::uint8_t> newest, std::int32_t tag, std::size_t size,
                                      bool textTag) {
    newest.resize(size);
    if (textTag) le::putText(newest.data(), 50, std::to_string(tag));
    else le::put32(newest.data(), static_cast<std::uint32_t>(tag));
    return newest;
}

struct OlderCase {
    const char16_t* progId;
    bool textTag;
    std::int32_t tag;
    std::size_t size;  // bytes the tag's generation reads
    std::vector<PropertyText> expected;
};

// A tag between two generations reads the older of them.
const OlderCase kOlder[] = {
    {u"nv_bench.SinRed", false, 20060822, 224,
     {{"Name", "Gearbox"}, {"Harmonics", "1;2;3"}, {"Activated", "-1"}, {"TriggerLevel", "0.001"},
      {"FreqPoints", "1024"}, {"FreqMode", "0"}, {"WindowType", "1300"}, {"WindowBandWidthLimit", "0.25"}}},
    {u"nv_bench.SinRed", false, 20060922, 224, {{"Harmonics", "1;2;3"}, {"TriggerLevel", "0.001"}}},
    {u"nv_bench.SinRed", false, 20061220, 248,
     {{"TriggerLevel", "0.5"}, {"FreqPoints", "2048"}, {"FreqMode", "2"}, {"WindowType", "1300"},
      {"WindowBandWidthLimit", "0.25"}}},
    {u"nv_bench.PostProcessing", true, 20030316, 114,
     {{"Activated", "-1"}, {"ReplayStop", "8"}, {"Filename", ""}, {"Location", "0"}, {"N2216ReadMode", "0"}}},
    {u"nv_bench.PostProcessing", true, 20030617, 414,
     {{"Filename", "/data/run7.trc"}, {"Location", "0"}, {"N2216ReadMode", "0"}}},
    {u"nv_bench.PostProcessing", true, 20050101, 414, {{"Filename", "/data/run7.trc"}, {"Location", "0"}}},
};

const SectionCase& sectionOf(const char16_t* progId) {
    for (const SectionCase& c : kSections)
        if (std::u16string_view(c.progId) == progId) return c;
    throw std::logic_error("no such section");
}

TEST(AnalysisSections, OlderGenerationsLeaveLaterFieldsAtTheirDefaults) {
    for (const OlderCase& o : kOlder) {
        SCOPED_TRACE(o.tag);
        ComPtr<IDispatch> source = newObject(o.progId);
        putProperties(source.get(), sectionOf(o.progId).values);
        std::vector<std::uint8_t> bytes = olderRecord(savedBytes(source.get()), o.tag, o.size, o.textTag);
        bytes.resize(o.size + 8, 0xEE);  // what follows belongs to the next record
        ComPtr<IDispatch> target = newObject(o.progId);
        std::size_t left = 0;
        ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK);
        EXPECT_EQ(left, 8u);
        expectProperties(target.get(), o.expected);
    }
}

TEST(AnalysisSections, TagsOlderThanEveryGenerationAreRefused) {
    const struct {
        const char16_t* progId;
        bool textTag;
        std::int32_t tag;
    } cases[] = {{u"nv_bench.SinRed", false, 20060821}, {u"nv_bench.ShockCapture", false, 20070508},
                 {u"nv_bench.timefilter", true, 20030122}, {u"nv_bench.Resampling", true, 20030313},
                 {u"nv_bench.PostProcessing", true, 20030315}, {u"nv_bench.PostProcessing", true, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tag);
        const SectionCase& section = sectionOf(c.progId);
        ComPtr<IDispatch> source = newObject(c.progId);
        putProperties(source.get(), section.values);
        std::vector<std::uint8_t> bytes = savedBytes(source.get());
        ComPtr<IDispatch> target = newObject(c.progId);
        EXPECT_TRUE(FAILED(loadBytes(target.get(), olderRecord(bytes, c.tag, bytes.size(), c.textTag))));
        expectProperties(target.get(), section.defaults);
    }
}

// The throughput record is fixed by the recording format, field by field.
TEST(Throughput, RecordLayout) {
    ComPtr<IDispatch> throughput = newObject(u"nv_bench.throughput");
    putProperties(throughput.get(), sectionOf(u"nv_bench.throughput").values);
    std::vector<std::uint8_t> bytes = savedBytes(throughput.get());
    ASSERT_EQ(bytes.size(), 992u);
    EXPECT_EQ(le::text(bytes.data(), 50), "20060102");
    EXPECT_EQ(le::text(bytes.data() + 50, 400), "/rec/take.trc");
    EXPECT_EQ(le::i16(bytes.data() + 450), -1);
    EXPECT_EQ(le::f64(bytes.data() + 456), 12.5);
    EXPECT_EQ(le::i16(bytes.data() + 464), -1);
    EXPECT_EQ(le::i32(bytes.data() + 468), 5);
    EXPECT_EQ(le::i32(bytes.data() + 472), 60);
    EXPECT_EQ(le::i32(bytes.data() + 476), 3);
    EXPECT_EQ(std::count(bytes.begin() + 480, bytes.end(), 0), 512);
}

// The three older tags read 472 bytes and keep the sequencing and location the object had; the
// newest reads all 992 bytes; any other tag, older or newer, is refused with the object unchanged.
TEST(Throughput, TagRules) {
    ComPtr<IDispatch> source = newObject(u"nv_bench.throughput");
    putProperties(source.get(), sectionOf(u"nv_bench.throughput").values);
    const std::vector<std::uint8_t> newest = savedBytes(source.get());
    const std::vector<PropertyText> before = {{"Filename", "old.trc"}, {"Length", "1"}, {"Period", "77"},
                                              {"Interval", "88"}, {"Location", "9"}};
    const struct {
        std::int32_t tag;
        std::size_t read;  // 0: refused
        std::vector<PropertyText> expected;
    } cases[] = {
        {20000907, 472, {{"Filename", "/rec/take.trc"}, {"Length", "12.5"}, {"Period", "77"}, {"Interval", "88"}}},
        {20021008, 472, {{"AutoIncrement", "-1"}, {"Activated", "-1"}, {"Location", "9"}}},
        {20031603, 472, {{"Filename", "/rec/take.trc"}, {"Period", "77"}, {"Interval", "88"}, {"Location", "9"}}},
        {20060102, 992, {{"Period", "5"}, {"Interval", "60"}, {"Location", "3"}}},
        {20060101, 0, before},
        {20031604, 0, before},
        {20060103, 0, before},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tag);
        ComPtr<IDispatch> target = newObject(u"nv_bench.throughput");
        putProperties(target.get(), before);
        std::size_t left = 0;
        const HRESULT h = loadBytes(target.get(), olderRecord(newest, c.tag, newest.size(), true), &left);
        if (c.read) {
            EXPECT_EQ(h, S_OK);
            EXPECT_EQ(left, 992 - c.read);
        } else {
            EXPECT_EQ(h, E_FAIL);
        }
        expectProperties(target.get(), c.expected);
    }
}

// Limits through the interface of the class, as an early-bound client passes them.
class ShockLimits : public ::testing::Test {
protected:
    ComPtr<IDispatch> object = newObject(u"nv_bench.ShockCapture");
    ComPtr<IShockCapture> shock = ComPtr<IDispatch>::query<IShockCapture>(object.get());

    using Setter = HRESULT (IShockCapture::*)(SAFEARRAY*);
    using Getter = HRESULT (IShockCapture::*)(SAFEARRAY**);

    static std::vector<float> ramp(std::size_t n, float start) {
        std::vector<float> values(n);
        for (std::size_t i = 0; i < n; ++i) values[i] = start + 0.5f * static_cast<float>(i);
        return values;
    }
    HRESULT set(Setter setter, const std::vector<float>& values) {
        SAFEARRAY* array = makeFloatArray(values);
        HRESULT h = (shock.get()->*setter)(array);
        SafeArrayDestroy(array);
        return h;
    }
    std::vector<float> get(IShockCapture* from, Getter getter) {
        SAFEARRAY* array = nullptr;
        EXPECT_EQ((from->*getter)(&array), S_OK);
        std::span<float> data = floatArrayData(array);
        std::vector<float> values(data.begin(), data.end());
        SafeArrayDestroy(array);
        return values;
    }
};

TEST_F(ShockLimits, SetGetCountAndBoundsKeepTheTwoProfilesApart) {
    ASSERT_TRUE(shock);
    const std::vector<float> upper = ramp(384, 1.0f), lower = ramp(7, -3.0f);
    EXPECT_EQ(set(&IShockCapture::SetUpperLimits, upper), S_OK);
    EXPECT_EQ(set(&IShockCapture::SetLowerLimits, lower), S_OK);
    EXPECT_EQ(get(shock.get(), &IShockCapture::GetUpperLimits), upper);
    EXPECT_EQ(get(shock.get(), &IShockCapture::GetLowerLimits), lower);
    expectProperties(object.get(), {{"UpperLimitsCount", "384"}, {"LowerLimitsCount", "7"}, {"Modified", "1"}});
    for (auto bounds : {&IShockCapture::GetUpperLimitBounds, &IShockCapture::GetLowerLimitBounds}) {
        LONG rows = 0, columns = 0;
        EXPECT_EQ((shock.get()->*bounds)(&rows, &columns), S_OK);
        EXPECT_EQ(rows, 128);
        EXPECT_EQ(columns, 3);
    }

    // A shorter profile clears the room behind it: raising the count shows zeros, not old values.
    EXPECT_EQ(set(&IShockCapture::SetUpperLimits, {9.0f}), S_OK);
    EXPECT_EQ(shock->put_UpperLimitsCount(3), S_OK);
    EXPECT_EQ(get(shock.get(), &IShockCapture::GetUpperLimits), (std::vector<float>{9.0f, 0.0f, 0.0f}));
}

TEST_F(ShockLimits, TooLongProfilesAndCountsOutsideTheRoomAreRefused) {
    ASSERT_TRUE(shock);
    const std::vector<float> lower = ramp(5, 2.0f);
    ASSERT_EQ(set(&IShockCapture::SetLowerLimits, lower), S_OK);
    EXPECT_EQ(set(&IShockCapture::SetLowerLimits, ramp(385, 0.0f)), E_INVALIDARG);
    EXPECT_EQ(shock->SetUpperLimits(nullptr), E_POINTER);
    for (LONG count : {-1, 385}) {
        EXPECT_EQ(shock->put_UpperLimitsCount(count), E_INVALIDARG) << count;
        EXPECT_EQ(shock->put_LowerLimitsCount(count), E_INVALIDARG) << count;
    }
    EXPECT_EQ(get(shock.get(), &IShockCapture::GetLowerLimits), lower);
    expectProperties(object.get(), {{"UpperLimitsCount", "0"}, {"LowerLimitsCount", "5"}});
}

TEST_F(ShockLimits, LateBoundCallsTakeAndGiveFloatArrays) {
    SAFEARRAY* array = makeFloatArray(ramp(4, 10.0f));
    Variant in;
    in.vt = VT_ARRAY | VT_R4;
    in.parray = array;  // the variant owns it now
    ASSERT_EQ(invoke(object.get(), u"SetUpperLimits", DISPATCH_METHOD, {in}), S_OK);
    Variant out;
    ASSERT_EQ(invoke(object.get(), u"GetUpperLimits", DISPATCH_METHOD, {}, &out), S_OK);
    ASSERT_EQ(out.vt, VT_ARRAY | VT_R4);
    std::span<float> data = floatArrayData(out.parray);
    EXPECT_EQ(std::vector<float>(data.begin(), data.end()), ramp(4, 10.0f));
}

TEST_F(ShockLimits, ProfilesTravelThroughTheStreamAndClone) {
    ASSERT_TRUE(shock);
    const std::vector<float> upper = ramp(300, 4.0f), lower = ramp(384, -1.0f);
    ASSERT_EQ(set(&IShockCapture::SetUpperLimits, upper), S_OK);
    ASSERT_EQ(set(&IShockCapture::SetLowerLimits, lower), S_OK);
    const std::vector<std::uint8_t> bytes = savedBytes(object.get());
    ASSERT_EQ(bytes.size(), 3208u);
    expectProperties(object.get(), {{"Modified", "0"}});

    ComPtr<IDispatch> loaded = newObject(u"nv_bench.ShockCapture");
    ASSERT_EQ(loadBytes(loaded.get(), bytes), S_OK);
    auto early = ComPtr<IDispatch>::query<IShockCapture>(loaded.get());
    EXPECT_EQ(get(early.get(), &IShockCapture::GetUpperLimits), upper);
    EXPECT_EQ(get(early.get(), &IShockCapture::GetLowerLimits), lower);

    IShockCapture* clone = nullptr;
    ASSERT_EQ(shock->Clone(&clone), S_OK);
    ComPtr<IShockCapture> held(clone);
    EXPECT_EQ(get(clone, &IShockCapture::GetUpperLimits), upper);
}

// A count beyond the room (or below zero) in the stream is a damaged record: refused, object unchanged.
TEST_F(ShockLimits, DamagedCountsAreRefused) {
    ASSERT_TRUE(shock);
    ASSERT_EQ(set(&IShockCapture::SetUpperLimits, ramp(10, 1.0f)), S_OK);
    const std::vector<std::uint8_t> good = savedBytes(object.get());
    const struct {
        std::size_t at;  // the count's offset
        std::int32_t count;
    } cases[] = {{128, 385}, {128, -1}, {132, 385}, {132, INT32_MIN}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.at);
        std::vector<std::uint8_t> bytes = good;
        le::put32(bytes.data() + c.at, static_cast<std::uint32_t>(c.count));
        ComPtr<IDispatch> target = newObject(u"nv_bench.ShockCapture");
        putProperties(target.get(), {{"Name", "Kept"}});
        EXPECT_TRUE(FAILED(loadBytes(target.get(), bytes)));
        expectProperties(target.get(), {{"Name", "Kept"}, {"UpperLimitsCount", "0"}, {"LowerLimitsCount", "0"}});
    }
}

}  // namespace
}  // namespace nvdl::test
