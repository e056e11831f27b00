// The min/max cache against a reduction of every sample (the plan's sample function), with the
// status and range of the chunks a reduced read takes; staleness, damaged files and `nvdl index`.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "../platform/RunTool.h"
#include "../platform/TempDir.h"
#include "RecordingBuilder.h"
#include "access/MinMaxCache.h"
#include "access/MinMaxCacheFormat.h"

using namespace nvdl::access;
using namespace nvdl::testing;
namespace fs = std::filesystem;

namespace {

using nvdl::test::runTool;

struct Reduced {
    bool fits = false;
    std::vector<StepExtremes> steps;
    long status = 0;
    float range = 20.0f;
};

// Each step over every value from ±2^31; chunk j is the block from start + jB with the record of
// the scan holding its first sample, a step merges the chunks it takes values from.
Reduced everyValue(const RecordingPlan& p, long number, std::int64_t start, std::int64_t L, long steps) {
    Reduced r;
    const std::int64_t B = p.block;
    r.fits = start + ((L * steps - 1) / B + 1) * B <= B * p.scans;
    for (long k = 0; r.fits && k < steps; ++k) {
        StepExtremes e{2147483648.0f, -2147483648.0f};
        for (std::int64_t i = start + k * L; i < start + (k + 1) * L; ++i) {
            const float v = p.floats ? p.sample(number, i) : static_cast<std::int16_t>(p.sample(number, i));
            if (v < e.minimum) e.minimum = v;
            if (v > e.maximum) e.maximum = v;
        }
        r.steps.push_back(e);
        long status = 0;
        float range = 0;
        for (std::int64_t j = k * L / B; j <= ((k + 1) * L - 1) / B; ++j) {
            const long scan = static_cast<long>((start + j * B) / B + 1);
            if (status != 1 && status != 2) status = p.status(number, scan);
            if (p.range(number, scan) > range) range = p.range(number, scan);
        }
        if (range < r.range) r.range = range;
        if (r.status != 1 && r.status != 2) r.status = status;
    }
    return r;
}

using Signal = float (*)(std::int64_t);
const float kNaN = std::numeric_limits<float>::quiet_NaN();
const std::pair<const char*, Signal> kSignals[] = {
    {"ramp", [](std::int64_t i) { return static_cast<float>(i % 20000 - 10000); }},
    {"falling", [](std::int64_t i) { return -static_cast<float>(i % 9000); }},
    {"spikes",
     [](std::int64_t i) {
         return (i * 7919 % 1000) * 0.5f + (i % 611 == 17 ? 9000.f : 0) - (i % 457 == 3 ? 8000.f : 0);
     }},
    {"nan", [](std::int64_t i) { return i % 13 == 0 ? kNaN : static_cast<float>(i % 29) - 3.5f; }},
    {"huge", [](std::int64_t i) { return 3e9f + static_cast<float>(i % 50) * 1e6f; }},
};

RecordingPlan plan(bool floats, long block, long scans, Signal signal) {
    RecordingPlan p;
    p.floats = floats;
    p.block = block;
    p.scans = scans;
    p.inputs = {{"a"}, {"b", 5.0f, false}};
    p.tachoEndRpm = {3000.0f};
    p.sample = [signal](long number, std::int64_t i) { return number == 1 ? signal(i) : signal(i + 77) / 4; };
    p.status = [](long number, long scan) {
        return scan == 9 + number ? 1L : scan == 14 ? 2L : scan % 4 == 3 ? 3L : 0L;
    };
    p.range = [](long number, long scan) { return static_cast<float>((scan * 7 + number) % 11) + 18.0f; };
    return p;
}

void expectSame(CMinMaxCache& cache, const RecordingPlan& p, long number, std::int64_t start, std::int64_t L,
                long steps) {
    SCOPED_TRACE(::testing::Message() << "channel " << number << " start " << start << " L " << L << " steps "
                                      << steps);
    const Reduced want = everyValue(p, number, start, L, steps);
    std::vector<StepExtremes> got(static_cast<std::size_t>(steps));
    long status = -7;
    float range = -7;
    ASSERT_EQ(cache.Reduce(start, L, steps, got.data(), &status, &range), want.fits);
    if (!want.fits) return;
    for (long k = 0; k < steps; ++k)
        ASSERT_EQ(std::pair(got[k].minimum, got[k].maximum), std::pair(want.steps[k].minimum, want.steps[k].maximum))
            << "step " << k;
    EXPECT_EQ(std::pair(status, range), std::pair(want.status, want.range));
}

class MinMaxCache : public ::testing::Test {
protected:
    std::string make(const RecordingPlan& p) {
        const std::string path = dir_.file("r.trc").string();
        EXPECT_TRUE(writeRecording(path, p));
        EXPECT_EQ(BuildMinMaxCaches(path), 2);
        return path;
    }
    nvdl::test::TempDir dir_;
};

TEST_F(MinMaxCache, ReduceGivesWhatEveryValueGives) {
    struct Layout {
        bool floats;
        long block, scans;
    };
    const Layout layouts[] = {{true, 100, 40}, {false, 24, 150}, {true, 64, 20}, {true, 1000, 7}};
    for (const Layout& l : layouts) {
        for (const auto& [name, signal] : kSignals) {
            if (!l.floats && (signal == kSignals[3].second || signal == kSignals[4].second)) continue;
            SCOPED_TRACE(::testing::Message() << name << " block " << l.block << (l.floats ? " float" : " 16-bit"));
            const RecordingPlan p = plan(l.floats, l.block, l.scans, signal);
            const std::string path = make(p);
            const std::int64_t N = l.block * l.scans, B = l.block;
            const std::int64_t spans[][3] = {{0, N / 40, 40},
                                             {0, N / 2, 2},
                                             {37, 129, 20},
                                             {5, 7, 300},
                                             {63, 64, 50},
                                             {1, 1, 500},
                                             {130, 1000, 3},
                                             {B + 3, B - 1, 9},
                                             {B, N - B, 1},
                                             {2 * B + 5, N - 3 * B, 1},
                                             {2 * B + 5, N - 3 * B + 1, 1}};
            for (long number : {1L, 3L}) {
                auto cache = CMinMaxCache::Load(path, number == 1 ? 1 : 2, number);
                ASSERT_TRUE(cache);
                for (const auto& s : spans) expectSame(*cache, p, number, s[0], s[1], static_cast<long>(s[2]));
            }
            EXPECT_FALSE(CMinMaxCache::Load(path, 1, 2)) << "an unused channel has no cache";
        }
    }
}

TEST_F(MinMaxCache, BuilderCoversOnlyTheScansItWasGiven) {
    const RecordingPlan p = plan(true, 50, 10, kSignals[2].second);
    const std::string path = dir_.file("r.trc").string();
    ASSERT_TRUE(writeRecording(path, p));
    auto builder = CMinMaxCacheBuilder::Begin(path, 1, 1, 50, 10);
    std::vector<float> block(50);
    for (long s = 1; s <= 6; ++s) {
        for (long i = 0; i < 50; ++i) block[i] = p.sample(1, (s - 1) * 50 + i);
        builder->AddScan(block.data(), p.status(1, s), p.range(1, s));
    }
    ASSERT_EQ(builder->Finish(), 1);
    auto cache = CMinMaxCache::Load(path, 1, 1);
    ASSERT_TRUE(cache);
    expectSame(*cache, p, 1, 0, 11, 27);
    StepExtremes out[2];
    EXPECT_FALSE(cache->Reduce(251, 25, 2, out, nullptr, nullptr)) << "the seventh scan is not covered";
}

TEST_F(MinMaxCache, ChangedRecordingOrDamagedFileHasNoCache) {
    const std::string path = make(plan(true, 100, 20, kSignals[1].second));
    const std::string file = mmx::cachePath(path, 1, 1);
    const auto damages = std::vector<std::pair<const char*, std::function<void()>>>{
        {"touched", [&] { fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(1)); }},
        {"grown", [&] { std::ofstream(path, std::ios::app) << 'x'; }},
        {"header byte",
         [&] {
             std::fstream f(file, std::ios::in | std::ios::out | std::ios::binary);
             f.seekp(41);
             f.put('\x7f');
         }},
        {"short", [&] { fs::resize_file(file, fs::file_size(file) - 8); }},
        {"longer", [&] { fs::resize_file(file, fs::file_size(file) + 8); }},
        {"foreign", [&] { std::ofstream(file) << std::string(4096, 'z'); }},
        {"other channel",
         [&] { fs::copy_file(mmx::cachePath(path, 2, 3), file, fs::copy_options::overwrite_existing); }},
    };
    for (const auto& [name, damage] : damages) {
        ASSERT_EQ(BuildMinMaxCaches(path), 2);
        ASSERT_TRUE(CMinMaxCache::Load(path, 1, 1));
        damage();
        EXPECT_FALSE(CMinMaxCache::Load(path, 1, 1)) << name;
    }
}

TEST_F(MinMaxCache, IndexCommandWritesTheCaches) {
    const std::string path = dir_.file("r.trc").string();
    ASSERT_TRUE(writeRecording(path, plan(false, 32, 12, kSignals[0].second)));
    int status = -1;
    EXPECT_EQ(runTool("index " + path, status),
              "input\t1\ta\t12\t" + path + ".in1.mmx\ntacho\t3\tTacho 1\t12\t" + path + ".tacho3.mmx\n");
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(CMinMaxCache::Load(path, 2, 3));
    fs::resize_file(path, 1000);
    EXPECT_EQ(runTool("index " + path, status), "");
    EXPECT_NE(status, 0);
    EXPECT_EQ(BuildMinMaxCaches(path), -1);
}

}  // namespace
