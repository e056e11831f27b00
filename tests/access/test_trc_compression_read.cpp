// Reduced reads of recorded channels and stored measurements, against the reduction worked out here
// from the values the recording was written with; reads answered by the min/max cache against
// those answered by the file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "LoaderTest.h"
#include "RecordingBuilder.h"
#include "access/TrcCompressionPlan.h"
#include "access/TrcLoader.h"

using nvdl::access::CTrcLoader;
using namespace nvdl::access;
using namespace nvdl::testing;

namespace {

// What a reduced read handed out, copied from its arrays.
struct Picture {
    int ok = 0;
    std::vector<float> x, y, imag;
    float factor = 0, range = 0;
    int uncompleted = -1, useful = -1;
    long status = -1;
    bool operator==(const Picture&) const = default;
};

Picture readCompressed(CTrcLoader& loader, long kind, long channel, long sub, std::int64_t n, std::int64_t start,
                       std::int64_t count, std::size_t length) {
    Picture p;
    float *x = nullptr, *y = nullptr, *imag = nullptr;
    p.ok = loader.ReadCompressed(kind, channel, sub, n, start, count, &x, &y, &imag, &p.factor, &p.uncompleted,
                                 &p.useful, &p.range, &p.status);
    auto take = [length](float* values, std::vector<float>& into) {
        if (values) into.assign(values, values + length);
        std::free(values);
    };
    take(x, p.x);
    take(y, p.y);
    take(imag, p.imag);
    return p;
}

// The picture a read must give: the plan's steps over `value(i)` of the source, each a pair
// searched from the marks, or the values themselves for a single step; zeros behind.
struct Expected {
    std::vector<float> values;
    CompressionPlan plan;
};

Expected expected(const std::function<float(std::int64_t)>& value, std::int64_t n, std::int64_t start,
                  std::int64_t count, long maximum, int feature, std::int64_t availableTo = INT64_MAX) {
    Expected e;
    PlanCompression(start, count, n, maximum, feature, e.plan);
    const std::int64_t working = std::max(std::min<std::int64_t>(maximum, n), e.plan.stepLength);
    e.values.assign(static_cast<std::size_t>(count == e.plan.stepLength ? working : maximum), 0.0f);
    const std::int64_t step = e.plan.stepLength;
    for (long k = 0; k < e.plan.steps && start + (k + 1) * step <= availableTo; ++k) {
        if (e.plan.factor == 1.0f) {
            for (std::int64_t i = 0; i < std::min<std::int64_t>(step, e.values.size()); ++i) e.values[i] = value(start + i);
            break;
        }
        float lo = kMinimumStart, hi = kMaximumStart;
        for (std::int64_t i = start + k * step; i < start + (k + 1) * step; ++i) {
            const float v = value(i);
            if (v < lo) lo = v;
            if (v > hi) hi = v;
        }
        e.values[static_cast<std::size_t>(2 * k)] = lo;
        e.values[static_cast<std::size_t>(2 * k + 1)] = hi;
    }
    return e;
}

constexpr long kBlock = 64, kScans = 40;
constexpr std::int64_t kSamples = kBlock * kScans;

float stored(long number, std::int64_t i) {
    return static_cast<float>((i * 7919 + number * 31) % 2001 - 1000);
}

class TrcCompressionRead : public LoaderTest {
protected:
    Picture read(const char* file, long kind, long channel, long sub, std::int64_t n, std::int64_t start,
                 std::int64_t count, std::size_t length) {
        CTrcLoader loader;
        EXPECT_TRUE(loader.OpenFile(path(file).c_str())) << file;
        return readCompressed(loader, kind, channel, sub, n, start, count, length);
    }
    // Inputs "a" (range 10, V), "b" (range 5, sensitivity 250 mV/EU: factor 4) and a tacho of 3000 rpm.
    static RecordingPlan recording(bool floats) {
        RecordingPlan plan;
        plan.floats = floats;
        plan.block = kBlock;
        plan.scans = kScans;
        plan.inputs = {{"a", 10.0f}, {"b", 5.0f, true, "V", 250.0f, "mV/EU"}};
        plan.tachoEndRpm = {3000.0f};
        plan.sample = [floats](long number, std::int64_t i) { return stored(number, i) * (floats ? 0.37f : 1.0f); };
        return plan;
    }
    // A stored value of a channel in physical units, converted as the loader converts.
    static std::function<float(std::int64_t)> physical(const RecordingPlan& plan, long number) {
        float factor = 1.0f, offset = 0.0f, range;
        if (number <= static_cast<long>(plan.inputs.size())) {
            const InputPlan& in = plan.inputs[static_cast<std::size_t>(number - 1)];
            CTrcLoader::GetUnitConversion(in.unit.c_str(), in.sensitivity, in.calibrationType.c_str(), 0.0f, 0.0f,
                                          &offset, &factor);
            range = in.range;
        } else {
            factor = CTrcLoader::GetRpmFactor();
            range = 2.0f * plan.tachoEndRpm[0];
        }
        return [=](std::int64_t i) {
            float v = plan.sample(number, i);
            if (!plan.floats) v = CTrcLoader::ScaleSample(static_cast<std::int16_t>(v), CTrcLoader::ScaleOfRange(range));
            return factor * v + offset;
        };
    }
};

TEST_F(TrcCompressionRead, RecordedChannelsMatchTheirReduction) {
    struct Case {
        const char* name;
        bool floats;
        long kind, channel, maxBlock;
        int feature;
        std::int64_t start, count;
        float range;
    };
    const Case cases[] = {
        {"whole, reduced", true, 1, 1, 100, 1, 0, kSamples, 10.0f},
        {"unaligned span", true, 1, 2, 100, 1, 37, 1500, 5.0f},
        {"short span untouched", true, 1, 2, 100, 1, 130, 90, 5.0f},
        {"steps shorter than a block", true, 1, 1, 1000, 1, 5, 2000, 10.0f},
        {"16-bit converted", false, 1, 2, 100, 1, 0, kSamples, 5.0f},
        {"16-bit tacho", false, 2, 3, 100, 1, 3, 2000, 20.0f},
        {"float tacho", true, 2, 3, 50, 1, 0, kSamples, 20.0f},
        {"feature off: all at once", true, 1, 1, 100, 0, 0, kSamples, 10.0f},
        {"feature off, 16-bit", false, 1, 2, 4096, 0, 0, kSamples, 5.0f},
    };
    for (const bool floats : {true, false}) ASSERT_TRUE(writeRecording(path(floats ? "f.trc" : "i.trc"), recording(floats)));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        settings(c.maxBlock, c.feature);
        const Expected e = expected(physical(recording(c.floats), c.channel), kSamples, c.start, c.count, c.maxBlock,
                                    c.feature);
        const Picture p =
            read(c.floats ? "f.trc" : "i.trc", c.kind, c.channel, -1, kSamples, c.start, c.count, e.values.size());
        ASSERT_TRUE(p.ok);
        EXPECT_EQ(p.y, e.values);
        EXPECT_TRUE(p.x.empty() && p.imag.empty());
        EXPECT_EQ(std::tuple(p.factor, p.uncompleted, p.useful, p.status, p.range),
                  std::tuple(e.plan.factor, e.plan.uncompleted, e.plan.useful, 0L, c.range));
    }
}

