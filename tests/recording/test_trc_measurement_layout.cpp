// Lists of stored measurements: the three-zone layout, the header block's bytes, and headers and
// values read back by position.
#include <bit>

#include "../platform/TempDir.h"
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

// Checks a list's entries against the three zones of a list at `at` over these curves.
void expectZones(CTrcTableManagment& toc, std::int64_t at, const std::vector<Curve>& curves,
                 const std::vector<std::int64_t>& behindData, std::int64_t tableSize, const char* prefix) {
    const auto n = static_cast<std::int64_t>(curves.size());
    std::int64_t headers = 0;
    for (const Curve& c : curves) headers += headerBytes(c);
    std::int64_t header = at + T(n) + n * tableSize, data = header + headers;
    ASSERT_EQ(toc.GetCount(), n);
    for (long i = 0; i < n; ++i) {
        const TocEntry& e = *toc.GetItem(i);
        EXPECT_EQ(e.name, prefix + std::to_string(i + 1));
        EXPECT_EQ(e.sectionOffset, at + T(n) + i * tableSize) << e.name;
        EXPECT_EQ(e.headerOffset, header) << e.name;
        EXPECT_EQ(e.headerSize, headers) << e.name;  // the whole zone, in every entry
        EXPECT_EQ(e.dataOffset, data) << e.name;
        EXPECT_EQ(e.sectionSize, tableSize + headerBytes(curves[i]) + dataBytes(curves[i]) + behindData[i]);
        header += headerBytes(curves[i]);
        data += dataBytes(curves[i]) + behindData[i];
    }
}

}  // namespace

TEST(TrcMeasurements, ThreeZonesOfAListAndOfItsSubLists) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("m.trc").string();
    writeFile(name, kMixed);
    Opened o(name);
    ASSERT_TRUE(o.opened && o.list.Read(-1));

    std::vector<Curve> curves;
    std::vector<std::int64_t> subs;
    std::int64_t total = T(1) + T(4);
    for (const Meas& m : kMixed) {
        curves.push_back(m.curve);
        subs.push_back(subsBytes(m));
        total += T(3) + headerBytes(m.curve) + dataBytes(m.curve) + subsBytes(m);
    }
    expectZones(*o.list.GetToc(), T(1), curves, subs, T(3), "MEAS");
    EXPECT_EQ(o.file.GetFileSize(), total);
    for (long i = 0; i < 4; ++i) {
        CTrcMeasurementSection& m = *o.list.GetItem(i);
        const TocEntry& own = *o.list.GetToc()->GetItem(i);
        CTrcTableManagment& parts = *m.GetToc();
        const std::int64_t data = own.dataOffset, afterData = data + dataBytes(kMixed[i].curve);
        EXPECT_EQ(parts.GetItem(0)->type, 6);
        EXPECT_EQ(parts.GetItem(0)->sectionOffset, own.headerOffset);
        EXPECT_EQ(parts.GetItem(0)->headerSize, own.headerSize);
        EXPECT_EQ(parts.GetItem(1)->sectionOffset, data);
        EXPECT_EQ(parts.GetItem(2)->sectionOffset, afterData);
        EXPECT_EQ(m.GetData().GetX().GetSectionOffset(), data + T(2));
        EXPECT_EQ(m.GetData().GetY().GetSectionOffset(), data + T(2) + xBytes(kMixed[i].curve));
        std::vector<std::int64_t> none(kMixed[i].subs.size(), 0);
        expectZones(*m.GetMeasurements().GetToc(), afterData, kMixed[i].subs, none, T(2), "SUBMEAS");
    }

    writeFile(name, {});  // an empty list is its table alone
    EXPECT_EQ(bytesOf(name).size(), static_cast<std::size_t>(T(1) + 96));
}

TEST(TrcMeasurementHeader, BlockBytesAtTheirOffsetsAndBack) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("h.trc").string();
    const Curve curve{4, 1, 1103, 2};
    writeFile(name, {{curve, {}}});
    H h;
    fillHeader(h, 1, curve);

    std::vector<unsigned char> expected(5080, 0);
    le::put32(&expected[0], 20040309);
    for (std::size_t i = 0; i < std::size(kTextRows); ++i)
        for (int j = 0; j < kTextRows[i].size - 1; ++j) expected[kTextRows[i].offset + j] = textValue(1, i, 0)[0];
    for (const NumberRow& r : kNumberRows)
        for (int j = 0; j < r.size; ++j) expected[r.offset + j] = static_cast<unsigned char>((h.*r.get)() >> 8 * j);
    for (const IntRow& r : kIntRows) le::put32(&expected[r.offset], static_cast<std::uint32_t>((h.*r.get)()));
    for (std::size_t i = 0; i < std::size(kFloatRows); ++i) le::putF32(&expected[kFloatRows[i].offset], floatValue(1, i));
    le::putF64(&expected[kTimeOffset], 38000.5 + 1);

    const std::int64_t at = T(1) + T(1) + T(3);
    const std::vector<unsigned char> b = bytesOf(name);
    ASSERT_GT(b.size(), static_cast<std::size_t>(at + 5080 + T(1)));
    EXPECT_EQ(std::vector<unsigned char>(b.begin() + at, b.begin() + at + 5080), expected);
    EXPECT_EQ(le::i32(&b[at + 5080 + 4]), 1);        // the header's table: the parameters
    EXPECT_EQ(le::i32(&b[at + 5080 + 96 + 4]), 16);
    EXPECT_EQ(static_cast<std::int64_t>(le::u64(&b[at + 5080 + 96 + 48])), at + 5344);

    Opened o(name);
    ASSERT_TRUE(o.opened && o.list.Read(-1));
    H& back = o.list.GetItem(0)->GetHeader();
    EXPECT_TRUE(back.GetBlock() == h.GetBlock());
    ASSERT_EQ(back.GetParameters().GetCount(), 2);
    EXPECT_STREQ(back.GetParameters().GetItem(1)->GetName(), "p11");

    h.SetResponseChannel(70000);  // kept in 16 bits
    h.SetSize(-1);
    h.SetName(nullptr);
    EXPECT_EQ(h.GetResponseChannel(), 4464);
    EXPECT_EQ(h.GetSize(), 4);
    EXPECT_EQ(h.GetName(), textValue(1, 0, 49).substr(0, 49));
}

