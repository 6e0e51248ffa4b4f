#include "shared/Library/Extras/DateExtras.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace
{

// What Qt calls the directives that it has names for.
constexpr std::pair<char16_t, const char*> qtFormats[] = {{u'Y', "yyyy"}, {u'y', "yy"},
    {u'm', "MM"}, {u'd', "dd"}, {u'e', "d"}, {u'H', "HH"}, {u'M', "mm"}, {u'S', "ss"},
    {u'F', "zzz"}, {u'B', "MMMM"}, {u'b', "MMM"}, {u'A', "dddd"}, {u'a', "ddd"}, {u'p', "AP"},
    {u'x', "MM/dd/yy"}, {u'X', "HH:mm:ss"}, {u'c', "ddd MMM d HH:mm:ss yyyy"}};

QString digits(int number, int width)
{
    return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

QString offsetText(int seconds)
{
    const int minutes = std::abs(seconds) / 60;
    const QChar sign = seconds < 0 ? u'-' : u'+';
    return sign + digits(minutes / 60 * 100 + minutes % 60, 4);
}

// Nothing for what is no directive.
std::optional<QString> textFor(char16_t directive, const QDateTime& date)
{
    switch (directive) {
    case u'j':
        return digits(date.date().dayOfYear(), 3);
    case u'w':
        return digits(date.date().dayOfWeek() % 7, 1);
    case u'I':
        return digits((date.time().hour() + 11) % 12 + 1, 2);
    case u'Z':
        return date.timeZoneAbbreviation();
    case u'z':
        return offsetText(date.offsetFromUtc());
    case u'%':
        return QStringLiteral("%");
    default:
        const auto* const found = std::ranges::find(
            qtFormats, directive, [](const auto& format) { return format.first; });
        return found == std::end(qtFormats)
            ? std::nullopt
            : std::optional(QLocale::c().toString(date, QLatin1String(found->second)));
    }
}

QDate localDay(const QDateTime& date)
{
    return date.toLocalTime().date();
}

} // namespace

QString CalendarDate::description() const
{
    static const QRegularExpression zerosBeforeNumber(QStringLiteral("^0+(?=\\d+$)"));
    QString text;
    for (qsizetype index = 0; index < calendarFormat.size(); ++index) {
        const QStringView rest = QStringView(calendarFormat).sliced(index);
        const qsizetype length = rest.startsWith(u"%1") ? 3 : 2;
        auto filled = rest.front() == u'%' && rest.size() >= length
            ? textFor(rest[length - 1].unicode(), date)
            : std::nullopt;
        if (filled && length == 3)
            filled->remove(zerosBeforeNumber);
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
