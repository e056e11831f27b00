// A stored setup with a distinct value in every field of every subsection, written and read back,
// and copied.
#include "TrcSetupSupport.h"

using namespace nvdl::trc;
using namespace nvdl::trc::test;

namespace {

template <class Item, class List>
void addFilled(List& list, int count, int& seed) {
    for (int i = 0; i < count; ++i) {
        auto item = std::make_unique<Item>();
        fillDistinct(*item, seed);
        list.Add(std::move(item));
    }
}

void addParameters(CTrcParametersSection& list, const char* prefix, int count) {
    for (int i = 0; i < count; ++i) {
        auto p = std::make_unique<CTrcParameterSection>();
        p->SetName((prefix + std::to_string(i)).c_str());
        p->SetValue((std::string(prefix) + "=" + std::to_string(i)).c_str());
        list.Add(std::move(p));
    }
}

void fillSetup(CTrcSetupSection& s) {
    int seed = 0;
    s.SetDefault(1);
    s.SetName("bench setup");
    s.SetGroupDataInSameWs(2);
    s.SetGroupChannels(3);
    s.SetWorkspacePrefixName("ws");
    s.SetParametersLayout("layout");
    s.SetCreator("creator");
    s.SetGroupFunctions(4);
    addParameters(s.GetParameters(), "p", 2);
    addFilled<CTrcInputChannel>(s.GetInputs(), 2, seed);
    addFilled<CTrcOutputChannel>(s.GetOutputs(), 2, seed);
    addFilled<CTrcTachoChannel>(s.GetTachos(), 2, seed);
    addFilled<CTrcStrainChannel>(s.GetStrains(), 1, seed);
    fillDistinct(s.GetAcquisition(), seed);
    fillDistinct(s.GetThroughput(), seed);
    fillDistinct(s.GetProcessing(), seed);
    fillDistinct(s.GetPostProcessing(), seed);
    fillDistinct(s.GetOctave(), seed);
    fillDistinct(s.GetResampling(), seed);
    fillDistinct(s.GetSaving(), seed);
    addParameters(s.GetSaving().GetMeasFunctions(), "m", 3);
    addParameters(s.GetSaving().GetTimeHistoryFunctions(), "h", 1);
    fillDistinct(s.GetSrs(), seed);
    fillDistinct(s.GetSteppedSine(), seed);
    fillDistinct(s.GetShockCapture(), seed);
}

template <class List>
void expectSameItems(const List& a, const List& b) {
    ASSERT_EQ(a.GetTotalChannels(), b.GetTotalChannels());
    for (long i = 0; i < a.GetTotalChannels(); ++i) expectSameFields(*a.GetItem(i), *b.GetItem(i));
}

void expectSameParameters(CTrcParametersSection& a, CTrcParametersSection& b) {
    ASSERT_EQ(a.GetCount(), b.GetCount());
    for (long i = 0; i < a.GetCount(); ++i) {
        EXPECT_STREQ(a.GetItem(i)->GetName(), b.GetItem(i)->GetName());
        EXPECT_STREQ(a.GetItem(i)->GetValue(), b.GetItem(i)->GetValue());
    }
}

void expectSameSetup(CTrcSetupSection& a, CTrcSetupSection& b) {
    EXPECT_EQ(a.GetDefault(), b.GetDefault());
    EXPECT_STREQ(a.GetName(), b.GetName());
    EXPECT_EQ(a.GetGroupDataInSameWs(), b.GetGroupDataInSameWs());
    EXPECT_EQ(a.GetGroupChannels(), b.GetGroupChannels());
    EXPECT_STREQ(a.GetWorkspacePrefixName(), b.GetWorkspacePrefixName());
    EXPECT_STREQ(a.GetParametersLayout(), b.GetParametersLayout());
    EXPECT_STREQ(a.GetCreator(), b.GetCreator());
    EXPECT_EQ(a.GetGroupFunctions(), b.GetGroupFunctions());
    expectSameParameters(a.GetParameters(), b.GetParameters());
    expectSameItems(a.GetInputs(), b.GetInputs());
    expectSameItems(a.GetOutputs(), b.GetOutputs());
    expectSameItems(a.GetTachos(), b.GetTachos());
    expectSameFields(a.GetAcquisition(), b.GetAcquisition());
    expectSameFields(a.GetThroughput(), b.GetThroughput());
    expectSameFields(a.GetProcessing(), b.GetProcessing());
    expectSameFields(a.GetPostProcessing(), b.GetPostProcessing());
    expectSameFields(a.GetOctave(), b.GetOctave());
    expectSameFields(a.GetResampling(), b.GetResampling());
    expectSameFields(a.GetSaving(), b.GetSaving());
    expectSameParameters(a.GetSaving().GetMeasFunctions(), b.GetSaving().GetMeasFunctions());
    expectSameParameters(a.GetSaving().GetTimeHistoryFunctions(), b.GetSaving().GetTimeHistoryFunctions());
    expectSameFields(a.GetSrs(), b.GetSrs());
    expectSameFields(a.GetSteppedSine(), b.GetSteppedSine());
    expectSameFields(a.GetShockCapture(), b.GetShockCapture());
}

}  // namespace

TEST(TrcSetup, EveryFieldComesBackFromTheFileAndFromACopy) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("s.trc").string();
    CTrcSetupSection setup;
    fillSetup(setup);
    ASSERT_TRUE(writeSetup(name, setup));
    EXPECT_EQ(static_cast<std::int64_t>(bytesOf(name).size()), kSetupAt + setup.GetSectionSize());

    CTrcSetupSection back;
    ASSERT_TRUE(readSetup(name, back));
    expectSameSetup(back, setup);
    EXPECT_STREQ(back.GetInputs().GetItem(1)->GetSectionName(), "INPUT2");
    EXPECT_STREQ(back.GetTachos().GetItem(0)->GetSectionName(), "RPM1");
    EXPECT_EQ(back.GetStrains().GetTotalChannels(), 0);  // strains never come back from a file

    CTrcSetupSection copy;
    ASSERT_TRUE(setup.Copy(copy));
    expectSameSetup(copy, setup);
    ASSERT_EQ(copy.GetStrains().GetTotalChannels(), 1);
    expectSameFields(*copy.GetStrains().GetItem(0), *setup.GetStrains().GetItem(0));
}
