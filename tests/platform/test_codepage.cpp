#include <gtest/gtest.h>

#include "platform/CodePage.h"

using namespace nvdl;

TEST(CodePage, EveryByteSurvivesWidenAndNarrow) {
    std::string all;
    for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
    const std::u16string wide = widen(all);
    ASSERT_EQ(wide.size(), 256u);
    EXPECT_EQ(narrow(wide), all);

    // The row that differs from Latin-1, the five undefined bytes and the Latin-1 part.
    EXPECT_EQ(wide[0x80], u'\u20AC');
    EXPECT_EQ(wide[0x8A], u'\u0160');
    EXPECT_EQ(wide[0x99], u'\u2122');
    EXPECT_EQ(wide[0x9F], u'\u0178');
    for (int b : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) EXPECT_EQ(wide[b], static_cast<char16_t>(b)) << b;
    EXPECT_EQ(wide[0xA0], u'\u00A0');
    EXPECT_EQ(wide[0xFC], u'\u00FC');
}

TEST(CodePage, CharactersOutsideTheCodePageBecomeQuestionMarks) {
    EXPECT_EQ(narrow(u"\u00C4\u20AC\u0100\u4E2Dx"), "\xC4\x80??x");
    // C1 controls other than the five undefined bytes have no byte.
    EXPECT_EQ(narrow(u"\u0080\u009F"), "??");
    // A surrogate pair is one character; lone halves are one character each.
    EXPECT_EQ(narrow(u"a\U0001F600b"), "a?b");
    EXPECT_EQ(narrow(std::u16string{u'a', 0xD800, u'b', 0xDC00}), "a?b?");
    EXPECT_EQ(narrow(std::u16string{0xDC00, 0xD800}), "??");
}

TEST(CodePage, Utf8RoundTrip) {
    const std::u16string text = u"plain \u00E9\u20AC\u4E2D \U0001F600 end";
    const std::string utf8 = utf16ToUtf8(text);
    EXPECT_EQ(utf8, "plain \xC3\xA9\xE2\x82\xAC\xE4\xB8\xAD \xF0\x9F\x98\x80 end");
    EXPECT_EQ(utf8ToUtf16(utf8), text);
    EXPECT_EQ(utf8ToUtf16("\xF4\x8F\xBF\xBF"), u"\U0010FFFF");
}

TEST(CodePage, IllFormedTextBecomesReplacementCharacters) {
    // One replacement per maximal ill-formed part, the next good character kept.
    EXPECT_EQ(utf8ToUtf16("a\x80z"), u"a\uFFFDz");
    EXPECT_EQ(utf8ToUtf16("\xE2\x82z"), u"\uFFFDz");
    EXPECT_EQ(utf8ToUtf16("\xE2\x82"), u"\uFFFD");
    EXPECT_EQ(utf8ToUtf16("\xC0\x80"), u"\uFFFD\uFFFD");          // overlong NUL
    EXPECT_EQ(utf8ToUtf16("\xE0\x80\x80"), u"\uFFFD\uFFFD\uFFFD");  // overlong
    EXPECT_EQ(utf8ToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");  // encoded surrogate
    EXPECT_EQ(utf8ToUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(utf8ToUtf16("\xF5\xFF"), u"\uFFFD\uFFFD");
    EXPECT_EQ(utf16ToUtf8(std::u16string{u'a', 0xD800}), "a\xEF\xBF\xBD");
    EXPECT_EQ(utf16ToUtf8(std::u16string{0xDC00, u'b'}), "\xEF\xBF\xBD" "b");
}
