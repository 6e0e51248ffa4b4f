#pragma once

#include <QObject>
#include <QString>

// What a form is bound to in the test of the bindings.
class BindingsTestController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString filename MEMBER filename WRITE setFilename NOTIFY filenameDidChange)
    Q_PROPERTY(bool isValid READ isValid NOTIFY filenameDidChange)
    Q_PROPERTY(bool isOpen MEMBER isOpen NOTIFY isOpenDidChange)
    Q_PROPERTY(int archiveType MEMBER archiveType NOTIFY archiveTypeDidChange)
    Q_PROPERTY(QString appName MEMBER appName CONSTANT)

public:
    // Takes no slashes, and tells of a change only when there is one.
    void setFilename(QString name)
    {
        name.replace(QLatin1Char('/'), QLatin1Char(':'));
        if (name == filename)
            return;
        filename = name;
        Q_EMIT filenameDidChange();
    }
    bool isValid() const { return !filename.isEmpty(); }

    QString filename;
    bool isOpen = false;
    int archiveType = 1;
    QString appName = QStringLiteral("Parcelo");

Q_SIGNALS:
    void filenameDidChange();
    void isOpenDidChange();
    void archiveTypeDidChange();
};
