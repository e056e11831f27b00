// Lists of stored measurements: the three-zone layout, the header block's bytes, and headers and
// values read back by position.
#include <bit>
#include <cstring>

#include "MeasurementFileSupport.h"
#include "platform/LittleEndian.h"

using namespace nvdl::test::trcmeas;
namespace le = nvdl::le;

namespace {

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
        EXPECT_EQ(parts.GetItem(1)->sectionOffset, own.dataOffset);
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
                EXPECT_TRUE(move(item.GetData(), part, false, from, v.data(), c.size - from)) << seed;
                for (long i = from; i < c.size; ++i) EXPECT_EQ(v[i - from], valueAt(seed, part, i)) << seed;
            }
        }
        EXPECT_EQ(item.GetData().GetX().Read(0, v.data(), 1) != 0, xBytes(c) > 0);  // no X table, nothing to read
    });
    // The rules of access by position, on a complex curve of Size 1000 with X.
    CTrcMeasurementDataSection& d = o.list.GetItem(0)->GetData();
    struct Case { int part; std::int64_t position, count; bool write, ok; } cases[] = {  // part 0 is X
        {1, 0, 1000, false, true}, {1, 1, 1000, false, false}, {1, 0, 0, false, false}, {1, -1, 1, false, false},
        {1, 0, 1001, false, false}, {2, 999, 1, false, true}, {2, 999, 2, false, false}, {0, 500, 500, false, true},
        {0, 500, 501, false, false}, {2, 1, 1000, true, false}};
    std::vector<float> v(1001);
    for (const Case& c : cases) {
        EXPECT_EQ(move(d, c.part, c.write, c.position, v.data(), c.count) != 0, c.ok) << c.part << " " << c.position;
        if (c.ok) {
            EXPECT_EQ(v[c.count - 1], valueAt(10, c.part, c.position + c.count - 1));
        }
    }
    EXPECT_FALSE(d.GetY().ReadReal(0, nullptr, 1));
    EXPECT_EQ(d.GetY().GetSectionSize(), 8000);
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
