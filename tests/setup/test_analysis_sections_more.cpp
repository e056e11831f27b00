// The tachometer, octave, impact, shock-response-spectrum and stepped-sine sections: defaults, the
// codes without texts, stream round trips, older octave generations and tags the reader refuses.
#include "SectionTestSupport.h"

namespace nvdl::test {
namespace {

struct SectionClass {
    const char16_t* progId;
    std::vector<PropertyText> defaults;
    std::vector<PropertyText> values;  // every property away from its default
    std::size_t recordSize;
};

const std::vector<PropertyText> kOctaveValues = {
    {"Processing", "2"},       {"StartFrequency", "31.5"}, {"StopFrequency", "8000"},
    {"IntegrationTime", "0.5"}, {"Weighting", "107"},       {"SaveInterval", "4"},
    {"ComputeInterval", "0.25"}, {"TimeWeighting", "3"},    {"PeakHold", "1"}};

const SectionClass kSections[] = {
    {u"nv_bench.tacho", {{"Name", "Tacho"}}, {{"Name", "Shaft tacho"}}, 100},
    {u"nv_bench.octave",
     {{"Processing", "0"}, {"StartFrequency", "20"}, {"StopFrequency", "10000"}, {"IntegrationTime", "0.1"},
      {"Weighting", "105"}, {"SaveInterval", "0"}, {"ComputeInterval", "0.1"}, {"TimeWeighting", "0"},
      {"PeakHold", "0"}},
     kOctaveValues,
     394},
    {u"nv_bench.Impact", {{"Activated", "0"}}, {{"Activated", "-1"}}, 52},
    {u"nv_bench.SRS",
     {{"Name", "SRS"}, {"FreqMin", "10"}, {"FreqMax", "5000"}, {"OctaveSpacing", "12"}, {"SDOFDamping", "5"},
      {"DCOffset", "0"}, {"Drift", "0"}, {"Activated", "0"}},
     {{"Name", "Drop test"}, {"FreqMin", "5"}, {"FreqMax", "2000"}, {"OctaveSpacing", "6"}, {"SDOFDamping", "2.5"},
      {"DCOffset", "-1"}, {"Drift", "-1"}, {"Activated", "-1"}},
     2192},
    {u"nv_bench.SteppedSine",
     {{"Name", "SteppedSine"}, {"FreqStart", "10"}, {"FreqEnd", "500"}, {"FreqIncr", "5"}, {"Delay", "1"},
      {"Averaging", "4"}, {"Type", "0"}, {"Activated", "0"}},
     {{"Name", "Sweep"}, {"FreqStart", "20"}, {"FreqEnd", "1500"}, {"FreqIncr", "2.5"}, {"Delay", "0.75"},
      {"Averaging", "8"}, {"Type", "3"}, {"Activated", "-1"}},
     128},
};

TEST(AnalysisSections, Defaults) {
    for (const SectionClass& c : kSections) {
        SCOPED_TRACE(narrow(c.progId));
        expectProperties(newObject(c.progId).get(), c.defaults);
    }
}

TEST(AnalysisSections, StreamRoundTripAndShortStreams) {
    for (const SectionClass& c : kSections) {
        SCOPED_TRACE(narrow(c.progId));
        expectRoundTrip(c.progId, c.values, c.recordSize);
    }
}

// The shock-response-spectrum and stepped-sine sections translate codes but hold no texts.
TEST(AnalysisSections, CodesWithoutTexts) {
    for (const char16_t* progId : {u"nv_bench.SRS", u"nv_bench.SteppedSine"}) {
        SCOPED_TRACE(narrow(progId));
        expectTranslations(newObject(progId).get(), {{0, ""}, {1, ""}, {550, ""}});
    }
}

// The first generation ends with the save interval, the second adds the compute interval and the
// time weighting; each reads exactly its own length and leaves the rest at the defaults.
TEST(Octave, OlderGenerationsLeaveLaterFieldsAtTheirDefaults) {
    ComPtr<IDispatch> source = newObject(u"nv_bench.octave");
    putProperties(source.get(), kOctaveValues);
    std::vector<std::uint8_t> newest = savedBytes(source.get());
    ASSERT_EQ(newest.size(), 394u);
    EXPECT_EQ(le::text(newest.data(), 49), "20080319");
    struct Older {
        const char* tag;
        std::size_t size;
        std::vector<PropertyText> expected;
    };
    const Older older[] = {
        {"20021008", 74,
         {{"StartFrequency", "31.5"}, {"Weighting", "107"}, {"SaveInterval", "4"}, {"ComputeInterval", "0.1"},
          {"TimeWeighting", "0"}, {"PeakHold", "0"}}},
        {"20070320", 82, {{"SaveInterval", "4"}, {"ComputeInterval", "0.25"}, {"TimeWeighting", "3"}, {"PeakHold", "0"}}},
    };
    for (const Older& o : older) {
        std::vector<std::uint8_t> bytes(newest.begin(), newest.begin() + o.size);
        le::putText(bytes.data(), 50, o.tag);
        bytes.resize(o.size + 8, 0xEE);  // what follows belongs to the next record
        ComPtr<IDispatch> target = newObject(u"nv_bench.octave");
        std::size_t left = 0;
        ASSERT_EQ(loadBytes(target.get(), bytes, &left), S_OK) << o.tag;
        EXPECT_EQ(left, 8u) << o.tag;
        expectProperties(target.get(), o.expected);
    }
}

// A tag older than every generation, or a tag that is no number, is refused and changes nothing.
TEST(AnalysisSections, UnknownTagsAreRefused) {
    struct Refused {
        const char16_t* progId;
        std::vector<PropertyText> values;
        bool textTag;
        const char* tag;  // as text, or the decimal of the long
        PropertyText unchanged;
    };
    const Refused refused[] = {
        {u"nv_bench.octave", kOctaveValues, true, "20021007", {"StartFrequency", "20"}},
        {u"nv_bench.octave", kOctaveValues, true, "Octave", {"StopFrequency", "10000"}},
        {u"nv_bench.Impact", {{"Activated", "-1"}}, true, "20030702", {"Activated", "0"}},
        {u"nv_bench.SRS", {{"FreqMax", "2000"}}, false, "20070227", {"FreqMax", "5000"}},
    };
    for (const Refused& r : refused) {
        SCOPED_TRACE(r.tag);
        ComPtr<IDispatch> source = newObject(r.progId);
        putProperties(source.get(), r.values);
        std::vector<std::uint8_t> bytes = savedBytes(source.get());
        ASSERT_GE(bytes.size(), 50u);
        if (r.textTag) le::putText(bytes.data(), 50, r.tag);
        else le::put32(bytes.data(), static_cast<std::uint32_t>(std::atol(r.tag)));
        ComPtr<IDispatch> target = newObject(r.progId);
        EXPECT_TRUE(FAILED(loadBytes(target.get(), bytes)));
        expectProperties(target.get(), {r.unchanged});
    }
}

}  // namespace
}  // namespace nvdl::test
