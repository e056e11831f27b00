// The bytes of a stored setup: where the block, the table and the subsections stand, where fields
// stand in their blocks, and the table written one entry past its room.
#include "TrcSetupSupport.h"

using namespace nvdl::trc;
using namespace nvdl::trc::test;

namespace {

constexpr std::int64_t kTable = kSetupAt + 2156;
constexpr std::int64_t entryAt(int i) { return kTable + 96 + 168 * i; }
constexpr std::int64_t kFirstItem = 96 + 168;  // a list of one: behind its table

std::int64_t sectionOffset(const std::vector<unsigned char>& b, int entry) {
    return static_cast<std::int64_t>(le::u64(&b[entryAt(entry) + 48]));
}

void fillForLayout(CTrcSetupSection& s) {
    s.SetCreator("creator");
    s.SetGroupFunctions(6);
    s.GetAcquisition().SetSampleFrequency(51200);
    s.GetAcquisition().SetBlocksize(4096);
    s.GetAcquisition().SetDataFormat(3);
    s.GetThroughput().SetLength(12.5);
    s.GetThroughput().SetSequencing(60, 3600);
    s.GetProcessing().SetAverageNumber(100);
    s.GetProcessing().SetComputeAverageNumber(7);
    s.GetOctave().SetStopFrequency(20000);
    s.GetOctave().SetPeakHold(5);
    s.GetSaving().SetPercentile(95);
    float limits[512] = {};
    limits[511] = 7.5f;
    s.GetSrs().SetLimits(limits);
    s.GetSrs().SetDrift(1);
    float lower[384] = {9.0f};
    s.GetShockCapture().SetLowerLimits(lower);
    s.GetShockCapture().SetRefType(2);
    s.GetShockCapture().SetLowPassResp(1000);
    auto input = std::make_unique<CTrcInputChannel>();
    input->SetRange(10);
    input->SetCalibrationDate(40000.5);
    input->SetTachoMode(4);
    input->SetTachoUnit("rpm");
    input->SetDateTime(45000.25);
    s.GetInputs().Add(std::move(input));
    auto output = std::make_unique<CTrcOutputChannel>();
    output->SetFilename("sweep.wav");
    output->SetSweepTime(30);
    s.GetOutputs().Add(std::move(output));
    auto tacho = std::make_unique<CTrcTachoChannel>();
    tacho->GetRpm().SetEndRPM(6000);
    tacho->GetRpm().SetTriggerDelay(0.5f);
    tacho->GetRpm().SetOrders("1 2 4");
    tacho->GetCola().SetName("cola");
    tacho->GetCola().SetActivated(1);
    tacho->GetCola().SetEndFreq(100);
    tacho->GetCola().SetHarmonics("1;2");
    tacho->GetCola().SetWindowType(8);
    tacho->SetDateTime(44000.75);
    s.GetTachos().Add(std::move(tacho));
    s.GetStrains().Add(std::make_unique<CTrcStrainChannel>());
}

}  // namespace

