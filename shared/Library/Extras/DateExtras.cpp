#include "shared/Library/Extras/DateExtras.h"

#include <QLocale>

#include <cstdlib>
#include <optional>

namespace
{

QString digits(std::int64_t number, int width)
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

QString offsetText(int seconds)
{
    const int minutes = std::abs(seconds) / 60;
    const QChar sign = seconds < 0 ? u'-' : u'+';
    return sign + digits(minutes / 60 * 100 + minutes % 60, 4);
}

// Nothing for what is no directive, here and below.
std::optional<QString> numberFor(char16_t directive, const QDateTime& date, bool withZeros)
{
    const QDate day = date.date();
    const QTime time = date.time();
    const auto filled
        = [&](int number, int width) { return digits(number, withZeros ? width : 1); };
    switch (directive) {
    case u'Y':
        return filled(day.year(), 4);
    case u'y':
        return filled(std::abs(day.year()) % 100, 2);
    case u'm':
        return filled(day.month(), 2);
    case u'd':
        return filled(day.day(), 2);
    case u'e':
        return filled(day.day(), 1);
    case u'j':
        return filled(day.dayOfYear(), 3);
    case u'w':
        return filled(day.dayOfWeek() % 7, 1);
    case u'H':
        return filled(time.hour(), 2);
    case u'I':
        return filled((time.hour() + 11) % 12 + 1, 2);
    case u'M':
        return filled(time.minute(), 2);
    case u'S':
        return filled(time.second(), 2);
    case u'F':
        return filled(time.msec(), 3);
    default:
        return std::nullopt;
    }
}

std::optional<QString> textFor(char16_t directive, const QDateTime& date, bool withZeros)
{
    const QLocale english = QLocale::c();
    const QDate day = date.date();
    switch (directive) {
    case u'B':
        return english.monthName(day.month(), QLocale::LongFormat);
    case u'b':
        return english.monthName(day.month(), QLocale::ShortFormat);
    case u'A':
        return english.dayName(day.dayOfWeek(), QLocale::LongFormat);
    case u'a':
        return english.dayName(day.dayOfWeek(), QLocale::ShortFormat);
    case u'p':
        return date.time().hour() < 12 ? english.amText() : english.pmText();
    case u'x':
        return CalendarDate{date, QStringLiteral("%m/%d/%y")}.description();
    case u'X':
        return CalendarDate{date, QStringLiteral("%H:%M:%S")}.description();
    case u'c':
        return CalendarDate{date, QStringLiteral("%a %b %e %X %Y")}.description();
    case u'Z':
        return date.timeZoneAbbreviation();
    case u'z':
        return offsetText(date.offsetFromUtc());
    case u'%':
        return QStringLiteral("%");
    default:
        return numberFor(directive, date, withZeros);
    }
}

QDate localDay(const QDateTime& date)
{
    return date.toLocalTime().date();
}

} // namespace

QString CalendarDate::description() const
{
    QString text;
    for (qsizetype index = 0; index < calendarFormat.size(); ++index) {
        const QStringView rest = QStringView(calendarFormat).sliced(index);
        const qsizetype length = rest.startsWith(u"%1") ? 3 : 2;
        const auto filled = rest.front() == u'%' && rest.size() >= length
            ? textFor(rest[length - 1].unicode(), date, length == 2)
            : std::nullopt;
        text += filled.value_or(rest.first(1).toString());
        index += filled ? length - 1 : 0;
    }
    return text;
}

QDateTime DateExtras::dateWithGregorianYear(std::int32_t year, std::int32_t month, std::int32_t day)
{
    const std::int64_t months = std::int64_t{year} * 12 + month - 1;
    const std::int64_t monthInYear = (months % 12 + 12) % 12;
    const std::int64_t fullYear = (months - monthInYear) / 12;
    const std::int64_t number = fullYear > 0 ? fullYear : fullYear - 1; // a QDate knows no year 0
    if (number != static_cast<int>(number))
        return {};
    return QDate(static_cast<int>(number), static_cast<int>(monthInYear) + 1, 1)
        .addDays(std::int64_t{day} - 1)
        .startOfDay();
}

std::int32_t DateExtras::daysSinceToday(const QDateTime& date)
{
    return static_cast<std::int32_t>(localDay(QDateTime::currentDateTime()).daysTo(localDay(date)));
}

CalendarDate DateExtras::dateWithRelativeDateFormat(const QDateTime& date,
    const QString& dateFormat, const QString& timeFormat, const QTimeZone& timeZone)
{
    const std::int32_t days = daysSinceToday(date);
    const QString day = days == 0 ? QStringLiteral("Today")
        : days == -1              ? QStringLiteral("Yesterday")
                                  : dateFormat;
    return {.date = timeZone.isValid() ? date.toTimeZone(timeZone) : date.toLocalTime(),
        .calendarFormat = day + u' ' + timeFormat};
}

bool DateExtras::isBetweenDate(
    const QDateTime& date, const QDateTime& firstDate, const QDateTime& andDate)
{
    return firstDate <= date && date <= andDate;
}
