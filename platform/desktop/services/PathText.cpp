#include "platform/desktop/services/PathText.h"

QString PathText::textOf(const std::filesystem::path& path)
{
    return QString::fromStdString(path.native());
}

std::filesystem::path PathText::pathOf(const QString& text)
{
    return text.toStdString();
}