TEST(TrcSetupLayout, BlocksTableAndFieldsStandWhereTheFormatPutsThem) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("l.trc").string();
    CTrcSetupSection setup;
    fillForLayout(setup);
    ASSERT_TRUE(writeSetup(name, setup));
    const std::vector<unsigned char> b = bytesOf(name);

    // Block, table room of 14, subsections in table order with their sizes.
    const std::int64_t sizes[15] = {96,   96 + 168 + 2768, 96 + 168 + 2136, 2104, 96 + 168 + 2304,
                                    2472, 2140,            2364,            2072, 2064,
                                    2064 + 96 + 2 * 168 + 96 + 96,          4228, 2180, 5244, 96 + 168 + 2368};
    const int types[15] = {16, 14, 18, 20, 21, 23, 24, 25, 26, 27, 28, 36, 37, 38, 39};
    std::int64_t expected = kSetupAt + 2156 + 96 + 14 * 168;
    EXPECT_EQ(le::i32(&b[kTable]), 20040309);
    EXPECT_EQ(le::i32(&b[kTable + 4]), 15);
    EXPECT_EQ(static_cast<std::int64_t>(le::u64(&b[kTable + 8])), setup.GetSectionSize());
    for (int i = 0; i < 14; ++i) {  // entry 14 is overwritten, below
        EXPECT_EQ(sectionOffset(b, i), expected) << i;
        EXPECT_EQ(le::i32(&b[entryAt(i) + 4]), types[i]) << i;
        expected += sizes[i];
    }
    EXPECT_EQ(setup.GetSectionSize() + kSetupAt, expected + sizes[14]);
    EXPECT_EQ(static_cast<std::int64_t>(b.size()), expected + sizes[14]);

    struct Value {
        int entry;
        std::int64_t item;  // 0 for a block, kFirstItem for the first channel of a list
        int at;
        char kind;  // i: 32-bit integer, f: float, d: double
        double expected;
    } values[] = {
        {-1, 0, 0, 'i', 20040309},  {-1, 0, 296, 'i', 6},
        {3, 0, 4, 'f', 51200},      {3, 0, 28, 'i', 4096},       {3, 0, 56, 'i', 3},
        {5, 0, 408, 'd', 12.5},     {5, 0, 420, 'i', 60},        {5, 0, 424, 'i', 3600},
        {6, 0, 12, 'i', 100},       {6, 0, 16, 'i', 100},        {6, 0, 88, 'i', 7},
        {8, 0, 0, 'i', 20080319},   {8, 0, 12, 'f', 20000},      {8, 0, 36, 'i', 5},
        {10, 0, 36, 'f', 95},       {10, 2064, 4, 'i', 2},       {11, 0, 128, 'i', 1},
        {11, 0, 132 + 511 * 4, 'f', 7.5}, {13, 0, 1660, 'f', 9}, {13, 0, 3196, 'i', 2},
        {13, 0, 3204, 'f', 1000},   {11, 0, 0, 'i', 20070301},   {13, 0, 0, 'i', 20070509},
        {1, kFirstItem, 120, 'f', 10}, {1, kFirstItem, 496, 'd', 40000.5}, {1, kFirstItem, 724, 'i', 4},
        {1, kFirstItem, 784, 'd', 45000.25}, {2, kFirstItem, 508, 'i', 30},
        {4, kFirstItem, 144, 'f', 6000}, {4, kFirstItem, 188, 'f', 0.5}, {4, kFirstItem, 384, 'i', 1},
        {4, kFirstItem, 444, 'f', 100}, {4, kFirstItem, 520, 'i', 8}, {4, kFirstItem, 528, 'd', 44000.75},
    };
    for (const Value& v : values) {
        const std::int64_t at = (v.entry < 0 ? kSetupAt : sectionOffset(b, v.entry)) + v.item + v.at;
        const double got = v.kind == 'i' ? le::i32(&b[at]) : v.kind == 'f' ? le::f32(&b[at]) : le::f64(&b[at]);
        EXPECT_EQ(got, v.expected) << "entry " << v.entry << " at " << v.at;
    }
    struct Text {
        int entry;
        std::int64_t item;
        int at;
        const char* expected;
    } texts[] = {{-1, 0, 236, "creator"},         {1, kFirstItem, 728, "rpm"},  {2, kFirstItem, 104, "sweep.wav"},
                 {4, kFirstItem, 192, "1 2 4"},    {4, kFirstItem, 244, "cola"}, {4, kFirstItem, 452, "1;2"},
                 {4, 96, 12, "RPM1"},              {-1, 2156 + 96, 12, "PARAMETERS_SECTION"}};
    for (const Text& t : texts) {
        const std::int64_t at = (t.entry < 0 ? kSetupAt : sectionOffset(b, t.entry)) + t.item + t.at;
        EXPECT_EQ(textAt(b, at), t.expected) << "entry " << t.entry << " at " << t.at;
    }
}

TEST(TrcSetupLayout, TheFifteenthEntryIsTheParametersHeadAndStrainsStayInTheFile) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("q.trc").string();
    for (int parameters : {0, 2}) {
        CTrcSetupSection setup;
        for (int i = 0; i < parameters; ++i) setup.GetParameters().Add(std::make_unique<CTrcParameterSection>());
        auto strain = std::make_unique<CTrcStrainChannel>();
        strain->SetGain(3);
        setup.GetStrains().Add(std::move(strain));
        ASSERT_TRUE(writeSetup(name, setup));
        const std::vector<unsigned char> b = bytesOf(name);

        // The parameters list stands at 4604 and its head sits where entry 14 was written.
        EXPECT_EQ(entryAt(14), kSetupAt + 4604);
        EXPECT_EQ(le::i32(&b[kSetupAt + 4604]), 20040309);
        EXPECT_EQ(le::i32(&b[kSetupAt + 4604 + 4]), parameters);
        EXPECT_EQ(sectionOffset(b, 14), 0);
        // The strain list has its room at the end and holds its channel.
        const std::int64_t strains = static_cast<std::int64_t>(b.size()) - (96 + 168 + 2368);
        EXPECT_EQ(le::i32(&b[strains + 4]), 1);
        EXPECT_EQ(le::i32(&b[strains + 96 + 168]), 20071205);
        EXPECT_EQ(le::f32(&b[strains + 96 + 168 + 44]), 3.0f);

        CTrcSetupSection back;
        back.GetStrains().Add(std::make_unique<CTrcStrainChannel>());
        ASSERT_TRUE(readSetup(name, back)) << parameters;
        ASSERT_EQ(back.GetToc()->GetCount(), 15);
        EXPECT_EQ(back.GetToc()->GetItem(14)->version, 20040309);
        EXPECT_EQ(back.GetToc()->GetItem(14)->sectionOffset, 0);
        EXPECT_EQ(back.GetStrains().GetTotalChannels(), 0);
        EXPECT_EQ(back.GetParameters().GetCount(), parameters);
    }
}