TEST_F(TrcCompressionRead, StatusAndRangeOfTheScansTaken) {
    using Status = long (*)(long, long);
    const Status overloadAt7 = [](long, long scan) { return scan == 7 ? 1L : 0L; };
    const struct {
        const char* name;
        Status status;
        float range;
        std::int64_t start;
        long expectStatus;
        float expectRange;
    } cases[] = {
        {"an overload stays", overloadAt7, 10.0f, 0, 1, 10.0f},
        {"a held overload stays over a later one", [](long, long scan) { return scan == 3 ? 2L : scan > 3; }, 10.0f,
         0, 2, 10.0f},
        {"scans before the span do not count", overloadAt7, 10.0f, 8 * kBlock, 0, 10.0f},
        {"ranges above 20 report 20", [](long, long) { return 0L; }, 100.0f, 0, 0, 20.0f},
    };
    settings(100, 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        RecordingPlan plan = recording(true);
        plan.status = c.status;
        plan.inputs[0].range = c.range;
        ASSERT_TRUE(writeRecording(path("s.trc"), plan));
        const Picture p = read("s.trc", 1, 1, -1, kSamples, c.start, kSamples - c.start, 100);
        ASSERT_TRUE(p.ok);
        EXPECT_EQ(std::pair(p.status, p.range), std::pair(c.expectStatus, c.expectRange));
    }
}

