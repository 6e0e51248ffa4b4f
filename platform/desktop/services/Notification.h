// One notification of the desktop (org.freedesktop.Notifications), which is replaced in place by
// what is shown next. Nothing waits for the service; what a slow one has not taken by then is
// passed over for what is newer. Main thread.
#pragma once

#include <QByteArray>
#include <QDBusPendingCall>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

class Notification : public QObject
{
    Q_OBJECT

public:
    enum class Kind { progress, done, failed };

    struct Content {
        Kind kind = Kind::done;
        QString title = {};
        QString text = {}; // plain
        // Name and title each, as far as the desktop shows buttons; "default" is pressed by a click
        // on the whole and has no title.
        std::vector<std::pair<QString, QString>> actions = {};
        std::optional<int> percent = {}; // of a progress
    };

    using QObject::QObject;

    void show(const Content& content);
    void close();

    // From show() on, until it is closed or could not be shown.
    [[nodiscard]] bool isShown() const { return _shownId != 0 || _isAsking; }

Q_SIGNALS:
    // By the user. The token lets a window come to the front for it; it may be empty.
    void invoked(const QString& action, const QByteArray& activationToken);

    // By the user, the desktop or close(), also after an action; or there is nobody who shows any.
    void gone();

private:
    Q_SLOT void _takeAction(uint id, const QString& action);
    Q_SLOT void _takeToken(uint id, const QString& token);
    Q_SLOT void _takeClosed(uint id, uint reason);
    Q_SLOT void _takeEndOfService();

    void _sendNext();
    void _takeCapabilities(const QDBusPendingCall& answer);
    void _takeId(const QDBusPendingCall& answer);
    void _takeAnswer();
    void _listen();

    std::optional<QStringList> _capabilities; // of the service, once it has told them
    std::optional<Content> _next; // to be shown
    bool _isAsking = false; // the service, for which we do not wait
    bool _isToClose = false; // as soon as it has answered
    uint _shownId = 0; // of what is shown; 0: nothing
    QByteArray _token; // that came for the next action
};
