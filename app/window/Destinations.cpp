#include "app/window/Destinations.h"

#include "platform/desktop/services/PathText.h"

#include <map>

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
            = fixed == abbreviations.end() ? PathText::abbreviatedWithTilde(path) : fixed->second;
        if (!folder.isEmpty() && !cleaned.contains(folder))
            cleaned.append(folder);
    }
    return cleaned;
}
