#include "platform/desktop/services/PathText.h"

#include "system/PathString.h"

QString PathText::textOf(const std::filesystem::path& path)
{
    return QString::fromStdString(path.native());
}

std::filesystem::path PathText::pathOf(const QString& text)
{
    return text.toStdString();
}

QString PathText::abbreviatedWithTilde(const QString& path)
{
    const QString home = QString::fromStdString(PathString::stringByExpandingTildeInPath("~"));
    if (path == home)
        return QStringLiteral("~");
    const bool isInside = home.size() > 1 && path.startsWith(home + QLatin1Char('/'));
    return isInside ? QLatin1Char('~') + path.mid(home.size()) : path;
}
