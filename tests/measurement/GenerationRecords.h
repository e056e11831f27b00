// Stored measurement records of every generation, built byte by byte from their layouts, for the
// tests that read them alone and inside workspace files.
#pragma once

#include "PersistenceTestSupport.h"

namespace nvdl::test {

inline const std::vector<float> kRe{1.0f, 2.0f, -3.0f, 4.5f}, kIm{-0.5f, 0.0f, 7.0f, 1.25f}, kX{1.0f, 2.0f, 4.0f, 8.0f};

inline ByteRecord generation1(LONG functionCode, LONG size, bool complex) {
    ByteRecord r(172);
    r.i32(0, functionCode);
    r.i16(8, 2);
    r.text(10, 54, "accelerometer on the left bearing, 52 characters ..");
    r.i16(64, 5);
    r.text(66, 50, "hammer");
    r.i32(116, 1);  // logarithmic
    r.f32(120, 10.0f);
    r.f32(124, 2.0f);
    r.i32(128, dimensionIndexOf("Hz"));
    r.i32(132, size);
    r.i32(136, complex ? 1 : 0);
    r.i32(140, dimensionIndexOf("V"));
    r.i32(144, 2);
    r.f32(148, 0.5f);
    r.i16(152, 16);
    r.f32(156, 0.25f);
    r.i32(160, 7);
    r.f32(164, 3.0f);
    r.i32(168, 2 * 86400 + 43200);
    return r;
}

struct OldRow {
    int generation;
    const IID* iid;
    std::size_t blockSize;
    bool strings, parameters, xVector;
};

inline const OldRow kOldRows[] = {
    {2, &IID_IMeasurementPersistGeneration2, 512, false, false, false},
    {3, &IID_IMeasurementPersistGeneration3, 816, true, false, false},
    {4, &IID_IMeasurementPersistGeneration4, 816, true, true, false},
    {5, &IID_IMeasurementPersistGeneration5, 816, true, true, true},
};

inline ByteRecord oldGeneration(const OldRow& g) {
    ByteRecord r(g.blockSize);
    r.text(0, 50, "Autopower of run 2");
    r.text(50, 50, "Autopower");
    r.i16(104, 4);
    r.text(106, 50, "mic");
    r.i16(156, 1);
    r.text(158, 50, "ref");
    r.text(208, 50, "Octaves");
    r.f32(260, 31.5f);
    r.f32(264, 2.0f);
    r.i32(268, dimensionIndexOf("Hz"));
    r.text(272, 50, "Hz");
    r.i32(324, static_cast<std::int32_t>(kRe.size()));
    r.i32(328, 1);
    r.i32(332, dimensionIndexOf("Pa"));
    r.text(336, 50, "Pa");
    r.text(386, 50, "Linear");
    r.f32(436, 8.0f);
    r.i16(440, 30);
    r.f32(444, 0.5f);
    r.text(448, 50, "Flattop");
    r.f32(500, 1.5f);
    r.f64(504, 36000.25);
    if (g.strings) {
        r.text(512, 50, "T-9");
        r.text(562, 50, "peak");
        r.text(612, 50, "C");
        r.text(662, 50, "chamber");
        r.text(712, 100, "operator 12");
    }
    if (g.parameters) r.i32(812, 2);
    r.appendFloats(kRe);
    r.appendFloats(kIm);
    if (g.xVector) r.appendFloats(kX);
    if (g.parameters) {
        for (auto [name, value] : {std::pair{"Gain", "6"}, std::pair{"Mount", "stud"}}) {
            const std::size_t at = r.bytes.size();
            r.appendBlock(200);
            r.text(at, 100, name);
            r.text(at + 100, 100, value);
        }
    }
    return r;
}

inline ByteRecord tagged(LONG tag, std::size_t blockSize, LONG size = 4, LONG complex = -1) {
    ByteRecord r(blockSize);
    r.i32(0, tag);
    r.text(4, 50, "Crosspower mic/ref");
    r.text(54, 50, "Crosspower");
    r.i16(108, 2);
    r.text(110, 50, "mic");
    r.i16(160, 1);
    r.text(162, 50, "ref");
    r.text(212, 50, "Categories");
    r.f32(264, 0.0f);
    r.f32(268, 1.0f);
    r.i32(272, dimensionIndexOf("s"));
    r.text(276, 50, "ms");
    r.i32(328, size);
    r.i32(332, complex);
    r.i32(336, dimensionIndexOf("Pa"));
    r.text(340, 50, "Pa");
    r.text(390, 50, "Peak hold");
    r.f32(440, 3.0f);
    r.i16(444, 5);
    r.f32(448, 0.125f);
    r.text(452, 50, "Kaiser-Bessel");
    r.f32(504, 4.0f);
    r.f64(512, 37000.5);
    r.text(520, 50, "T-3");
    r.text(570, 50, "avg");
    r.text(620, 50, "B");
    r.text(670, 50, "field");
    r.text(720, 100, "user 4");
    r.f32(824, 1.5f);
    r.f32(828, 1200.0f);
    r.f32(832, -2.0f);
    r.i32(836, dimensionIndexOf("m"));
    r.f32(844, 0.75f);  // padding in the record of 19990222
    if (blockSize >= 856) r.i32(848, 3);
    if (blockSize >= 920) {
        r.i32(852, 2);
        r.i32(856, 6);
    }
    return r;
}

// The record of 20021112 or later with the blocks its tag brings: paging and location from
// 20030819, revision and workspace from 20071012.
inline ByteRecord generation8(LONG tag, LONG complex = -1) {
    ByteRecord r = tagged(tag, 920, 4, complex);
    if (tag >= 20030819) {
        r.appendBlock(656);
        r.i32(920, tag);
        r.i32(920 + 4, 77);
        r.f32(920 + 12, 2.5f);
        r.i32(920 + 16, 0);
        r.text(920 + 32, 100, "File 3");
        r.text(920 + 532, 100, "Meas4");
        r.i16(920 + 632, -1);
        r.i32(920 + 636, 4);
    }
    if (tag >= 20071012) {
        r.appendBlock(116);
        r.i32(1576, tag);
        r.text(1576 + 4, 10, "5.1.2");
        r.text(1576 + 14, 100, "Bench tests");
    }
    return r;
}

// Vectors of 4 samples (real, imaginary or the room for it, X), then "name\0value\0" pairs, with
// their counts in block 1.
inline ByteRecord& appendDataAndPairs(ByteRecord& r, const std::vector<std::pair<std::string, std::string>>& pairs = {}) {
    r.appendFloats(kRe);
    r.appendFloats(kIm);
    r.appendFloats(kX);
    LONG length = 0;
    for (const auto& [name, value] : pairs) {
        r.append(name);
        r.append(value);
        length += static_cast<LONG>(2 + name.size() + value.size());
    }
    r.i32(820, length);
    r.i32(840, static_cast<std::int32_t>(pairs.size()));
    return r;
}

}  // namespace nvdl::test
