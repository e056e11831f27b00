// The processing section: defaults, the texts of its own codes and of the measurement's, and its
// stream in both generations.
#include "PlainPutSupport.h"

namespace nvdl::test {
namespace {

constexpr const char16_t* kProgId = u"nv_bench.processing";

TEST(Processing, DefaultsAndTheMergedEnumerationTexts) {
    ComPtr<IDispatch> p = newObject(kProgId);
    expectProperties(p.get(), {{"MeasurementFunction", "1001"}, {"AverageType", "1201"}, {"AverageNumber", "100"},
                               {"AverageParameter", "10"}, {"NbClasses", "101"}, {"ExtremalClass", "2000"},
                               {"ResponseWindowType", "1302"}, {"ExcitationWindowParameter", "10"},
                               {"RovingMode", "3000"}, {"DoubleHitToleranceFactor", "0.2"},
                               {"ComputeAverageNumber", "100"}, {"RealTime", "-1"}});
    expectTranslations(p.get(), {{0, "Ignore"}, {3, "Range up"}, {105, "Off"}, {1001, "Time record"},
                                 {1041, "Time record+Spectrum"}, {1201, "Linear"}, {1309, "Force/Exponential"},
                                 {2001, "Maximal Input Range"}, {3001, "Roving Accelerators"}, {4, ""}, {2002, ""}});
}

const std::vector<PropertyText> kValues = {
    {"MeasurementFunction", "1011"}, {"AverageType", "1202"}, {"AverageNumber", "12"}, {"AverageParameter", "2.5"},
    {"OverlapPercent", "66.5"}, {"Offset", "-1.25"}, {"NbClasses", "64"}, {"ExtremalClass", "2001"},
    {"ResponseWindowType", "1306"}, {"ResponseWindowParameter", "0.5"}, {"ExcitationWindowType", "1305"},
    {"ExcitationWindowParameter", "4"}, {"OverloadAction", "1"}, {"OverloadRetryCount", "3"},
    {"DisplayRefreshCount", "5"}, {"RovingMode", "3001"}, {"DoubleHitDetectionEnabled", "-1"},
    {"DoubleHitAutoCorrect", "-1"}, {"DoubleHitToleranceFactor", "0.375"}, {"CorrectDC", "-1"},
    {"ComputeAverageNumber", "7"}, {"AverageCalculation", "2"}, {"RealTime", "0"}};

TEST(Processing, StreamRoundTripAndShortStreams) {
    expectPlainRoundTrip(kProgId, kValues, 620, {{"MeasurementFunction", "1001"}, {"RealTime", "-1"}});
}

// The first generation is 72 bytes and ends with the double-hit flags.
TEST(Processing, FirstGenerationLeavesTheLaterValues) {
    ComPtr<IDispatch> source = newObject(kProgId);
    putValues(source.get(), kValues);
    std::vector<std::uint8_t> bytes = savedBytes(source.get());
    ASSERT_EQ(bytes.size(), 620u);
    EXPECT_EQ(le::i32(bytes.data()), 20000327);
    bytes.resize(72);
    le::put32(bytes.data(), 19990219);
    ComPtr<IDispatch> target = newObject(kProgId);
    ASSERT_EQ(loadBytes(target.get(), bytes), S_OK);
    expectProperties(target.get(), {{"MeasurementFunction", "1011"}, {"RovingMode", "3001"},
                                    {"DoubleHitAutoCorrect", "-1"}, {"DoubleHitToleranceFactor", "0.2"},
                                    {"CorrectDC", "0"}, {"AverageCalculation", "0"}, {"RealTime", "-1"}});
    le::put32(bytes.data(), 19990218);  // older than every generation
    ComPtr<IDispatch> untouched = newObject(kProgId);
    EXPECT_TRUE(FAILED(loadBytes(untouched.get(), bytes)));
    expectProperties(untouched.get(), {{"MeasurementFunction", "1001"}});
}

}  // namespace
}  // namespace nvdl::test
