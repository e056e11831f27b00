// The command-line tool run as a user runs it: --help, the failure conventions every command keeps
// (one line and status 1 for a bad input, the usage line and status 2 for a usage mistake), and
// what info, index and cut write for a recording.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "access/RecordingBuilder.h"
#include "platform/TempDir.h"
#include "tools/ToolRun.h"

namespace nvdl::test {
namespace {

using testing::RecordingPlan;

// Inputs 1 and 3 used around an unused 2, a tacho; 3 scans of 1000 samples at 1000 Hz. Sample i
// of channel n is n * 100 + i % 97, so a cut's first sample tells where it began.
RecordingPlan threeScans() {
    RecordingPlan p;
    p.floats = true;
    p.block = 1000;
    p.scans = 3;
    p.sampleFrequency = 1000.0f;
    p.inputs = {{"Force"}, {"Spare", 10.0f, false}, {"Accel"}};
    p.tachoEndRpm = {3000.0f};
    return p;
}

std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

class Cli : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(testing::writeRecording(recording().string(), threeScans()));
        // Not a file of any kind; a compound file's signature before garbage; a recording cut short.
        writeBytes(dir.file("text.bin"), std::string(600, 'x'));
        writeBytes(dir.file("broken.wkd"), std::string("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8) + std::string(600, '\x7F'));
        writeBytes(dir.file("short.trc"), bytesOf(recording()).substr(0, 40));
    }
    std::filesystem::path recording() const { return dir.file("rec.trc"); }
    std::string at(const char* name) const { return dir.file(name).string(); }

    TempDir dir;
};

TEST_F(Cli, HelpListsEveryCommand) {
    const ToolResult help = runToolCapture({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* name : {"info", "ls", "tree", "export", "import", "spectrum", "octave", "cut", "plot", "convert",
                             "index", "demo", "plan", "register", "unregister"})
        EXPECT_TRUE(help.out.find("\n  nvdl " + std::string(name) + " ") != std::string::npos ||
                    help.out.find("\n  nvdl " + std::string(name) + "\n") != std::string::npos)
            << name;
    EXPECT_EQ(runToolCapture({"no-such-command"}).status, 2);
}

// A missing, damaged or wrong-kind input: one line "nvdl CMD: FILE: REASON", status 1, no output.
TEST_F(Cli, ABadInputGivesOneLineAndStatusOne) {
    const std::string out = at("out.any");
    // Each command with each bad input that it could be given; the input is the second word.
    const std::vector<std::vector<std::string>> cases = {
        {"info", at("missing.trc")}, {"info", at("text.bin")},   {"info", at("short.trc")},
        {"info", at("broken.wkd")},  {"ls", at("missing.wkd")},  {"ls", at("broken.wkd")},
        {"ls", at("text.bin")},      {"ls", dir.path().string()}, {"tree", at("missing.wkd")},
        {"tree", at("broken.wkd")},  {"tree", at("text.bin")},   {"index", at("missing.trc")},
        {"index", at("text.bin")},   {"index", at("short.trc")}, {"cut", at("missing.trc"), out},
        {"cut", at("short.trc"), out}, {"cut", at("text.bin"), out}, {"convert", at("missing.wkd"), at("out.vpj")},
        {"convert", at("text.bin"), at("out.vpj")}, {"convert", at("broken.wkd"), at("out.vpj")},
    };
    for (const auto& words : cases) {
        const ToolResult r = runToolCapture(words);
        const std::string prefix = "nvdl " + words[0] + ": " + words[1] + ": ";
        EXPECT_EQ(r.status, 1) << words[0] << " " << words[1];
        ASSERT_EQ(r.errLines().size(), 1u) << r.err;
        EXPECT_EQ(r.err.rfind(prefix, 0), 0u) << r.err;
        EXPECT_GT(r.err.size(), prefix.size() + 1) << "a reason follows the file";
        EXPECT_EQ(r.out, "") << words[0];
    }
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_FALSE(std::filesystem::exists(at("out.vpj")));
}

TEST_F(Cli, AUsageMistakeGivesTheUsageLineAndStatusTwo) {
    const std::string rec = recording().string(), out = at("cut.trc");
    const std::vector<std::vector<std::string>> cases = {
        {"info"}, {"info", rec, rec}, {"info", "--deep", rec}, {"ls"}, {"tree", "a", "b"}, {"index"},
        {"cut", rec}, {"cut", rec, out, "--from"}, {"cut", rec, out, "--from", "soon"},
        {"cut", rec, out, "--from", "2", "--to", "1"}, {"cut", rec, out, "--from", "1", "--from-scan", "1"},
        {"cut", rec, out, "--from-scan", "0"}, {"cut", rec, out, "--from", "5"},
        {"convert", rec}, {"convert", rec, at("out.txt")}, {"convert", rec, at("out.vpj"), "--workspace", "1"},
    };
    for (const auto& words : cases) {
        const ToolResult r = runToolCapture(words);
        EXPECT_EQ(r.status, 2) << words.size() << " words for " << words[0];
        EXPECT_NE(r.err.find("usage: nvdl " + words[0] + " "), std::string::npos) << r.err;
        EXPECT_EQ(r.out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(Cli, InfoAndIndexDescribeARecording) {
    const ToolResult info = runToolCapture({"info", recording().string()});
    ASSERT_EQ(info.status, 0) << info.err;
    const auto lines = info.outLines();
    ASSERT_EQ(lines.size(), 5u) << info.out;  // the recording, three inputs and the tacho
    EXPECT_EQ(lines[0].rfind("recording\t", 0), 0u);
    EXPECT_NE(lines[0].find("\t3\t1000\t1000"), std::string::npos) << lines[0];
    EXPECT_EQ(lines[2].rfind("channel\t2\tSpare\t0\t", 0), 0u) << lines[2];

    const ToolResult index = runToolCapture({"index", recording().string()});
    ASSERT_EQ(index.status, 0) << index.err;
    const auto cached = index.outLines();
    ASSERT_EQ(cached.size(), 3u) << index.out;  // the used inputs and the tacho
    EXPECT_EQ(cached[0].rfind("input\t1\tForce\t3\t", 0), 0u) << cached[0];
    EXPECT_EQ(cached[1].rfind("input\t3\tAccel\t3\t", 0), 0u) << cached[1];
    EXPECT_TRUE(std::filesystem::exists(cached[0].substr(cached[0].rfind('\t') + 1)));
}

// The first sample of input 1 in a recording.
float firstSample(const std::string& path) {
    trc::CTrc file;
    unsigned char bytes[4] = {};
    if (!file.Open(path.c_str()) || !file.GetRecorder().Read() ||
        !file.GetRecorder().GetInputSection().ReadChannel(1, 0, bytes, 1))
        return -1;
    return le::f32(bytes);
}

TEST_F(Cli, CutWritesTheSpanAsANewRecording) {
    struct Span {
        std::vector<std::string> options;
        std::string printed;  // scans and seconds
        float first;          // the first sample of input 1
    };
    const Span spans[] = {
        {{"--from", "0.5", "--to", "2"}, "2\t1.5", 100 + 500 % 97},
        {{"--from-scan", "2", "--to-scan", "3"}, "2\t2", 100 + 1000 % 97},
        {{"--from-scan=3"}, "1\t1", 100 + 2000 % 97},
        {{"--from", "1.25", "--to", "10", "--quiet"}, "2\t1.75", 100 + 1250 % 97},  // the end is the recording's
        {{}, "3\t3", 100},
    };
    const std::string out = at("cut.trc");
    for (const Span& s : spans) {
        std::vector<std::string> words{"cut", recording().string(), out};
        words.insert(words.end(), s.options.begin(), s.options.end());
        const ToolResult r = runToolCapture(words);
        ASSERT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.err, "");
        EXPECT_EQ(r.out, out + "\t" + s.printed + "\n");
        EXPECT_EQ(firstSample(out), s.first) << r.out;
        const auto info = runToolCapture({"info", out}).outLines();
        ASSERT_FALSE(info.empty());
        EXPECT_NE(info[0].find("\t" + s.printed.substr(0, 1) + "\t1000\t"), std::string::npos) << info[0];
    }
    // Only the recording and the last cut: no temporary file stays behind.
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
        files += entry.path().filename().string().find(".cut-") != std::string::npos;
    EXPECT_EQ(files, 0u);
}

TEST_F(Cli, CutLeavesTheRecordingAlone) {
    const std::string before = bytesOf(recording());
    std::filesystem::create_hard_link(recording(), dir.file("same.trc"));
    for (const std::string& target : {recording().string(), at("same.trc")}) {
        const ToolResult r = runToolCapture({"cut", recording().string(), target, "--to", "1"});
        EXPECT_EQ(r.status, 1);
        EXPECT_EQ(r.err.rfind("nvdl cut: " + target + ": ", 0), 0u) << r.err;
    }
    EXPECT_EQ(bytesOf(recording()), before);
}

}  // namespace
}  // namespace nvdl::test
