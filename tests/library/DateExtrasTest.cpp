#include "shared/Library/Extras/DateExtras.h"

#include <QDebug>

#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

namespace
{

// A time zone for everything local, as long as this lives.
class LocalZone
{
public:
    explicit LocalZone(const char* zone) { _set(zone); }
    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;
    ~LocalZone() { _set(_former.isNull() ? nullptr : _former.constData()); }

private:
    static void _set(const char* zone)
    {
        zone ? ::setenv("TZ", zone, 1) : ::unsetenv("TZ");
        ::tzset();
    }

    QByteArray _former = std::getenv("TZ"); // null: was not set
};

QString isoInUTC(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODate);
}

const char* const zones[] = {"UTC", "Europe/Berlin", "America/Los_Angeles", "Pacific/Auckland",
    "Asia/Kolkata", "Pacific/Kiritimati"};

QDateTime todayAt(int days, const QTime& time)
{
    return {QDate::currentDate().addDays(days), time};
}

} // namespace

TEST(DateExtras, makesTheFirstMomentOfALocalDay)
{
    struct Case {
        const char* zone;
        std::int32_t year, month, day;
        const char* inUTC;
    };
    const Case cases[] = {
        {"UTC", 2010, 10, 29, "2010-10-29T00:00:00Z"},
        {"Europe/Berlin", 2010, 10, 29, "2010-10-28T22:00:00Z"},
        {"Europe/Berlin", 2010, 11, 1, "2010-10-31T23:00:00Z"},
        {"Pacific/Auckland", 2000, 1, 1, "1999-12-31T11:00:00Z"},
        {"America/Los_Angeles", 1970, 1, 1, "1970-01-01T08:00:00Z"},
        {"America/Sao_Paulo", 2017, 10, 15, "2017-10-15T03:00:00Z"}, // begins at one o'clock
        {"UTC", 2010, 13, 1, "2011-01-01T00:00:00Z"},
        {"UTC", 2010, 0, 31, "2009-12-31T00:00:00Z"},
        {"UTC", 2010, -11, 1, "2009-01-01T00:00:00Z"},
        {"UTC", 2011, 2, 29, "2011-03-01T00:00:00Z"},
        {"UTC", 2012, 3, 0, "2012-02-29T00:00:00Z"},
        {"UTC", 1900, 2, 29, "1900-03-01T00:00:00Z"},
    };
    for (const Case& each : cases) {
        const LocalZone zone(each.zone);
        const QDateTime date = DateExtras::dateWithGregorianYear(each.year, each.month, each.day);
        EXPECT_EQ(isoInUTC(date), QLatin1String(each.inUTC)) << each.zone;
    }
    const LocalZone utc("UTC");
    EXPECT_EQ(DateExtras::dateWithGregorianYear(0, 12, 31).daysTo(
                  DateExtras::dateWithGregorianYear(1, 1, 1)),
        1);
    EXPECT_FALSE(DateExtras::dateWithGregorianYear(INT32_MIN, INT32_MIN, 1).isValid());
}

TEST(DateExtras, countsLocalCalendarDaysFromToday)
{
    for (const char* name : zones) {
        const LocalZone zone(name);
        const QDate start = QDate::currentDate();
        for (const int days : {-400, -2, -1, 0, 1, 400}) {
            for (const QTime time : {QTime(4, 0), QTime(23, 59, 59, 999)}) {
                const QDateTime date = todayAt(days, time);
                EXPECT_EQ(DateExtras::daysSinceToday(date), days) << name;
                EXPECT_EQ(DateExtras::daysSinceToday(date.toUTC()), days) << name;
            }
        }
        if (QDate::currentDate() != start)
            GTEST_SKIP() << "midnight came in between";
    }
}

TEST(DateExtras, saysTodayAndYesterdayByLocalDays)
{
    const auto format = [](const QDateTime& date, const QTimeZone& zone) {
        return DateExtras::dateWithRelativeDateFormat(
            date, QStringLiteral("%m/%d"), QStringLiteral("%H:%M"), zone);
    };
    const LocalZone zone("Asia/Kolkata");
    struct Case {
        int days;
        const char* format;
    };
    for (const Case& each :
        {Case{0, "Today %H:%M"}, {-1, "Yesterday %H:%M"}, {-2, "%m/%d %H:%M"}, {1, "%m/%d %H:%M"}})
        EXPECT_EQ(format(todayAt(each.days, QTime(12, 0)), {}).calendarFormat,
            QLatin1String(each.format));

    EXPECT_EQ(format(todayAt(0, QTime(12, 0)), {}).description(), u"Today 12:00");
    // The words go by the local day, the time by the zone.
    EXPECT_EQ(format(todayAt(0, QTime(12, 0)), QTimeZone::utc()).description(), u"Today 06:30");
    EXPECT_EQ(format(todayAt(-1, QTime(1, 0)), QTimeZone::utc()).description(), u"Yesterday 19:30");
}

TEST(DateExtras, fillsInTheDirectives)
{
    const QTimeZone berlin("Europe/Berlin");
    const QDateTime summer(QDate(2009, 7, 5), QTime(0, 3, 7, 42), berlin);
    const QDateTime winter(QDate(2000, 12, 31), QTime(12, 0), QTimeZone("America/St_Johns"));
    struct Case {
        const QDateTime& date;
        const char* format;
        const char* text;
    };
    const Case cases[] = {
        {summer, "%Y-%m-%d %H:%M:%S.%F", "2009-07-05 00:03:07.042"},
        {summer, "%y %j %e %w %I %p", "09 186 5 0 12 AM"},
        {summer, "%A %a %B %b", "Sunday Sun July Jul"},
        {summer, "%x|%X|%c|%1x", "07/05/09|00:03:07|Sun Jul 5 00:03:07 2009|07/05/09"},
        {summer, "%Z %z", "CEST +0200"},
        {summer, "%1m/%1d/%1y %1H:%1M", "7/5/9 0:3"},
        {summer, "100%% %Q %1 % %1Q", "100% %Q %1 % %1Q"},
        {summer, "%", "%"},
        {summer, "%%d %1", "%d %1"},
        {winter, "%a %d %b %j %I %p %z", "Sun 31 Dec 366 12 PM -0330"},
        {winter, "", ""},
    };
    for (const Case& each : cases) {
        const CalendarDate date{.date = each.date, .calendarFormat = QLatin1String(each.format)};
        EXPECT_EQ(date.description(), QLatin1String(each.text)) << each.format;
    }
}

TEST(DateExtras, includesBothBounds)
{
    const QDateTime first(QDate(1999, 12, 31), QTime(23, 59), Qt::UTC);
    const QDateTime second = first.addSecs(120);
    const QDateTime sameElsewhere = first.toTimeZone(QTimeZone("Asia/Tokyo"));
    EXPECT_TRUE(DateExtras::isBetweenDate(sameElsewhere, first, second));
    EXPECT_TRUE(DateExtras::isBetweenDate(second, first, second));
    EXPECT_FALSE(DateExtras::isBetweenDate(first.addMSecs(-1), first, second));
    EXPECT_FALSE(DateExtras::isBetweenDate(second.addMSecs(1), first, second));
    EXPECT_FALSE(DateExtras::isBetweenDate(first.addSecs(60), second, first));
    EXPECT_TRUE(DateExtras::isBetweenDate(first, sameElsewhere, first));
}
