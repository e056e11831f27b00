// Building, writing and checking lists of stored measurements for the tests. Sizes and offsets
// here are computed from the file's layout rules, not taken from the sections under test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "recording/TrcFile.h"
#include "recording/TrcMeasurements.h"

namespace nvdl::test::trcmeas {

using namespace nvdl::trc;
using H = CTrcMeasurementHeaderSection;

constexpr std::int64_t T(std::int64_t n) { return 96 + 168 * n; }

struct Curve {
    long size;
    int complex;
    long axis;
    int params;
};
struct Meas {
    Curve curve;
    std::vector<Curve> subs;
};

inline std::int64_t headerBytes(const Curve& c) { return 5080 + T(1) + T(c.params) + 460 * c.params; }
inline std::int64_t xBytes(const Curve& c) { return c.axis >= 1102 && c.axis <= 1104 ? 4 * c.size : 0; }
inline std::int64_t dataBytes(const Curve& c) { return T(2) + xBytes(c) + 4 * c.size * (c.complex ? 2 : 1); }
inline std::int64_t subsBytes(const Meas& m) {
    std::int64_t size = T(static_cast<std::int64_t>(m.subs.size()));
    for (const Curve& c : m.subs) size += T(2) + headerBytes(c) + dataBytes(c);
    return size;
}

// Every field of the header block: its offset and its accessors.
struct TextRow { int offset, size; void (H::*set)(const char*); };
struct NumberRow { int offset, size; void (H::*set)(long); long (H::*get)() const; };  // 2- and 4-byte integers
struct IntRow { int offset; void (H::*set)(int); int (H::*get)() const; };
struct FloatRow { int offset; void (H::*set)(float); };
inline const TextRow kTextRows[] = {
    {4, 50, &H::SetName}, {66, 50, &H::SetResponse}, {118, 50, &H::SetReference}, {184, 50, &H::SetXDimension},
    {248, 50, &H::SetYDimension}, {336, 50, &H::SetTestId}, {386, 50, &H::SetFunctionQualifier},
    {436, 50, &H::SetAcousticWeighting}, {486, 50, &H::SetEnvironment}, {536, 100, &H::SetUserId},
    {672, 50, &H::SetStorageUnitX}, {722, 50, &H::SetStorageUnitY}, {2904, 50, &H::SetClsidLoader},
    {2954, 50, &H::SetChannelFileID}, {3024, 50, &H::SetZDimension}, {3080, 10, &H::SetSoftwareRevision}};
inline const NumberRow kNumberRows[] = {
    {56, 4, &H::SetFunctionType, &H::GetFunctionType}, {64, 2, &H::SetResponseChannel, &H::GetResponseChannel},
    {116, 2, &H::SetReferenceChannel, &H::GetReferenceChannel}, {168, 4, &H::SetXAxisType, &H::GetXAxisType},
    {236, 4, &H::SetSize, &H::GetSize}, {300, 4, &H::SetAveragingType, &H::GetAveragingType},
    {308, 4, &H::SetAverages, &H::GetAverages}, {316, 4, &H::SetWindowType, &H::GetWindowType},
    {664, 4, &H::SetPower, &H::GetPower}, {668, 4, &H::SetOverload, &H::GetOverload},
    {3020, 4, &H::SetFileSamples, &H::GetFileSamples}, {3076, 4, &H::SetUsage, &H::GetUsage}};
inline const IntRow kIntRows[] = {{240, &H::SetComplex, &H::GetComplex},
                                  {3004, &H::SetIsUncompleted, &H::GetIsUncompleted},
                                  {3008, &H::SetIsUsefullData, &H::GetIsUsefullData},
                                  {3016, &H::SetCheckOnUnicId, &H::GetCheckOnUnicId}};
inline const FloatRow kFloatRows[] = {
    {172, &H::SetXStart}, {176, &H::SetXIncrement}, {304, &H::SetAveragingParameter}, {312, &H::SetOverlap},
    {320, &H::SetWindowParameter}, {640, &H::SetOrder}, {644, &H::SetRPM}, {648, &H::SetZ},
    {660, &H::SetBandwidthCorrectionFactor}, {3012, &H::SetCompressionFactor}};
constexpr int kTimeOffset = 328;

inline float floatValue(int seed, std::size_t row) { return static_cast<float>(seed) + 0.25f * (row + 1); }
inline std::string textValue(int seed, std::size_t row, int size) {
    return std::string(size + 3, static_cast<char>('A' + (seed + row) % 26));  // longer than the field
}

// Sets every field of the header to a value of its own, then the curve's shape.
inline void fillHeader(H& h, int seed, const Curve& c) {
    std::size_t i = 0;
    for (const TextRow& r : kTextRows) (h.*r.set)(textValue(seed, i++, r.size).c_str());
    i = 0;
    for (const NumberRow& r : kNumberRows) (h.*r.set)(seed * 100 + static_cast<long>(i++));
    i = 0;
    for (const IntRow& r : kIntRows) (h.*r.set)(seed + static_cast<int>(i++));
    i = 0;
    for (const FloatRow& r : kFloatRows) (h.*r.set)(floatValue(seed, i++));
    h.SetMeasurementTime(38000.5 + seed);
    h.SetSize(c.size);
    h.SetComplex(c.complex);
    h.SetXAxisType(c.axis);
    for (int p = 0; p < c.params; ++p) {
        auto parameter = std::make_unique<CTrcParameterSection>();
        parameter->SetName(("p" + std::to_string(seed * 10 + p)).c_str());
        h.GetParameters().Add(std::move(parameter));
    }
}

// The value at `i` of part `part` (0 X, 1 real, 2 imaginary) of the curve with `seed`.
inline float valueAt(int seed, int part, std::int64_t i) { return static_cast<float>(seed * 100000 + part * 10000 + i); }

// Writes the curve's values in two pieces, so that positions other than 0 are used.
inline void fillCurve(CTrcMeasurementDataSection& data, int seed, const Curve& c) {
    for (int part = 0; part < 3; ++part) {
        if ((part == 0 && !xBytes(c)) || (part == 2 && !c.complex)) continue;
        std::vector<float> v(c.size);
        for (long i = 0; i < c.size; ++i) v[i] = valueAt(seed, part, i);
        const long half = c.size / 2;
        for (auto [from, n] : {std::pair{0L, half}, std::pair{half, c.size - half}}) {
            if (n == 0) continue;
            const int done = part == 0   ? data.GetX().Write(from, &v[from], n)
                             : part == 1 ? data.GetY().WriteReal(from, &v[from], n)
                                         : data.GetY().WriteImag(from, &v[from], n);
            EXPECT_TRUE(done) << seed << " part " << part << " at " << from;
        }
    }
}

inline int subSeed(int m, std::size_t s) { return 10 * (m + 1) + static_cast<int>(s) + 1; }

// The root of a file stand-in: a table with the list's entry at 0, the list right behind it.
class Root final : public CTrcBaseSection {
public:
    std::int64_t GetSectionSize() override { return T(1) + (list ? list->GetSectionSize() : 0); }
    CTrcTableManagment* GetToc() override { return &toc; }
    CTrcTableManagment toc;
    CTrcMeasurementsSection* list = nullptr;
};

// Writes a file with one measurements list of these measurements, values included.
inline void writeFile(const std::string& name, const std::vector<Meas>& specs) {
    CTrcFile file;
    ASSERT_TRUE(file.Create(name.c_str(), 0));
    Root root;
    CTrcMeasurementsSection list;
    root.list = &list;
    list.Init(&file, &root);
    for (std::size_t m = 0; m < specs.size(); ++m) {
        auto meas = std::make_unique<CTrcMeasurementSection>();
        fillHeader(meas->GetHeader(), static_cast<int>(m) + 1, specs[m].curve);
        for (std::size_t s = 0; s < specs[m].subs.size(); ++s) {
            auto sub = std::make_unique<CTrcSubMeasurementSection>();
            fillHeader(sub->GetHeader(), subSeed(static_cast<int>(m), s), specs[m].subs[s]);
            meas->GetMeasurements().Add(std::move(sub));
        }
        ASSERT_TRUE(list.Add(std::move(meas)));
    }
    list.SetSectionOffset(T(1));
    ASSERT_TRUE(list.UpdateTocSections());
    ASSERT_TRUE(root.toc.Add(list));
    ASSERT_TRUE(file.Seek(0, 0) && root.toc.Write(&file, &root));
    ASSERT_TRUE(list.Write());
    for (std::size_t m = 0; m < specs.size(); ++m) {
        CTrcMeasurementSection& meas = *list.GetItem(static_cast<long>(m));
        fillCurve(meas.GetData(), static_cast<int>(m) + 1, specs[m].curve);
        for (std::size_t s = 0; s < specs[m].subs.size(); ++s)
            fillCurve(meas.GetMeasurements().GetItem(static_cast<long>(s))->GetData(), subSeed(static_cast<int>(m), s),
                      specs[m].subs[s]);
    }
}

// A file opened read only with its root table read, ready for the list's Read.
struct Opened {
    CTrcFile file;
    Root root;
    CTrcMeasurementsSection list;
    int opened = 0;
    explicit Opened(const std::string& name) {
        opened = file.Open(name.c_str()) && root.toc.Read(&file);
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

}  // namespace nvdl::test::trcmeas
