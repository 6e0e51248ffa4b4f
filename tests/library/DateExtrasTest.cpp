#include "shared/Library/Extras/DateExtras.h"

#include <QDebug>

#include <gtest/gtest.h>

using namespace DateExtras;

TEST(DateExtras, countsLocalDays)
{
    qputenv("TZ", "Pacific/Kiritimati"); // 14 hours ahead
    const auto utc = [](int year, int month, int day) {
        return dateWithGregorianYear(year, month, day).toUTC().toString(Qt::ISODate);
    };
    EXPECT_EQ(utc(2010, 13, 0), u"2010-12-30T10:00:00Z");
    EXPECT_EQ(utc(0, 12, 33), u"0001-01-02T10:29:20Z"); // mean local time
    EXPECT_FALSE(dateWithGregorianYear(INT32_MIN, INT32_MIN, 1).isValid());

    const std::pair<int, const char*> days[]
        = {{-400, "%m %H"}, {-2, "%m %H"}, {-1, "Yesterday %H"}, {0, "Today %H"}, {1, "%m %H"}};
    for (const auto& [number, format] : days) {
        for (const QTime time : {QTime(0, 0), QTime(23, 59, 59, 999)}) {
            const QDateTime date(QDate::currentDate().addDays(number), time);
            EXPECT_EQ(daysSinceToday(date.toUTC()), number);
            const auto relative = dateWithRelativeDateFormat(date, u"%m"_qs, u"%H"_qs, {});
            EXPECT_EQ(relative.calendarFormat, QLatin1String(format));
            EXPECT_EQ(relative.date, date);
        }
    }
    const QDateTime date = QDate::currentDate().startOfDay(); // yesterday in the other zone
    const auto inUTC = dateWithRelativeDateFormat(date, {}, u"%H"_qs, QTimeZone::utc());
    EXPECT_EQ(inUTC.description(), u"Today 10");
    EXPECT_TRUE(isBetweenDate(date, date.toUTC(), date));
    EXPECT_FALSE(isBetweenDate(date, date.addMSecs(1), date.addDays(1)));
    EXPECT_FALSE(isBetweenDate(date, date.addDays(-1), date.addMSecs(-1)));
}

TEST(DateExtras, fillsInTheDirectives)
{
    const QDateTime date(QDate(2009, 7, 5), QTime(0, 3, 7, 42), QTimeZone("America/St_Johns"));
    const std::pair<const char*, const char*> texts[]
        = {{"%Y-%m-%d %H:%M:%S.%F %Z %z", "2009-07-05 00:03:07.042 NDT -0230"},
            {"%y %j %e %w %I %p %A %a %B %b", "09 186 5 0 12 AM Sunday Sun July Jul"},
            {"%x|%X|%c|%1x", "07/05/09|00:03:07|Sun Jul 5 00:03:07 2009|07/05/09"},
            {"%1m/%1d/%1y %1H %1z 100%% %%d %Q %1 % %1Q%", "7/5/9 0 -0230 100% %d %Q %1 % %1Q%"}};
    for (const auto& [format, text] : texts)
        EXPECT_EQ((CalendarDate{date, QLatin1String(format)}.description()), QLatin1String(text));
}
