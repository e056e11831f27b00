// The setup's channels, transducers and front ends: defaults, enumeration texts, the slot order of
// their interfaces, stream round trips and the reading of older stream generations.
#include "SectionTestSupport.h"
#include "setup/InputChannel.h"

namespace nvdl::test {
namespace {

struct ClassDefaults {
    const char16_t* progId;
    std::vector<PropertyText> defaults;
};

TEST(Channels, DefaultsOfEveryClass) {
    const ClassDefaults classes[] = {
        {u"nv_bench.input",
         {{"Name", "InputChannel"}, {"Recorded", "0"}, {"Usage", "0"}, {"Coupling", "100"}, {"Differential", "122"},
          {"Range", "10"}, {"PreGain", "1"}, {"Weighting", "105"}, {"Offset", "0"}, {"AcqScaleFactor", "1"},
          {"Tacho", "0"}, {"TachoPulses", "1"}, {"TachoLevel", "1"}, {"TachoMode", "0"}, {"TachoUnit", "RPM"}}},
        {u"nv_bench.transducer",
         {{"SerialNumber", ""}, {"Model", ""}, {"InputMode", "130"}, {"Sensitivity", "1"}, {"Unit", "Volt"},
          {"CalibrationType", "EU/V"}, {"Comment", ""}}},
        {u"nv_bench.source",
         {{"Name", "SourceChannel"}, {"Usage", "0"}, {"Mode", "172"}, {"Level", "1"}, {"BurstPercent", "50"},
          {"RampTime", "0"}, {"SineFrequency", "1000"}, {"SinePhase", "0"}, {"Bandwidth", "0"},
          {"EndFrequency", "2000"}, {"SweepType", "277"}, {"StartFrequency", "20"}, {"StartPhase", "1000"},
          {"Filename", ""}, {"SweepRate", "2"}, {"SweepTime", "2100"}}},
        {u"nv_bench.strain",
         {{"MinRange", "-0.25"}, {"MaxRange", "0.25"}, {"Config", "10183"}, {"VexSource", "10200"},
          {"VexValue", "2.5"}, {"GageFactor", "0.1"}, {"InitBridgeVoltage", "0"}, {"GageResistance", "120"},
          {"PoissonRatio", "0.3"}, {"LeadWireResistance", "0"}, {"Gain", "0"}, {"LowPassFilter", "0"},
          {"Offset", "0"}, {"CalibrationDate", "0"}, {"Comment", ""}, {"CalibrationType", "EU/V"}}},
        {u"nv_bench.Frontend", {{"Type", "440"}, {"Model", "0"}, {"Module", ""}, {"LogicalAddress", ""}}},
    };
    for (const ClassDefaults& c : classes) {
        SCOPED_TRACE(narrow(c.progId));
        ComPtr<IDispatch> object = newObject(c.progId);
        expectProperties(object.get(), c.defaults);
        EXPECT_EQ(propertyText(object.get(), "Modified"), "0") << "a new object is unmodified";
    }
}

struct ClassTranslations {
    const char16_t* progId;
    std::vector<EnumText> texts;
};

TEST(Channels, EnumerationTexts) {
    const ClassTranslations classes[] = {
        {u"nv_bench.input",
         {{0, "Inactive"}, {2, "Excitation"}, {101, "DC"}, {105, "Off"}, {108, "Ext C-weighting"},
          {118, "Int A-weighting"}, {121, "Differential"}, {122, "Grounded"}, {200, "Off"}, {202, "Tacho"},
          {5121, "Fir C-weighting"}, {5124, "Fir K-weighting"}, {103, ""}, {5125, ""}}},
        {u"nv_bench.transducer",
         {{0, ""}, {130, "Voltage"}, {131, "ICP\xAE"}, {134, "200V Microphone"}, {136, "Strain"}, {137, ""}}},
        {u"nv_bench.source",
         {{0, "Inactive"}, {1, "Active"}, {170, "Sine"}, {175, "Zoomed Burst Random"}, {177, "Burst Arbitrary"},
          {273, "DC"}, {276, "Sine Sweep"}, {278, "Logarithmic"}, {178, ""}}},
        {u"nv_bench.strain",
         {{0, ""}, {10183, "Full Bridge I"}, {10185, "Full Bridge III"}, {10189, "Half Bridge II"},
          {10272, "Quarter Bridge II"}, {10200, ""}}},
    };
    for (const ClassTranslations& c : classes) {
        SCOPED_TRACE(narrow(c.progId));
        ComPtr<IDispatch> object = newObject(c.progId);
        expectTranslations(object.get(), c.texts);
    }
    ComPtr<IDispatch> frontend = newObject(u"nv_bench.Frontend");
    DISPID id;
    EXPECT_TRUE(FAILED(latebound::memberId(frontend.get(), u"Translate", &id))) << "a front end translates nothing";
}

// The duplicate FIR C-weighting row stays, in order, and a search by text takes the first row of
// a text.
TEST(Channels, InputChannelTableKeepsItsDuplicateAndSearchesFromTheTop) {
    const EnumTable& table = CInputChannel::kEnums;
    ASSERT_EQ(table.rows().size(), 22u);
    int fir = 0;
    for (std::size_t i = 0; i < table.rows().size(); ++i) {
        if (i > 0) {
            EXPECT_LE(table.rows()[i - 1].value, table.rows()[i].value) << i;
        }
        fir += table.rows()[i].value == 5121;
    }
    EXPECT_EQ(fir, 2);
    const struct {
        const char16_t* text;
        LONG code;
    } lookups[] = {{u"Fir C-weighting", 5121}, {u"Off", 105}, {u"Tacho", 202}, {u"Grounded", 122},
                   {u"fir c-weighting", -1}, {u"", -1}};
    for (const auto& l : lookups) EXPECT_EQ(table.lookupEnum(l.text), l.code) << narrow(l.text);
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

struct RoundTrip {
    const char16_t* progId;
    std::vector<PropertyText> values;
    std::size_t recordSize;
};

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
    const RoundTrip classes[] = {
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
        {u"nv_bench.Frontend", {{"Type", "441"}, {"Model", "3"}, {"Module", "M-16"}, {"LogicalAddress", "10.0.0.7"}},
         208},
    };
    for (const RoundTrip& c : classes) {
        SCOPED_TRACE(narrow(c.progId));
        expectRoundTrip(c.progId, c.values, c.recordSize);
    }
}

// A date property carries a date at the interface, a plain real stays a real.
TEST(Channels, CalibrationDatesAreDatesOnTransducersOnly) {
    const struct {
        const char16_t* progId;
        const char16_t* property;
        VARTYPE type;
    } cases[] = {{u"nv_bench.transducer", u"CalibrationDate", VT_DATE},
                 {u"nv_bench.transducer", u"CalibrationDue", VT_DATE},
                 {u"nv_bench.strain", u"CalibrationDate", VT_R8}};
    for (const auto& c : cases) {
        ComPtr<IDispatch> object = newObject(c.progId);
        ASSERT_EQ(latebound::put(object.get(), c.property, Variant::fromDouble(44197.75)), S_OK);
        Variant v;
        ASSERT_EQ(latebound::get(object.get(), c.property, &v), S_OK);
        EXPECT_EQ(v.vt, c.type) << narrow(c.property);
        EXPECT_EQ(c.type == VT_DATE ? v.date : v.dblVal, 44197.75) << narrow(c.property);
    }
    // Both dates of a transducer travel through its stream.
    ComPtr<IDispatch> source = newObject(u"nv_bench.transducer");
    ASSERT_EQ(latebound::put(source.get(), u"CalibrationDate", Variant::fromDate(43831.25)), S_OK);
    ASSERT_EQ(latebound::put(source.get(), u"CalibrationDue", Variant::fromDate(44196.5)), S_OK);
    ComPtr<IDispatch> target = newObject(u"nv_bench.transducer");
    ASSERT_EQ(loadBytes(target.get(), savedBytes(source.get())), S_OK);
    for (const auto& [name, date] : {std::pair{u"CalibrationDate", 43831.25}, std::pair{u"CalibrationDue", 44196.5}}) {
        Variant v;
        ASSERT_EQ(latebound::get(target.get(), name, &v), S_OK);
        EXPECT_EQ(v.date, date);
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

struct Older {
    std::int32_t tag;
    std::size_t size;
    std::vector<PropertyText> expected;
};

// Builds an older stream from the newest bytes with the tag changed, followed by bytes of the
// next record, and checks what a fresh object reads from it.
void expectOlderGenerations(const char16_t* progId, const std::vector<PropertyText>& values, const Older* older,
                            std::size_t count) {
    ComPtr<IDispatch> source = newObject(progId);
    putProperties(source.get(), values);
    const std::vector<std::uint8_t> newest = savedBytes(source.get());
    for (std::size_t i = 0; i < count; ++i) {
        const Older& o = older[i];
        std::vector<std::uint8_t> bytes(newest.begin(), newest.begin() + static_cast<std::ptrdiff_t>(o.size));
        le::put32(bytes.data(), static_cast<std::uint32_t>(o.tag));
        bytes.resize(o.size + 8, 0xEE);
        ComPtr<IDispatch> target = newObject(progId);
        std::size_t left = 0;
        ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK) << o.tag;
        EXPECT_EQ(left, 8u) << o.tag;
        expectProperties(target.get(), o.expected);
    }
}

TEST(Channels, OlderInputChannelsKeepTheirTachoDefaults) {
    const Older older[] = {
        {19981027, 196, {{"Name", "Mic front"}, {"Recorded", "-1"}, {"Weighting", "5123"}, {"AcqScaleFactor", "2.5"},
                         {"Tacho", "0"}, {"TachoPulses", "1"}, {"TachoLevel", "1"}, {"TachoMode", "0"},
                         {"TachoUnit", "RPM"}}},
        {19990218, 196, {{"Offset", "0.25"}, {"TachoUnit", "RPM"}}},
        {19990219, 628, {{"Tacho", "-1"}, {"TachoUnit", "Hz"}}},
    };
    expectOlderGenerations(u"nv_bench.input", kInputValues, older, std::size(older));
}

TEST(Channels, OlderSourceChannelsReadTheirOwnLength) {
    const std::vector<PropertyText> oldest = {{"Name", "Shaker"}, {"Mode", "276"}, {"SinePhase", "90"},
                                              {"Bandwidth", "0"}, {"EndFrequency", "2000"}, {"SweepType", "277"},
                                              {"StartPhase", "1000"}, {"Filename", ""}, {"SweepRate", "2"},
                                              {"SweepTime", "2100"}};
    const std::vector<PropertyText> middle = {{"SinePhase", "90"}, {"Bandwidth", "800"}, {"StartPhase", "45"},
                                              {"Filename", "/data/sweep.wav"}, {"SweepRate", "2"}, {"SweepTime", "2100"}};
    const Older older[] = {
        {0, 132, oldest},
        {20051220, 132, oldest},
        {20051221, 344, middle},
        {20060809, 344, middle},
        {20060810, 808, {{"SweepRate", "1.5"}, {"SweepTime", "3600"}}},
    };
    expectOlderGenerations(u"nv_bench.source", kSourceValues, older, std::size(older));
}

TEST(Channels, UnknownTagsAreRefusedAndLeaveTheChannelAsItWas) {
    const struct {
        const char16_t* progId;
        std::int32_t tag;
        PropertyText unchanged;
    } cases[] = {{u"nv_bench.input", 19981026, {"Name", "InputChannel"}},
                 {u"nv_bench.input", 0, {"Name", "InputChannel"}},
                 {u"nv_bench.source", -1, {"Name", "SourceChannel"}}};
    for (const auto& c : cases) {
        ComPtr<IDispatch> source = newObject(c.progId);
        putProperties(source.get(), {{"Name", "changed"}});
        std::vector<std::uint8_t> bytes = savedBytes(source.get());
        le::put32(bytes.data(), static_cast<std::uint32_t>(c.tag));
        ComPtr<IDispatch> target = newObject(c.progId);
        EXPECT_TRUE(FAILED(loadBytes(target.get(), bytes))) << c.tag;
        expectProperties(target.get(), {c.unchanged});
    }
}

}  // namespace
}  // namespace nvdl::test
