// Building, writing and checking lists of stored measurements for the tests. Sizes and offsets
// here are computed from the file's layout rules, not taken from the sections under test.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "../platform/TempDir.h"
#include "recording/TrcFile.h"
#include "recording/TrcMeasurements.h"

namespace nvdl::test::trcmeas {

using namespace nvdl::trc;
using H = CTrcMeasurementHeaderSection;

constexpr std::int64_t T(std::int64_t n) { return 96 + 168 * n; }

struct Curve { long size; int complex; long axis; int params; };
struct Meas { Curve curve; std::vector<Curve> subs; };

inline std::int64_t headerBytes(const Curve& c) { return 5080 + T(1) + T(c.params) + 460 * c.params; }
inline std::int64_t xBytes(const Curve& c) { return c.axis >= 1102 && c.axis <= 1104 ? 4 * c.size : 0; }
inline std::int64_t dataBytes(const Curve& c) { return T(2) + xBytes(c) + 4 * c.size * (c.complex ? 2 : 1); }
inline std::int64_t subsBytes(const Meas& m) {
    std::int64_t size = T(static_cast<std::int64_t>(m.subs.size()));
    for (const Curve& c : m.subs) size += T(2) + headerBytes(c) + dataBytes(c);
    return size;
}

// Every field of the header block: its offset, its size (for texts and 16-bit integers), its accessors.
template <class V, class G = V>
struct Row { int offset, size; void (H::*set)(V); G (H::*get)() const; };
#define NVDL_ROW(offset, size, name) {offset, size, &H::Set##name, &H::Get##name}
inline const Row<const char*> kTextRows[] = {
    NVDL_ROW(4, 50, Name), NVDL_ROW(66, 50, Response), NVDL_ROW(118, 50, Reference), NVDL_ROW(184, 50, XDimension),
    NVDL_ROW(248, 50, YDimension), NVDL_ROW(336, 50, TestId), NVDL_ROW(386, 50, FunctionQualifier),
    NVDL_ROW(436, 50, AcousticWeighting), NVDL_ROW(486, 50, Environment), NVDL_ROW(536, 100, UserId),
    NVDL_ROW(672, 50, StorageUnitX), NVDL_ROW(722, 50, StorageUnitY), NVDL_ROW(2904, 50, ClsidLoader),
    NVDL_ROW(2954, 50, ChannelFileID), NVDL_ROW(3024, 50, ZDimension), NVDL_ROW(3080, 10, SoftwareRevision)};
inline const Row<long> kNumberRows[] = {
    NVDL_ROW(56, 4, FunctionType), NVDL_ROW(64, 2, ResponseChannel), NVDL_ROW(116, 2, ReferenceChannel),
    NVDL_ROW(168, 4, XAxisType), NVDL_ROW(236, 4, Size), NVDL_ROW(300, 4, AveragingType), NVDL_ROW(308, 4, Averages),
    NVDL_ROW(316, 4, WindowType), NVDL_ROW(664, 4, Power), NVDL_ROW(668, 4, Overload), NVDL_ROW(3020, 4, FileSamples),
    NVDL_ROW(3076, 4, Usage)};
inline const Row<int> kIntRows[] = {NVDL_ROW(240, 4, Complex), NVDL_ROW(3004, 4, IsUncompleted),
                                    NVDL_ROW(3008, 4, IsUsefullData), NVDL_ROW(3016, 4, CheckOnUnicId)};
inline const Row<float> kFloatRows[] = {
    NVDL_ROW(172, 4, XStart), NVDL_ROW(176, 4, XIncrement), NVDL_ROW(304, 4, AveragingParameter),
    NVDL_ROW(312, 4, Overlap), NVDL_ROW(320, 4, WindowParameter), NVDL_ROW(640, 4, Order), NVDL_ROW(644, 4, RPM),
    NVDL_ROW(648, 4, Z), NVDL_ROW(660, 4, BandwidthCorrectionFactor), NVDL_ROW(3012, 4, CompressionFactor)};
#undef NVDL_ROW

// Sets every field of the header to a value of its own (texts longer than their fields), then the
// curve's shape.
inline void fillHeader(H& h, int seed, const Curve& c) {
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
inline float valueAt(int seed, int part, std::int64_t i) { return static_cast<float>(seed * 100000 + part * 10000 + i); }
inline bool stored(const Curve& c, int part) { return part == 1 || (part == 0 && xBytes(c)) || (part == 2 && c.complex); }
inline int move(CTrcMeasurementDataSection& d, int part, bool write, std::int64_t at, float* v, std::int64_t n) {
    if (write) return part == 0 ? d.GetX().Write(at, v, n) : part == 1 ? d.GetY().WriteReal(at, v, n) : d.GetY().WriteImag(at, v, n);
    return part == 0 ? d.GetX().Read(at, v, n) : part == 1 ? d.GetY().ReadReal(at, v, n) : d.GetY().ReadImag(at, v, n);
}

// Calls `f(item, seed, curve)` for every measurement and sub-measurement of a list built from `specs`.
template <class F>
void forEachCurve(CTrcMeasurementsSection& list, const std::vector<Meas>& specs, F f) {
    for (std::size_t m = 0; m < specs.size(); ++m) {
        CTrcMeasurementSection& meas = *list.GetItem(static_cast<long>(m));
        f(static_cast<CTrcMeasurementBase&>(meas), static_cast<int>(10 * (m + 1)), specs[m].curve);
        for (std::size_t s = 0; s < specs[m].subs.size(); ++s)
            f(static_cast<CTrcMeasurementBase&>(*meas.GetMeasurements().GetItem(static_cast<long>(s))),
              static_cast<int>(10 * (m + 1) + s + 1), specs[m].subs[s]);
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
inline void writeFile(const std::string& name, const std::vector<Meas>& specs) {
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Root root;
    CTrcMeasurementsSection list;
    root.list = &list;
    list.Init(&file, &root);
    for (const Meas& m : specs) {
        auto meas = std::make_unique<CTrcMeasurementSection>();
        for (std::size_t s = 0; s < m.subs.size(); ++s) meas->GetMeasurements().Add(std::make_unique<CTrcSubMeasurementSection>());
        list.Add(std::move(meas));
    }
    forEachCurve(list, specs, [](CTrcMeasurementBase& item, int seed, const Curve& c) { fillHeader(item.GetHeader(), seed, c); });
    list.SetSectionOffset(T(1));
    ASSERT_TRUE(list.UpdateTocSections() && root.toc.Add(list));
    ASSERT_TRUE(file.Seek(0, 0) && root.toc.Write(&file, &root) && list.Write());
    forEachCurve(list, specs, [](CTrcMeasurementBase& item, int seed, const Curve& c) {
        std::vector<float> v(c.size);
        for (int part = 0; part < 3; ++part) {
            for (long i = 0; i < c.size; ++i) v[i] = valueAt(seed, part, i);
            for (auto [from, n] : {std::pair{0L, c.size / 2}, std::pair{c.size / 2, c.size - c.size / 2}}) {
                if (stored(c, part) && n) {
                    EXPECT_TRUE(move(item.GetData(), part, true, from, &v[from], n)) << seed;
                }
            }
        }
    });
}

// A file opened read only with its root table read, ready for the list's Read.
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

inline std::vector<unsigned char> bytesOf(const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
inline void saveBytes(const std::string& name, const std::vector<unsigned char>& b) {
    std::ofstream(name, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(b.data()), b.size());
}

struct Fixture : ::testing::Test {
    TempDir dir;
    const std::string name = dir.file("m.trc").string();
};

}  // namespace nvdl::test::trcmeas

using TrcMeasurements = nvdl::test::trcmeas::Fixture;