TEST(TrcMeasurements, HeadersAndValuesReadBackByPosition) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("v.trc").string();
    writeFile(name, kMixed);
    Opened o(name);
    ASSERT_TRUE(o.opened && o.list.Read(-1));
    ASSERT_EQ(o.list.GetCount(), 4);
    EXPECT_TRUE(o.list.IsRead());

    auto expectCurve = [](CTrcMeasurementBase& item, int seed, const Curve& c) {
        H h;
        fillHeader(h, seed, c);
        EXPECT_TRUE(item.GetHeader().GetBlock() == h.GetBlock()) << seed;
        CTrcMeasurementDataSection& d = item.GetData();
        std::vector<float> v(c.size + 1);
        for (long from : {0L, c.size / 3}) {  // every value, in two pieces from each start
            const long n = c.size - from;
            if (n == 0) continue;
            if (xBytes(c)) EXPECT_TRUE(d.GetX().Read(from, v.data(), n));
            else EXPECT_FALSE(d.GetX().Read(0, v.data(), 1)) << seed;  // no X table: nothing to read
            for (long i = 0; xBytes(c) && i < n; ++i) EXPECT_EQ(v[i], valueAt(seed, 0, from + i));
            ASSERT_TRUE(d.GetY().ReadReal(from, v.data(), n)) << seed;
            for (long i = 0; i < n; ++i) EXPECT_EQ(v[i], valueAt(seed, 1, from + i));
            if (!c.complex) continue;
            ASSERT_TRUE(d.GetY().ReadImag(from, v.data(), n));
            for (long i = 0; i < n; ++i) EXPECT_EQ(v[i], valueAt(seed, 2, from + i));
        }
    };
    for (long m = 0; m < 4; ++m) {
        CTrcMeasurementSection& item = *o.list.GetItem(m);
        expectCurve(item, static_cast<int>(m) + 1, kMixed[m].curve);
        ASSERT_EQ(item.GetMeasurements().GetCount(), static_cast<long>(kMixed[m].subs.size()));
        for (std::size_t s = 0; s < kMixed[m].subs.size(); ++s)
            expectCurve(*item.GetMeasurements().GetItem(static_cast<long>(s)), subSeed(static_cast<int>(m), s),
                        kMixed[m].subs[s]);
    }

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
}

TEST(TrcMeasurements, BulkAccessRules) {
    nvdl::test::TempDir dir;
    const std::string name = dir.file("r.trc").string();
    writeFile(name, kMixed);
    Opened o(name);
    ASSERT_TRUE(o.opened && o.list.Read(-1));
    CTrcMeasurementDataSection& d = o.list.GetItem(0)->GetData();  // complex, Size 1000, X stored
    enum Op { X, Real, Imag, WriteReal };
    struct Case {
        Op op;
        std::int64_t position, count;
        bool ok;
    } cases[] = {{Real, 0, 1000, true}, {Real, 1, 1000, false},  {Real, 0, 0, false},     {Real, -1, 1, false},
                 {Real, 0, 1001, false}, {Imag, 999, 1, true},   {Imag, 999, 2, false},   {X, 0, 1000, true},
                 {X, 500, 501, false},   {X, 999, 1, true},      {WriteReal, 0, 1, false} /* read-only file */};
    std::vector<float> v(1001);
    for (const Case& c : cases) {
        const int done = c.op == X      ? d.GetX().Read(c.position, v.data(), c.count)
                         : c.op == Real ? d.GetY().ReadReal(c.position, v.data(), c.count)
                         : c.op == Imag ? d.GetY().ReadImag(c.position, v.data(), c.count)
                                        : d.GetY().WriteReal(c.position, v.data(), c.count);
        EXPECT_EQ(done != 0, c.ok) << c.op << " " << c.position << " " << c.count;
        if (c.ok) {
            EXPECT_EQ(v[0], valueAt(1, c.op == X ? 0 : c.op == Real ? 1 : 2, c.position));
        }
    }
    EXPECT_FALSE(d.GetY().ReadReal(0, nullptr, 1));
    EXPECT_EQ(d.GetY().GetSectionSize(), 8000);
}
