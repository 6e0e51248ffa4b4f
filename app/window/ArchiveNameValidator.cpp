#include "app/window/ArchiveNameValidator.h"

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
    if (const QByteArray bytes = input.toUtf8(); bytes.size() > longestInBytes) {
        qsizetype end = longestInBytes;
        while ((static_cast<unsigned char>(bytes[end]) & 0xc0) == 0x80) // within a character
            --end;
        input = QString::fromUtf8(bytes.first(end));
    }
    position = std::min(position, static_cast<int>(input.size()));
    return Acceptable;
}
