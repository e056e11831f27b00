// The acquisition section: its setter rules, the count of overlapping blocks, the computation block
// size cut by the settings' divider, and its stream in all three generations.
#include "../project/SettingsFileTest.h"
#include "PlainPutSupport.h"
#include "StandInSetup.h"
#include "nvdl/IAcquisition.h"
#include "platform/Registry.h"

namespace nvdl::test {
namespace {

constexpr const char16_t* kProgId = u"nv_bench.acquisition";

ComPtr<IAcquisition> newAcquisition() {
    ComPtr<IDispatch> object = newObject(kProgId);
    ComPtr<IAcquisition> acquisition;
    EXPECT_EQ(object->QueryInterface(IID_IAcquisition, reinterpret_cast<void**>(acquisition.out())), S_OK);
    return acquisition;
}

std::uint64_t sizeMax(IDispatch* object) {
    ComPtr<IPersistStream> persist;
    EXPECT_EQ(object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(persist.out())), S_OK);
    std::uint64_t size = 0;
    EXPECT_EQ(persist->GetSizeMax(&size), S_OK);
    return size;
}

TEST(Acquisition, DefaultsTranslationsAndNoPropertyPut) {
    ComPtr<IDispatch> a = newObject(kProgId);
    expectProperties(a.get(), {{"Name", "Acquisition"}, {"SampleFrequency", "51200"}, {"CenterFrequency", "0"},
                               {"TriggerMode", "409"}, {"TriggerLevel", "0.5"}, {"TriggerDelay", "3"},
                               {"AutoRangePercent", "25"}, {"Blocksize", "1024"}, {"ArmMode", "431"},
                               {"GapFree", "0"}, {"ComputationBlocksize", "8192"}, {"AcquisitionBlocksize", "1024"},
                               {"DataFormat", "332"}});
    expectTranslations(a.get(), {{1, "Source"}, {331, "Fast 16 bit"}, {332, "Precision 32 bit"}, {430, "Manual Arm"},
                                 {474, "Ext prearm neg"}, {825, "Zone Exit"}, {826, "Zone Entry"}, {334, ""}});
    Variant text;
    ASSERT_EQ(invoke(a.get(), u"Property", DISPATCH_PROPERTYGET, {Variant::fromAnsi("Blocksize")}, &text), S_OK);
    EXPECT_EQ(textOf(text), "1024");
    EXPECT_TRUE(FAILED(invoke(a.get(), u"Property", DISPATCH_PROPERTYPUT,
                              {Variant::fromAnsi("Blocksize"), Variant::fromAnsi("512")})));
}

// Each row sets one property and reads back what was stored; a refused value leaves the old one.
TEST(Acquisition, SetterRules) {
    struct Case {
        const char* property;
        const char* value;
        bool accepted;
        const char* stored;
    } cases[] = {
        {"SampleFrequency", "51200.7", true, "51200"},
        {"SampleFrequency", "1.99", true, "1"},
        {"SampleFrequency", "0", false, "51200"},
        {"SampleFrequency", "-48000", false, "51200"},
        {"ComputationBlocksize", "4096", true, "4096"},
        {"ComputationBlocksize", "0", true, "1024"},
        {"ComputationBlocksize", "-7", true, "1024"},
        {"DataFormat", "334", true, "332"},
        {"DataFormat", "331", true, "331"},
        {"DataFormat", "333", true, "333"},
    };
    for (const Case& c : cases) {
        ComPtr<IDispatch> a = newObject(kProgId);
        EXPECT_EQ(SUCCEEDED(putText(a.get(), widen(c.property), c.value)), c.accepted) << c.property << c.value;
        EXPECT_EQ(getText(a.get(), widen(c.property)), c.stored) << c.property << " " << c.value;
    }
}

TEST(Acquisition, ComputationBlocksizeFollowsTheCurrentBlocksize) {
    ComPtr<IAcquisition> a = newAcquisition();
    ASSERT_EQ(a->put_Blocksize(2048), S_OK);
    ASSERT_EQ(a->put_ComputationBlocksize(0), S_OK);
    LONG size = 0;
    ASSERT_EQ(a->get_ComputationBlocksize(&size), S_OK);
    EXPECT_EQ(size, 2048);
}

TEST(Acquisition, ComputeBlocksCount) {
    struct Case {
        LONG blocks;
        float overlap;
        HRESULT status;
        LONG count;
    } cases[] = {
        {10, 50.0f, S_OK, 19},   {10, 0.0f, S_OK, 10},  {10, 100.0f, S_OK, 10}, {10, -5.0f, S_OK, 10},
        {10, 75.0f, S_OK, 37},   {4, 33.3f, S_OK, 5},   {1, 50.0f, S_OK, 1},    {-3, 0.0f, S_OK, -3},
        {0, 50.0f, E_FAIL, 0},   {-2, 10.0f, E_FAIL, 0}, {INT32_MAX, 99.0f, E_FAIL, 0},
    };
    ComPtr<IAcquisition> a = newAcquisition();
    for (const Case& c : cases) {
        LONG count = 0;
        EXPECT_EQ(a->ComputeBlocksCount(c.blocks, c.overlap, &count), c.status) << c.blocks << " " << c.overlap;
        if (c.status == S_OK) {
            EXPECT_EQ(count, c.count) << c.blocks << " " << c.overlap;
        }
    }
}

using AcquisitionSettings = SettingsFileTest;

// The divider of the settings cuts the stored size only while the setup computes time records.
TEST_F(AcquisitionSettings, ComputationBlocksizeIsCutByTheDividerForTimeRecords) {
    struct Case {
        const char* divider;  // nullptr: no such value
        LONG function;        // 0: no setup
        LONG expected;
    } cases[] = {
        {"4", 1001, 2048}, {"4", 1041, 2048},  {"4", 1002, 8192},      {"4", 0, 8192},
        {"1", 1001, 8192}, {"0", 1001, 8192},  {"-3", 1001, 8192},     {"abc", 1001, 8192},
        {nullptr, 1001, 8192}, {"100000", 1001, 1024},
    };
    for (const Case& c : cases) {
        Values values;
        if (c.divider) values["ComputationBlocksizeDivider"] = c.divider;
        writeSettings({{std::string("HKEY_CURRENT_USER\\") + registry::kSettingsKey, values}});
        ComPtr<IAcquisition> a = newAcquisition();
        ComPtr<IDispatch> setup;
        if (c.function) {
            setup = ComPtr<IDispatch>((new CTestProcessingSetup(c.function))->dispatch());
            ASSERT_EQ(a->put_Setup(setup.get()), S_OK);
        }
        LONG size = 0;
        ASSERT_EQ(a->get_ComputationBlocksize(&size), S_OK);
        EXPECT_EQ(size, c.expected) << (c.divider ? c.divider : "none") << " " << c.function;
    }
}

const std::vector<PropertyText> kValues = {
    {"Name", "Shaker run"}, {"SampleFrequency", "48000"}, {"CenterFrequency", "1250.5"}, {"TriggerMode", "410"},
    {"TriggerChannel", "3"}, {"TriggerLevel", "0.25"}, {"TriggerDelay", "-0.125"}, {"AutoRangePercent", "12.5"},
    {"Blocksize", "4096"}, {"ArmMode", "430"}, {"ComputationBlocksize", "16384"}, {"AcquisitionBlocksize", "2048"},
    {"GapFree", "-1"}, {"DigitalAC", "1"}, {"DataFormat", "331"}};

std::vector<std::uint8_t> newestBytes() {
    ComPtr<IDispatch> source = newObject(kProgId);
    putValues(source.get(), kValues);
    return savedBytes(source.get());
}

TEST(Acquisition, NewestRecordLayout) {
    const std::vector<std::uint8_t> bytes = newestBytes();
    ASSERT_EQ(bytes.size(), 2200u);
    EXPECT_EQ(le::text(bytes.data(), 99), "Shaker run");
    struct At {
        std::size_t offset;
        std::int32_t value;
    } longs[] = {{108, 410}, {112, 20060221}, {116, 3}, {132, 4096}, {136, 430}, {140, 16384}, {144, 2048}, {152, 331}};
    for (const At& at : longs) EXPECT_EQ(le::i32(bytes.data() + at.offset), at.value) << at.offset;
    EXPECT_EQ(le::f32(bytes.data() + 100), 48000.0f);
    EXPECT_EQ(le::f32(bytes.data() + 104), 1250.5f);
    EXPECT_EQ(le::f32(bytes.data() + 120), 0.25f);
    EXPECT_EQ(le::f32(bytes.data() + 124), -0.125f);
    EXPECT_EQ(le::f32(bytes.data() + 128), 12.5f);
    EXPECT_EQ(le::i16(bytes.data() + 148), -1);
    EXPECT_EQ(le::i16(bytes.data() + 150), 1);
    for (std::size_t i = 156; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0) << i;
}

TEST(Acquisition, StreamRoundTripAndShortStreams) {
    expectPlainRoundTrip(kProgId, kValues, 2200, {{"Name", "Acquisition"}, {"Blocksize", "1024"}, {"DataFormat", "332"}});
    ComPtr<IDispatch> fresh = newObject(kProgId);
    EXPECT_EQ(sizeMax(fresh.get()), 2200u);
    ComPtr<IDispatch> older = newObject(kProgId);
    std::vector<std::uint8_t> bytes = newestBytes();
    le::put32(bytes.data() + 112, 20030904);
    ASSERT_EQ(loadBytes(older.get(), {bytes.begin(), bytes.begin() + 143}), S_OK);  // a whole 140-byte record
    le::put32(bytes.data() + 112, 20030905);
    EXPECT_TRUE(FAILED(loadBytes(older.get(), {bytes.begin(), bytes.begin() + 143})));  // a 144-byte one, cut
    EXPECT_EQ(sizeMax(older.get()), 140u);  // a failed read leaves the size of the last one read
}

// Older records, built from the newest bytes with the tag changed: what they lack keeps its value,
// and the size the companion announces is the one read.
TEST(Acquisition, OlderGenerations) {
    const std::vector<std::uint8_t> newest = newestBytes();
    struct Older {
        std::int32_t tag;
        std::size_t size;
        std::vector<PropertyText> expected;
    } older[] = {
        {20030904, 140, {{"ArmMode", "430"}, {"ComputationBlocksize", "8192"}, {"AcquisitionBlocksize", "1024"},
                         {"GapFree", "0"}, {"DataFormat", "332"}}},
        {0, 140, {{"Blocksize", "4096"}, {"ComputationBlocksize", "8192"}}},
        {-1, 140, {{"TriggerChannel", "3"}, {"DigitalAC", "0"}}},
        {20030905, 144, {{"ComputationBlocksize", "16384"}, {"AcquisitionBlocksize", "1024"}, {"DataFormat", "332"}}},
        {20060220, 144, {{"ComputationBlocksize", "16384"}, {"GapFree", "0"}}},
        {20991231, 2200, {{"GapFree", "-1"}, {"DataFormat", "331"}}},
    };
    for (const Older& o : older) {
        std::vector<std::uint8_t> bytes(newest.begin(), newest.begin() + o.size);
        le::put32(bytes.data() + 112, static_cast<std::uint32_t>(o.tag));
        bytes.resize(o.size + 8, 0xEE);  // what follows belongs to the next record
        ComPtr<IDispatch> target = newObject(kProgId);
        std::size_t left = 0;
        ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK) << o.tag;
        EXPECT_EQ(left, 8u) << o.tag;
        expectProperties(target.get(), {{"Name", "Shaker run"}, {"SampleFrequency", "48000"}});
        expectProperties(target.get(), o.expected);
        EXPECT_EQ(sizeMax(target.get()), o.size) << o.tag;
        EXPECT_EQ(savedBytes(target.get()).size(), 2200u) << o.tag;
    }
}

// What the reader takes passes the setters' rules.
TEST(Acquisition, LoadAppliesTheSetterRules) {
    struct Case {
        float frequency;
        std::int32_t computation, format;
        const char *frequencyText, *computationText, *formatText;
    } cases[] = {
        {44100.9f, 0, 334, "44100", "4096", "332"},
        {0.0f, -1, 331, "51200", "4096", "331"},
        {-8.0f, 512, 332, "51200", "512", "332"},
    };
    const std::vector<std::uint8_t> newest = newestBytes();
    for (const Case& c : cases) {
        std::vector<std::uint8_t> bytes = newest;
        le::putF32(bytes.data() + 100, c.frequency);
        le::put32(bytes.data() + 140, static_cast<std::uint32_t>(c.computation));
        le::put32(bytes.data() + 152, static_cast<std::uint32_t>(c.format));
        ComPtr<IDispatch> target = newObject(kProgId);
        ASSERT_EQ(loadBytes(target.get(), bytes), S_OK);
        expectProperties(target.get(), {{"SampleFrequency", c.frequencyText},
                                        {"ComputationBlocksize", c.computationText},
                                        {"DataFormat", c.formatText}});
    }
}

}  // namespace
}  // namespace nvdl::test
