// Date text by the regional settings of the user: piece widths, the 12-hour clock, the fallback
// form; and the splitting of patterns.
#include <cmath>

#include "RegionalSettings.h"
#include "platform/Date.h"
#include "project/DateText.h"

namespace nvdl::test {
namespace {

using DateTextTest = RegionalSettingsTest;

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

TEST_F(DateTextTest, PieceLengthIsTheLeastWidth) {
    regional({{"sShortDate", "dd.MM.yyyy"}, {"sDate", "."}, {"sTimeFormat", "HH:mm:ss"}, {"sTime", ":"}});
    EXPECT_EQ(FormatDateTimeLocal(march5th()), "05.03.2004 14:07:09");
    EXPECT_EQ(FormatDateTimeLocal(dateFromParts(2004, 11, 25, 9, 0, 0)), "25.11.2004 09:00:00");

    // A two-letter year prints with width 2 and keeps all its digits; one letter prints as it is.
    regional({{"sShortDate", "yy-M-d"}, {"sDate", "-"}, {"sTimeFormat", "H.m.s"}, {"sTime", "."}});
    EXPECT_EQ(FormatDateTimeLocal(march5th()), "2004-3-5 14.7.9");
}

TEST_F(DateTextTest, TwelveHourClockWithMarks) {
    regional({{"sShortDate", "M/d/yyyy"}, {"sDate", "/"}, {"sTimeFormat", "hh:mm tt"}, {"sTime", ":"},
              {"s1159", " AM "}, {"s2359", "PM"}});
    EXPECT_EQ(FormatDateTimeLocal(dateFromParts(2004, 3, 5, 0, 30, 0)), "3/5/2004 12:30 AM");
    EXPECT_EQ(FormatDateTimeLocal(dateFromParts(2004, 3, 5, 11, 59, 0)), "3/5/2004 11:59 AM");
    EXPECT_EQ(FormatDateTimeLocal(dateFromParts(2004, 3, 5, 12, 0, 0)), "3/5/2004 12:00 PM");
    EXPECT_EQ(FormatDateTimeLocal(dateFromParts(2004, 3, 5, 15, 5, 0)), "3/5/2004 03:05 PM");

    // A mark in front of the time still turns the clock on; the mark goes to the end.
    regional({{"sShortDate", "yyyy/M/d"}, {"sDate", "/"}, {"sTimeFormat", "tt h:mm:ss"}, {"sTime", ":"},
              {"s1159", "AM"}, {"s2359", "PM"}});
    EXPECT_EQ(FormatDateTimeLocal(dateFromParts(2004, 3, 5, 23, 1, 2)), "2004/3/5 11:01:02 PM");
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

TEST_F(DateTextTest, DateOrTimeAloneStandsWithoutJoiningBlank) {
    regional({{"sShortDate", "d/M/yyyy"}, {"sDate", "/"}, {"sTimeFormat", "xx"}, {"sTime", ":"}});
    EXPECT_EQ(FormatDateTimeLocal(march5th()), "5/3/2004");
    regional({{"sShortDate", "gg"}, {"sDate", "/"}, {"sTimeFormat", "HH:mm"}, {"sTime", ":"}});
    EXPECT_EQ(FormatDateTimeLocal(march5th()), "14:07");
}

TEST_F(DateTextTest, ValueThatIsNoDateGivesNoText) {
    EXPECT_EQ(FormatDateTimeLocal(std::nan("")), "");
    EXPECT_EQ(FormatDateTimeLocal(1e12), "");
    EXPECT_EQ(FormatDateTimeLocal(0.0), "12/30/1899 12:00:00 AM");
}

}  // namespace
}  // namespace nvdl::test
