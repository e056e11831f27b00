// The user-defined FIR weighting file that input channels share: where it lives, what Create
// writes from a measurement, and what Search and Delete answer.
#include <fstream>
#include <iterator>

#include "../platform/EnvGuard.h"
#include "../platform/TempDir.h"
#include "SectionTestSupport.h"
#include "nvdl/IInputChannel.h"
#include "nvdl/IMeasurement.h"

namespace nvdl::test {
namespace {

constexpr const char* kFileName = "NvUserFrequencies.dat";

class UserWeighting : public ::testing::Test {
protected:
    void SetUp() override {
        env_.set("NVDL_REGISTRY", dir_.file("registry.txt").string());
        env_.set("XDG_DATA_HOME", dir_.file("data").string());
        env_.set("HOME", dir_.file("home").string());
        shellFolder_ = dir_.file("appdata");
        std::filesystem::create_directories(shellFolder_);
        setShellFolder(shellFolder_.string());
        channel_ = query<IInputChannel>(newObject(u"nv_bench.input").get(), IID_IInputChannel);
    }

    // The "Local AppData" shell folder of the current user, or none.
    void setShellFolder(std::optional<std::string> folder) {
        std::ofstream file(dir_.file("registry.txt"), std::ios::binary | std::ios::trunc);
        if (!folder) return;
        file << "[HKEY_CURRENT_USER\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\explorer\\Shell Folders]\n"
             << "\"Local AppData\"=\"" << *folder << "\"\n";
    }

    template <class I>
    static ComPtr<I> query(IUnknown* object, const IID& iid) {
        ComPtr<I> result;
        EXPECT_EQ(object->QueryInterface(iid, reinterpret_cast<void**>(result.out())), S_OK);
        return result;
    }

    // A measurement of the given samples, X from 100 by 50.
    static ComPtr<IMeasurement> measurement(const std::vector<float>& y) {
        ComPtr<IMeasurement> m = query<IMeasurement>(newObject(u"nv_bench.measurement").get(), IID_IMeasurement);
        EXPECT_EQ(m->put_Size(static_cast<LONG>(y.size())), S_OK);
        EXPECT_EQ(m->put_XStart(100.0f), S_OK);
        EXPECT_EQ(m->put_XIncrement(50.0f), S_OK);
        for (std::size_t i = 0; i < y.size(); ++i) EXPECT_EQ(m->put_YReal(static_cast<LONG>(i), y[i]), S_OK);
        return m;
    }

    static std::vector<std::uint8_t> contents(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    static void writeBytes(const std::filesystem::path& file, std::size_t count) {
        std::ofstream(file, std::ios::binary) << std::string(count, 'x');
    }

    // A member's status and its result.
    std::pair<HRESULT, SHORT> search() {
        SHORT result = 7;
        HRESULT h = channel_->SearchFIRUserWeightingData(&result);
        return {h, result};
    }
    std::pair<HRESULT, SHORT> remove() {
        SHORT result = 7;
        HRESULT h = channel_->DeleteFIRUserWeightingData(&result);
        return {h, result};
    }
    std::pair<HRESULT, SHORT> create(IMeasurement* m) {
        SHORT result = 7;
        HRESULT h = channel_->CreateFIRUserWeightingData(m, &result);
        return {h, result};
    }

    EnvGuard env_;
    TempDir dir_;
    std::filesystem::path shellFolder_;
    ComPtr<IInputChannel> channel_;
};

using Answer = std::pair<HRESULT, SHORT>;
const Answer kDone{S_OK, -1};
const Answer kFailed{E_FAIL, 0};

TEST_F(UserWeighting, CreateWritesEachSampleAsFrequencyAndWeight) {
    ComPtr<IMeasurement> m = measurement({1.0f, -0.5f, 0.25f});
    EXPECT_EQ(create(m.get()), kDone);
    std::vector<std::uint8_t> bytes = contents(shellFolder_ / kFileName);
    ASSERT_EQ(bytes.size(), 24u);
    const float expected[] = {100.0f, 1.0f, 150.0f, -0.5f, 200.0f, 0.25f};
    for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(le::f32(bytes.data() + 4 * i), expected[i]) << i;

    // A second measurement replaces the file, however long it was.
    EXPECT_EQ(create(measurement({3.0f}).get()), kDone);
    bytes = contents(shellFolder_ / kFileName);
    ASSERT_EQ(bytes.size(), 8u);
    EXPECT_EQ(le::f32(bytes.data()), 100.0f);
    EXPECT_EQ(le::f32(bytes.data() + 4), 3.0f);
}

TEST_F(UserWeighting, SearchAndDeleteFollowTheFile) {
    EXPECT_EQ(search(), kFailed);
    EXPECT_EQ(remove(), kFailed);
    EXPECT_EQ(create(measurement({1.0f, 2.0f}).get()), kDone);
    EXPECT_EQ(search(), kDone);
    EXPECT_EQ(remove(), kDone);
    EXPECT_FALSE(std::filesystem::exists(shellFolder_ / kFileName));
    EXPECT_EQ(search(), kFailed);
    EXPECT_EQ(remove(), kFailed);
}

// Less than one pair counts as no weighting at all.
TEST_F(UserWeighting, AFileOfLessThanOnePairCountsAsAbsent) {
    const std::pair<std::size_t, Answer> sizes[] = {{0, kFailed}, {7, kFailed}, {8, kDone}, {13, kDone}};
    for (const auto& [size, answer] : sizes) {
        writeBytes(shellFolder_ / kFileName, size);
        EXPECT_EQ(search(), answer) << size;
    }
}

TEST_F(UserWeighting, RefusedMeasurementsLeaveNoFile) {
    EXPECT_EQ(create(nullptr), (Answer{E_POINTER, 0}));
    EXPECT_EQ(create(measurement({}).get()), kFailed);
    EXPECT_FALSE(std::filesystem::exists(shellFolder_ / kFileName));
    SHORT* none = nullptr;
    EXPECT_EQ(channel_->CreateFIRUserWeightingData(measurement({1.0f}).get(), none), E_POINTER);
}

TEST_F(UserWeighting, AShellFolderThatIsNotThereFails) {
    setShellFolder((dir_.file("missing")).string());
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
        {shellFolder_.string() + "/", true, shellFolder_ / kFileName},
        {std::nullopt, true, dir_.file("data") / "nvdl" / kFileName},
        {"", true, dir_.file("data") / "nvdl" / kFileName},
        {std::nullopt, false, dir_.file("home") / ".local" / "share" / "nvdl" / kFileName},
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

// The members through late binding, as a script calls them: the result comes back as the value.
TEST_F(UserWeighting, LateBoundCallsAnswerTheResult) {
    ComPtr<IDispatch> channel = newObject(u"nv_bench.input");
    ComPtr<IMeasurement> m = measurement({1.0f, 2.0f});
    Variant result;
    ASSERT_EQ(invoke(channel.get(), u"CreateFIRUserWeightingData", DISPATCH_METHOD, {Variant::fromDispatch(m.get())},
                     &result),
              S_OK);
    EXPECT_EQ(textOf(result), "-1");
    Variant found;
    ASSERT_EQ(invoke(channel.get(), u"SearchFIRUserWeightingData", DISPATCH_METHOD, {}, &found), S_OK);
    EXPECT_EQ(textOf(found), "-1");
}

}  // namespace
}  // namespace nvdl::test
