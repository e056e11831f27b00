// Reading stored setups: older files by the count of their table, octave blocks of both layouts,
// damaged files, the setups section; and the rules of the room counter and of tacho channels.
#include <bit>
#include <cmath>
#include <filesystem>

#include "TrcSetupSupport.h"
#include "recording/TrcSetupsSection.h"

using namespace nvdl::trc;
using namespace nvdl::trc::test;

namespace {

constexpr std::int64_t kTable = kSetupAt + 2156;
constexpr std::int64_t entryAt(int i) { return kTable + 96 + 168 * i; }

void patch(const std::string& name, std::int64_t at, std::int64_t value, int width) {
    std::vector<unsigned char> b = bytesOf(name);
    if (width == 0) b.resize(static_cast<std::size_t>(at));
    else if (width == 4) le::put32(&b[at], static_cast<std::uint32_t>(value));
    else le::put64(&b[at], static_cast<std::uint64_t>(value));
    putBytes(name, b);
}

void nameLaterSections(CTrcSetupSection& s) {
    s.GetSrs().SetName("srs");
    s.GetSteppedSine().SetName("sine");
    s.GetShockCapture().SetName("shock");
}

}  // namespace

TEST(TrcSetupReading, OlderTablesLeaveTheLaterSubsectionsAtTheirDefaults) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("c.trc").string();
    struct Case {
        int count;
        bool readable;
        const char *srs, *sine, *shock;
    } cases[] = {{10, false, "", "", ""},
                 {11, true, "", "", ""},
                 {12, true, "srs", "", ""},
                 {13, true, "srs", "sine", ""},
                 {14, true, "srs", "sine", "shock"},
                 {15, true, "srs", "sine", "shock"}};
    for (const Case& c : cases) {
        CTrcSetupSection setup;
        nameLaterSections(setup);
        ASSERT_TRUE(writeSetup(name, setup));
        patch(name, kTable + 4, c.count, 4);
        CTrcSetupSection back;
        nameLaterSections(back);
        back.GetSrs().SetName("left over");
        ASSERT_EQ(readSetup(name, back) != 0, c.readable) << c.count;
        if (!c.readable) continue;
        EXPECT_STREQ(back.GetSrs().GetName(), c.srs) << c.count;
        EXPECT_STREQ(back.GetSteppedSine().GetName(), c.sine) << c.count;
        EXPECT_STREQ(back.GetShockCapture().GetName(), c.shock) << c.count;
    }

    // A saving section from before the time-history list: a table of one entry.
    CTrcSetupSection setup;
    setup.GetSaving().GetMeasFunctions().Add(std::make_unique<CTrcParameterSection>());
    setup.GetSaving().GetTimeHistoryFunctions().Add(std::make_unique<CTrcParameterSection>());
    ASSERT_TRUE(writeSetup(name, setup));
    patch(name, setup.GetSaving().GetSectionOffset() + 2064 + 4, 1, 4);
    CTrcSetupSection back;
    ASSERT_TRUE(readSetup(name, back));
    EXPECT_EQ(back.GetSaving().GetMeasFunctions().GetCount(), 1);
    EXPECT_EQ(back.GetSaving().GetTimeHistoryFunctions().GetCount(), 0);
}

TEST(TrcSetupReading, OctaveFrequenciesFollowTheBlocksLayout) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("o.trc").string();
    const std::string again = dir.file("o2.trc").string();
    struct Case {
        std::int32_t entryVersion, blockVersion;
        bool readable;
        float start;
    } cases[] = {{20040309, 20040309, true, 20.0f},
                 {20080319, 20080319, true, std::bit_cast<float>(20)},
                 {20080320, 20080319, false, 0},
                 {20040308, 20040309, false, 0}};
    for (const Case& c : cases) {
        CTrcSetupSection setup;
        ASSERT_TRUE(writeSetup(name, setup));
        const std::int64_t octave = setup.GetOctave().GetSectionOffset();
        patch(name, entryAt(8), c.entryVersion, 4);
        patch(name, octave, c.blockVersion, 4);
        patch(name, octave + 8, 20, 4);
        CTrcSetupSection back;
        ASSERT_EQ(readSetup(name, back) != 0, c.readable) << c.entryVersion;
        if (!c.readable) continue;
        EXPECT_EQ(back.GetOctave().GetStartFrequency(), c.start);
        back.GetOctave().SetStopFrequency(50.0f);
        EXPECT_EQ(back.GetOctave().GetStopFrequency(), 50.0f);
        // Written again in the layout it was read in.
        ASSERT_TRUE(writeSetup(again, back));
        const std::vector<unsigned char> b = bytesOf(again);
        EXPECT_EQ(le::i32(&b[octave]), c.blockVersion);
        EXPECT_EQ(le::i32(&b[octave + 8]), 20);
    }
}

