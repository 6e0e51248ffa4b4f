#include "platform/desktop/services/NotificationCenter.h"

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::postNotificationName(const QString& name, QObject* object)
{
    Q_EMIT notified(name, object);
}
