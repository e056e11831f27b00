// The user-defined FIR weighting file that input channels share: where it lives, what Create
// writes from a measurement, and what Search and Delete answer.
#include <fstream>
#include <iterator>

#include "../platform/EnvGuard.h"
#include "../platform/TempDir.h"
#include "SectionTestSupport.h"
#include "nvdl/IInputChannel.h"

namespace nvdl::test {
namespace {

using Answer = std::pair<HRESULT, SHORT>;  // a member's status and its result
const Answer kDone{S_OK, -1};
const Answer kFailed{E_FAIL, 0};

template <class I>
ComPtr<I> newAs(const char16_t* progId, const IID& iid) {
    ComPtr<I> result;
    EXPECT_EQ(newObject(progId)->QueryInterface(iid, reinterpret_cast<void**>(result.out())), S_OK);
    return result;
}

// A measurement of the given samples, X from 100 by 50.
ComPtr<IMeasurement> measurement(const std::vector<float>& y) {
    ComPtr<IMeasurement> m = newAs<IMeasurement>(u"nv_bench.measurement", IID_IMeasurement);
    EXPECT_EQ(m->put_Size(static_cast<LONG>(y.size())), S_OK);
    m->put_XStart(100.0f);
    m->put_XIncrement(50.0f);
    for (std::size_t i = 0; i < y.size(); ++i) m->put_YReal(static_cast<LONG>(i), y[i]);
    return m;
}

std::vector<std::uint8_t> contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class UserWeighting : public ::testing::Test {
protected:
    void SetUp() override {
        env_.set("NVDL_REGISTRY", dir_.file("registry.txt").string());
        env_.set("XDG_DATA_HOME", dir_.file("data").string());
        env_.set("HOME", dir_.file("home").string());
        std::filesystem::create_directories(folder_);
        setShellFolder(folder_.string());
    }

    // The "Local AppData" shell folder of the current user, or none.
    void setShellFolder(std::optional<std::string> folder) {
        std::ofstream file(dir_.file("registry.txt"), std::ios::binary | std::ios::trunc);
        if (folder)
            file << "[HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\explorer\\Shell Folders]\n"
                 << "\"Local AppData\"=\"" << *folder << "\"\n";
    }

    Answer search() {
        SHORT r = 7;
        HRESULT h = channel_->SearchFIRUserWeightingData(&r);
        return {h, r};
    }
    Answer remove() {
        SHORT r = 7;
        HRESULT h = channel_->DeleteFIRUserWeightingData(&r);
        return {h, r};
    }
    Answer create(IMeasurement* m) {
        SHORT r = 7;
        HRESULT h = channel_->CreateFIRUserWeightingData(m, &r);
        return {h, r};
    }

    EnvGuard env_;
    TempDir dir_;
    const std::filesystem::path folder_ = dir_.file("appdata");
    const std::filesystem::path file_ = folder_ / "NvUserFrequencies.dat";
    ComPtr<IInputChannel> channel_ = newAs<IInputChannel>(u"nv_bench.input", IID_IInputChannel);
};

TEST_F(UserWeighting, CreateWritesEachSampleAsFrequencyAndWeightAndReplacesTheFile) {
    EXPECT_EQ(create(measurement({1.0f, -0.5f, 0.25f}).get()), kDone);
    std::vector<std::uint8_t> bytes = contents(file_);
    ASSERT_EQ(bytes.size(), 24u);
    const float expected[] = {100.0f, 1.0f, 150.0f, -0.5f, 200.0f, 0.25f};
    for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(le::f32(bytes.data() + 4 * i), expected[i]) << i;
    // A second measurement replaces the file, however long it was.
    EXPECT_EQ(create(measurement({3.0f}).get()), kDone);
    bytes = contents(file_);
    ASSERT_EQ(bytes.size(), 8u);
    EXPECT_EQ(le::f32(bytes.data() + 4), 3.0f);
}

TEST_F(UserWeighting, SearchAndDeleteFollowTheFile) {
    EXPECT_EQ(search(), kFailed);
    EXPECT_EQ(remove(), kFailed);
    EXPECT_EQ(create(measurement({1.0f, 2.0f}).get()), kDone);
    EXPECT_EQ(search(), kDone);
    EXPECT_EQ(remove(), kDone);
    EXPECT_EQ(search(), kFailed);
    EXPECT_EQ(remove(), kFailed);
}

// Less than one pair counts as no weighting at all.
TEST_F(UserWeighting, AFileOfLessThanOnePairCountsAsAbsent) {
    for (const auto& [size, answer] : {std::pair{0, kFailed}, {7, kFailed}, {8, kDone}, {13, kDone}}) {
        std::ofstream(file_, std::ios::binary) << std::string(static_cast<std::size_t>(size), 'x');
        EXPECT_EQ(search(), answer) << size;
    }
}

TEST_F(UserWeighting, NothingIsWrittenFromNoMeasurementOrIntoNoFolder) {
    EXPECT_EQ(create(nullptr), (Answer{E_POINTER, 0}));
    EXPECT_EQ(create(measurement({}).get()), kFailed);
    EXPECT_EQ(channel_->CreateFIRUserWeightingData(measurement({1.0f}).get(), nullptr), E_POINTER);
    EXPECT_FALSE(std::filesystem::exists(file_));
    setShellFolder(dir_.file("missing").string());
    EXPECT_EQ(create(measurement({1.0f}).get()), kFailed);
    EXPECT_FALSE(std::filesystem::exists(dir_.file("missing")));
}

// Without the shell folder the file lives in the platform's data directory, under a folder of
// ours made on demand.
TEST_F(UserWeighting, WithoutTheShellFolderThePlatformDataDirectoryServes) {
    const struct {
        std::optional<std::string> shellFolder;
        bool dataHome;
        std::filesystem::path expected;
    } cases[] = {
        {folder_.string() + "/", true, file_},
        {std::nullopt, true, dir_.file("data") / "nvdl" / "NvUserFrequencies.dat"},
        {"", true, dir_.file("data") / "nvdl" / "NvUserFrequencies.dat"},
        {std::nullopt, false, dir_.file("home") / ".local/share/nvdl/NvUserFrequencies.dat"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected.string());
        setShellFolder(c.shellFolder);
        env_.set("XDG_DATA_HOME", c.dataHome ? std::optional(dir_.file("data").string()) : std::nullopt);
        EXPECT_EQ(create(measurement({5.0f}).get()), kDone);
        EXPECT_EQ(contents(c.expected).size(), 8u);
        EXPECT_EQ(remove(), kDone);
        EXPECT_FALSE(std::filesystem::exists(c.expected));
    }
}

// As a script calls them: the measurement passed as an object, the result coming back as the value.
TEST_F(UserWeighting, LateBoundCallsAnswerTheResult) {
    ComPtr<IDispatch> channel = newObject(u"nv_bench.input");
    ComPtr<IMeasurement> m = measurement({1.0f, 2.0f});
    Variant created, found;
    ASSERT_EQ(invoke(channel.get(), u"CreateFIRUserWeightingData", DISPATCH_METHOD, {Variant::fromDispatch(m.get())},
                     &created),
              S_OK);
    ASSERT_EQ(invoke(channel.get(), u"SearchFIRUserWeightingData", DISPATCH_METHOD, {}, &found), S_OK);
    EXPECT_EQ(textOf(created) + textOf(found), "-1-1");
}

}  // namespace
}  // namespace nvdl::test
