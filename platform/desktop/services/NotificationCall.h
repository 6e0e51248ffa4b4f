// The calls of the notification service, as the Desktop Notifications Specification has them.
#pragma once

#include "platform/desktop/services/Notification.h"

#include <QDBusMessage>
#include <QString>
#include <QStringList>

namespace NotificationCall
{

inline const QString service = QStringLiteral("org.freedesktop.Notifications");
inline const QString objectPath = QStringLiteral("/org/freedesktop/Notifications");

// One of its methods, without arguments yet.
[[nodiscard]] QDBusMessage of(const QString& method);

// Shows the content in the place of another notification (0: of none), as far as the service's
// capabilities go.
[[nodiscard]] QDBusMessage notify(
    const Notification::Content& content, uint replaced, const QStringList& capabilities);

} // namespace NotificationCall
