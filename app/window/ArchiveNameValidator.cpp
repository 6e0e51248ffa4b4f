#include "app/window/ArchiveNameValidator.h"

#include "system/FileName.h"
#include "system/Utf8.h"

#include <algorithm>

namespace
{

constexpr std::size_t longestInBytes = FileName::longestInBytes - 4; // without ".zip"

} // namespace

// A slash would lead to another folder.
QValidator::State ArchiveNameValidator::validate(QString& input, int& position) const
{
    input.replace(QLatin1Char('/'), QLatin1Char('-'));
    input.remove(QChar::Null);
    const std::string name = input.toStdString();
    if (name.size() > longestInBytes)
        input = QString::fromStdString(std::string(Utf8::shortened(name, longestInBytes)));
    position = std::min(position, static_cast<int>(input.size()));
    return Acceptable;
}
