// Colours and fonts as data, for the settings and for dictionaries: the word "color" or "font" as
// UTF-16 and the value, both as QDataStream writes them in its version for Qt 6.0. Nothing is lost.
#pragma once

#include <QByteArray>
#include <QColor>
#include <QFont>
#include <QVariant>

#include <stdexcept>

// The data does not hold the value that was asked for.
class UnarchivingFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

namespace ValueCoding
{

[[nodiscard]] QByteArray dataOf(const QColor& color);
[[nodiscard]] QByteArray dataOf(const QFont& font);

// Throw UnarchivingFailure for anything but what dataOf() made of a value of that kind.
[[nodiscard]] QColor colorOf(const QVariant& data);
[[nodiscard]] QFont fontOf(const QVariant& data);

} // namespace ValueCoding
