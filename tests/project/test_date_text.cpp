// Date text by the regional settings of the user: piece widths, the 12-hour clock, the fallback
// form; and the splitting of patterns.
#include <cmath>

#include "SettingsFileTest.h"
#include "nvdl/Date.h"
#include "project/DateText.h"

namespace nvdl::test {
namespace {

using DateTextTest = SettingsFileTest;

DATE march5th() { return dateFromParts(2004, 3, 5, 14, 7, 9); }

std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces{"left over"};
    SplitText(text, separator, pieces);
    return pieces;
}

TEST(SplitText, PiecesBetweenSeparators) {
    using V = std::vector<std::string>;
    EXPECT_EQ(split("dd.MM.yyyy", "."), (V{"dd", "MM", "yyyy"}));
    EXPECT_EQ(split("d. M. yyyy", ". "), (V{"d", "M", "yyyy"}));
    EXPECT_EQ(split("a..b.", "."), (V{"a", "", "b", ""}));
    EXPECT_EQ(split("HH:mm", "/"), (V{"HH:mm"}));
    EXPECT_EQ(split("HH:mm", ""), (V{"HH:mm"}));
    EXPECT_EQ(split("", "."), V{});
}

TEST_F(DateTextTest, WithoutASettingsFileTheBuiltInRegionIsUsed) {
    EXPECT_EQ(ReadShortDateFormat(), "M/d/yyyy");
    EXPECT_EQ(FormatDateTimeLocal(march5th()), "3/5/2004 2:07:09 PM");
}

// Each piece is at least as wide as its letters, and a two-letter year keeps all its digits; "tt"
// turns the 12-hour clock on wherever it stands and its trimmed mark goes to the end; a pattern
// that names no field leaves the other part alone.
TEST_F(DateTextTest, FormatsByTheRegionalPatterns) {
    auto at = [](int hour, int minute, int second) { return dateFromParts(2004, 3, 5, hour, minute, second); };
    struct Case {
        const char *shortDate, *dateSeparator, *timeFormat, *timeSeparator;
        DATE when;
        const char* expected;
    } cases[] = {
        {"dd.MM.yyyy", ".", "HH:mm:ss", ":", march5th(), "05.03.2004 14:07:09"},
        {"dd.MM.yyyy", ".", "HH:mm:ss", ":", dateFromParts(2004, 11, 25, 9, 0, 0), "25.11.2004 09:00:00"},
        {"yy-M-d", "-", "H.m.s", ".", march5th(), "2004-3-5 14.7.9"},
        {"M/d/yyyy", "/", "hh:mm tt", ":", at(0, 30, 0), "3/5/2004 12:30 AM"},
        {"M/d/yyyy", "/", "hh:mm tt", ":", at(11, 59, 0), "3/5/2004 11:59 AM"},
        {"M/d/yyyy", "/", "hh:mm tt", ":", at(12, 0, 0), "3/5/2004 12:00 PM"},
        {"M/d/yyyy", "/", "hh:mm tt", ":", at(15, 5, 0), "3/5/2004 03:05 PM"},
        {"yyyy/M/d", "/", "tt h:mm:ss", ":", at(23, 1, 2), "2004/3/5 11:01:02 PM"},
        {"d/M/yyyy", "/", "xx", ":", march5th(), "5/3/2004"},
        {"gg", "/", "HH:mm", ":", march5th(), "14:07"},
    };
    for (const Case& c : cases) {
        regional({{"sShortDate", c.shortDate}, {"sDate", c.dateSeparator}, {"sTimeFormat", c.timeFormat},
                  {"sTime", c.timeSeparator}, {"s1159", " AM "}, {"s2359", "PM"}});
        EXPECT_EQ(FormatDateTimeLocal(c.when), c.expected) << c.shortDate << " " << c.timeFormat;
    }
}

TEST_F(DateTextTest, MissingRegionalValuesGiveTheFallbackForm) {
    for (const char* missing : {"sShortDate", "sDate", "sTimeFormat", "sTime"}) {
        std::map<std::string, std::string> values{
            {"sShortDate", "d/M/yyyy"}, {"sDate", "/"}, {"sTimeFormat", "h:mm tt"}, {"sTime", ":"}};
        values[missing] = "  ";
        regional(values);
        EXPECT_EQ(FormatDateTimeLocal(march5th()), "05.03.2004 14:07:09") << missing;
    }
    // Patterns that name no field at all give nothing, and nothing falls back too.
    regional({{"sShortDate", "gg"}, {"sDate", "/"}, {"sTimeFormat", "xx"}, {"sTime", ":"}});
    EXPECT_EQ(FormatDateTimeLocal(march5th()), "05.03.2004 14:07:09");
}

TEST_F(DateTextTest, ValueThatIsNoDateGivesNoText) {
    EXPECT_EQ(FormatDateTimeLocal(std::nan("")), "");
    EXPECT_EQ(FormatDateTimeLocal(1e12), "");
    EXPECT_EQ(FormatDateTimeLocal(0.0), "12/30/1899 12:00:00 AM");
}

}  // namespace
}  // namespace nvdl::test
