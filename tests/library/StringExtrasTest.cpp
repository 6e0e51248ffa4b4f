#include "shared/Library/Extras/StringExtras.h"

#include <QDebug>

#include <gtest/gtest.h>

using namespace StringExtras;

TEST(StringExtras, takesChangesAndFindsTexts)
{
    const auto isBlank = [](char16_t unit) { return unit == u' ' || unit == u'\t'; };
    EXPECT_EQ(stringByRemovingCharactersInSet(u" a\tb  c "_qs, isBlank), u"abc");
    EXPECT_EQ(stringByRemovingExcessCharactersInSet(u"  a \t b  "_qs, isBlank), u"a b ");
    EXPECT_EQ(stringByTrimmingLeadingWhitespaces(u"\u2003\n\u3000x y "_qs), u"x y ");
    const std::pair<QString, QString> trimmed[] = {{u"1 Untitled 12"_qs, u"1 Untitled "_qs},
        {u"a1b"_qs, u"a1b"_qs}, {u"a\u0663\u096a\U0001d7d8"_qs, u"a"_qs},
        {u"a\u00b2"_qs, u"a\u00b2"_qs}, {u"a12\r\n"_qs, u"a\r\n"_qs}};
    for (const auto& [text, result] : trimmed)
        EXPECT_EQ(stringByTrimmingTrailingDigits(text), result);
    EXPECT_EQ(stringByReplacingSlashesWithColons(u"/a:b//"_qs), u":a:b::");
    EXPECT_EQ(stringByReplacingColonsWithSlashes(u"/a:b::"_qs), u"/a/b//");

    EXPECT_EQ(myStringWithCString("abc\0def", 7), u"abc");
    EXPECT_EQ(myStringWithCString("abc", 2), u"ab");
    EXPECT_EQ(myStringWithCString("\x80", 1), std::nullopt);
    EXPECT_EQ(stringFromHexVersion(0x1068), u"16.6.8");
    EXPECT_EQ(stringFromHexVersion(-1), u"-1.15.15");

    EXPECT_TRUE(containsStrings(u"Cafe\u0301"_qs, {u"caf\u00e9"_qs, u"cafe\u0301"_qs, {}}, true));
    EXPECT_FALSE(containsStrings(u"Café"_qs, {u"C"_qs, u"F"_qs}, false));
}
