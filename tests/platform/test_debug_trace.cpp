#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "EnvGuard.h"
#include "platform/DebugTrace.h"

namespace {

class DebugTraceTest : public ::testing::Test {
protected:
    void SetUp() override {
        path_ = std::filesystem::temp_directory_path() /
                ("nvdl_trace_" + std::to_string(::getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".log");
        std::filesystem::remove(path_);
    }
    void TearDown() override {
        env_.restore();
        nvdl::reloadDebugTraceSettings();
        std::filesystem::remove(path_);
    }

    void traceTo(const std::string& value) {
        env_.set("NVDL_TRACE", value);
        nvdl::reloadDebugTraceSettings();
    }

    std::string fileText() const {
        std::ifstream in(path_, std::ios::binary);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }

    EnvGuard env_;
    std::filesystem::path path_;
};

}  // namespace

TEST_F(DebugTraceTest, OffWritesNothing) {
    for (const char* off : {"", "0"}) {
        traceTo(off);
        EXPECT_FALSE(debugTraceEnabled()) << off;
    }
    testing::internal::CaptureStderr();
    DebugTrace("invisible");
    DebugTraceF("invisible %d", 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(DebugTraceTest, StandardError) {
    for (const char* on : {"1", "stderr"}) {
        traceTo(on);
        EXPECT_TRUE(debugTraceEnabled());
        testing::internal::CaptureStderr();
        DebugTrace("CProject::SaveProject - jump 3");
        DebugTraceF("%s - %d", "CField::put_Value", 1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "CProject::SaveProject - jump 3\nCField::put_Value - 1\n");
    }
}

TEST_F(DebugTraceTest, FileLinesAreAppendedCutAndEnded) {
    {
        std::ofstream(path_) << "earlier\n";
    }
    traceTo(path_.string());
    ASSERT_TRUE(debugTraceEnabled());
    DebugTrace("ends with its own newline\n");
    DebugTrace("");
    DebugTrace(nullptr);
    DebugTrace(std::string(300, 'a').c_str());
    DebugTraceF("%s|%d", std::string(260, 'b').c_str(), 5);

    const std::string expected = "earlier\nends with its own newline\n\n" + std::string(255, 'a') + "\n" +
                                 std::string(255, 'b') + "\n";
    EXPECT_EQ(fileText(), expected);
}

TEST_F(DebugTraceTest, UnopenableFileLeavesTracingOff) {
    traceTo((path_ / "no" / "such" / "dir.log").string());
    EXPECT_FALSE(debugTraceEnabled());
    DebugTrace("goes nowhere");
}
