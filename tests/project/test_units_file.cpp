// The units file reader, unit expressions and the shipped table.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "../platform/EnvGuard.h"
#include "platform/DebugTrace.h"
#include "project/units/ShippedUnitsFile.h"
#include "project/units/UnitExpression.h"
#include "project/units/UnitsFileReader.h"

using namespace nvdl::units;

namespace {

std::filesystem::path scratch(const std::string& name) {
    return std::filesystem::temp_directory_path() /
           ("nvdl_units_" + std::to_string(::getpid()) + "_" + name);
}

const UnitTable& shippedTable() {
    static const UnitsFileContent content = readUnitsFile(kShippedUnitsFile);
    return *content.table;
}

Exponents exps(std::initializer_list<SHORT> leading) {
    Exponents e{};
    std::copy(leading.begin(), leading.end(), e.begin());
    return e;
}

}  // namespace

TEST(UnitsFile, ReadsDimensionsUnitsAndTheirNumbers) {
    UnitsFileContent c = parseUnitsText("\xEF\xBB\xBF# head\r\n"
                                        "\n"
                                        "[Odd]  0 0 0 0 0 0 0 0 0 -1 unknown\n"
                                        "[ Acceleration ] 1 -2 0 0 0 0 0 0 0 +0\n"
                                        "  m/s\xC2\xB2   1  # a trailing comment is not allowed\n"
                                        "m/s\xC2\xB2 1\r\n"
                                        "g\t9.80665\n"
                                        "[Temperature] 0 0 0 0 1 0 0 0 0 0\n"
                                        "\xC2\xB0" "C 1 273.15\n"
                                        "\xE2\x82\xAC" "x 2\n",
                                        "test");
    ASSERT_TRUE(c.table);
    EXPECT_EQ(c.skippedLines, 1u);  // the unit line with a comment behind it
    const auto& d = c.table->dimensions;
    ASSERT_EQ(d.size(), 3u);
    EXPECT_TRUE(d[0].unknown);
    EXPECT_EQ(d[0].exponents, exps({0, 0, 0, 0, 0, 0, 0, 0, 0, -1}));  // all ten read
    EXPECT_EQ(d[1].name, "Acceleration");
    EXPECT_FALSE(d[1].unknown);
    EXPECT_EQ(d[1].exponents, exps({1, -2}));
    ASSERT_EQ(d[1].units.size(), 2u);
    EXPECT_EQ(d[1].units[0].name, "m/s\xB2");  // UTF-8 in the file, the system code page inside
    EXPECT_DOUBLE_EQ(d[1].units[1].factor, 9.80665);
    EXPECT_EQ(d[2].units[0].name, "\xB0" "C");
    EXPECT_DOUBLE_EQ(d[2].units[0].offset, 273.15);
    EXPECT_EQ(d[2].units[1].name, "\x80x");  // the euro sign has a byte of its own
}

TEST(UnitsFile, SkipsMalformedLinesAndTracesThem) {
    const std::filesystem::path trace = scratch("trace.txt");
    EnvGuard env;
    env.set("NVDL_TRACE", trace.string());
    nvdl::reloadDebugTraceSettings();
    UnitsFileContent c = parseUnitsText("orphan 1\n"                              // 1 before any dimension
                                        "[Length] 1 0 0 0 0 0 0 0 0 0\n"          // 2
                                        "m 1\n"                                   // 3
                                        "mm abc\n"                                // 4 bad factor
                                        "zero 0\n"                                // 5 factor 0
                                        "inch 0.0254 0 extra\n"                   // 6 extra field
                                        "nan nan\n"                               // 7 not finite
                                        "[Short] 1 0 0\n"                         // 8 three exponents
                                        "lost 1\n"                                // 9 unit of a skipped dimension
                                        "[Big] 40000 0 0 0 0 0 0 0 0 0\n"         // 10 out of range
                                        "[LENGTH] 2 0 0 0 0 0 0 0 0 0\n"          // 11 same name
                                        "m2 1\n"                                  // 12 belongs to the skipped one
                                        "[Open 1 0 0 0 0 0 0 0 0 0\n"             // 13 no bracket
                                        "[] 1 0 0 0 0 0 0 0 0 0\n"                // 14 no name
                                        "[Time] 0 1 0 0 0 0 0 0 0 0 maybe\n"      // 15 not "unknown"
                                        + std::string(1001, 'x') + "\n"           // 16 too long
                                        "[Area] 2 0 0 0 0 0 0 0 0 0\n"
                                        "m\xC2\xB2 1\n",
                                        "bad.txt");
    env.restore();
    nvdl::reloadDebugTraceSettings();
    ASSERT_TRUE(c.table);
    EXPECT_EQ(c.skippedLines, 14u);
    ASSERT_EQ(c.table->dimensions.size(), 2u);
    EXPECT_EQ(c.table->dimensions[0].units.size(), 1u);  // only "m": nothing leaked into Length
    EXPECT_EQ(c.table->dimensions[1].name, "Area");

    std::ifstream in(trace);
    std::stringstream text;
    text << in.rdbuf();
    std::filesystem::remove(trace);
    for (int line : {1, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16})
        EXPECT_NE(text.str().find("bad.txt line " + std::to_string(line) + " skipped"), std::string::npos) << line;
    EXPECT_EQ(text.str().find("line 3 "), std::string::npos);
}