TEST(TrcSetupReading, DamagedFilesFailWithoutHarm) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("d.trc").string();
    CTrcSetupSection setup;
    setup.GetInputs().Add(std::make_unique<CTrcInputChannel>());
    ASSERT_TRUE(writeSetup(name, setup));
    const std::int64_t size = static_cast<std::int64_t>(bytesOf(name).size());
    const std::int64_t inputs = setup.GetInputs().GetSectionOffset();
    struct Case {
        const char* what;
        std::int64_t at, value;
        int width;  // 4 or 8 bytes written at `at`; 0: the file cut at `at`
    } cases[] = {
        {"setup past the end", 96 + 48, size + 1000, 8},
        {"setup before the start", 96 + 48, -5, 8},
        {"table count beyond the file", kTable + 4, 0x7fffffff, 4},
        {"input count beyond the file", inputs + 4, 100000, 4},
        {"input channel past the end", inputs + 96 + 48, size, 8},
        {"acquisition entry too old", entryAt(3), 20040308, 4},
        {"cut in the block", kSetupAt + 1000, 0, 0},
        {"cut in the table", kTable + 50, 0, 0},
        {"cut in the shock capture", setup.GetShockCapture().GetSectionOffset() + 100, 0, 0},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(writeSetup(name, setup));
        patch(name, c.at, c.value, c.width);
        CTrcSetupSection back;
        EXPECT_FALSE(readSetup(name, back)) << c.what;
    }
}

TEST(TrcSetupsSection, NamesItsSetupsAndReadsOnce) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("ss.trc").string();
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Owner root;
    CTrcSetupsSection setups;
    setups.Init(&file, &root);
    EXPECT_EQ(setups.GetSectionSize(), 96);
    for (const char* text : {"first", "second"}) {
        auto setup = std::make_unique<CTrcSetupSection>();
        setup->SetName(text);
        setups.Add(std::move(setup));
    }
    setups.SetSectionOffset(96 + 168);
    setups.UpdateTocSections();
    root.toc.Add(setups);
    ASSERT_TRUE(root.toc.Write(&file, &root));
    ASSERT_TRUE(setups.Write());
    file.Close();

    ASSERT_TRUE(file.Open(name.c_str()));
    Owner readRoot;
    ASSERT_TRUE(readRoot.toc.Read(&file));
    CTrcSetupsSection back;
    back.Init(&file, &readRoot);
    back.SetSectionIndex(0);
    EXPECT_FALSE(back.IsRead());
    ASSERT_TRUE(back.Read());
    ASSERT_EQ(back.GetCount(), 2);
    EXPECT_STREQ(back.GetItem(1)->GetName(), "second");
    EXPECT_STREQ(back.GetItem(1)->GetSectionName(), "SETUP2");
    file.Close();
    EXPECT_TRUE(back.Read());  // read already: the closed file is not asked again
    EXPECT_EQ(back.GetCount(), 2);
    back.Init(&file, &readRoot);
    EXPECT_FALSE(back.Read());
}

TEST(TrcProcessing, TheRoomFollowsTheFirstCountAndShrinksOnly) {
    CTrcProcessing processing;
    const struct {
        long set, average, max;
    } steps[] = {{100, 100, 100}, {40, 40, 40}, {70, 70, 40}, {0, 0, 0}, {5, 5, 5}};
    for (const auto& s : steps) {
        processing.SetAverageNumber(s.set);
        EXPECT_EQ(processing.GetAverageNumber(), s.average) << s.set;
        EXPECT_EQ(processing.GetMaxAverageNumber(), s.max) << s.set;
    }
}

TEST(TrcTachoChannel, TheActivePartNamesTheChannelAndGivesItsRange) {
    struct Case {
        int rpm, cola;
        int activated;
        const char* name;
        float endRpm;
    } cases[] = {
        {0, 0, 0, "cola", 0.0f}, {1, 0, 1, "rpm", 6000.0f}, {0, 1, 1, "cola", 1.0f}, {1, 1, 1, "rpm", 6000.0f}};
    CTrcTachoChannels list;
    for (const Case& c : cases) {
        auto tacho = std::make_unique<CTrcTachoChannel>();
        tacho->GetRpm().SetName("rpm");
        tacho->GetRpm().SetActivated(c.rpm);
        tacho->GetRpm().SetEndRPM(6000);
        tacho->GetCola().SetName("cola");
        tacho->GetCola().SetActivated(c.cola);
        tacho->GetCola().SetEndFreq(60);
        EXPECT_EQ(tacho->GetActivated() != 0, c.activated != 0);
        EXPECT_STREQ(tacho->GetName(), c.name);
        EXPECT_NEAR(tacho->GetEndRPM(), c.endRpm, 1e-6);
        list.Add(std::move(tacho));
    }
    // Used channels are the second to fourth; numbers are 1-based in the whole list.
    EXPECT_EQ(list.GetUsedChannels(), 3);
    const long numbers[][2] = {{0, 2}, {1, 3}, {2, 4}, {3, 0}, {-1, 0}};
    for (const auto& n : numbers) EXPECT_EQ(list.GetChannelNrFromUsedIndex(n[0]), n[1]) << n[0];

    CTrcTachoChannel tacho;
    tacho.GetRpm().SetName(std::string(100, 'n').c_str());
    tacho.GetRpm().SetName(nullptr);
    EXPECT_EQ(std::string(tacho.GetRpm().GetName()), std::string(99, 'n'));
    EXPECT_NE(tacho.GetDateTime(), 0.0);  // made now
}
