// A reduced read answered by the min/max cache gives exactly what reading the file gives: the first
// whole-channel read builds the cache, later reads of any span take it, and removing the cache brings
// back the file's reading with the same values, status and range.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

#include "../project/SettingsFileTest.h"
#include "RecordingBuilder.h"
#include "access/TrcLoader.h"

using nvdl::access::CTrcLoader;
using namespace nvdl::testing;

namespace {

struct Reduced {
    int ok = 0;
    std::vector<float> y;
    float factor = 0, range = 0;
    long status = -1;
    bool operator==(const Reduced&) const = default;
};

Reduced reduce(const std::string& file, long kind, long channel, std::int64_t n, std::int64_t start, std::int64_t count) {
    CTrcLoader loader;
    Reduced r;
    if (!loader.OpenFile(file.c_str())) return r;
    float *x = nullptr, *y = nullptr, *imag = nullptr;
    int uncompleted = 0, useful = 0;
    r.ok = loader.ReadCompressed(kind, channel, -1, n, start, count, &x, &y, &imag, &r.factor, &uncompleted, &useful,
                                 &r.range, &r.status);
    if (y) r.y.assign(y, y + loader.GetMaxBlockSize());
    std::free(x);
    std::free(y);
    std::free(imag);
    return r;
}

class TrcCompressionCache : public nvdl::test::SettingsFileTest {};

TEST_F(TrcCompressionCache, CachedReadsEqualFileReads) {
    writeSettings({{"HKEY_CURRENT_USER\\Software\\norvane instruments\\Sonvara\\CurrentVersion\\Settings",
                    {{"LongFileFeature", "1"}, {"MaxBlockSize", "64"}}}});
    for (bool floats : {true, false}) {
        SCOPED_TRACE(floats ? "float" : "16-bit");
        RecordingPlan plan;
        plan.floats = floats;
        plan.block = 100;
        plan.scans = 30;
        // A falling unit conversion (negative sensitivity) swaps each step's extremes.
        plan.inputs = {{"Falling", 4.0f, true, "V", -2.0f, "V/EU"}};
        plan.tachoEndRpm = {1500.0f};
        plan.sample = [](long number, std::int64_t i) {
            return static_cast<float>((i * 7919 + number * 13) % 2001 - 1000);
        };
        plan.status = [](long number, long scan) { return number == 1 && scan == 17 ? 1L : 0L; };
        const std::string file = (dir_ / (floats ? "f.trc" : "i.trc")).string();
        ASSERT_TRUE(writeRecording(file, plan));
        const std::int64_t n = 3000;
        struct Span { std::int64_t start, count; };
        const Span spans[] = {{0, n}, {0, n - 1}, {37, 2500}, {1234, 1700}, {999, 640}};
        for (long channel : {1L, 2L}) {
            const long kind = channel == 1 ? 1 : 2;
            ASSERT_TRUE(reduce(file, kind, channel, n, 0, n).ok);  // the first whole read builds the cache
            const std::string cache = file + (kind == 1 ? ".in1.mmx" : ".tacho2.mmx");
            ASSERT_TRUE(std::filesystem::exists(cache)) << cache;
            std::vector<Reduced> cached;
            for (const Span& s : spans) cached.push_back(reduce(file, kind, channel, n, s.start, s.count));
            std::filesystem::remove(cache);
            for (std::size_t k = 0; k < std::size(spans); ++k) {
                const Reduced fromFile = reduce(file, kind, channel, n, spans[k].start, spans[k].count);
                std::filesystem::remove(cache);  // a whole read would build it again
                EXPECT_TRUE(fromFile.ok);
                EXPECT_EQ(cached[k], fromFile) << "channel " << channel << " span " << spans[k].start;
            }
        }
    }
}

}  // namespace
