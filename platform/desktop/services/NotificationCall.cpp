#include "platform/desktop/services/NotificationCall.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/UriList.h"

#include <QVariantMap>

#include <array>

namespace
{

struct Manner {
    const char* category;
    uchar urgency; // 0 low, 1 normal
    int expiry; // in milliseconds; -1: as the desktop has it, 0: never
    bool isTransient; // nothing to be kept in a list
};

const Manner& mannerOf(Notification::Kind kind)
{
    static const std::array<Manner, 3> manners{Manner{"transfer", 0, 0, true},
        Manner{"transfer.complete", 1, -1, false}, Manner{"transfer.error", 1, -1, false}};
    return manners.at(static_cast<std::size_t>(kind));
}

// The program's own picture, which needs no icon theme.
QString icon()
{
    const auto file = Bundle::main().pathForResource(Bundle::bundleIdentifier, "png");
    return file ? QString::fromStdString(UriList::fileUri(*file))
                : QString::fromLatin1(Bundle::bundleIdentifier);
}

} // namespace

QDBusMessage NotificationCall::of(const QString& method)
{
    return QDBusMessage::createMethodCall(service, objectPath, service, method);
}

QDBusMessage NotificationCall::notify(
    const Notification::Content& content, uint replaced, const QStringList& capabilities)
{
    const Manner& manner = mannerOf(content.kind);
    QVariantMap hints{
        {QStringLiteral("desktop-entry"), QString::fromLatin1(Bundle::bundleIdentifier)},
        {QStringLiteral("category"), QString::fromLatin1(manner.category)},
        {QStringLiteral("urgency"), QVariant::fromValue(manner.urgency)},
        {QStringLiteral("transient"), manner.isTransient}};
    if (content.percent)
        hints.insert(QStringLiteral("value"), *content.percent);
    QStringList actions;
    if (capabilities.contains(QLatin1String("actions")))
        for (const auto& [name, title] : content.actions)
            actions << name << title;
    const bool hasMarkup = capabilities.contains(QLatin1String("body-markup"));
    return of(QStringLiteral("Notify"))
        << QString::fromLatin1(Bundle::name) << replaced << icon() << content.title
        << (hasMarkup ? content.text.toHtmlEscaped() : content.text) << actions << hints
        << manner.expiry;
}
