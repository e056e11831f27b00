// Tracing: off, to standard error or appended to a file, lines cut to a bounded length.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "EnvGuard.h"
#include "TempDir.h"
#include "platform/DebugTrace.h"

namespace {

class DebugTraceTest : public ::testing::Test {
protected:
    void TearDown() override {
        env_.restore();
        nvdl::reloadDebugTraceSettings();
    }

    void traceTo(const std::string& value) {
        env_.set("NVDL_TRACE", value);
        nvdl::reloadDebugTraceSettings();
    }

    EnvGuard env_;
    nvdl::test::TempDir dir_;
    std::filesystem::path path_ = dir_.file("trace.log");
};

}  // namespace

TEST_F(DebugTraceTest, OffOrUnopenableWritesNothing) {
    for (const std::string& off : {std::string(), std::string("0"), (path_ / "no" / "such" / "dir.log").string()}) {
        traceTo(off);
        EXPECT_FALSE(debugTraceEnabled()) << off;
        testing::internal::CaptureStderr();
        DebugTrace("invisible");
        DebugTraceF("invisible %d", 1);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
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
    std::ofstream(path_) << "earlier\n";
    traceTo(path_.string());
    ASSERT_TRUE(debugTraceEnabled());
    DebugTrace("ends with its own newline\n");
    DebugTrace("");
    DebugTrace(nullptr);
    DebugTrace(std::string(300, 'a').c_str());
    DebugTraceF("%s|%d", std::string(260, 'b').c_str(), 5);

    const std::string expected = "earlier\nends with its own newline\n\n" + std::string(255, 'a') + "\n" +
                                 std::string(255, 'b') + "\n";
    std::stringstream text;
    text << std::ifstream(path_, std::ios::binary).rdbuf();
    EXPECT_EQ(text.str(), expected);
}
