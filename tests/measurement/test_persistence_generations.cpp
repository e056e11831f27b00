// Stored measurement records of every generation, built byte by byte from their layouts and read by
// the helper of their generation; the checks of the reader of 20021112 and later.
#include <climits>

#include "GenerationRecords.h"

namespace nvdl::test {
namespace {

using I = IMeasurement;

// --- Generation 1 ---

TEST(MeasurementGenerations, Generation1ReadsNumbersAndInterleavedSamples) {
    ByteRecord r = generation1(5, 3, true);
    r.appendFloats({1.0f, -1.0f, 2.0f, -2.0f, 3.0f, -3.0f});
    Loaded m(r.bytes, IID_IMeasurementPersistGeneration1);
    ASSERT_EQ(m.result, S_OK);
    expectTexts(m, {{u"FunctionType", "1004"}, {u"Response", "accelerometer on the left bearing, 52 characters .."},
                    {u"ResponseChannel", "2"}, {u"Reference", "hammer"}, {u"ReferenceChannel", "5"},
                    {u"XAxisType", "1101"}, {u"XStart", "10"}, {u"XIncrement", "2"}, {u"XDimension", "Frequency"},
                    {u"YDimension", "Voltage"}, {u"AveragingType", "1202"}, {u"AveragingParameter", "0.5"},
                    {u"Averages", "16"}, {u"Overlap", "0.25"}, {u"WindowType", "1307"}, {u"WindowParameter", "3"},
                    {u"Complex", "-1"}, {u"Size", "3"}, {u"FileSamples", "3"}});
    EXPECT_DOUBLE_EQ(value(m, &I::get_MeasurementTime), 25569.0 + 2.5);
    EXPECT_EQ(floats(m, &I::get_YRealArray), (std::vector<float>{1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(floats(m, &I::get_YImagArray), (std::vector<float>{-1.0f, -2.0f, -3.0f}));
}

TEST(MeasurementGenerations, Generation1MapsItsCodes) {
    struct Row {
        LONG stored, function, axis, averaging, window;
    };
    // Function codes; beside function 2 the highest axis, averaging and window codes are stored,
    // beside the others codes outside their range.
    for (Row row : std::initializer_list<Row>{
             {1, 1001, 1100, 1200, 1300}, {2, 1001, 1104, 1204, 1308}, {3, 1002, 1100, 1200, 1300},
             {25, 1024, 1100, 1200, 1300}, {26, 26, 1100, 1200, 1300}, {27, 1026, 1100, 1200, 1300},
             {29, 1028, 1100, 1200, 1300}, {30, 1000, 1100, 1200, 1300}, {31, 1030, 1100, 1200, 1300},
             {36, 1035, 1100, 1200, 1300}, {37, 37, 1100, 1200, 1300}, {38, 1000, 1100, 1200, 1300},
             {-1, 1000, 1100, 1200, 1300}}) {
        SCOPED_TRACE(row.stored);
        ByteRecord r = generation1(row.stored, 0, false);
        const bool highest = row.stored == 2;
        r.i32(116, highest ? 4 : (row.stored == 3 ? 5 : -1));
        r.i32(144, highest ? 4 : 5);
        r.i32(160, highest ? 8 : 9);
        Loaded m(r.bytes, IID_IMeasurementPersistGeneration1);
        ASSERT_EQ(m.result, S_OK);
        expectTexts(m, {{u"FunctionType", std::to_string(row.function)}, {u"XAxisType", std::to_string(row.axis)},
                        {u"AveragingType", std::to_string(row.averaging)}, {u"WindowType", std::to_string(row.window)}});
    }
}

// --- Generations 2 to 5 ---

TEST(MeasurementGenerations, Generations2To5ReadTheirBlockVectorsAndParameters) {
    for (const OldRow& g : kOldRows) {
        SCOPED_TRACE(g.generation);
        Loaded m(oldGeneration(g).bytes, *g.iid);
        ASSERT_EQ(m.result, S_OK);
        expectTexts(m, {{u"Name", "Autopower of run 2"}, {u"FunctionType", "1003"}, {u"ResponseChannel", "4"},
                        {u"Reference", "ref"}, {u"XAxisType", "1103"}, {u"XStart", "31.5"}, {u"XDimension", "Frequency"},
                        {u"StorageUnitX", "Hz"}, {u"YDimension", "Pressure"}, {u"StorageUnitY", "Pa"},
                        {u"AveragingType", "1201"}, {u"Averages", "30"}, {u"WindowType", "1304"},
                        {u"WindowParameter", "1.5"}, {u"FileSamples", "4"}, {u"TestId", g.strings ? "T-9" : ""},
                        {u"AcousticWeighting", g.strings ? "C" : "Off"}, {u"UserId", g.strings ? "operator 12" : ""}});
        EXPECT_DOUBLE_EQ(value(m, &I::get_MeasurementTime), 36000.25);
        EXPECT_EQ(floats(m, &I::get_YRealArray), kRe);
        EXPECT_EQ(floats(m, &I::get_YImagArray), kIm);
        EXPECT_EQ(floats(m, &I::get_XArray), g.xVector ? kX : std::vector<float>(kX.size(), 0.0f));
        const std::vector<std::string> expected =
            g.parameters ? std::vector<std::string>{"Gain=6", "Mount=stud"} : std::vector<std::string>{};
        EXPECT_EQ(parameters(m), expected);
    }
}

// --- Generations 6 to 8: the block of today from the leading tag on ---

void expectTaggedHeader(IMeasurement* m) {
    expectTexts(m, {{u"Name", "Crosspower mic/ref"}, {u"FunctionType", "1004"}, {u"Response", "mic"},
                    {u"ResponseChannel", "2"}, {u"ReferenceChannel", "1"}, {u"XAxisType", "1102"},
                    {u"XDimension", "Time"}, {u"StorageUnitX", "ms"}, {u"YDimension", "Pressure"},
                    {u"AveragingType", "1207"}, {u"Averages", "5"}, {u"WindowType", "1308"},
                    {u"FunctionQualifier", "avg"}, {u"UserId", "user 4"}, {u"Order", "1.5"}, {u"RPM", "1200"},
                    {u"Z", "-2"}, {u"ZDimension", "Length"}, {u"FileSamples", "4"}});
    EXPECT_DOUBLE_EQ(value(m, &I::get_MeasurementTime), 37000.5);
    EXPECT_EQ(floats(m, &I::get_YRealArray), kRe);
    EXPECT_EQ(floats(m, &I::get_YImagArray), kIm);
    EXPECT_EQ(floats(m, &I::get_XArray), kX);
}

TEST(MeasurementGenerations, Generations6And7ReadTheTaggedBlockAndTextPairs) {
    struct Row {
        LONG tag;
        const IID* iid;
        std::size_t blockSize;
        const char *bandwidthCorrection, *power;
    };
    for (Row g : {Row{19990222, &IID_IMeasurementPersistGeneration6, 848, "1", "1"},
                  Row{19991006, &IID_IMeasurementPersistGeneration7, 856, "0.75", "3"}}) {
        SCOPED_TRACE(g.tag);
        ByteRecord r = tagged(g.tag, g.blockSize);
        Loaded m(appendDataAndPairs(r, {{"Gain", "6"}, {"Mount", "magnet"}}).bytes, *g.iid);
        ASSERT_EQ(m.result, S_OK);
        expectTaggedHeader(m);
        expectTexts(m, {{u"BandwidthCorrectionFactor", g.bandwidthCorrection}, {u"Power", g.power}, {u"Overload", "0"}});
        EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6", "Mount=magnet"}));
    }
}

TEST(MeasurementGenerations, Generation8ReadsEachOfItsTags) {
    for (LONG tag : {20021112, 20030819, 20071012}) {
        SCOPED_TRACE(tag);
        ByteRecord r = generation8(tag);
        Loaded m(appendDataAndPairs(r, {{"Gain", "6"}}).bytes, IID_IPersistStream);
        ASSERT_EQ(m.result, S_OK);
        expectTaggedHeader(m);
        const bool block2 = tag >= 20030819, block3 = tag >= 20071012;
        expectTexts(m, {{u"Power", "3"}, {u"Overload", "2"}, {u"Usage", "6"},
                        {u"CompressionFactor", block2 ? "2.5" : "1"}, {u"IsUsefullData", block2 ? "0" : "-1"},
                        {u"SoftwareRevision", block3 ? "5.1.2" : ""}, {u"Workspace", block3 ? "Bench tests" : ""}});
        EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6"}));
    }
}

TEST(MeasurementGenerations, Generation8RefusesOlderStreamsBadBlockTagsAndUnknownDimensions) {
    for (LONG tag : {19991006, 20021111, 0}) {
        ByteRecord r = tagged(tag, 920);
        EXPECT_EQ(Loaded(appendDataAndPairs(r).bytes, IID_IPersistStream).result, E_FAIL) << tag;
    }
    // A later tag whose second or third block carries an older one.
    ByteRecord second = generation8(20030819), third = generation8(20071012);
    second.i32(920, 20021112);
    third.i32(1576, 20030819);
    EXPECT_EQ(Loaded(appendDataAndPairs(second).bytes, IID_IPersistStream).result, E_FAIL);
    EXPECT_EQ(Loaded(appendDataAndPairs(third).bytes, IID_IPersistStream).result, E_FAIL);
    // An unknown dimension index fails this reader only: the one of 19990222 leaves the dimension empty.
    ByteRecord unknown8 = generation8(20021112), unknown6 = tagged(19990222, 848);
    unknown8.i32(272, 100000);
    unknown6.i32(272, 100000);
    EXPECT_EQ(Loaded(appendDataAndPairs(unknown8).bytes, IID_IPersistStream).result, E_FAIL);
    Loaded sixth(appendDataAndPairs(unknown6).bytes, IID_IMeasurementPersistGeneration6);
    ASSERT_EQ(sixth.result, S_OK);
    EXPECT_EQ(getText(sixth, u"XDimension"), "");
    // The helpers of older generations read their own layout only: a record of 20021112 through
    // the helper of 19991006 is read as that generation, with Overload left alone.
    ByteRecord r = generation8(20021112);
    appendDataAndPairs(r);
    r.bytes.erase(r.bytes.begin() + 856, r.bytes.begin() + 920);
    Loaded seventh(r.bytes, IID_IMeasurementPersistGeneration7);
    ASSERT_EQ(seventh.result, S_OK);
    EXPECT_EQ(value(seventh, &I::get_Overload), 0);
}

TEST(MeasurementGenerations, ComplexStoredAsOneReadsNoImaginaryVector) {
    // The parameter text still lies behind room for an imaginary vector.
    ByteRecord r = generation8(20021112, 1);
    Loaded m(appendDataAndPairs(r, {{"Gain", "6"}}).bytes, IID_IPersistStream);
    ASSERT_EQ(m.result, S_OK);
    EXPECT_EQ(value(m, &I::get_Complex), 0);
    EXPECT_TRUE(floats(m, &I::get_YImagArray).empty());
    EXPECT_EQ(floats(m, &I::get_YRealArray), kRe);
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6"}));
}

TEST(MeasurementGenerations, ParameterTextIsWalkedAsStored) {
    // An empty name writes no zero byte of its own, so the pairs behind it shift; a count beyond
    // the text stops at its end, and a name without a value keeps an empty one.
    ByteRecord r = generation8(20021112);
    appendDataAndPairs(r);
    for (const char* s : {"Gain", "6", "orphan value", "Mount", "stud", "Tail"}) r.append(s);
    r.i32(820, 1000);
    r.i32(840, INT_MAX);
    Loaded m(r.bytes, IID_IPersistStream);
    ASSERT_EQ(m.result, S_OK);
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6", "orphan value=Mount", "stud=Tail"}));
}

// --- Streams that do not hold what they claim ---

TEST(MeasurementGenerations, ShortAndOversizedStreamsAreRefused) {
    ByteRecord whole = generation8(20071012);
    appendDataAndPairs(whole, {{"Gain", "6"}});
    ASSERT_EQ(Loaded(whole.bytes, IID_IPersistStream).result, S_OK);
    // Cut inside a block or the vectors.
    for (std::size_t cut : {0u, 4u, 919u, 920u, 1575u, 1691u, 1692u + 16u, 1692u + 47u}) {
        const std::vector<std::uint8_t> bytes(whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(cut));
        EXPECT_EQ(Loaded(bytes, IID_IPersistStream).result, E_FAIL) << cut;
    }
    // Sizes no stream of this length can hold, negative ones, and a negative parameter text length.
    struct Patch {
        std::size_t at;
        std::int32_t value;
    };
    for (Patch p : {Patch{328, INT_MAX}, Patch{328, -1}, Patch{328, 5}, Patch{920 + 636, INT_MAX}, Patch{920 + 636, -4},
                    Patch{820, -1}}) {
        ByteRecord bad = whole;
        bad.i32(p.at, p.value);
        EXPECT_EQ(Loaded(bad.bytes, IID_IPersistStream).result, E_FAIL) << p.at << " " << p.value;
    }
    // A parameter text length beyond the stream reads what is there.
    ByteRecord longText = whole;
    longText.i32(820, INT_MAX);
    Loaded m(longText.bytes, IID_IPersistStream);
    ASSERT_EQ(m.result, S_OK);
    EXPECT_EQ(parameters(m), (std::vector<std::string>{"Gain=6"}));

    // The same checks in the older readers.
    EXPECT_EQ(Loaded(generation1(5, INT_MAX / 2, true).bytes, IID_IMeasurementPersistGeneration1).result, E_FAIL);
    ByteRecord g5 = oldGeneration(kOldRows[3]);
    g5.i32(812, INT_MAX);
    EXPECT_EQ(Loaded(g5.bytes, IID_IMeasurementPersistGeneration5).result, E_FAIL);
    EXPECT_EQ(Loaded(tagged(19990222, 848, -7).bytes, IID_IMeasurementPersistGeneration6).result, E_FAIL);
    for (const OldRow& g : kOldRows) {
        std::vector<std::uint8_t> bytes = oldGeneration(g).bytes;
        bytes.resize(g.blockSize - 1);
        EXPECT_EQ(Loaded(bytes, *g.iid).result, E_FAIL) << g.generation;
    }
}

}  // namespace
}  // namespace nvdl::test
