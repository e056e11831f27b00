// The analysis sections of a setup: defaults, enumeration texts, stream round trips and the reading
// of older stream generations, class by class.
#include "SectionTestSupport.h"

namespace nvdl::test {
namespace {

TEST(Rpm, DefaultsAndEnumerationTexts) {
    ComPtr<IDispatch> rpm = newObject(u"nv_bench.rpm");
    expectProperties(rpm.get(), {{"Name", "Rpm"}, {"RPMChannel", "0"}, {"NbPulseByRevolution", "2"},
                                 {"StartRPM", "1000"}, {"EndRPM", "6000"}, {"EndTime", "300"},
                                 {"StartMode", "550"}, {"ConditionsMode", "560"}, {"RPMIncrement", "20"},
                                 {"SaveRPMAction", "572"}, {"OrderResolution", "0.4"}, {"TriggerMode", "409"},
                                 {"TriggerLevel", "1"}, {"TriggerSignal", "580"}, {"Orders", ""}});
    expectTranslations(rpm.get(), {{1, "Source"}, {551, "Manual"}, {563, "Run Down & Up"}, {571, "Average RPM"},
                                   {582, "Sine"}, {825, "Zone Exit"}, {826, "Zone Entry"}, {473, ""}});
}

const std::vector<PropertyText> kRpmValues = {
    {"Name", "Run-up"}, {"RPMChannel", "3"}, {"NbPulseByRevolution", "60"}, {"StartRPM", "800"},
    {"EndRPM", "7200"}, {"StartTime", "1.5"}, {"EndTime", "42"}, {"StartMode", "551"}, {"EndMode", "551"},
    {"IntervalMode", "551"}, {"RPMIncrement", "25"}, {"TimeInterval", "0.5"}, {"ConditionsMode", "562"},
    {"RPMRangeEnable", "-1"}, {"RPMRange", "12.5"}, {"SaveRPMAction", "570"}, {"OrderResolution", "0.25"},
    {"Activated", "-1"}, {"Orders", "1;2;4.5"}, {"TriggerChannel", "2"}, {"TriggerMode", "410"},
    {"TriggerLevel", "0.75"}, {"TriggerSignal", "582"}, {"TriggerDelay", "0.125"}, {"RotateMethod", "7"}};

TEST(Rpm, StreamRoundTripAndShortStreams) { expectRoundTrip(u"nv_bench.rpm", kRpmValues, 300); }

// The first generation is 236 bytes and ends with the orders; the trigger and the rotation method
// keep their defaults when read from it, and the second generation lacks only the rotation method.
TEST(Rpm, OlderGenerationsLeaveLaterFieldsAtTheirDefaults) {
    ComPtr<IDispatch> source = newObject(u"nv_bench.rpm");
    putProperties(source.get(), kRpmValues);
    std::vector<std::uint8_t> newest = savedBytes(source.get());
    ASSERT_EQ(newest.size(), 300u);
    struct Older {
        std::int32_t tag;
        std::size_t size;
        std::vector<PropertyText> expected;
    };
    const Older older[] = {
        {20021101, 236, {{"Orders", "1;2;4.5"}, {"Activated", "-1"}, {"TriggerChannel", "0"}, {"TriggerMode", "409"},
                         {"TriggerLevel", "1"}, {"TriggerSignal", "580"}, {"RotateMethod", "0"}}},
        {20040225, 276, {{"TriggerChannel", "2"}, {"TriggerDelay", "0.125"}, {"RotateMethod", "0"}}},
    };
    for (const Older& o : older) {
        std::vector<std::uint8_t> bytes(newest.begin(), newest.begin() + o.size);
        le::put32(bytes.data(), static_cast<std::uint32_t>(o.tag));
        bytes.resize(o.size + 8, 0xEE);  // what follows belongs to the next record
        ComPtr<IDispatch> target = newObject(u"nv_bench.rpm");
        std::size_t left = 0;
        ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK) << o.tag;
        EXPECT_EQ(left, 8u) << o.tag;
        expectProperties(target.get(), o.expected);
    }
    std::vector<std::uint8_t> unknown = newest;
    le::put32(unknown.data(), 20021031);  // older than every generation
    ComPtr<IDispatch> target = newObject(u"nv_bench.rpm");
    EXPECT_TRUE(FAILED(loadBytes(target.get(), unknown)));
    expectProperties(target.get(), {{"Name", "Rpm"}, {"StartRPM", "1000"}});
}

}  // namespace
}  // namespace nvdl::test
