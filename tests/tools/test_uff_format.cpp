// The universal file's text: every dataset written and read back keeps its values to the printed
// precision; files written by hand the way other writers do (uneven abscissa, complex FRF in single
// precision, D exponents, lower case, CRLF, blank optional fields, unknown datasets) read as meant;
// damaged files give one error naming the line.
#include <gtest/gtest.h>

#include <cmath>

#include "exchange/UffFields.h"
#include "exchange/UffReader.h"
#include "exchange/UffWriter.h"

namespace nvdl::exchange::uff {
namespace {

// Relative precision of the formats: E13.5 keeps six digits, E20.12 and D25.16 thirteen or more.
void expectNear(const std::vector<double>& got, const std::vector<double>& want, double relative) {
    ASSERT_EQ(got.size(), want.size());
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], want[i], std::fabs(want[i]) * relative + 1e-300) << i;
}

File everyDataset() {
    File f;
    f.hasUnits = true;
    f.units = {2, "BG (foot, pound)", 2, 0.3048, 4.4482216152605, 0.5555555555, 459.67};
    f.nodes = {{1, 0, 0, 7, 0.125, -2.5e-3, 1234.5678901234}, {20, 1, 2, 3, -1.0 / 3.0, 0, 1e-20}};
    f.traceLines = {{4, 8, "Frame", {1, 20, 0, 20, 1, 20, 1, 20, 1}}};
    NodeData mode;
    mode.idLines = {"Mode 1", "bending", "", "", ""};
    mode.integers = {1, 1};
    mode.reals = {12.34567, 0, 0.0125, 0};
    mode.nodes = {{1, {1, -0.5, 0.25, 0, 0, 1e-3}}, {20, {0, 0, -1, 2, 3, 4}}};
    NodeData real = mode;
    real.dataType = 2;
    real.nodes = {{1, {0.5, 0.25, -0.125}}};
    f.nodeData = {mode, real};
    Function time;
    time.idLines = {"Force", "Time record", "", "Hammer", ""};
    time.functionType = 1;
    time.responseEntity = "Hammer";
    time.responseNode = 3;
    time.responseDirection = -3;
    time.xMinimum = 0.5, time.xIncrement = 1.953125e-5;
    time.abscissa = {17, 0, 0, 0, "Time", "s"};
    time.numerator = {13, 0, 1, 0, "Force", "N"};
    for (int i = 0; i < 11; ++i) time.re.push_back(std::sin(i) * 1e3 / (i + 1));
    Function frf = time;
    frf.functionType = 4;
    frf.ordinateType = kComplexSingle;
    frf.even = false;
    frf.x = {1, 2.5, 4, 8, 16.5};
    frf.re = {1, -2, 3e-5, 4e5, -0.5};
    frf.im = {0, 0.25, -3e-5, 1, 2};
    Function doubles = frf;
    doubles.ordinateType = kComplexDouble;
    doubles.re[0] = 1.0 / 3.0;
    Function unevenReal = time;
    unevenReal.ordinateType = kRealSingle;
    unevenReal.even = false;
    unevenReal.x = {0, 1, 3, 7, 15};
    unevenReal.re = {1, 2, 3, 4, 5};
    f.functions = {time, frf, doubles, unevenReal};
    return f;
}

