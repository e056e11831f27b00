// The setup's channels, transducers and front ends: defaults, enumeration texts, the slot order of
// their interfaces, stream round trips and the reading of older stream generations.
#include <algorithm>

#include "SectionTestSupport.h"
#include "setup/InputChannel.h"

namespace nvdl::test {
namespace {

// Each class's defaults and enumeration texts; a new object is unmodified.
TEST(Channels, DefaultsAndEnumerationTexts) {
    const struct {
        const char16_t* progId;
        std::vector<PropertyText> defaults;
        std::vector<EnumText> texts;
    } classes[] = {
        {u"nv_bench.input",
         {{"Name", "InputChannel"}, {"Recorded", "0"}, {"Usage", "0"}, {"Coupling", "100"}, {"Differential", "122"},
          {"Range", "10"}, {"PreGain", "1"}, {"Weighting", "105"}, {"Offset", "0"}, {"AcqScaleFactor", "1"},
          {"Tacho", "0"}, {"TachoPulses", "1"}, {"TachoLevel", "1"}, {"TachoMode", "0"}, {"TachoUnit", "RPM"}},
         {{0, "Inactive"}, {2, "Excitation"}, {101, "DC"}, {105, "Off"}, {108, "Ext C-weighting"},
          {118, "Int A-weighting"}, {121, "Differential"}, {122, "Grounded"}, {200, "Off"}, {202, "Tacho"},
          {5121, "Fir C-weighting"}, {5124, "Fir K-weighting"}, {103, ""}, {5125, ""}}},
        {u"nv_bench.transducer",
         {{"SerialNumber", ""}, {"Model", ""}, {"InputMode", "130"}, {"Sensitivity", "1"}, {"Unit", "Volt"},
          {"CalibrationType", "EU/V"}, {"Comment", ""}},
         {{0, ""}, {130, "Voltage"}, {131, "ICP\xAE"}, {134, "200V Microphone"}, {136, "Strain"}, {137, ""}}},
        {u"nv_bench.source",
         {{"Name", "SourceChannel"}, {"Usage", "0"}, {"Mode", "172"}, {"Level", "1"}, {"BurstPercent", "50"},
          {"RampTime", "0"}, {"SineFrequency", "1000"}, {"SinePhase", "0"}, {"Bandwidth", "0"},
          {"EndFrequency", "2000"}, {"SweepType", "277"}, {"StartFrequency", "20"}, {"StartPhase", "1000"},
          {"Filename", ""}, {"SweepRate", "2"}, {"SweepTime", "2100"}},
         {{0, "Inactive"}, {1, "Active"}, {170, "Sine"}, {175, "Zoomed Burst Random"}, {177, "Burst Arbitrary"},
          {273, "DC"}, {276, "Sine Sweep"}, {278, "Logarithmic"}, {178, ""}}},
        {u"nv_bench.strain",
         {{"MinRange", "-0.25"}, {"MaxRange", "0.25"}, {"Config", "10183"}, {"VexSource", "10200"},
          {"VexValue", "2.5"}, {"GageFactor", "0.1"}, {"InitBridgeVoltage", "0"}, {"GageResistance", "120"},
          {"PoissonRatio", "0.3"}, {"LeadWireResistance", "0"}, {"Gain", "0"}, {"LowPassFilter", "0"},
          {"Offset", "0"}, {"CalibrationDate", "0"}, {"Comment", ""}, {"CalibrationType", "EU/V"}},
         {{0, ""}, {10183, "Full Bridge I"}, {10185, "Full Bridge III"}, {10189, "Half Bridge II"},
          {10272, "Quarter Bridge II"}, {10200, ""}}},
        {u"nv_bench.Frontend", {{"Type", "440"}, {"Model", "0"}, {"Module", ""}, {"LogicalAddress", ""}}, {}},
    };
    for (const auto& c : classes) {
        SCOPED_TRACE(narrow(c.progId));
        ComPtr<IDispatch> object = newObject(c.progId);
        expectProperties(object.get(), c.defaults);
        expectProperties(object.get(), {{"Modified", "0"}});
        expectTranslations(object.get(), c.texts);
    }
    DISPID id;
    EXPECT_TRUE(FAILED(latebound::memberId(newObject(u"nv_bench.Frontend").get(), u"Translate", &id)));
}

// The FIR C-weighting stands twice in the input channel's table; a search by text takes the first
// row of a text.
TEST(Channels, InputChannelTableKeepsItsDuplicateAndSearchesFromTheTop) {
    const auto rows = CInputChannel::kEnums.rows();
    ASSERT_EQ(rows.size(), 22u);
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end(), [](auto& a, auto& b) { return a.value < b.value; }));
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(), [](auto& r) { return r.value == 5121; }), 2);
    const std::pair<const char16_t*, LONG> lookups[] = {
        {u"Fir C-weighting", 5121}, {u"Off", 105}, {u"Tacho", 202}, {u"fir c-weighting", -1}, {u"", -1}};
    for (const auto& [text, code] : lookups) EXPECT_EQ(CInputChannel::kEnums.lookupEnum(text), code) << narrow(text);
}

