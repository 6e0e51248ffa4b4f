#include "app/ArchiveNameValidator.h"

#include <algorithm>

namespace
{

constexpr qsizetype longestInBytes = 255 - 4; // of a name on most file systems, without ".zip"

} // namespace

// A slash would lead to another folder.
QValidator::State ArchiveNameValidator::validate(QString& input, int& position) const
{
    input.replace(QLatin1Char('/'), QLatin1Char('-'));
    input.remove(QChar::Null);
    while (input.toUtf8().size() > longestInBytes)
        input.chop(input.back().isLowSurrogate() ? 2 : 1);
    position = std::min(position, static_cast<int>(input.size()));
    return Acceptable;
}