// The first whole read of a channel builds its min/max cache, later reads of any span take it;
// removing the cache brings back the file's reading, which must give the same values, status and range.
TEST_F(TrcCompressionRead, CachedReadsEqualFileReads) {
    settings(64, 1);
    for (bool floats : {true, false}) {
        SCOPED_TRACE(floats ? "float" : "16-bit");
        RecordingPlan plan;
        plan.floats = floats;
        plan.block = 100;
        plan.scans = 30;
        // A falling unit conversion (negative sensitivity) swaps each step's extremes.
        plan.inputs = {{"Falling", 4.0f, true, "V", -2.0f, "V/EU"}};
        plan.tachoEndRpm = {1500.0f};
        plan.sample = [](long number, std::int64_t i) { return static_cast<float>((i * 7919 + number * 13) % 2001 - 1000); };
        plan.status = [](long number, long scan) { return number == 1 && scan == 17 ? 1L : 0L; };
        const char* file = floats ? "f.trc" : "i.trc";
        ASSERT_TRUE(writeRecording(path(file), plan));
        const std::int64_t n = 3000, spans[][2] = {{0, n}, {0, n - 1}, {37, 2500}, {1234, 1700}, {999, 640}};
        for (long channel : {1L, 2L}) {
            const long kind = channel == 1 ? 1 : 2;
            ASSERT_TRUE(read(file, kind, channel, -1, n, 0, n, 64).ok);
            const std::string cache = path(file) + (kind == 1 ? ".in1.mmx" : ".tacho2.mmx");
            ASSERT_TRUE(std::filesystem::exists(cache)) << cache;
            std::vector<Picture> cached;
            for (const auto& s : spans) cached.push_back(read(file, kind, channel, -1, n, s[0], s[1], 64));
            for (std::size_t k = 0; k < std::size(spans); ++k) {
                std::filesystem::remove(cache);  // a whole read builds it again
                const Picture fromFile = read(file, kind, channel, -1, n, spans[k][0], spans[k][1], 64);
                EXPECT_TRUE(fromFile.ok);
                EXPECT_EQ(cached[k], fromFile) << "channel " << channel << " span " << spans[k][0];
            }
        }
    }
}

TEST_F(TrcCompressionRead, RecordingThatEndsEarlyGivesWhatItHolds) {
    settings(100, 1);
    const RecordingPlan plan = recording(true);
    ASSERT_TRUE(writeRecording(path("cut.trc"), plan));
    std::int64_t cutAt;
    {
        CTrcLoader probe;
        ASSERT_TRUE(probe.OpenFile(path("cut.trc").c_str()) && probe.GetRecorder().Read());
        cutAt = probe.GetRecorder().GetInputSection().GetGeometry().scanOffset(26);  // scans 26.. are gone
    }
    std::filesystem::resize_file(path("cut.trc"), static_cast<std::uintmax_t>(cutAt));
    const Expected e = expected(physical(plan, 1), kSamples, 0, kSamples, 100, 1, 25 * kBlock);
    const Picture p = read("cut.trc", 1, 1, -1, kSamples, 0, kSamples, 100);
    ASSERT_TRUE(p.ok);
    EXPECT_EQ(p.y, e.values);
    EXPECT_NE(p.y[60], 0.0f);  // steps up to the cut are there
    EXPECT_EQ(p.y[70], 0.0f);  // the rest is zero
}

