// Texts, dates and the maker's web site.

#include "shared/Library/Extras/DateExtras.h"
#include "shared/Library/Extras/QKWebsite.h"
#include "shared/Library/Extras/StringExtras.h"
#include "tests/support/NotingDesktop.h"
#include "tests/support/qt/QtTest.h"

using namespace DateExtras;
using namespace StringExtras;

TEST(StringExtras, takesChangesAndFindsTexts)
{
    const auto isBlank = [](char16_t unit) { return unit == u' ' || unit == u'\t'; };
    const std::pair<QString, const char*> texts[]
        = {{stringByRemovingCharactersInSet(u" a\tb  c "_qs, isBlank), "abc"},
            {stringByRemovingExcessCharactersInSet(u"  a \t b  "_qs, isBlank), "a b "},
            {stringByTrimmingLeadingWhitespaces(u"\u2003\n\u3000x y "_qs), "x y "},
            {stringByTrimmingTrailingDigits(u"1 Untitled 12"_qs), "1 Untitled "},
            {stringByTrimmingTrailingDigits(u"a\u0663\u096a\r\n"_qs), "a\r\n"},
            {stringByReplacingSlashesWithColons(u"/a:b//"_qs), ":a:b::"},
            {stringByReplacingColonsWithSlashes(u"/a:b::"_qs), "/a/b//"},
            {myStringWithCString("abc\0def", 7).value(), "abc"},
            {myStringWithCString("\x80", 1).value_or(u"none"_qs), "none"},
            {stringFromHexVersion(0x1068), "16.6.8"}};
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(text, QLatin1String(expected));
    EXPECT_TRUE(containsStrings(u"Cafe\u0301"_qs, {u"caf\u00e9"_qs, u"cafe\u0301"_qs, {}}, true));
    EXPECT_FALSE(containsStrings(u"Café"_qs, {u"C"_qs, u"F"_qs}, false));
}

TEST(DateExtras, countsLocalDaysAndFillsInTheDirectives)
{
    qputenv("TZ", "Pacific/Kiritimati"); // 14 hours ahead
    const QDateTime date = dateWithGregorianYear(2010, 13, 0);
    EXPECT_EQ(date.toUTC().toString(Qt::ISODate), u"2010-12-30T10:00:00Z");
    EXPECT_TRUE(isBetweenDate(date, date.toUTC(), date));
    EXPECT_FALSE(isBetweenDate(date, date.addMSecs(1), date.addDays(1)));

    const std::pair<int, const char*> days[]
        = {{-1, "Yesterday %H"}, {0, "Today %H"}, {1, "%m %H"}};
    for (const auto& [number, format] : days) {
        const QDateTime late(QDate::currentDate().addDays(number), QTime(23, 59, 59, 999));
        EXPECT_EQ(daysSinceToday(late.toUTC()), number);
        EXPECT_EQ(dateWithRelativeDateFormat(late, u"%m"_qs, u"%H"_qs, {}).calendarFormat,
            QLatin1String(format));
    }
    const QDateTime told(QDate(2009, 7, 5), QTime(0, 3, 7, 42), QTimeZone("America/St_Johns"));
    const std::pair<const char*, const char*> texts[]
        = {{"%Y-%m-%d %H:%M:%S.%F %Z %z", "2009-07-05 00:03:07.042 NDT -0230"},
            {"%y %j %e %w %I %p %A %a %B %b", "09 186 5 0 12 AM Sunday Sun July Jul"},
            {"%x|%X|%c", "07/05/09|00:03:07|Sun Jul 5 00:03:07 2009"},
            {"%1m/%1d %1H 100%% %%d %Q %1Q%", "7/5 0 100% %d %Q %1Q%"}};
    for (const auto& [format, text] : texts)
        EXPECT_EQ((CalendarDate{told, QLatin1String(format)}.description()), QLatin1String(text));
}

TEST(QKWebsite, opensThePagesOfItsProductsAndNoOthers)
{
    const NotingWorkspace workspace;
    for (const char* page : {"sendora/?a%25b", "a b/", "50%/", "\u00fcber/"})
        QKWebsite::visitPage(QString::fromUtf8(page)); // all but the first are no addresses
    for (const std::int32_t id : {22, -1, 5}) {
        QKWebsite::visitProductPage(id);
        QKWebsite::visitMUForProductId(id);
        QKWebsite::visitMacAppStoreForProductId(id);
    }
    EXPECT_TRUE(QKWebsite::download(20) && !QKWebsite::download(5) && !QKWebsite::download(40));
    QKWebsite::visitVTRead(22);
    const std::vector<std::string> expected{PARCELO_SITE "sendora/?a%25b", PARCELO_SITE "parcelo/",
        PARCELO_SITE "parcelo/mu/", PARCELO_SITE "parcelo/mas/",
        PARCELO_SITE "download/Pageloom.dmg", "http://downloads.example/dyn/moreinfo/macosx/40615"};
    EXPECT_EQ(workspace.opened, expected);
}
