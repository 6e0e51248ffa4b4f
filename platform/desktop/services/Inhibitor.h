// Holds off suspend and logout for a time, by the first of these that does it: the desktop's
// portal, logind, the session manager. All of them let go by themselves when this process ends,
// however it ends. Nothing waits for any of them, and where none does it, nothing is held off. Main
// thread.
#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>

class Inhibitor : public QObject
{
public:
    using QObject::QObject;
    Inhibitor(const Inhibitor&) = delete;
    Inhibitor& operator=(const Inhibitor&) = delete;
    ~Inhibitor() override;

    // Until release(). The reason is shown to whoever wants to leave.
    void hold(const QString& reason);
    void release();

private:
    using Release = std::function<void()>;

    void _askPortal();
    void _askLogin();
    void _askManager(std::size_t index);
    void _take(Release release);

    QString _reason;
    bool _isWanted = false;
    bool _isAsking = false;
    Release _release; // of what is held
};