// Slots count the three reference and four dispatch operations first; LoadTypeInfo, the last
// slot, has no late-bound row, so every other member's row is its slot less seven.
TEST(Channels, MembersStandAtTheirSlots) {
    const struct {
        const char16_t* progId;
        std::vector<std::pair<const char*, int>> slots;  // a property's getter, with its setter one on
        int loadTypeInfo;
    } classes[] = {
        {u"nv_bench.input",
         {{"Name", 7}, {"Offset", 23}, {"Translate", 25}, {"Copy", 26}, {"Modified", 27}, {"Property", 29},
          {"Setup", 31}, {"Clone", 33}, {"AcqScaleFactor", 34}, {"TachoUnit", 44}, {"DeleteFIRUserWeightingData", 46},
          {"CreateFIRUserWeightingData", 47}, {"SearchFIRUserWeightingData", 48}},
         49},
        {u"nv_bench.transducer",
         {{"SerialNumber", 7}, {"CalibrationType", 17}, {"Copy", 19}, {"Modified", 20}, {"Property", 22},
          {"Translate", 24}, {"Setup", 25}, {"Clone", 27}, {"CalibrationDate", 28}, {"CalibrationDue", 30},
          {"Comment", 32}},
         34},
    };
    for (const auto& c : classes) {
        SCOPED_TRACE(narrow(c.progId));
        ComPtr<IDispatch> object = newObject(c.progId);
        ITypeInfo* info = nullptr;
        ASSERT_EQ(object->GetTypeInfo(0, 0, &info), S_OK);
        const auto& rows = static_cast<InterfaceDescription*>(info)->members();
        EXPECT_EQ(rows.size(), static_cast<std::size_t>(c.loadTypeInfo - 7));
        for (const auto& [name, slot] : c.slots) {
            ASSERT_LT(static_cast<std::size_t>(slot - 7), rows.size()) << name;
            EXPECT_STREQ(rows[slot - 7].name, name) << "slot " << slot;
        }
        info->Release();
    }
}

const std::vector<PropertyText> kInputValues = {
    {"Name", "Mic front"}, {"Recorded", "-1"}, {"Usage", "1"}, {"Coupling", "101"}, {"Differential", "121"},
    {"Range", "0.5"}, {"PreGain", "10"}, {"Weighting", "5123"}, {"Offset", "0.25"}, {"AcqScaleFactor", "2.5"},
    {"Tacho", "-1"}, {"TachoPulses", "60"}, {"TachoLevel", "0.75"}, {"TachoMode", "201"}, {"TachoUnit", "Hz"}};
const std::vector<PropertyText> kSourceValues = {
    {"Name", "Shaker"}, {"Usage", "1"}, {"Mode", "276"}, {"Level", "0.5"}, {"BurstPercent", "25"},
    {"RampTime", "0.125"}, {"SineFrequency", "440"}, {"SinePhase", "90"}, {"Bandwidth", "800"},
    {"EndFrequency", "5000"}, {"SweepType", "278"}, {"StartFrequency", "5"}, {"StartPhase", "45"},
    {"Filename", "/data/sweep.wav"}, {"SweepRate", "1.5"}, {"SweepTime", "3600"}};

