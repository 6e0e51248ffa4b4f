// Calendar days and ranges of dates. "Local" is the system's time zone.
#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <cstdint>

// A moment in a time zone, with the format that it is written in.
struct CalendarDate {
    QDateTime date;
    QString calendarFormat;

    // The format with its directives filled in, in English:
    // %Y %y year, %m %B %b month, %d %e day (%e without a leading zero), %j day of the year,
    // %A %a %w weekday (%w: 0 is Sunday), %H %I hour of 24 and of 12, %p AM or PM, %M minute,
    // %x date as 07/04/26, %X time as 09:30:00, %c both as Sat Jul 4 09:30:00 2026,
    // %S second, %F millisecond, %Z %z time zone by name and as +hhmm, %% a percent sign.
    // A 1 after the percent sign drops leading zeros ("%1d"). Anything else stays as it is.
    [[nodiscard]] QString description() const;
};

namespace DateExtras
{

// The local day's first moment. Months and days past their ends run on into the next or previous
// ones; year 0 is 1 BC. The Gregorian calendar holds for all times. Invalid for years that no date
// can hold.
[[nodiscard]] QDateTime dateWithGregorianYear(
    std::int32_t year, std::int32_t month, std::int32_t day);

// Local calendar days from today, whatever the time of day: -1 for yesterday, 1 for tomorrow.
[[nodiscard]] std::int32_t daysSinceToday(const QDateTime& date);

// "Today", "Yesterday" (in English, and by local days) or the day in the date format, then the time
// format; written in the given time zone, or the local one when it is not valid.
[[nodiscard]] CalendarDate dateWithRelativeDateFormat(const QDateTime& date,
    const QString& dateFormat, const QString& timeFormat, const QTimeZone& timeZone);

// Bounds included, by value: dates have no identity here. Swapped bounds hold only for a date that
// is equal to both.
[[nodiscard]] bool isBetweenDate(
    const QDateTime& date, const QDateTime& firstDate, const QDateTime& andDate);

} // namespace DateExtras
