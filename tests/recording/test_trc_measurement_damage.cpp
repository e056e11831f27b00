// Damaged lists of stored measurements: a failed read, never a crash or a runaway allocation.
#include "MeasurementFileSupport.h"
#include "platform/LittleEndian.h"

using namespace nvdl::test::trcmeas;
namespace le = nvdl::le;

namespace {

const std::vector<Meas> kTwo = {{{6, 1, 1102, 1}, {{4, 0, 1, 0}}}, {{5, 0, 1, 2}, {}}};

// Places in a file of kTwo, from the layout: root table, list table, main tables, headers, data.
constexpr std::int64_t kList = T(1), kEntry0 = kList + 96, kTables = kList + T(2), kHeader0 = kTables + 2 * T(3);
const std::int64_t kData0 = kHeader0 + headerBytes(kTwo[0].curve) + headerBytes(kTwo[1].curve);
const std::int64_t kSubList0 = kData0 + dataBytes(kTwo[0].curve);

}  // namespace

TEST_F(TrcMeasurements, DamagedFilesFailWithoutCrashing) {
    writeFile(name, kTwo);
    const std::vector<unsigned char> sound = bytesOf(name);
    // Four bytes at `at` replaced by `value`; then the result of Read(-1) and the measurements kept.
    struct Case { const char* what; std::int64_t at; std::uint32_t value; int read; long count; } cases[] = {
        {"sound file", 0, 20040309, 1, 2},
        {"list entry older than the layout: an empty list", 96, 20040308, 1, 0},
        {"list count beyond the file", kList + 4, 0x7fffffff, 0, 0},
        {"measurement entry older", kEntry0, 20040308, 0, 0},
        {"measurement table past the end", kEntry0 + 48, 0x7fffffff, 0, 0},
        {"header offset negative", kTables + 96 + 64 + 4, 0x80000000, 0, 0},
        {"measurement table of two entries", kTables + 4, 2, 0, 0},
        {"header block older", kHeader0, 20040308, 0, 0},
        {"negative size", kHeader0 + 236, 0xfffffffb, 0, 0},
        {"huge size the file cannot hold", kHeader0 + 236, 0x7fffffff, 0, 0},
        {"parameter count beyond the file", kHeader0 + 5080 + 264 + 4, 0x10000000, 0, 0},
        {"sub-measurement count beyond the file", kSubList0 + 4, 0x40000000, 0, 0},
        {"data table of one entry", kData0 + 4, 1, 0, 0},
        // Sharing the smaller second one's bytes outgrows nothing and reads; the larger one's does not.
        {"first entry copies the second", kEntry0 + 48, static_cast<std::uint32_t>(kTables + T(3)), 1, 2},
        {"second entry copies the first", kEntry0 + 168 + 48, static_cast<std::uint32_t>(kTables), 0, 1},
    };
    for (const Case& c : cases) {
        std::vector<unsigned char> b = sound;
        le::put32(&b[c.at], c.value);
        saveBytes(name, b);
        Opened o(name);
        ASSERT_TRUE(o.opened) << c.what;
        EXPECT_EQ(o.list.Read(-1), c.read) << c.what;
        EXPECT_EQ(o.list.GetCount(), c.count) << c.what;
        o.list.Read(1);  // one child of the same damage: no crash
    }

    // A file cut anywhere before the end of its last data table.
    const std::int64_t lastTable = kData0 + dataBytes(kTwo[0].curve) + subsBytes(kTwo[0]) + T(2);
    for (std::int64_t cut = 0; cut < lastTable; cut += 97) {
        saveBytes(name, std::vector<unsigned char>(sound.begin(), sound.begin() + cut));
        Opened o(name);
        EXPECT_FALSE(o.opened && o.list.Read(-1)) << cut;
    }
}
