#include "shared/Library/Extras/StringExtras.h"

#include <QDebug>

#include <limits>

#include <gtest/gtest.h>

namespace
{

bool isBlank(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

bool isDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

struct Case {
    QString text;
    QString result;
};

template <std::size_t count, typename Operation>
void expectResults(const Case (&cases)[count], Operation operation)
{
    for (const Case& each : cases)
        EXPECT_EQ(operation(each.text), each.result) << qPrintable(each.text);
}

} // namespace

TEST(StringExtras, takesASCIIUpToTheFirstZeroOrTheLength)
{
    using StringExtras::myStringWithCString;
    const char bytes[] = {'a', 'b', 'c', '\0', 'd', 'e', '\x7f', '\x80'};
    EXPECT_EQ(myStringWithCString(bytes, 7), u"abc");
    EXPECT_EQ(myStringWithCString(bytes, 2), u"ab");
    EXPECT_EQ(myStringWithCString(bytes, 0), u""_qs);
    EXPECT_EQ(myStringWithCString(bytes + 4, 3), u"de\x7f");
    EXPECT_EQ(myStringWithCString(bytes + 4, 4), std::nullopt);
    EXPECT_EQ(myStringWithCString("a", std::numeric_limits<std::uint64_t>::max()), u"a");
}

TEST(StringExtras, writesVersionsAsTheyArePacked)
{
    EXPECT_EQ(StringExtras::stringFromHexVersion(0x1068), u"16.6.8");
    EXPECT_EQ(StringExtras::stringFromHexVersion(0x0968), u"9.6.8");
    EXPECT_EQ(StringExtras::stringFromHexVersion(0), u"0.0.0");
    EXPECT_EQ(StringExtras::stringFromHexVersion(-1), u"-1.15.15");
}

TEST(StringExtras, removesMembersOfASet)
{
    const Case all[] = {{u"a1b22c"_qs, u"abc"_qs}, {u"12"_qs, u""_qs}, {u""_qs, u""_qs}};
    expectResults(all, [](const QString& text) {
        return StringExtras::stringByRemovingCharactersInSet(text, isDigit);
    });
    const Case excess[] = {{u""_qs, u""_qs}, {u"   "_qs, u""_qs}, {u"a  b"_qs, u"a b"_qs},
        {u"  a \t "_qs, u"a "_qs}, {u"ab"_qs, u"ab"_qs}, {u"  a   b  "_qs, u"a b "_qs}};
    expectResults(excess, [](const QString& text) {
        return StringExtras::stringByRemovingExcessCharactersInSet(text, isBlank);
    });
}

TEST(StringExtras, trimsOneEnd)
{
    const Case leading[] = {{u"  x y "_qs, u"x y "_qs}, {u"\u2003\n\u3000x"_qs, u"x"_qs},
        {u" \t"_qs, u""_qs}, {u"x"_qs, u"x"_qs}, {u"\u200bx"_qs, u"\u200bx"_qs}};
    expectResults(leading, StringExtras::stringByTrimmingLeadingWhitespaces);

    const Case trailing[] = {{u"Untitled 12"_qs, u"Untitled "_qs}, {u"12"_qs, u""_qs},
        {u"a1b"_qs, u"a1b"_qs}, {u""_qs, u""_qs}, {u"a\u0663\u096a"_qs, u"a"_qs}, // Arabic, Hindi
        {u"a\U0001d7d8"_qs, u"a"_qs}, // a digit of two units
        {u"a\u00b2"_qs, u"a\u00b2"_qs}, // no decimal digit
        {u"1\U0001f600"_qs, u"1\U0001f600"_qs}, {u"a12\r\n"_qs, u"a\r\n"_qs},
        {u"a12\n\n"_qs, u"a12\n\n"_qs}};
    expectResults(trailing, StringExtras::stringByTrimmingTrailingDigits);
}

TEST(StringExtras, findsWhatIsContained)
{
    using StringExtras::containsString;
    using StringExtras::containsStrings;
    EXPECT_TRUE(containsString(u""_qs, QString(), false));
    EXPECT_TRUE(containsString(u""_qs, u""_qs, true));
    EXPECT_TRUE(containsString(u"ABC"_qs, u"b"_qs, true));
    EXPECT_FALSE(containsString(u"ABC"_qs, u"b"_qs, false));
    EXPECT_TRUE(containsString(u"ÄRGER"_qs, u"ärg"_qs, true));
    EXPECT_TRUE(containsString(u"cafe\u0301"_qs, u"caf\u00e9"_qs, false));
    EXPECT_FALSE(containsString(u"cafe\u0301"_qs, u"cafe"_qs, false));

    EXPECT_TRUE(containsStrings(u"ABC"_qs, {}, false));
    EXPECT_TRUE(containsStrings(u"ABC"_qs, {u"c"_qs, u"A"_qs}, true));
    EXPECT_FALSE(containsStrings(u"ABC"_qs, {u"A"_qs, u"c"_qs}, false));
}

TEST(StringExtras, swapsSlashesAndColons)
{
    EXPECT_EQ(StringExtras::stringByReplacingSlashesWithColons(u"/a:b//"_qs), u":a:b::");
    EXPECT_EQ(StringExtras::stringByReplacingColonsWithSlashes(u"/a:b::"_qs), u"/a/b//");
}