TEST(Channels, StreamRoundTripsAndShortStreams) {
    const struct {
        const char16_t* progId;
        std::vector<PropertyText> values;
        std::size_t recordSize;
    } classes[] = {
        {u"nv_bench.input", kInputValues, 628},
        {u"nv_bench.transducer",
         {{"SerialNumber", "SN-4711"}, {"Model", "4508-B"}, {"InputMode", "131"}, {"Sensitivity", "0.0102"},
          {"Unit", "m/s\xB2"}, {"CalibrationType", "EU/mV"}, {"Comment", "left mount"}},
         568},
        {u"nv_bench.source", kSourceValues, 808},
        {u"nv_bench.strain",
         {{"MinRange", "-1.5"}, {"MaxRange", "1.5"}, {"Config", "10271"}, {"VexSource", "10201"}, {"VexValue", "5"},
          {"GageFactor", "2.1"}, {"InitBridgeVoltage", "0.001"}, {"GageResistance", "350"}, {"PoissonRatio", "0.29"},
          {"LeadWireResistance", "0.5"}, {"Gain", "100"}, {"LowPassFilter", "1000"}, {"Offset", "-0.5"},
          {"CalibrationDate", "44000.5"}, {"Comment", "rosette arm a"}, {"CalibrationType", "EU/mV"}},
         100},
        {u"nv_bench.Frontend",
         {{"Type", "441"}, {"Model", "3"}, {"Module", "M-16"}, {"LogicalAddress", "10.0.0.7"}}, 208},
    };
    for (const auto& c : classes) {
        SCOPED_TRACE(narrow(c.progId));
        expectRoundTrip(c.progId, c.values, c.recordSize);
    }
}

// The strain channel's short record keeps what fits of its texts.
TEST(Channels, StrainTextsAreCutToTheirPlaceInTheRecord) {
    ComPtr<IDispatch> source = newObject(u"nv_bench.strain");
    putProperties(source.get(), {{"Comment", "a comment of well over twenty-seven characters"},
                                 {"CalibrationType", "microstrain per volt"}});
    ComPtr<IDispatch> target = newObject(u"nv_bench.strain");
    ASSERT_EQ(loadBytes(target.get(), savedBytes(source.get())), S_OK);
    expectProperties(target.get(), {{"Comment", "a comment of well over twen"}, {"CalibrationType", "microstrain"}});
}

// Older streams, built from the newest bytes with the tag changed and followed by bytes of the
// next record: each reads its own length and leaves what it lacks at the defaults. A tag older
// than every generation is refused and leaves the object as it was (`size` 0).
TEST(Channels, OlderGenerationsReadTheirOwnLength) {
    const std::vector<PropertyText> sourceOldest = {
        {"SinePhase", "90"}, {"Bandwidth", "0"}, {"Filename", ""}, {"SweepTime", "2100"}};
    const std::vector<PropertyText> sourceMiddle = {{"Filename", "/data/sweep.wav"}, {"SweepTime", "2100"}};
    const struct {
        const char16_t* progId;
        std::int32_t tag;
        std::size_t size;
        std::vector<PropertyText> expected;
    } cases[] = {
        {u"nv_bench.input", 19981027, 196,
         {{"Name", "Mic front"}, {"Recorded", "-1"}, {"AcqScaleFactor", "2.5"}, {"Tacho", "0"}, {"TachoPulses", "1"},
          {"TachoLevel", "1"}, {"TachoMode", "0"}, {"TachoUnit", "RPM"}}},
        {u"nv_bench.input", 19990218, 196, {{"Offset", "0.25"}, {"TachoUnit", "RPM"}}},
        {u"nv_bench.input", 19990219, 628, {{"Tacho", "-1"}, {"TachoUnit", "Hz"}}},
        {u"nv_bench.input", 19981026, 0, {{"Name", "InputChannel"}}},
        {u"nv_bench.source", 0, 132, sourceOldest},
        {u"nv_bench.source", 20051220, 132, sourceOldest},
        {u"nv_bench.source", 20051221, 344, sourceMiddle},
        {u"nv_bench.source", 20060809, 344, sourceMiddle},
        {u"nv_bench.source", 20060810, 808, {{"SweepRate", "1.5"}, {"SweepTime", "3600"}}},
        {u"nv_bench.source", -1, 0, {{"Name", "SourceChannel"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.tag));
        ComPtr<IDispatch> source = newObject(c.progId);
        putProperties(source.get(), std::u16string_view(c.progId) == u"nv_bench.input" ? kInputValues : kSourceValues);
        std::vector<std::uint8_t> bytes = savedBytes(source.get());
        le::put32(bytes.data(), static_cast<std::uint32_t>(c.tag));
        if (c.size) bytes.resize(c.size);
        bytes.resize(bytes.size() + 8, 0xEE);
        ComPtr<IDispatch> target = newObject(c.progId);
        std::size_t left = 0;
        if (c.size) {
            ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK);
            EXPECT_EQ(left, 8u);
        } else {
            EXPECT_TRUE(FAILED(loadBytes(target.get(), bytes)));
        }
        expectProperties(target.get(), c.expected);
    }
}

}  // namespace
}  // namespace nvdl::test
