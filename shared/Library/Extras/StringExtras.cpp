#include "shared/Library/Extras/StringExtras.h"

#include "system/Utf8.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <string_view>

std::optional<QString> StringExtras::myStringWithCString(const char* cString, std::uint64_t length)
{
    const std::string_view bytes(cString, ::strnlen(cString, length));
    return Utf8::isAscii(bytes) ? std::optional(QString::fromLatin1(bytes)) : std::nullopt;
}

QString StringExtras::stringFromHexVersion(std::int32_t version)
{
    return QStringLiteral("%1.%2.%3")
        .arg(version >> 8)
        .arg((version >> 4) & 0xF)
        .arg(version & 0xF);
}

QString StringExtras::stringByRemovingCharactersInSet(
    const QString& string, const CharacterSet& set)
{
    QString result;
    std::copy_if(string.begin(), string.end(), std::back_inserter(result),
        [&](QChar unit) { return !set(unit.unicode()); });
    return result;
}

QString StringExtras::stringByRemovingExcessCharactersInSet(
    const QString& string, const CharacterSet& set)
{
    QString result;
    bool wasMember = true;
    for (const QChar unit : string) {
        const bool isMember = set(unit.unicode());
        if (!isMember || !wasMember)
            result += unit;
        wasMember = isMember;
    }
    return result;
}

QString StringExtras::stringByTrimmingLeadingWhitespaces(const QString& string)
{
    const auto* const first
        = std::find_if_not(string.begin(), string.end(), [](QChar unit) { return unit.isSpace(); });
    return string.sliced(first - string.begin());
}

QString StringExtras::stringByTrimmingTrailingDigits(const QString& string)
{
    // Any line end may stand behind the digits, which are not ASCII's alone.
    static const QRegularExpression digitsAtEnd(
        QStringLiteral("(*ANY)\\d*$"), QRegularExpression::UseUnicodePropertiesOption);
    return QString(string).remove(digitsAtEnd);
}

bool StringExtras::containsString(const QString& string, const QString& needle, bool ignoreCase)
{
    constexpr auto form = QString::NormalizationForm_C;
    return string.normalized(form).contains(
        needle.normalized(form), ignoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
}

bool StringExtras::containsStrings(
    const QString& string, const QStringList& needles, bool ignoreCase)
{
    return std::all_of(needles.begin(), needles.end(),
        [&](const QString& needle) { return containsString(string, needle, ignoreCase); });
}

QString StringExtras::stringByReplacingSlashesWithColons(const QString& string)
{
    return QString(string).replace(u'/', u':');
}

QString StringExtras::stringByReplacingColonsWithSlashes(const QString& string)
{
    return QString(string).replace(u':', u'/');
}
