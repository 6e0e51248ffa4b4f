// Filtering, trimming, searching and converting of text, in UTF-16 units.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>

namespace StringExtras
{

// Says which units are members.
using CharacterSet = std::function<bool(char16_t unit)>;

// The text before the first zero byte, of at most `length` bytes; nothing if it is not all ASCII.
[[nodiscard]] std::optional<QString> myStringWithCString(const char* cString, std::uint64_t length);

// A packed version in decimal: all bits above the lowest eight, then four bits, then four. 0x1068
// gives "16.6.8": the upper part is read as one number, not as two packed digits.
[[nodiscard]] QString stringFromHexVersion(std::int32_t version);

[[nodiscard]] QString stringByRemovingCharactersInSet(
    const QString& string, const CharacterSet& set);

// Of each run of members its first stays, but none at the start of the text: blanks in "  a   b  "
// leave "a b ". That the end differs from the start is intended.
[[nodiscard]] QString stringByRemovingExcessCharactersInSet(
    const QString& string, const CharacterSet& set);

// All of Unicode's white space.
[[nodiscard]] QString stringByTrimmingLeadingWhitespaces(const QString& string);

// All of Unicode's decimal digits that stand at the end, or before one line end there.
[[nodiscard]] QString stringByTrimmingTrailingDigits(const QString& string);

// Whether composed and decomposed letters were written makes no difference. Empty text, and none,
// is contained in anything.
[[nodiscard]] bool containsString(const QString& string, const QString& needle, bool ignoreCase);

// All of them; true for none.
[[nodiscard]] bool containsStrings(
    const QString& string, const QStringList& needles, bool ignoreCase);

[[nodiscard]] QString stringByReplacingSlashesWithColons(const QString& string);
[[nodiscard]] QString stringByReplacingColonsWithSlashes(const QString& string);

} // namespace StringExtras
