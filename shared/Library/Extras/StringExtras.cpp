#include "shared/Library/Extras/StringExtras.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace
{

bool isLineEnd(QChar unit)
{
    return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028'
        || unit == u'\u2029';
}

qsizetype indexOfLastLineEnd(QStringView text)
{
    if (text.endsWith(u"\r\n"))
        return text.size() - 2;
    return !text.isEmpty() && isLineEnd(text.back()) ? text.size() - 1 : text.size();
}

// How many units the digit at the end takes; 0 when there is none.
qsizetype sizeOfLastDigit(QStringView text)
{
    if (text.isEmpty())
        return 0;
    if (text.back().isDigit())
        return 1;
    const bool isPair = text.size() > 1 && text.back().isLowSurrogate()
        && text[text.size() - 2].isHighSurrogate();
    return isPair
            && QChar::isDigit(QChar::surrogateToUcs4(text[text.size() - 2], text[text.size() - 1]))
        ? 2
        : 0;
}

} // namespace

std::optional<QString> StringExtras::myStringWithCString(const char* cString, std::uint64_t length)
{
    const std::string_view bytes(cString, ::strnlen(cString, length));
    const auto isASCII = [](char byte) { return (static_cast<unsigned char>(byte) & 0x80U) == 0; };
    if (!std::all_of(bytes.begin(), bytes.end(), isASCII))
        return std::nullopt;
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
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
    const auto sizeBefore = [&](qsizetype end) {
        while (const qsizetype digit = sizeOfLastDigit(QStringView(string).first(end)))
            end -= digit;
        return end;
    };
    const qsizetype lineEnd = indexOfLastLineEnd(string);
    const qsizetype digits = sizeBefore(lineEnd);
    return string.first(digits) + string.sliced(lineEnd);
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
