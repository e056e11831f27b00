// Stored measurement records of every generation, built byte by byte from their layouts and read by
// the helper of their generation; the checks of the reader of 20021112 and later.
#include <climits>

#include "PersistenceTestSupport.h"

namespace nvdl::test {
namespace {

using I = IMeasurement;

const std::vector<float> kRe{1.0f, 2.0f, -3.0f, 4.5f}, kIm{-0.5f, 0.0f, 7.0f, 1.25f}, kX{1.0f, 2.0f, 4.0f, 8.0f};

// --- Generation 1 ---

ByteRecord generation1(LONG functionCode, LONG size, bool complex) {
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

TEST(MeasurementGenerations, Generation1ReadsNumbersAndInterleavedSamples) {
    ByteRecord r = generation1(5, 3, true);
    r.appendFloats({1.0f, -1.0f, 2.0f, -2.0f, 3.0f, -3.0f});
    IMeasurement* m = nullptr;
    ASSERT_EQ(loadBytes(r.bytes, IID_IMeasurementPersistGeneration1, &m), S_OK);
    EXPECT_EQ(code(m, &I::get_FunctionType), 1004);
    EXPECT_EQ(text(m, &I::get_Response), "accelerometer on the left bearing, 52 characters ..");
    EXPECT_EQ(value(m, &I::get_ResponseChannel), 2);
    EXPECT_EQ(text(m, &I::get_Reference), "hammer");
    EXPECT_EQ(value(m, &I::get_ReferenceChannel), 5);
    EXPECT_EQ(code(m, &I::get_XAxisType), 1101);
    EXPECT_EQ(value(m, &I::get_XStart), 10.0f);
    EXPECT_EQ(value(m, &I::get_XIncrement), 2.0f);
    EXPECT_EQ(text(m, &I::get_XDimension), "Frequency");
    EXPECT_EQ(text(m, &I::get_YDimension), "Voltage");
    EXPECT_EQ(code(m, &I::get_AveragingType), 1202);
    EXPECT_EQ(value(m, &I::get_AveragingParameter), 0.5f);
    EXPECT_EQ(value(m, &I::get_Averages), 16);
    EXPECT_EQ(value(m, &I::get_Overlap), 0.25f);
    EXPECT_EQ(code(m, &I::get_WindowType), 1307);
    EXPECT_EQ(value(m, &I::get_WindowParameter), 3.0f);
    EXPECT_DOUBLE_EQ(value(m, &I::get_MeasurementTime), 25569.0 + 2.5);
    EXPECT_EQ(value(m, &I::get_Complex), -1);
    EXPECT_EQ(value(m, &I::get_Size), 3);
    EXPECT_EQ(value(m, &I::get_FileSamples), 3);
    EXPECT_EQ(floats(m, &I::get_YRealArray), (std::vector<float>{1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(floats(m, &I::get_YImagArray), (std::vector<float>{-1.0f, -2.0f, -3.0f}));
    m->Release();
}

TEST(MeasurementGenerations, Generation1MapsItsCodes) {
    struct Row {
        LONG stored, function, axis, averaging, window;
    };
    // Function, axis, averaging and window codes in the same record.
    for (Row row : std::initializer_list<Row>{{1, 1001, 1100, 1200, 1300},
                                              {2, 1001, 1104, 1204, 1308},
                                              {3, 1002, 1100, 1200, 1300},
                                              {25, 1024, 1100, 1200, 1300},
                                              {26, 26, 1100, 1200, 1300},
                                              {27, 1026, 1100, 1200, 1300},
                                              {29, 1028, 1100, 1200, 1300},
                                              {30, 1000, 1100, 1200, 1300},
                                              {31, 1030, 1100, 1200, 1300},
                                              {36, 1035, 1100, 1200, 1300},
                                              {37, 37, 1100, 1200, 1300},
                                              {38, 1000, 1100, 1200, 1300},
                                              {-1, 1000, 1100, 1200, 1300}}) {
        ByteRecord r = generation1(row.stored, 0, false);
        const bool highest = row.stored == 2;
        r.i32(116, highest ? 4 : (row.stored == 3 ? 5 : -1));
        r.i32(144, highest ? 4 : 5);
        r.i32(160, highest ? 8 : 9);
        IMeasurement* m = nullptr;
        ASSERT_EQ(loadBytes(r.bytes, IID_IMeasurementPersistGeneration1, &m), S_OK) << row.stored;
        EXPECT_EQ(code(m, &I::get_FunctionType), row.function) << row.stored;
        EXPECT_EQ(code(m, &I::get_XAxisType), row.axis) << row.stored;
        EXPECT_EQ(code(m, &I::get_AveragingType), row.averaging) << row.stored;
        EXPECT_EQ(code(m, &I::get_WindowType), row.window) << row.stored;
        EXPECT_EQ(value(m, &I::get_Size), 0);
        m->Release();
    }
}

// --- Generations 2 to 5 ---

struct OldRow {
    int generation;
    const IID* iid;
    std::size_t blockSize;
    bool strings, parameters, xVector;
};

const OldRow kOldRows[] = {
    {2, &IID_IMeasurementPersistGeneration2, 512, false, false, false},
    {3, &IID_IMeasurementPersistGeneration3, 816, true, false, false},
    {4, &IID_IMeasurementPersistGeneration4, 816, true, true, false},
    {5, &IID_IMeasurementPersistGeneration5, 816, true, true, true},
};

ByteRecord oldGeneration(const OldRow& g) {
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

TEST(MeasurementGenerations, Generations2To5ReadTheirBlockVectorsAndParameters) {
    for (const OldRow& g : kOldRows) {
        SCOPED_TRACE(g.generation);
        IMeasurement* m = nullptr;
        ASSERT_EQ(loadBytes(oldGeneration(g).bytes, *g.iid, &m), S_OK);
        EXPECT_EQ(text(m, &I::get_Name), "Autopower of run 2");
        EXPECT_EQ(code(m, &I::get_FunctionType), 1003);
        EXPECT_EQ(value(m, &I::get_ResponseChannel), 4);
        EXPECT_EQ(text(m, &I::get_Reference), "ref");
        EXPECT_EQ(code(m, &I::get_XAxisType), 1103);
        EXPECT_EQ(value(m, &I::get_XStart), 31.5f);
        EXPECT_EQ(text(m, &I::get_XDimension), "Frequency");
        EXPECT_EQ(text(m, &I::get_StorageUnitX), "Hz");
        EXPECT_EQ(text(m, &I::get_YDimension), "Pressure");
        EXPECT_EQ(text(m, &I::get_StorageUnitY), "Pa");
        EXPECT_EQ(code(m, &I::get_AveragingType), 1201);
        EXPECT_EQ(value(m, &I::get_Averages), 30);
        EXPECT_EQ(code(m, &I::get_WindowType), 1304);
        EXPECT_EQ(value(m, &I::get_WindowParameter), 1.5f);
        EXPECT_DOUBLE_EQ(value(m, &I::get_MeasurementTime), 36000.25);
        EXPECT_EQ(text(m, &I::get_TestId), g.strings ? "T-9" : "");
        EXPECT_EQ(text(m, &I::get_AcousticWeighting), g.strings ? "C" : "Off");
        EXPECT_EQ(text(m, &I::get_UserId), g.strings ? "operator 12" : "");
        EXPECT_EQ(floats(m, &I::get_YRealArray), kRe);
        EXPECT_EQ(floats(m, &I::get_YImagArray), kIm);
        EXPECT_EQ(floats(m, &I::get_XArray), g.xVector ? kX : std::vector<float>(kX.size(), 0.0f));
        EXPECT_EQ(value(m, &I::get_FileSamples), 4);
        const std::vector<std::string> expected =
            g.parameters ? std::vector<std::string>{"Gain=6", "Mount=stud"} : std::vector<std::string>{};
        EXPECT_EQ(parameters(m), expected);
        m->Release();
    }
}

// --- Generations 6 to 8: the block of today from the leading tag on ---

ByteRecord tagged(LONG tag, std::size_t blockSize, LONG size = 4, LONG complex = -1) {
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

// Vectors of 4 samples, then "name\0value\0" pairs, with the counts in block 1.
void appendDataAndPairs(ByteRecord& r, bool imaginary, const std::vector<std::pair<std::string, std::string>>& pairs) {
    r.appendFloats(kRe);
    if (imaginary) r.appendFloats(kIm);
    r.appendFloats(kX);
    LONG length = 0;
    for (const auto& [name, value] : pairs) {
        r.append(name);
        r.append(value);
        length += static_cast<LONG>(2 + name.size() + value.size());
    }
    r.i32(820, length);
    r.i32(840, static_cast<std::int32_t>(pairs.size()));
}

void expectTaggedHeader(IMeasurement* m) {
    EXPECT_EQ(text(m, &I::get_Name), "Crosspower mic/ref");
    EXPECT_EQ(code(m, &I::get_FunctionType), 1004);
    EXPECT_EQ(text(m, &I::get_Response), "mic");
    EXPECT_EQ(value(m, &I::get_ReferenceChannel), 1);
    EXPECT_EQ(code(m, &I::get_XAxisType), 1102);
    EXPECT_EQ(text(m, &I::get_XDimension), "Time");
    EXPECT_EQ(text(m, &I::get_StorageUnitX), "ms");
    EXPECT_EQ(text(m, &I::get_YDimension), "Pressure");
    EXPECT_EQ(code(m, &I::get_AveragingType), 1207);
    EXPECT_EQ(value(m, &I::get_Averages), 5);
    EXPECT_EQ(code(m, &I::get_WindowType), 1308);
    EXPECT_DOUBLE_EQ(value(m, &I::get_MeasurementTime), 37000.5);
    EXPECT_EQ(text(m, &I::get_FunctionQualifier), "avg");
    EXPECT_EQ(text(m, &I::get_UserId), "user 4");
    EXPECT_EQ(value(m, &I::get_Order), 1.5f);
    EXPECT_EQ(value(m, &I::get_RPM), 1200.0f);
    EXPECT_EQ(value(m, &I::get_Z), -2.0f);
    EXPECT_EQ(text(m, &I::get_ZDimension), "Length");
    EXPECT_EQ(floats(m, &I::get_YRealArray), kRe);
    EXPECT_EQ(floats(m, &I::get_XArray), kX);
}

TEST(MeasurementGenerations, Generations6And7ReadTheTaggedBlockAndTextPairs) {
    struct Row {
        LONG tag;
        const IID* iid;
        std::size_t blockSize;
        float bandwidthCorrection;
        LONG power;
    };
    for (Row g : {Row{19990222, &IID_IMeasurementPersistGeneration6, 848, 1.0f, 1},
                  Row{19991006, &IID_IMeasurementPersistGeneration7, 856, 0.75f, 3}}) {
        SCOPED_TRACE(g.tag);
        ByteRecord r = tagged(g.tag, g.blockSize);
        appendDataAndPairs(r, true, {{"Gain", "6"}, {"Mount", "magnet"}});
        IMeasurement* m = nullptr;
        ASSERT_EQ(loadBytes(r.bytes, *g.iid, &m), S_OK);
        expectTaggedHeader(m);
        EXPECT_EQ(floats(m, &I::get_YImagArray), kIm);
        EXPECT_EQ(value(m, &I::get_BandwidthCorrectionFactor), g.bandwidthCorrection);
        EXPECT_EQ(value(m, &I::get_Power), g.power);
        EXPECT_EQ(value(m, &I::get_Overload), 0);
        EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6", "Mount=magnet"}));
        m->Release();
    }
}

TEST(MeasurementGenerations, Generation8ReadsEachOfItsTags) {
    for (LONG tag : {20021112, 20030819, 20071012}) {
        SCOPED_TRACE(tag);
        ByteRecord r = tagged(tag, 920);
        if (tag >= 20030819) {
            const std::size_t b2 = r.bytes.size();
            r.appendBlock(656);
            r.i32(b2 + 0, tag);
            r.i32(b2 + 4, 77);
            r.f32(b2 + 12, 2.5f);
            r.i32(b2 + 16, 0);
            r.text(b2 + 32, 100, "File 3");
            r.text(b2 + 532, 100, "Meas4");
            r.i16(b2 + 632, -1);
            r.i32(b2 + 636, 4);
        }
        if (tag >= 20071012) {
            const std::size_t b3 = r.bytes.size();
            r.appendBlock(116);
            r.i32(b3, tag);
            r.text(b3 + 4, 10, "5.1.2");
            r.text(b3 + 14, 100, "Bench tests");
        }
        appendDataAndPairs(r, true, {{"Gain", "6"}});
        IMeasurement* m = nullptr;
        ASSERT_EQ(loadBytes(r.bytes, IID_IPersistStream, &m), S_OK);
        expectTaggedHeader(m);
        EXPECT_EQ(floats(m, &I::get_YImagArray), kIm);
        EXPECT_EQ(value(m, &I::get_Power), 3);
        EXPECT_EQ(value(m, &I::get_Overload), 2);
        EXPECT_EQ(value(m, &I::get_Usage), 6);
        EXPECT_EQ(value(m, &I::get_FileSamples), 4);
        EXPECT_EQ(value(m, &I::get_CompressionFactor), tag >= 20030819 ? 2.5f : 1.0f);
        EXPECT_EQ(value(m, &I::get_IsUsefullData), tag >= 20030819 ? 0 : -1);
        if (tag >= 20071012) {
            EXPECT_EQ(text(m, &I::get_SoftwareRevision), "5.1.2");
            EXPECT_EQ(text(m, &I::get_Workspace), "Bench tests");
        }
        EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6"}));
        m->Release();
    }
}

TEST(MeasurementGenerations, Generation8RefusesOlderStreamsAndBadBlockTags) {
    IMeasurement* m = nullptr;
    for (LONG tag : {19991006, 20021111, 0}) {
        ByteRecord r = tagged(tag, 920);
        appendDataAndPairs(r, true, {});
        EXPECT_EQ(loadBytes(r.bytes, IID_IPersistStream, &m), E_FAIL) << tag;
        m->Release();
    }
    // A later tag whose second or third block carries an older one.
    ByteRecord second = tagged(20030819, 920);
    second.appendBlock(656);
    second.i32(920, 20021112);
    appendDataAndPairs(second, true, {});
    EXPECT_EQ(loadBytes(second.bytes, IID_IPersistStream, &m), E_FAIL);
    m->Release();
    ByteRecord third = tagged(20071012, 920);
    third.appendBlock(656 + 116);
    third.i32(920, 20071012);
    third.i32(920 + 656, 20030819);
    appendDataAndPairs(third, true, {});
    EXPECT_EQ(loadBytes(third.bytes, IID_IPersistStream, &m), E_FAIL);
    m->Release();
    // The helpers of older generations read their own layout only: a record of 20021112 through
    // the helper of 19991006 is read as that generation, with Overload left alone.
    ByteRecord r = tagged(20021112, 920);
    appendDataAndPairs(r, true, {});
    r.bytes.erase(r.bytes.begin() + 856, r.bytes.begin() + 920);
    ASSERT_EQ(loadBytes(r.bytes, IID_IMeasurementPersistGeneration7, &m), S_OK);
    EXPECT_EQ(value(m, &I::get_Overload), 0);
    m->Release();
}

TEST(MeasurementGenerations, ComplexStoredAsOneReadsNoImaginaryVector) {
    // The parameter text still lies behind room for an imaginary vector.
    ByteRecord r = tagged(20021112, 920, 4, 1);
    r.appendFloats(kRe);
    r.appendFloats({9.0f, 9.0f, 9.0f, 9.0f});
    r.appendFloats(kX);
    r.append("Gain");
    r.append("6");
    r.i32(820, 7);
    r.i32(840, 1);
    IMeasurement* m = nullptr;
    ASSERT_EQ(loadBytes(r.bytes, IID_IPersistStream, &m), S_OK);
    EXPECT_EQ(value(m, &I::get_Complex), 0);
    EXPECT_TRUE(floats(m, &I::get_YImagArray).empty());
    EXPECT_EQ(floats(m, &I::get_YRealArray), kRe);
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6"}));
    m->Release();
}

TEST(MeasurementGenerations, AnUnknownDimensionIndexFailsOnlyGeneration8) {
    ByteRecord r8 = tagged(20021112, 920);
    r8.i32(272, 100000);
    appendDataAndPairs(r8, true, {});
    IMeasurement* m = nullptr;
    EXPECT_EQ(loadBytes(r8.bytes, IID_IPersistStream, &m), E_FAIL);
    m->Release();
    ByteRecord r6 = tagged(19990222, 848);
    r6.i32(272, 100000);
    appendDataAndPairs(r6, true, {});
    ASSERT_EQ(loadBytes(r6.bytes, IID_IMeasurementPersistGeneration6, &m), S_OK);
    EXPECT_EQ(text(m, &I::get_XDimension), "");
    m->Release();
}

TEST(MeasurementGenerations, ParameterTextIsWalkedAsStored) {
    // An empty name writes no zero byte of its own, so the pairs behind it shift; a count beyond
    // the text stops at its end, and a name without a value keeps an empty one.
    ByteRecord r = tagged(20021112, 920);
    r.appendFloats(kRe);
    r.appendFloats(kIm);
    r.appendFloats(kX);
    r.append("Gain");
    r.append("6");
    r.append("orphan value");
    r.append("Mount");
    r.append("stud");
    r.append("Tail");
    r.i32(820, 1000);
    r.i32(840, INT_MAX);
    IMeasurement* m = nullptr;
    ASSERT_EQ(loadBytes(r.bytes, IID_IPersistStream, &m), S_OK);
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6", "orphan value=Mount", "stud=Tail"}));
    m->Release();
}

// --- Streams that do not hold what they claim ---

TEST(MeasurementGenerations, ShortAndOversizedStreamsAreRefused) {
    ByteRecord whole = tagged(20071012, 920);
    whole.appendBlock(656 + 116);
    whole.i32(920, 20071012);
    whole.i32(920 + 636, 4);
    whole.i32(920 + 656, 20071012);
    appendDataAndPairs(whole, true, {{"Gain", "6"}});
    IMeasurement* m = nullptr;
    ASSERT_EQ(loadBytes(whole.bytes, IID_IPersistStream, &m), S_OK);
    m->Release();

    // Cut inside a block or the vectors.
    for (std::size_t cut : {0u, 4u, 919u, 920u, 1575u, 1691u, 1692u + 16u, 1692u + 47u}) {
        std::vector<std::uint8_t> bytes(whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_EQ(loadBytes(bytes, IID_IPersistStream, &m), E_FAIL) << cut;
        m->Release();
    }
    // Sizes no stream of this length can hold, and negative ones.
    struct Patch {
        std::size_t at;
        std::int32_t value;
    };
    for (Patch p : {Patch{328, INT_MAX}, Patch{328, -1}, Patch{328, 5}, Patch{920 + 636, INT_MAX}, Patch{920 + 636, -4}}) {
        ByteRecord bad = whole;
        bad.i32(p.at, p.value);
        EXPECT_EQ(loadBytes(bad.bytes, IID_IPersistStream, &m), E_FAIL) << p.at << " " << p.value;
        m->Release();
    }
    // A parameter length beyond the stream reads what is there; a negative one is refused.
    ByteRecord longText = whole;
    longText.i32(820, INT_MAX);
    ASSERT_EQ(loadBytes(longText.bytes, IID_IPersistStream, &m), S_OK);
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6"}));
    m->Release();
    ByteRecord negativeText = whole;
    negativeText.i32(820, -1);
    EXPECT_EQ(loadBytes(negativeText.bytes, IID_IPersistStream, &m), E_FAIL);
    m->Release();

    // The same checks in the older readers.
    ByteRecord g1 = generation1(5, INT_MAX / 2, true);
    EXPECT_EQ(loadBytes(g1.bytes, IID_IMeasurementPersistGeneration1, &m), E_FAIL);
    m->Release();
    ByteRecord g5 = oldGeneration(kOldRows[3]);
    g5.i32(812, INT_MAX);
    EXPECT_EQ(loadBytes(g5.bytes, IID_IMeasurementPersistGeneration5, &m), E_FAIL);
    m->Release();
    ByteRecord g6 = tagged(19990222, 848, -7);
    EXPECT_EQ(loadBytes(g6.bytes, IID_IMeasurementPersistGeneration6, &m), E_FAIL);
    m->Release();
    for (const OldRow& g : kOldRows) {
        std::vector<std::uint8_t> bytes = oldGeneration(g).bytes;
        bytes.resize(g.blockSize - 1);
        EXPECT_EQ(loadBytes(bytes, *g.iid, &m), E_FAIL) << g.generation;
        m->Release();
    }
}

}  // namespace
}  // namespace nvdl::test
