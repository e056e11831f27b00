#include <gtest/gtest.h>

#include <vector>

#include "platform/MessageFormat.h"

using namespace nvdl;

namespace {

std::optional<std::string> fmt(std::string_view format, std::vector<MessageArg> args = {}, std::size_t buffer = 512) {
    return formatMessage(format, args, buffer);
}

}  // namespace

TEST(MessageFormat, InsertsWithAndWithoutPrintfFormats) {
    EXPECT_EQ(fmt("%2 = %1.", {std::int32_t{7}, std::string("Count")}), "Count = 7.");
    EXPECT_EQ(fmt("[%1!5.2s!][%1!-4s!][%1!.1s!]", {std::string("abcdef")}), "[   ab][abcdef][a]");
    EXPECT_EQ(fmt("%1!d! %1!x! %1!04X! %1!#o!", {std::int32_t{255}}), "255 ff 00FF 0377");
    EXPECT_EQ(fmt("%1!lu! %1!I64u! %1!d! %1!+d!", {std::int32_t{-1}}), "4294967295 4294967295 -1 -1");
    EXPECT_EQ(fmt("%1!hd! %1!hu! %1!hhd!", {std::int32_t{0x1FFFF}}), "-1 65535 -1");
    EXPECT_EQ(fmt("%1!c!%1!3c!|%1!-3c!|", {std::int32_t{'A'}}), "A  A|A  |");
    EXPECT_EQ(fmt("%1!-5d!|%1!.3d!", {std::int32_t{42}}), "42   |042");
}

TEST(MessageFormat, ConversionLetterDoesNotDecideTheArgumentType) {
    EXPECT_EQ(fmt("%1!s! %1!5s!", {std::int32_t{-42}}), "-42   -42");
    EXPECT_EQ(fmt("%1!d! %1!x! %1!5d!|%1!-5u!|", {std::string("ab")}), "ab ab    ab|ab   |");
}

TEST(MessageFormat, TwoDigitInsertNumbers) {
    std::vector<MessageArg> args;
    for (int i = 1; i <= 12; ++i) args.emplace_back(std::int32_t{i * 100});
    EXPECT_EQ(fmt("%1 %10 %12 %123", args), "100 1000 1200 12003");
    EXPECT_EQ(fmt("%10", {std::int32_t{1}}), std::nullopt);  // insert 10, not 1 then '0'
}

TEST(MessageFormat, Escapes) {
    EXPECT_EQ(fmt("a%nb%tc%rd%be%%f%.g%!h"), "a\r\nb\tc\rd e%f.g!h");
    EXPECT_EQ(fmt("kept %q and % too"), "kept q and  too");
    EXPECT_EQ(fmt("stop here%0 not this %5", {}), "stop here");
    EXPECT_EQ(fmt("%0"), "");
    EXPECT_EQ(fmt("line\nbreak as written"), "line\nbreak as written");
}

TEST(MessageFormat, BadInsertsProduceNothing) {
    const std::vector<MessageArg> two = {std::int32_t{1}, std::string("x")};
    for (const char* format : {"%3", "value %1!d", "%1!*d!", "%1!5.*s!", "%1!f!", "%1!n!", "%1!p!", "%1!ll!",
                               "%1!!", "%1!d !", "%1!1234567d!", "%1!.1234567d!", "ends with %"}) {
        EXPECT_EQ(formatMessage(format, two), std::nullopt) << format;
    }
    EXPECT_EQ(fmt("%1", {}), std::nullopt);
}

TEST(MessageFormat, ResultMustFitTheBuffer) {
    const std::string text(511, 'x');
    EXPECT_EQ(fmt(text), text);
    EXPECT_EQ(fmt(text + "y"), std::nullopt);
    EXPECT_EQ(fmt("ab%1", {std::string("cd")}, 5), "abcd");
    EXPECT_EQ(fmt("ab%1", {std::string("cde")}, 5), std::nullopt);
    EXPECT_EQ(fmt("a%n", {}, 3), std::nullopt);
    EXPECT_EQ(fmt("", {}, 0), std::nullopt);
    // Wide fields are refused before they are made; a long precision on text only limits it.
    EXPECT_EQ(fmt("%1!600d!", {std::int32_t{1}}), std::nullopt);
    EXPECT_EQ(fmt("%1!.600d!", {std::int32_t{1}}), std::nullopt);
    EXPECT_EQ(fmt("%1!.99999s!", {std::string("short")}), "short");
    EXPECT_EQ(fmt("%1!510d!", {std::int32_t{1}})->size(), 510u);
}
