#include "app/window/Translations.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/PathText.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

Translations::Translations()
{
    const QLocale locale;
    const auto folder = Bundle::main().pathForResource("translations");
    const QString own = folder ? PathText::textOf(*folder) : QString();
    if (_qt.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&_qt);
    if (_english.load(QStringLiteral("parcelo_en"), own))
        QCoreApplication::installTranslator(&_english);
    if (_own.load(locale, QStringLiteral("parcelo"), QStringLiteral("_"), own))
        QCoreApplication::installTranslator(&_own);
}

Translations::~Translations() = default;
