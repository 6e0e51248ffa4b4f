// Typed values in the settings.
#pragma once

#include "platform/desktop/settings/UserDefaults.h"

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QPointF>

#include <optional>

namespace UserDefaultsExtras
{

// Registers the dictionary in the main bundle's resource of that name and the type "plist" as
// fallbacks; none when there is no such dictionary.
void registerDefaultsWithResource(UserDefaults& defaults, const QString& resource);

[[nodiscard]] QString stringForKey(
    const UserDefaults& defaults, const QString& key, const QString& defaultString);

// Stored as data, see ValueCoding. Reading throws UnarchivingFailure when the key holds anything
// else.
void setColor(UserDefaults& defaults, const QColor& color, const QString& forKey);
[[nodiscard]] std::optional<QColor> colorForKey(const UserDefaults& defaults, const QString& key);
void setFont(UserDefaults& defaults, const QFont& font, const QString& forKey);
[[nodiscard]] std::optional<QFont> fontForKey(const UserDefaults& defaults, const QString& key);

// A list of two numbers, x first, in single precision: what is read is the nearest that a float can
// hold. The zero point where there is no list; std::out_of_range for a list of less than two.
void setPoint(UserDefaults& defaults, QPointF point, const QString& forKey);
[[nodiscard]] QPointF pointForKey(const UserDefaults& defaults, const QString& key);

// Whole seconds since the start of 2001 in UTC, cut toward that time. They are read as a float: a
// date of 2018 to 2034 comes back as the nearest multiple of 64 seconds. Nothing where the number
// is 0 or less.
void setDate(UserDefaults& defaults, const QDateTime& date, const QString& forKey);
[[nodiscard]] std::optional<QDateTime> dateForKey(const UserDefaults& defaults, const QString& key);

// Adds 1 to the number under the key, stores it and returns it; after the greatest comes the
// least. Not at once: another thread may do the same between the reading and the writing.
int incrementIntegerForKey(UserDefaults& defaults, const QString& key);

} // namespace UserDefaultsExtras
