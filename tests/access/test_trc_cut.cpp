// Cut: a time span of a recording copied into a new recording, read back through the recorder layer.
#include <gtest/gtest.h>

#include "LoaderTest.h"
#include "RecordingBuilder.h"
#include "access/TrcLoader.h"
#include "platform/Host.h"

using namespace nvdl;
using namespace nvdl::testing;

namespace {

// Inputs 1 and 3 used around an unused 2, tacho number 4; 3 scans of 1000 samples at 1000 Hz.
RecordingPlan threeScans(bool floats) {
    RecordingPlan p;
    p.floats = floats;
    p.block = 1000;
    p.scans = 3;
    p.sampleFrequency = 1000.0f;
    p.inputs = {{"a"}, {"b", 10.0f, false}, {"c"}};
    p.tachoEndRpm = {3000.0f};
    p.sample = [](long number, std::int64_t i) { return static_cast<float>(number * 5000 + i); };
    p.status = [](long number, long scan) { return number * 10 + scan; };
    return p;
}

// A cut, and what lands in the target: source sample first + p at target sample p below `copied`,
// 0 behind it, and the status records of the source scan at target scans 1 to `passes`.
struct Span {
    float start, stop;
    long cancelAt, lastPercent, newScans, first, copied, passes;
};

class TrcCut : public LoaderTest {
protected:
    std::string in() const { return path("in.trc"); }
    std::string out() const { return path("out.trc"); }
    void expectTarget(const RecordingPlan& p, const Span& s) {
        trc::CTrc target;
        ASSERT_TRUE(target.Open(out().c_str()) && target.GetRecorder().Read());
        trc::CTrcRecorderSection& recorder = target.GetRecorder();
        auto& setup = recorder.GetHeader().GetSetup();
        EXPECT_EQ(setup.GetProcessing().GetAverageNumber(), s.newScans);
        EXPECT_EQ(setup.GetThroughput().GetLength(), static_cast<double>(s.stop - s.start));
        EXPECT_EQ(setup.GetTachos().GetItem(0)->GetRpm().GetEndRPM(), 3000.0f);
        const std::int64_t room = std::min(s.newScans, setup.GetProcessing().GetMaxAverageNumber()) * p.block;
        const long d = p.floats ? 4 : 2;
        std::vector<unsigned char> bytes(static_cast<std::size_t>(room * d));
        for (long number : {1L, 3L, 4L}) {
            auto& part = number == 4 ? static_cast<trc::CTrcRecorderChannelSection&>(recorder.GetTachoSection())
                                     : recorder.GetInputSection();
            ASSERT_TRUE(part.ReadChannel(number, 0, bytes.data(), room));
            for (std::int64_t i = 0; i < room; ++i) {
                const unsigned char* at = &bytes[static_cast<std::size_t>(i * d)];
                ASSERT_EQ(p.floats ? le::f32(at) : le::i16(at), i < s.copied ? p.sample(number, s.first + i) : 0.0f)
                    << "channel " << number << " sample " << i << " of a cut to " << s.stop;
            }
            for (long j = 1, scan = s.first / p.block + 1; j <= s.passes; ++j, ++scan) {
                trc::CTrcScanInfo info;
                EXPECT_TRUE(part.ReadInfo(j, number, info) && info.GetStatus() == p.status(number, scan))
                    << number << " scan " << j;
            }
        }
    }
};

TEST_F(TrcCut, SpansCopyTheirSamplesStatusAndSetup) {
    // Stopping t samples into the last scan copies B - t samples of it (2.3 s: 700); 1.2 to 1.7 s
    // lies inside one scan; 0.5 to 5 s runs past the end; the last one is cancelled at 66 %.
    const Span spans[] = {{0.0f, 2.5f, 0, 100, 3, 0, 2500, 3},   {0.0f, 2.3f, 0, 100, 3, 0, 2700, 3},
                          {1.2f, 1.7f, 0, 100, 1, 1200, 100, 1}, {0.3f, 2.0f, 0, 100, 2, 300, 1700, 2},
                          {0.5f, 5.0f, 0, 100, 5, 500, 2500, 3}, {0.0f, 2.5f, 2, 66, 3, 0, 2000, 2}};
    for (bool floats : {true, false}) {
        ASSERT_TRUE(writeRecording(in(), threeScans(floats)));
        for (const Span& s : spans) {
            long reports = 0, percent = -1;
            host::setProgressHandler([&](int at, const std::string&) { return percent = at, ++reports != s.cancelAt; });
            ASSERT_EQ(access::CTrcLoader().Cut(in().c_str(), out().c_str(), s.start, s.stop), 1) << s.stop;
            EXPECT_EQ(percent, s.lastPercent);
            expectTarget(threeScans(floats), s);
        }
    }
    host::setProgressHandler({});
}

TEST_F(TrcCut, RefusedSpansAndRecordings) {
    ASSERT_TRUE(writeRecording(in(), threeScans(true)));
    using Args = std::tuple<std::string, std::string, float, float>;
    for (const auto& [input, output, start, stop] :
         {Args{in(), out(), 0, 0}, Args{in(), out(), 2, 1}, Args{in(), out(), -1, 1}, Args{"", out(), 0, 1},
          Args{in(), "", 0, 1}, Args{in() + "x", out(), 0, 1}})
        EXPECT_FALSE(access::CTrcLoader().Cut(input.c_str(), output.c_str(), start, stop) ||
                     std::filesystem::exists(out()))
            << start << " " << stop << " " << input;

    std::string said;
    host::setMessageBoxHandler([&](const std::string& text, const std::string& caption, unsigned) {
        said = caption + ": " + text;
        return host::IDOK;
    });
    using Spoil = void (*)(RecordingPlan&);
    for (const auto& [spoil, message] : std::initializer_list<std::pair<Spoil, std::string>>{
             {[](RecordingPlan& p) { p.inputs[0].used = p.inputs[2].used = false; }, "No channels are"},
             {[](RecordingPlan& p) { p.scans = 0; }, "No scans are"},
             {[](RecordingPlan& p) { p.block = 0; }, "The blocksize is not"}}) {
        RecordingPlan p = threeScans(true);
        spoil(p);
        trc::CTrc source;  // the header alone: the cut is refused before any sample is read
        fillRecorder(source, p);
        ASSERT_TRUE(source.Create(in().c_str()) && source.GetRecorder().Write() && source.Close());
        EXPECT_EQ(access::CTrcLoader().Cut(in().c_str(), out().c_str(), 0.0f, 1.0f), 0);
        EXPECT_EQ(said, "TRC Loader: " + message + " defined in <" + in() + ">.");
    }
    host::setMessageBoxHandler({});
}

}  // namespace
