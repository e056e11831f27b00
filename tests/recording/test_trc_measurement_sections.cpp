// Stored measurements of a recording: the three-zone layout of their lists, the header block's
// bytes, headers and values read back by position, and damaged files. Sizes and offsets here are
// computed from the file's layout rules, not taken from the sections under test.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <fstream>
#include <vector>

#include "../platform/TempDir.h"
#include "platform/LittleEndian.h"
#include "recording/TrcFile.h"
#include "recording/TrcMeasurements.h"

namespace le = nvdl::le;

namespace {

using namespace nvdl::trc;
using H = CTrcMeasurementHeaderSection;

constexpr std::int64_t T(std::int64_t n) { return 96 + 168 * n; }

// clang-format off
struct Curve { long size; int complex; long axis; int params; };
struct Meas { Curve curve; std::vector<Curve> subs; };
// clang-format on

std::int64_t headerBytes(const Curve& c) { return 5080 + T(1) + T(c.params) + 460 * c.params; }
std::int64_t xBytes(const Curve& c) { return c.axis >= 1102 && c.axis <= 1104 ? 4 * c.size : 0; }
std::int64_t dataBytes(const Curve& c) { return T(2) + xBytes(c) + 4 * c.size * (c.complex ? 2 : 1); }
std::int64_t subsBytes(const Meas& m) {
    std::int64_t size = T(static_cast<std::int64_t>(m.subs.size()));
    for (const Curve& c : m.subs) size += T(2) + headerBytes(c) + dataBytes(c);
    return size;
}

// Every field of the header block: its offset, its size (for texts and 16-bit integers), its accessors.
// clang-format off
template <class V, class G = V>
struct Row { int offset, size; void (H::*set)(V); G (H::*get)() const; };
#define NVDL_ROW(offset, size, name) {offset, size, &H::Set##name, &H::Get##name}
const Row<const char*> kTextRows[] = {
    NVDL_ROW(4, 50, Name), NVDL_ROW(66, 50, Response), NVDL_ROW(118, 50, Reference), NVDL_ROW(184, 50, XDimension),
    NVDL_ROW(248, 50, YDimension), NVDL_ROW(336, 50, TestId), NVDL_ROW(386, 50, FunctionQualifier),
    NVDL_ROW(436, 50, AcousticWeighting), NVDL_ROW(486, 50, Environment), NVDL_ROW(536, 100, UserId),
    NVDL_ROW(672, 50, StorageUnitX), NVDL_ROW(722, 50, StorageUnitY), NVDL_ROW(2904, 50, ClsidLoader),
    NVDL_ROW(2954, 50, ChannelFileID), NVDL_ROW(3024, 50, ZDimension), NVDL_ROW(3080, 10, SoftwareRevision)};
const Row<long> kNumberRows[] = {
    NVDL_ROW(56, 4, FunctionType), NVDL_ROW(64, 2, ResponseChannel), NVDL_ROW(116, 2, ReferenceChannel),
    NVDL_ROW(168, 4, XAxisType), NVDL_ROW(236, 4, Size), NVDL_ROW(300, 4, AveragingType), NVDL_ROW(308, 4, Averages),
    NVDL_ROW(316, 4, WindowType), NVDL_ROW(664, 4, Power), NVDL_ROW(668, 4, Overload), NVDL_ROW(3020, 4, FileSamples),
    NVDL_ROW(3076, 4, Usage)};
const Row<int> kIntRows[] = {NVDL_ROW(240, 4, Complex), NVDL_ROW(3004, 4, IsUncompleted),
                                    NVDL_ROW(3008, 4, IsUsefullData), NVDL_ROW(3016, 4, CheckOnUnicId)};
const Row<float> kFloatRows[] = {
    NVDL_ROW(172, 4, XStart), NVDL_ROW(176, 4, XIncrement), NVDL_ROW(304, 4, AveragingParameter),
    NVDL_ROW(312, 4, Overlap), NVDL_ROW(320, 4, WindowParameter), NVDL_ROW(640, 4, Order), NVDL_ROW(644, 4, RPM),
    NVDL_ROW(648, 4, Z), NVDL_ROW(660, 4, BandwidthCorrectionFactor), NVDL_ROW(3012, 4, CompressionFactor)};
#undef NVDL_ROW
// clang-format on

// Sets every field of the header to a value of its own (texts longer than their fields), then the
// curve's shape.
void fillHeader(H& h, int seed, const Curve& c) {
    int k = seed * 100;
    for (const auto& r : kTextRows) (h.*r.set)(std::string(r.size + 3, static_cast<char>('A' + k++ % 26)).c_str());
    for (const auto& r : kNumberRows) (h.*r.set)(k++);
    for (const auto& r : kIntRows) (h.*r.set)(k++);
    for (const auto& r : kFloatRows) (h.*r.set)(0.25f * static_cast<float>(k++));
    h.SetMeasurementTime(38000.5 + seed);
    h.SetSize(c.size);
    h.SetComplex(c.complex);
    h.SetXAxisType(c.axis);
    for (int p = 0; p < c.params; ++p) h.GetParameters().Add(std::make_unique<CTrcParameterSection>());
}

// The value at `i` of part `part` (0 X, 1 real, 2 imaginary) of the curve with `seed`.
float valueAt(int seed, int part, std::int64_t i) { return static_cast<float>(seed * 100000 + part * 10000 + i); }
bool stored(const Curve& c, int part) { return part == 1 || (part == 0 && xBytes(c)) || (part == 2 && c.complex); }
int moveValues(CTrcMeasurementDataSection& d, int part, bool write, std::int64_t at, float* v, std::int64_t n) {
    CTrcMeasurementYDataSection& y = d.GetY();
    if (write) return part == 0 ? d.GetX().Write(at, v, n) : part == 1 ? y.WriteReal(at, v, n) : y.WriteImag(at, v, n);
    return part == 0 ? d.GetX().Read(at, v, n) : part == 1 ? y.ReadReal(at, v, n) : y.ReadImag(at, v, n);
}

// Calls `f(item, seed, curve)` for every measurement and sub-measurement of a list built from `shapes`.
template <class F>
void forEachCurve(CTrcMeasurementsSection& list, const std::vector<Meas>& shapes, F f) {
    for (std::size_t m = 0; m < shapes.size(); ++m) {
        CTrcMeasurementSection& meas = *list.GetItem(static_cast<long>(m));
        f(meas, static_cast<int>(10 * (m + 1)), shapes[m].curve);
        for (std::size_t s = 0; s < shapes[m].subs.size(); ++s)
            f(*meas.GetMeasurements().GetItem(static_cast<long>(s)), static_cast<int>(10 * (m + 1) + s + 1),
              shapes[m].subs[s]);
    }
}

// The root of a file stand-in: a table with the list's entry at 0, the list right behind it.
class Root final : public CTrcBaseSection {
public:
    std::int64_t GetSectionSize() override { return T(1) + (list ? list->GetSectionSize() : 0); }
    CTrcTableManagment* GetToc() override { return &toc; }
    CTrcTableManagment toc;
    CTrcMeasurementsSection* list = nullptr;
};

// Writes a file with one measurements list of these measurements, and their values in two pieces
// each, so that positions other than 0 are used.
void writeFile(const std::string& name, const std::vector<Meas>& shapes) {
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Root root;
    CTrcMeasurementsSection list;
    root.list = &list;
    list.Init(&file, &root);
    for (const Meas& m : shapes) {
        auto meas = std::make_unique<CTrcMeasurementSection>();
        for (std::size_t s = 0; s < m.subs.size(); ++s)
            meas->GetMeasurements().Add(std::make_unique<CTrcSubMeasurementSection>());
        list.Add(std::move(meas));
    }
    forEachCurve(list, shapes,
                 [](CTrcMeasurementBase& item, int seed, const Curve& c) { fillHeader(item.GetHeader(), seed, c); });
    list.SetSectionOffset(T(1));
    ASSERT_TRUE(list.UpdateTocSections() && root.toc.Add(list));
    ASSERT_TRUE(file.Seek(0, 0) && root.toc.Write(&file, &root) && list.Write());
    forEachCurve(list, shapes, [](CTrcMeasurementBase& item, int seed, const Curve& c) {
        std::vector<float> v(c.size);
        for (int part = 0; part < 3; ++part) {
            for (long i = 0; i < c.size; ++i) v[i] = valueAt(seed, part, i);
            for (auto [from, n] : {std::pair{0L, c.size / 2}, std::pair{c.size / 2, c.size - c.size / 2}}) {
                EXPECT_TRUE(!stored(c, part) || !n || moveValues(item.GetData(), part, true, from, &v[from], n))
                    << seed;
            }
        }
    });
}

// A file opened (read only unless asked otherwise) with its root table read, ready for the list's Read.
struct Opened {
    CTrcFile file;
    Root root;
    CTrcMeasurementsSection list;
    int opened = 0;
    explicit Opened(const std::string& name, bool writable = false) {
        opened = (writable ? file.ReOpen(name.c_str()) : file.Open(name.c_str())) && root.toc.Read(&file);
        list.Init(&file, &root);
        list.SetSectionIndex(0);
    }
};

std::vector<unsigned char> bytesOf(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
void saveBytes(const std::string& name, const std::vector<unsigned char>& b) {
    std::ofstream(name, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(b.data()), b.size());
}

struct TrcMeasurements : ::testing::Test {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("m.trc").string();
};

// Mixed: complex with X and sub-measurements, real without X, empty, and a last one whose last
// sub-measurement ends the file.
const std::vector<Meas> kMixed = {
    {{1000, 1, 1102, 2}, {{5, 0, 1, 0}, {6, 1, 1104, 1}}},
    {{3, 0, 1, 0}, {}},
    {{0, 0, 1103, 1}, {{7, 0, 1103, 0}}},
    {{9, 0, 1, 3}, {{8, 0, 1, 0}}},
};

// Checks the entries of a list at `at` over these measurements (sub-measurements when `subLevel`)
// against the three zones; gives the end of the data zone, the end of the list.
std::int64_t expectZones(CTrcTableManagment& toc, std::int64_t at, const std::vector<Meas>& items, bool subLevel) {
    const auto n = static_cast<std::int64_t>(items.size());
    const std::int64_t table = subLevel ? T(2) : T(3);
    std::int64_t headers = 0;
    for (const Meas& m : items) headers += headerBytes(m.curve);
    std::int64_t header = at + T(n) + n * table, data = header + headers;
    EXPECT_EQ(toc.GetCount(), n);
    for (long i = 0; i < n && i < toc.GetCount(); ++i) {
        const TocEntry& e = *toc.GetItem(i);
        const std::int64_t bulk = dataBytes(items[i].curve) + (subLevel ? 0 : subsBytes(items[i]));
        EXPECT_EQ(e.name, (subLevel ? "SUBMEAS" : "MEAS") + std::to_string(i + 1));
        EXPECT_EQ(e.sectionOffset, at + T(n) + i * table) << e.name;
        EXPECT_EQ(e.headerOffset, header) << e.name;
        EXPECT_EQ(e.headerSize, headers) << e.name;  // the whole zone, in every entry
        EXPECT_EQ(e.dataOffset, data) << e.name;
        EXPECT_EQ(e.sectionSize, table + headerBytes(items[i].curve) + bulk) << e.name;
        header += headerBytes(items[i].curve);
        data += bulk;
    }
    return data;
}

const std::vector<Meas> kTwo = {{{6, 1, 1102, 1}, {{4, 0, 1, 0}}}, {{5, 0, 1, 2}, {}}};

// Places in a file of kTwo, from the layout: root table, list table, main tables, headers, data.
constexpr std::int64_t kList = T(1), kEntry0 = kList + 96, kTables = kList + T(2), kHeader0 = kTables + 2 * T(3);
const std::int64_t kData0 = kHeader0 + headerBytes(kTwo[0].curve) + headerBytes(kTwo[1].curve);

}  // namespace

TEST_F(TrcMeasurements, ThreeZonesOfAListAndOfItsSubLists) {
    writeFile(name, kMixed);
    Opened o(name);
    ASSERT_TRUE(o.opened && o.list.Read(-1));
    EXPECT_EQ(o.file.GetFileSize(), expectZones(*o.list.GetToc(), T(1), kMixed, false));
    for (long i = 0; i < 4; ++i) {
        CTrcMeasurementSection& m = *o.list.GetItem(i);
        const TocEntry& own = *o.list.GetToc()->GetItem(i);
        CTrcTableManagment& parts = *m.GetToc();
        const std::int64_t afterData = own.dataOffset + dataBytes(kMixed[i].curve);
        EXPECT_EQ(parts.GetItem(0)->sectionOffset, own.headerOffset);
        EXPECT_EQ(parts.GetItem(0)->headerSize, own.headerSize);
        EXPECT_EQ(parts.GetItem(2)->sectionOffset, afterData);
        EXPECT_EQ(m.GetData().GetX().GetSectionOffset(), own.dataOffset + T(2));
        EXPECT_EQ(m.GetData().GetY().GetSectionOffset(), own.dataOffset + T(2) + xBytes(kMixed[i].curve));
        std::vector<Meas> subs;
        for (const Curve& c : kMixed[i].subs) subs.push_back({c, {}});
        expectZones(*m.GetMeasurements().GetToc(), afterData, subs, true);
    }
    writeFile(name, {});  // an empty list is its table alone
    EXPECT_EQ(bytesOf(name).size(), static_cast<std::size_t>(T(1) + 96));
}

TEST_F(TrcMeasurements, HeaderBlockBytesAtTheirOffsets) {
    const Curve curve{4, 1, 1103, 2};
    writeFile(name, {{curve, {}}});
    H h;
    fillHeader(h, 10, curve);
    std::vector<unsigned char> expected(5080, 0);  // every field from its getter, at its offset
    le::put32(&expected[0], 20040309);
    for (const auto& r : kTextRows) std::memcpy(&expected[r.offset], (h.*r.get)(), std::strlen((h.*r.get)()));
    for (const auto& r : kNumberRows)
        for (int j = 0; j < r.size; ++j) expected[r.offset + j] = static_cast<unsigned char>((h.*r.get)() >> 8 * j);
    for (const auto& r : kIntRows) le::put32(&expected[r.offset], static_cast<std::uint32_t>((h.*r.get)()));
    for (const auto& r : kFloatRows) le::putF32(&expected[r.offset], (h.*r.get)());
    le::putF64(&expected[328], 38000.5 + 10);
    EXPECT_EQ(std::strlen(h.GetUserId()), 99u);  // texts cut to their field's size minus one
    EXPECT_EQ(std::strlen(h.GetSoftwareRevision()), 9u);
    const std::int64_t at = T(1) + T(1) + T(3);
    const std::vector<unsigned char> b = bytesOf(name);
    ASSERT_GT(b.size(), static_cast<std::size_t>(at + 5080 + T(1)));
    EXPECT_EQ(std::vector<unsigned char>(b.begin() + at, b.begin() + at + 5080), expected);
    EXPECT_EQ(le::i32(&b[at + 5080 + 4]), 1);  // the header's table: the parameters behind it
    EXPECT_EQ(static_cast<std::int64_t>(le::u64(&b[at + 5080 + 96 + 48])), at + 5344);
    h.SetResponseChannel(70000);  // kept in 16 bits
    h.SetSize(-1);
    h.SetName(nullptr);
    EXPECT_EQ(h.GetResponseChannel(), 4464);
    EXPECT_EQ(h.GetSize(), 4);
    EXPECT_EQ(std::strlen(h.GetName()), 49u);
}

TEST_F(TrcMeasurements, HeadersAndValuesReadBackByPosition) {
    writeFile(name, kMixed);
    Opened o(name, true);
    ASSERT_TRUE(o.opened && o.list.Read(-1));
    EXPECT_TRUE(o.list.IsRead());
    forEachCurve(o.list, kMixed, [&](CTrcMeasurementBase& item, int seed, const Curve& c) {
        H h;
        fillHeader(h, seed, c);
        EXPECT_TRUE(item.GetHeader().GetBlock() == h.GetBlock()) << seed;
        EXPECT_EQ(item.GetHeader().GetParameters().GetCount(), c.params);
        std::vector<float> v(c.size + 1);
        for (int part = 0; part < 3; ++part) {
            if (!stored(c, part)) continue;
            for (long from : {0L, c.size / 3}) {  // every value, from two starts
                if (from == c.size) continue;
                EXPECT_TRUE(moveValues(item.GetData(), part, false, from, v.data(), c.size - from)) << seed;
                for (long i = from; i < c.size; ++i) EXPECT_EQ(v[i - from], valueAt(seed, part, i)) << seed;
            }
        }
        EXPECT_EQ(item.GetData().GetX().Read(0, v.data(), 1) != 0, xBytes(c) > 0);  // no X table, nothing to read
    });
    // The rules of access by position, on a complex curve of Size 1000 with X.
    CTrcMeasurementDataSection& d = o.list.GetItem(0)->GetData();
    struct Case {
        int part;
        std::int64_t position, count;
        bool write, ok;
    } cases[] = {// part 0 is X
                 {1, 0, 1000, false, true}, {1, 1, 1000, false, false}, {1, 0, 0, false, false},
                 {1, -1, 1, false, false},  {1, 0, 1001, false, false}, {2, 999, 1, false, true},
                 {2, 999, 2, false, false}, {0, 500, 500, false, true}, {0, 500, 501, false, false},
                 {2, 1, 1000, true, false}};
    std::vector<float> v(1001);
    for (const Case& c : cases) {
        EXPECT_EQ(moveValues(d, c.part, c.write, c.position, v.data(), c.count) != 0, c.ok)
            << c.part << " " << c.position;
        if (c.ok) {
            EXPECT_EQ(v[c.count - 1], valueAt(10, c.part, c.position + c.count - 1));
        }
    }
    EXPECT_FALSE(d.GetY().ReadReal(0, nullptr, 1));
    // The imaginary part of a real curve is whatever stands behind it: here the head of the empty
    // sub-measurement list, whose first field is its version; at the end of the file it fails.
    float f = 0;
    ASSERT_TRUE(o.list.GetItem(1)->GetData().GetY().ReadImag(0, &f, 1));
    EXPECT_EQ(std::bit_cast<std::int32_t>(f), 20040309);
    EXPECT_FALSE(o.list.GetItem(3)->GetMeasurements().GetItem(0)->GetData().GetY().ReadImag(0, &f, 1));
    // Reading one measurement keeps the whole table but only that child.
    Opened one(name);
    ASSERT_TRUE(one.list.Read(1));
    EXPECT_EQ(one.list.GetCount(), 1);
    EXPECT_STREQ(one.list.GetItem(0)->GetSectionName(), "MEAS2");
    EXPECT_EQ(one.list.GetToc()->GetCount(), 4);
    EXPECT_FALSE(one.list.IsRead());
    EXPECT_FALSE(one.list.Read(4));
    ASSERT_TRUE(one.list.Read(-1));
    one.file.Close();
    EXPECT_TRUE(one.list.Read(-1));  // read already: the disk is not asked again
    EXPECT_EQ(one.list.GetCount(), 4);
    EXPECT_FALSE(one.list.GetItem(0)->GetData().GetY().WriteReal(0, &f, 1));  // not on a read-only file
    // Writing again clears the curves, and needs the layout it was given.
    EXPECT_TRUE(o.list.Write());
    EXPECT_TRUE(d.GetY().ReadImag(5, &f, 1) && f == 0.0f);
    o.list.GetItem(1)->GetHeader().SetSize(1);
    EXPECT_TRUE(o.list.UpdateTocSections());
    EXPECT_FALSE(o.list.Write());
}

TEST_F(TrcMeasurements, DamagedFilesFailWithoutCrashing) {
    writeFile(name, kTwo);
    const std::vector<unsigned char> sound = bytesOf(name);
    // Four bytes at `at` replaced by `value`; then the result of Read(-1) and the measurements kept.
    struct Case {
        const char* what;
        std::int64_t at;
        std::uint32_t value;
        int read;
        long count;
    } cases[] = {
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
        {"sub-measurement count beyond the file", kData0 + dataBytes(kTwo[0].curve) + 4, 0x40000000, 0, 0},
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
