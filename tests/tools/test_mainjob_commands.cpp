// The main job's commands through the built program: spectrum and octave on a recording of known
// sines, their failures, and the demonstration run small.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <regex>
#include <sstream>

#include "access/RecordingBuilder.h"
#include "platform/TempDir.h"
#include "tools/ToolRun.h"

namespace nvdl {
namespace {

std::string contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Data rows of a CSV file: abscissa and the first value column.
std::vector<std::pair<double, double>> csvRows(const std::filesystem::path& file) {
    std::vector<std::pair<double, double>> rows;
    std::istringstream lines(contents(file));
    std::string line;
    std::getline(lines, line);  // the header
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string x, y;
        std::getline(fields, x, ',');
        std::getline(fields, y, ',');
        rows.emplace_back(std::stod(x), std::stod(y));
    }
    return rows;
}

std::pair<double, double> highestRow(const std::vector<std::pair<double, double>>& rows) {
    return *std::max_element(rows.begin(), rows.end(), [](auto& a, auto& b) { return a.second < b.second; });
}

// Channel 1 a sine of amplitude 2 at 100 Hz; channel 2 half of it with a little noise.
class MainJobCommands : public ::testing::Test {
protected:
    void SetUp() override {
        testing::RecordingPlan plan;
        plan.block = 256;
        plan.scans = 16;
        plan.sampleFrequency = 1024.0f;
        plan.inputs = {{"Sine"}, {"Half"}};
        plan.sample = [](long number, std::int64_t i) {
            const double s = 2.0 * std::sin(2.0 * std::numbers::pi * 100.0 * static_cast<double>(i) / 1024.0);
            return static_cast<float>(number == 1 ? s : 0.5 * s + 0.01 * static_cast<double>((i * 7919) % 11 - 5));
        };
        ASSERT_TRUE(testing::writeRecording(dir_.file("rec.trc").string(), plan));
    }
    // The text with "{}" standing for the test's folder.
    std::string inFolder(std::string text) const {
        for (std::size_t at; (at = text.find("{}")) != std::string::npos;) text.replace(at, 2, dir_.path().string());
        return text;
    }
    // Runs the tool with the words of `arguments`.
    test::ToolResult run(const std::string& arguments) const {
        std::vector<std::string> words;
        std::istringstream in(inFolder(arguments));
        for (std::string word; in >> word;) words.push_back(word);
        return test::runToolCapture(words);
    }
    test::TempDir dir_;
};

TEST_F(MainJobCommands, AutopowerOfASinePeaksAtItsFrequency) {
    const test::ToolResult result = run("spectrum {}/rec.trc {}/out.csv --channels 1 --kind autopower --block 256 --quiet");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const auto rows = csvRows(dir_.file("out.csv"));
    ASSERT_EQ(rows.size(), 129u);
    const auto [hz, power] = highestRow(rows);
    EXPECT_NEAR(hz, 100.0, 0.01);
    EXPECT_NEAR(power, 2.0, 0.02);  // the sine's mean square
}

TEST_F(MainJobCommands, FrfAndCoherenceGoIntoAWorkspaceFile) {
    test::ToolResult result = run("spectrum {}/rec.trc {}/out.wkd --channels 2 --reference 1 --kind frf,coherence --block 128 "
                            "--overlap 25 --window flattop");
    ASSERT_EQ(result.status, 0) << result.err;
    result = run("ls {}/out.wkd");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("measurement\t0\tFRF(Half,Sine)\tFRF\t65\t"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("measurement\t1\tCoherence(Half,Sine)\tCoherence\t65\t"), std::string::npos) << result.out;
    EXPECT_EQ(result.out.find("measurement\t2"), std::string::npos) << result.out;
}

TEST_F(MainJobCommands, OctaveBandsOfASine) {
    const test::ToolResult result = run("octave {}/rec.trc {}/bands.csv --channel 1 --block 256");
    ASSERT_EQ(result.status, 0) << result.err;
    const auto [hz, level] = highestRow(csvRows(dir_.file("bands.csv")));
    EXPECT_NEAR(hz, 100.0, 0.5);
    EXPECT_NEAR(level, std::sqrt(2.0), 0.02);
}

TEST_F(MainJobCommands, FailuresAreOneLineWithTheFile) {
    std::filesystem::copy_file(dir_.file("rec.trc"), dir_.file("bad.trc"));
    std::filesystem::resize_file(dir_.file("bad.trc"), 200);
    struct Case {
        const char* arguments;
        int status;
        const char* begins;
    };
    const Case cases[] = {
        {"spectrum {}/bad.trc {}/out.csv", 1, "nvdl spectrum: {}/bad.trc: "},
        {"spectrum {}/rec.trc {}/out.csv --channels 3", 1, "nvdl spectrum: {}/rec.trc: has no channel 3"},
        {"spectrum {}/rec.trc {}/out.csv --averages 100 --block 256", 1, "nvdl spectrum: {}/rec.trc: asks for 100 averages"},
        {"spectrum {}/rec.trc {}/out.txt", 1, "nvdl spectrum: {}/out.txt: "},
        {"spectrum {}/rec.trc {}/out.csv --kind phase", 2, "nvdl spectrum: unknown kind \"phase\""},
        {"octave {}/bad.trc {}/out.csv --channel 1", 1, "nvdl octave: {}/bad.trc: "},
        {"octave {}/rec.trc {}/out.csv", 2, "usage: nvdl octave "},
    };
    for (const Case& c : cases) {
        const test::ToolResult result = run(c.arguments);
        EXPECT_EQ(result.status, c.status) << c.arguments;
        EXPECT_EQ(result.err.rfind(inFolder(c.begins), 0), 0u) << c.arguments << ": " << result.err;
        if (c.status == 1) {
            EXPECT_EQ(result.errLines().size(), 1u) << result.err;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(dir_.file("out.csv")));
}

// The small demonstration finds the three modes within 1% with a coherence near 1, and leaves its
// recording, project and pictures in the folder it names.
TEST_F(MainJobCommands, DemoFindsTheModes) {
    const test::ToolResult result = run("demo {}/result --small --quiet");
    ASSERT_EQ(result.status, 0) << result.err;
    const std::regex row(R"(^\s*(\d)\s+([\d.]+)\s+([\d.]+)\s+(-?[\d.]+)\s+([\d.]+)\s+Acc \d$)");
    int modes = 0;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
        std::smatch m;
        if (!std::regex_match(line, m, row)) continue;
        ++modes;
        const double truth = std::stod(m[2]), found = std::stod(m[3]);
        EXPECT_LT(std::fabs(found - truth), 0.01 * truth) << line;
        EXPECT_GT(std::stod(m[5]), 0.95) << line;
    }
    EXPECT_EQ(modes, 3) << result.out;
    EXPECT_NE(result.out.find("Hz"), std::string::npos);
    const auto folder = std::filesystem::canonical(dir_.file("result"));
    EXPECT_NE(result.out.find(folder.string()), std::string::npos) << result.out;
    for (const char* file : {"modal-test.trc", "modal-test.vpj", "frf.png", "coherence.png", "octave.png", "overview-force.png",
                             "overview-responses.png"})
        EXPECT_TRUE(std::filesystem::exists(folder / file)) << file;
}

}  // namespace
}  // namespace nvdl