TEST(UnitsFile, MissingEmptyAndOversizedFilesGiveNoTable) {
    EXPECT_FALSE(readUnitsFile(scratch("absent.txt").string()).table);
    EXPECT_FALSE(readUnitsFile(std::filesystem::temp_directory_path().string()).table);  // a directory
    const std::filesystem::path empty = scratch("empty.txt");
    std::ofstream(empty) << "# only a comment\nunit 1\n";
    EXPECT_FALSE(readUnitsFile(empty.string()).table);
    const std::filesystem::path big = scratch("big.txt");
    {
        std::ofstream out(big);
        out << "[Length] 1 0 0 0 0 0 0 0 0 0\n";
        std::string line(99, '#');
        for (std::size_t n = 0; n <= kMaxUnitsFileBytes / 100; ++n) out << line << '\n';
    }
    EXPECT_FALSE(readUnitsFile(big.string()).table);
    std::filesystem::remove(empty);
    std::filesystem::remove(big);
}

TEST(ShippedUnits, OrderIsTheDocumentedOne) {
    // The file numbers its dimensions in comments ("# 6" above "[Acceleration]"); those numbers
    // are what measurement files store, so each must be the dimension's real position.
    std::ifstream in(kShippedUnitsFile);
    ASSERT_TRUE(in) << kShippedUnitsFile;
    std::string line, previous;
    std::size_t position = 0;
    while (std::getline(in, line)) {
        if (!line.empty() && line[0] == '[') {
            EXPECT_EQ(previous, "# " + std::to_string(position)) << line;
            ++position;
        }
        previous = line;
    }
    UnitsFileContent c = readUnitsFile(kShippedUnitsFile);
    ASSERT_TRUE(c.table);
    EXPECT_EQ(c.skippedLines, 0u);
    EXPECT_EQ(c.table->dimensions.size(), position);
}

TEST(ShippedUnits, EveryDimensionHasUnitsAndItsOwnExponentsAndUnitNamesAreUnique) {
    const UnitTable& t = shippedTable();
    std::set<std::string> names;
    for (std::size_t i = 0; i < t.dimensions.size(); ++i) {
        const DimensionRecord& d = t.dimensions[i];
        EXPECT_FALSE(d.units.empty()) << d.name;
        if (!d.unknown) {
            EXPECT_EQ(t.findExponents(d.exponents), i) << d.name;  // found by its exponents
        }
        for (const UnitRecord& u : d.units) EXPECT_TRUE(names.insert(u.name).second) << u.name;
    }
}

TEST(UnitExpression, CombinesUnitsOfTheTable) {
    const UnitTable& t = shippedTable();
    struct Case {
        std::string text;
        Exponents exponents;
        double factor;
    } cases[] = {
        {"N*m", exps({2, -2, 1}), 1.0},
        {"(m/s\xB2)\xB2/Hz", exps({2, -3}), 1.0},
        {"g / N", exps({0, 0, -1}), 9.80665},
        {"mm^-2 \xB7 s^3", exps({-2, 3}), 1e6},
        {"m/s/s", exps({1, -2}), 1.0},  // left to right: (m/s)/s
        {std::string(10, '(') + "m" + std::string(10, ')'), exps({1}), 1.0},
    };
    for (const Case& c : cases) {
        std::optional<ExpressionValue> v = evaluateUnitExpression(t, c.text);
        ASSERT_TRUE(v) << c.text;
        EXPECT_EQ(v->exponents, c.exponents) << c.text;
        EXPECT_DOUBLE_EQ(v->factor, c.factor) << c.text;
    }
    // "?" is the unit of the unknown dimension; parentheses nest only so deep.
    for (std::string bad : {"", "nonsense", "m/", "(m", "m)", "m^", "m^x", "m s", "?", "m^99999", "m^20000*m^20000"})
        EXPECT_FALSE(evaluateUnitExpression(t, bad)) << bad;
    EXPECT_FALSE(evaluateUnitExpression(t, std::string(20, '(') + "m" + std::string(20, ')')));
}