TEST(UffFormat, EveryDatasetReadsBackToItsPrintedPrecision) {
    for (bool as2411 : {true, false}) {
        File written = everyDataset();
        written.nodesAs2411 = as2411;
        File read;
        std::string error;
        ASSERT_TRUE(readText(writeText(written), read, error)) << error;
        EXPECT_EQ(read.nodesAs2411, as2411);
        ASSERT_TRUE(read.hasUnits);
        EXPECT_EQ(read.units.code, 2);
        EXPECT_EQ(read.units.description, "BG (foot, pound)");
        expectNear({read.units.length, read.units.force, read.units.temperature, read.units.temperatureOffset},
                   {0.3048, 4.4482216152605, 0.5555555555, 459.67}, 1e-15);
        ASSERT_EQ(read.nodes.size(), 2u);
        for (std::size_t i = 0; i < 2; ++i) {
            const Node &a = read.nodes[i], &b = written.nodes[i];
            EXPECT_EQ(std::tie(a.label, a.definitionSystem, a.displacementSystem, a.color),
                      std::tie(b.label, b.definitionSystem, b.displacementSystem, b.color));
            expectNear({a.x, a.y, a.z}, {b.x, b.y, b.z}, as2411 ? 1e-15 : 6e-6);
        }
        ASSERT_EQ(read.traceLines.size(), 1u);
        EXPECT_EQ(read.traceLines[0].nodes, written.traceLines[0].nodes);
        EXPECT_EQ(read.traceLines[0].id, "Frame");
        EXPECT_EQ(read.traceLines[0].color, 8);
        ASSERT_EQ(read.nodeData.size(), 2u);
        for (std::size_t k = 0; k < 2; ++k) {
            const NodeData &a = read.nodeData[k], &b = written.nodeData[k];
            EXPECT_EQ(a.idLines, b.idLines);
            EXPECT_EQ(a.dataType, b.dataType);
            EXPECT_EQ(a.integers, b.integers);
            expectNear(a.reals, b.reals, 6e-6);
            ASSERT_EQ(a.nodes.size(), b.nodes.size());
            for (std::size_t i = 0; i < a.nodes.size(); ++i) {
                EXPECT_EQ(a.nodes[i].node, b.nodes[i].node);
                expectNear(a.nodes[i].values, b.nodes[i].values, 6e-6);
            }
        }
        ASSERT_EQ(read.functions.size(), written.functions.size());
        for (std::size_t k = 0; k < read.functions.size(); ++k) {
            const Function &a = read.functions[k], &b = written.functions[k];
            SCOPED_TRACE(k);
            EXPECT_EQ(a.idLines, b.idLines);
            EXPECT_EQ(std::tie(a.functionType, a.responseEntity, a.responseNode, a.responseDirection, a.ordinateType, a.even),
                      std::tie(b.functionType, b.responseEntity, b.responseNode, b.responseDirection, b.ordinateType, b.even));
            EXPECT_EQ(std::tie(a.abscissa.dataType, a.abscissa.label, a.abscissa.unit, a.numerator.forceExponent),
                      std::tie(b.abscissa.dataType, b.abscissa.label, b.abscissa.unit, b.numerator.forceExponent));
            const double precision = b.doublePrecision() ? 1e-12 : 6e-6;
            expectNear(a.re, b.re, precision);
            expectNear(a.im, b.im, precision);
            expectNear(a.x, b.x, 6e-6);
            if (a.even) expectNear({a.xMinimum, a.xIncrement}, {b.xMinimum, b.xIncrement}, 6e-6);
        }
    }
}

// A file as another program might write it: a header dataset this reader does not take, nodes in
// the older dataset with a lower-case exponent, and a complex FRF in single precision with uneven abscissa, D exponents, blank optional fields and CRLF line ends.
constexpr const char* kForeignFile =
    "    -1\r\n"
    "   151\r\n"
    "model name\r\n"
    "    -1\r\n"
    "    -1\n"
    "    15\n"
    "         1         0         0         1  0.00000e+00  0.00000E+00  0.00000E+00\n"
    "         2         0         0         1  1.00000E+00  5.00000E-01 -2.50000E-01   \n"
    "    -1\n"
    "    -1\r\n"
    "    58\r\n"
    "H acc/force\r\n"
    "\r\n"
    "\r\n"
    "\r\n"
    "\r\n"
    "    4         1    1         0 ACC              2   3 HAMMER           1   3\r\n"
    "         5         3         0  0.00000E+00  0.00000E+00  0.00000E+00\r\n"
    "        18    0    0    0 Frequency            Hz\r\n"
    "        12    1    0    0 Acceleration         m/s^2\r\n"
    "        13    0    1    0 Force                N\r\n"
    "         0    0    0    0\r\n"
    "  1.00000D+01  1.00000D+00 -2.00000D+00  2.00000d+01  3.00000E+00\r\n"
    "  0.00000E+00  4.00000E+01  5.00000-01  6.00000E+00\r\n"
    "    -1\r\n";

TEST(UffFormat, AFileAsOtherWritersWriteItReadsAsMeant) {
    File f;
    std::string error;
    ASSERT_TRUE(readText(kForeignFile, f, error)) << error;
    EXPECT_FALSE(f.hasUnits);
    ASSERT_EQ(f.nodes.size(), 2u);
    EXPECT_FALSE(f.nodesAs2411);
    EXPECT_EQ(f.nodes[1].label, 2);
    expectNear({f.nodes[1].x, f.nodes[1].y, f.nodes[1].z}, {1, 0.5, -0.25}, 1e-12);
    ASSERT_EQ(f.functions.size(), 1u);
    const Function& frf = f.functions[0];
    EXPECT_EQ(frf.idLines[0], "H acc/force");
    EXPECT_EQ(frf.functionType, 4);
    EXPECT_EQ(std::tie(frf.responseEntity, frf.responseNode, frf.responseDirection), std::make_tuple(std::string("ACC"), 2L, 3));
    EXPECT_EQ(std::tie(frf.referenceEntity, frf.referenceNode, frf.referenceDirection), std::make_tuple(std::string("HAMMER"), 1L, 3));
    EXPECT_TRUE(frf.complex());
    EXPECT_FALSE(frf.even);
    EXPECT_EQ(frf.numerator.unit, "m/s^2");
    EXPECT_EQ(frf.denominator.forceExponent, 1);
    EXPECT_EQ(frf.zAxis.label, "");
    expectNear(frf.x, {10, 20, 40}, 1e-12);
    expectNear(frf.re, {1, 3, 0.5}, 1e-12);
    expectNear(frf.im, {-2, 0, 6}, 1e-12);
}