// A long span is taken in parts at once, split between steps; whatever the split, the picture,
// status and range are those of one pass over all steps. A ramp makes every step's pair tell
// which samples it was searched over.
TEST_F(TrcCompressionRead, LongSpansTakenInPartsMatchOnePass) {
    constexpr long kLongBlock = 4096, kLongScans = 601;
    constexpr std::int64_t n = std::int64_t{kLongBlock} * kLongScans;
    struct Case {
        const char* name;
        long maxBlock;
        std::int64_t start, count;
        std::function<long(long, long)> status;
        long keptScans;  // 0: all
        long expectStatus;
        float expectRange;
    };
    auto always = [](long value) { return [value](long, long) { return value; }; };
    const Case cases[] = {
        {"split inside a block", 2000, 37, n - 100, always(0), 0, 0, 5.0f},
        {"split at a block, an overload behind it stays", 1200, kLongBlock, n - kLongBlock,
         [](long, long scan) { return scan == 400 ? 2L : 3L; }, 0, 2, 5.0f},
        {"the last step's status", 2000, 37, n - 100, [](long, long scan) { return scan < 300 ? 3L : 4L; }, 0, 4,
         5.0f},
        {"an overload of the first part stays", 2000, 37, n - 100, [](long, long scan) { return scan == 5 ? 1L : 4L; },
         0, 1, 5.0f},
        {"one step", 2, 0, n - 1, always(3), 0, 3, 10.0f},
        {"two steps", 4, 0, n - 1, always(3), 0, 3, 10.0f},
        {"nothing behind the split", 1200, kLongBlock, n - kLongBlock, always(3), 301, 3, 10.0f},
        {"the file ends in the second half", 2000, 0, n - 1, always(3), 450, 3, 5.0f},
    };
    RecordingPlan plan;
    plan.block = kLongBlock;
    plan.scans = kLongScans;
    plan.inputs = {{"a"}};
    plan.sample = [](long, std::int64_t i) { return static_cast<float>(i); };
    // Steps wholly inside these scans report the smaller range.
    plan.range = [](long, long scan) { return scan >= 440 && scan <= 460 ? 5.0f : 10.0f; };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        plan.status = c.status;
        ASSERT_TRUE(writeRecording(path("parts.trc"), plan));
        // A block is read whole from its first sample: one that would run past the last scan is not
        // there for the read.
        std::int64_t availableTo = c.start + (n - c.start) / kLongBlock * kLongBlock;
        if (c.keptScans > 0) {
            CTrcLoader probe;
            ASSERT_TRUE(probe.OpenFile(path("parts.trc").c_str()) && probe.GetRecorder().Read());
            const std::int64_t cutAt = probe.GetRecorder().GetInputSection().GetGeometry().scanOffset(c.keptScans + 1);
            std::filesystem::resize_file(path("parts.trc"), static_cast<std::uintmax_t>(cutAt));
            availableTo = std::min(availableTo, c.keptScans * kLongBlock);
        }
        settings(c.maxBlock, 1);
        CTrcLoader loader;
        ASSERT_TRUE(loader.OpenFile(path("parts.trc").c_str()));
        const Expected e = expected(physical(plan, 1), n, c.start, c.count, c.maxBlock, 1, availableTo);
        const Picture p = readCompressed(loader, 1, 1, -1, n, c.start, c.count, e.values.size());
        ASSERT_TRUE(p.ok);
        EXPECT_EQ(p.y, e.values);
        EXPECT_EQ(p.status, c.expectStatus);
        EXPECT_EQ(p.range, c.expectRange);
    }
}

TEST_F(TrcCompressionRead, StoredMeasurementsAndTheirSubMeasurements) {
    RecordingPlan plan = recording(true);
    plan.stored = {{"real", 3000, false, 1, 2}, {"complex", 4096, true, 1102}, {"short", 30}};
    ASSERT_TRUE(writeRecording(path("m.trc"), plan));
    using Values = std::function<float(std::int64_t)>;
    auto of = [](float (*f)(long, long), long m) -> Values { return [=](std::int64_t i) { return f(m, static_cast<long>(i)); }; };
    const struct {
        const char* name;
        long channel, sub;
        std::int64_t start, count;
        int ok;
        Values x, re, im;
    } cases[] = {
        {"real, whole", 1, -1, 0, 3000, 1, {}, of(storedValue, 1), {}},
        {"sub-channel 0 is the measurement", 1, 0, 0, 3000, 1, {}, of(storedValue, 1), {}},
        {"a sub-measurement", 1, 2, 100, 2500, 1, {}, of(storedValue, 102), {}},
        {"a missing sub-measurement", 1, 3, 0, 3000, 0, {}, {}, {}},
        {"a missing measurement", 4, -1, 0, 3000, 0, {}, {}, {}},
        {"complex with X, whole", 2, -1, 0, 4096, 1, of(storedX, 2), of(storedValue, 2), of(storedImag, 2)},
        {"complex, a span in a read piece", 2, -1, 1000, 3000, 1, of(storedX, 2), of(storedValue, 2),
         of(storedImag, 2)},
        {"complex, short span", 2, -1, 10, 50, 1, of(storedX, 2), of(storedValue, 2), of(storedImag, 2)},
    };
    settings(100, 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const std::int64_t n = plan.stored[static_cast<std::size_t>(std::min(c.channel, 3L) - 1)].size;
        auto picture = [&](const Values& v) { return v ? expected(v, n, c.start, c.count, 100, 1).values : std::vector<float>{}; };
        const Expected e = expected(c.re ? c.re : of(storedValue, 1), n, c.start, c.count, 100, 1);
        const Picture p = read("m.trc", 3, c.channel, c.sub, n, c.start, c.count, e.values.size());
        ASSERT_EQ(p.ok, c.ok);
        if (!c.ok) continue;
        EXPECT_EQ(p.y, e.values);
        EXPECT_EQ(p.x, picture(c.x));
        EXPECT_EQ(p.imag, picture(c.im));
        EXPECT_EQ(std::tuple(p.factor, p.status, p.range), std::tuple(e.plan.factor, 0L, 20.0f));
    }

    // A short source shrinks the values of every later read of the same loader.
    CTrcLoader loader;
    ASSERT_TRUE(loader.OpenFile(path("m.trc").c_str()));
    const Picture shortOne = readCompressed(loader, 3, 3, -1, 30, 0, 30, 30);
    ASSERT_TRUE(shortOne.ok);
    EXPECT_EQ(shortOne.y, expected(of(storedValue, 3), 30, 0, 30, 100, 1).values);
    const Picture later = readCompressed(loader, 1, 1, -1, kSamples, 0, kSamples, 100);
    ASSERT_TRUE(later.ok);
    Expected e = expected(physical(plan, 1), kSamples, 0, kSamples, 30, 1);
    e.values.resize(100, 0.0f);
    EXPECT_EQ(later.y, e.values);
    EXPECT_EQ(later.factor, static_cast<float>(kSamples / 30.0));
}

