// Tells whoever listens that something of a given name has happened to an object. Main thread only.
#pragma once

#include <QObject>
#include <QString>

class NotificationCenter : public QObject
{
    Q_OBJECT

public:
    static NotificationCenter& defaultCenter();

    void postNotificationName(const QString& name, QObject* object);

Q_SIGNALS:
    void notified(const QString& name, QObject* object);
};