TEST(UffFormat, NumbersInEveryWriterFormRead) {
    const std::pair<const char*, double> good[] = {
        {"1.5D+02", 150}, {"1.5d2", 150}, {" -2.5e-3 ", -2.5e-3}, {"1.5-3", 1.5e-3}, {"+4.", 4}, {"7", 7}, {".5E1", 5},
    };
    for (const auto& [text, value] : good) {
        auto v = parseReal(text);
        ASSERT_TRUE(v) << text;
        EXPECT_DOUBLE_EQ(*v, value) << text;
    }
    for (const char* bad : {"", "abc", "1e5e5", "--1", "1.0x", "nan", "inf", "1e999", "E5"}) EXPECT_FALSE(parseReal(bad)) << bad;
    // Fields that touch at their fixed widths are taken apart by their columns.
    auto touching = recordNumbers("         5         3         1-1.000000E+00 2.000000E+00-3.000000E+00", {10, 10, 10, 13, 13, 13});
    ASSERT_TRUE(touching);
    expectNear(*touching, {5, 3, 1, -1, 2, -3}, 1e-15);
}

struct Damage {
    const char* what;
    std::string text;
    const char* message;
};

TEST(UffFormat, DamagedFilesGiveOneErrorNamingTheLine) {
    const std::string head = "    -1\n    58\nname\n\n\n\n\n    1         1    1         0 NONE             0   0 NONE             0   0\n";
    const std::string axes = "        17    0    0    0 Time                 s\n"
                             "         1    0    0    0 NONE                 NONE\n"
                             "         0    0    0    0\n"
                             "         0    0    0    0\n";
    const auto record7 = [](const char* count) {
        return std::string("         4") + count + "         1  0.00000E+00  1.00000E+00  0.00000E+00\n";
    };
    const Damage cases[] = {
        {"not closed", head + record7("         2") + axes + "  1.0  2.0\n", "line 1: dataset 58 is not closed"},
        {"count above the data", head + record7("      1000") + axes + "  1.0  2.0\n    -1\n", "line 13: dataset 58: it declares 1000 values"},
        {"huge count", head + record7("1999999999") + axes + "  1.0  2.0\n    -1\n", "it declares 1999999999 values"},
        {"garbage number", head + record7("         2") + axes + "  1.0  2.x0\n    -1\n", "line 14: dataset 58: \"2.x0\" is not a number"},
        {"short dataset", head + record7("         2") + "    -1\n", "line 9: dataset 58: the dataset ends early"},
        {"values beyond the count", head + record7("         1") + axes + "  1.0\n  2.0\n    -1\n", "line 15: dataset 58: more values"},
        {"ordinate type", "    -1\n    58\na\nb\nc\nd\ne\n    9\n         3         2         1\n    -1\n", "ordinate data type 3"},
        {"text before a dataset", "hello\n", "line 1: a dataset must begin"},
        {"binary dataset", "    -1\n    58b     1     1\n    -1\n", "line 2: \"58b     1     1\" is not an ASCII dataset number"},
        {"empty", "", "line 1: no dataset"},
        {"node count", "    -1\n    82\n         1       500         1\nx\n         1         2\n    -1\n", "declares 500 nodes"},
        {"mode values", "    -1\n    55\na\nb\nc\nd\ne\n         1         2         2         8         5         3\n"
                        "         2         4         1         1\n  1.0 0.0 0.0 0.0\n         2\n  1.0\n    -1\n",
         "line 11: dataset 55: it declares 6 values"},
    };
    for (const Damage& c : cases) {
        File f;
        std::string error;
        EXPECT_FALSE(readText(c.text, f, error)) << c.what;
        EXPECT_NE(error.find(c.message), std::string::npos) << c.what << ": " << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << c.what;
    }
}

}  // namespace
}  // namespace nvdl::exchange::uff