TEST_F(TrcCompressionRead, RefusesWhatItCannotRead) {
    settings(100, 1);
    ASSERT_TRUE(writeRecording(path("r.trc"), recording(true)));
    CTrcLoader loader;
    EXPECT_FALSE(readCompressed(loader, 1, 1, -1, kSamples, 0, 10, 0).ok);  // not open
    ASSERT_TRUE(loader.OpenFile(path("r.trc").c_str()));
    struct Case {
        long kind, channel;
        std::int64_t n, start, count;
        int ok;
    };
    const Case cases[] = {
        {1, 1, 0, 0, 10, 1},  {1, 1, kSamples, 0, 0, 1},  // nothing to read: success, nothing made
        {1, 0, kSamples, 0, 10, 0}, {1, 1, kSamples, -1, 10, 0}, {4, 1, kSamples, 0, 10, 0},
        {1, 3, kSamples, 0, 10, 0},  // number 3 is the tacho, not an input
        {2, 1, kSamples, 0, 10, 0},  // and 1 is no tacho
    };
    for (const Case& c : cases) {
        float* y = nullptr;
        float factor, range;
        int uncompleted, useful;
        long status;
        EXPECT_EQ(loader.ReadCompressed(c.kind, c.channel, -1, c.n, c.start, c.count, nullptr, &y, nullptr, &factor,
                                        &uncompleted, &useful, &range, &status),
                  c.ok)
            << c.kind << " " << c.channel;
        EXPECT_EQ(y, nullptr);
    }
}

long residentKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmRSS:", 0) == 0) return std::strtol(line.c_str() + 6, nullptr, 10);
    return -1;
}

// Slow: reads 4 GiB of a sparse file. The sanitizer build skips it (its memory is not the
// program's own there).
TEST_F(TrcCompressionRead, SlowLongRecordingKeepsMemoryBounded) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "resident memory is not measurable under the address sanitizer";
#endif
    settings(32768, 1);
    RecordingPlan plan;
    plan.block = 262144;  // blocks of 1 MiB: a hole of the file reads fast only in large pieces
    plan.scans = 1030;    // 4 channels x 1030 x 1 MiB: above 4 GiB
    plan.inputs = {{"a"}, {"b"}, {"c"}, {"d"}};
    {
        nvdl::trc::CTrc trc;
        fillRecorder(trc, plan);
        // Created at its full length without writing a scan: sparse, every sample zero.
        ASSERT_TRUE(trc.Create(path("long.trc").c_str()) && trc.GetSetups().Write() && trc.GetRecorder().Write() &&
                    trc.GetMeasurements().Write() && trc.GetTestDefinition().Write() && trc.Close());
    }
    ASSERT_GT(std::filesystem::file_size(path("long.trc")), std::uintmax_t{4} << 30);
    CTrcLoader loader;
    ASSERT_TRUE(loader.OpenFile(path("long.trc").c_str()));
    const std::int64_t n = std::int64_t{262144} * 1030;
    const long before = residentKiB();
    for (long channel = 1; channel <= 4; ++channel) {
        const Picture p = readCompressed(loader, 1, channel, -1, n, 0, n, 32768);
        ASSERT_TRUE(p.ok);
        EXPECT_EQ(p.y, std::vector<float>(32768, 0.0f));
    }
    EXPECT_LT(residentKiB() - before, 64 * 1024);
}

}  // namespace
