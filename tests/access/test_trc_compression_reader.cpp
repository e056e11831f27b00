// The channel reader of the reduced read answers every block and status request exactly as the
// channel's section does, whole recordings and recordings cut short alike.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "../platform/TempDir.h"
#include "RecordingBuilder.h"
#include "recording/TrcChannelRun.h"

using namespace nvdl::trc;
using namespace nvdl::testing;

namespace {

TEST(TrcChannelRun, AnswersAsTheChannelSectionDoes) {
    struct Shape {
        const char* name;
        bool floats;
        std::vector<InputPlan> inputs;
        std::vector<float> tachos;
    };
    const Shape shapes[] = {
        {"one float channel (windows)", true, {{"a"}}, {}},
        {"two 16-bit inputs (windows)", false, {{"a"}, {"b"}}, {}},
        {"an unused input and a tacho (pieces)", true, {{"a"}, {"b", 10.0f, false}, {"c"}}, {1000.0f}},
    };
    nvdl::test::TempDir dir;
    const std::string path = dir.file("r.trc").string();
    for (const Shape& shape : shapes) {
        RecordingPlan plan;
        plan.floats = shape.floats;
        plan.block = 50;
        plan.scans = 12;
        plan.inputs = shape.inputs;
        plan.tachoEndRpm = shape.tachos;
        plan.status = [](long number, long scan) { return (number + scan) % 3L; };
        plan.range = [](long number, long scan) { return static_cast<float>(number * 10 + scan); };
        ASSERT_TRUE(writeRecording(path, plan));
        const std::int64_t full = static_cast<std::int64_t>(std::filesystem::file_size(path));
        std::int64_t stride;
        {
            CTrc trc;
            ASSERT_TRUE(trc.Open(path.c_str()) && trc.GetRecorder().Read());
            stride = trc.GetRecorder().GetInputSection().GetGeometry().stride();
        }
        // Whole, cut inside the samples of scan 9, cut inside the status records of scan 5.
        for (const std::int64_t cut : {std::int64_t{0}, full - 3 * stride - 20, full - 7 * stride - 5}) {
            if (cut) std::filesystem::resize_file(path, static_cast<std::uintmax_t>(cut));
            CTrc trc;
            ASSERT_TRUE(trc.Open(path.c_str()) && trc.GetRecorder().Read());
            const long inputs = static_cast<long>(shape.inputs.size());
            const std::int64_t b = plan.block, d = shape.floats ? 4 : 2;
            for (long number = 1; number <= inputs + static_cast<long>(shape.tachos.size()); ++number) {
                auto& recorder = trc.GetRecorder();
                CTrcRecorderChannelSection& part =
                    number > inputs ? static_cast<CTrcRecorderChannelSection&>(recorder.GetTachoSection())
                                    : recorder.GetInputSection();
                // A window of one scan at a time, and one that reaches to the end.
                for (const std::int64_t end : {b, b * plan.scans}) {
                    SCOPED_TRACE(::testing::Message() << shape.name << " channel " << number << " cut " << cut
                                                      << " end " << end);
                    ChannelRunReader reader;
                    reader.Begin(part, trc.GetFile(), number, end);
                    ChannelRunReader::Run first;
                    std::vector<unsigned char> firstBytes;
                    for (const std::int64_t position : {0L, 50L, 37L, 155L, 20L, 550L, 560L, 599L, 600L}) {
                        for (const std::int64_t count : {b, 2 * b + 3}) {
                            std::vector<unsigned char> want(static_cast<std::size_t>(count * d), 0);
                            const int ok = part.ReadChannel(number, position, want.data(), count);
                            ChannelRunReader::Run run;
                            ASSERT_EQ(reader.ReadChannel(position, count, run), ok) << position << " " << count;
                            if (!ok) continue;
                            EXPECT_EQ(std::memcmp(run.data, want.data(), want.size()), 0) << position << " " << count;
                            if (!first.data && run.keep) first = run, firstBytes = want;
                        }
                    }
                    // A run that is held stays as it was, whatever was read after it.
                    if (first.data) {
                        EXPECT_EQ(std::memcmp(first.data, firstBytes.data(), firstBytes.size()), 0);
                    }
                    for (long scan = 0; scan <= plan.scans + 1; ++scan) {
                        CTrcScanInfo want, got;
                        const int ok = part.ReadInfo(scan, number, want);
                        ASSERT_EQ(reader.ReadInfo(scan, got), ok) << scan;
                        if (!ok) continue;
                        EXPECT_EQ(std::tuple(got.GetVersionNumber(), got.GetStatus(), got.GetRange()),
                                  std::tuple(want.GetVersionNumber(), want.GetStatus(), want.GetRange()))
                            << scan;
                    }
                    reader.End();
                }
            }
        }
    }
}

}  // namespace
