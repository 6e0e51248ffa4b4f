#include "platform/desktop/services/Notification.h"

#include "platform/desktop/services/BusCall.h"
#include "platform/desktop/services/NotificationCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

#include <array>
#include <chrono>
#include <utility>

using NotificationCall::objectPath;
using NotificationCall::service;

namespace
{

constexpr std::chrono::seconds replyTimeout{5}; // it may have to start first

} // namespace

void Notification::show(const Content& content)
{
    _next = content;
    _sendNext();
}

// Of what the service has not taken yet, only the answer will tell what is to be closed.
void Notification::close()
{
    _next.reset();
    _isToClose = _isAsking;
    if (_isAsking || _shownId == 0)
        return;
    _isAsking = true;
    BusCall::send(
        NotificationCall::of(QStringLiteral("CloseNotification")) << std::exchange(_shownId, 0U),
        replyTimeout, this, [this](const QDBusPendingCall& /*answer*/) { _takeAnswer(); });
}

// One call at a time: only its answer tells what is to be replaced by the next.
void Notification::_sendNext()
{
    if (_isAsking || !_next)
        return;
    _isAsking = true;
    _isToClose = false;
    if (!_capabilities) {
        BusCall::send(NotificationCall::of(QStringLiteral("GetCapabilities")), replyTimeout, this,
            [this](const QDBusPendingCall& answer) { _takeCapabilities(answer); });
        return;
    }
    const Content content = *std::exchange(_next, std::nullopt);
    BusCall::send(NotificationCall::notify(content, _shownId, *_capabilities), replyTimeout, this,
        [this](const QDBusPendingCall& answer) { _takeId(answer); });
}

void Notification::_takeCapabilities(const QDBusPendingCall& answer)
{
    const QDBusPendingReply<QStringList> reply = answer;
    if (reply.isError()) {
        _next.reset();
    } else {
        _capabilities = reply.value();
        _listen();
    }
    _takeAnswer();
}

void Notification::_takeId(const QDBusPendingCall& answer)
{
    const QDBusPendingReply<uint> reply = answer;
    _shownId = reply.isError() ? 0 : reply.value();
    _takeAnswer();
}

void Notification::_takeAnswer()
{
    _isAsking = false;
    if (_next)
        _sendNext();
    else if (_isToClose)
        close();
    if (!isShown())
        Q_EMIT gone();
}

// From whomever: to find out who owns the service, Qt would wait for the bus.
void Notification::_listen()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const std::array<std::pair<QString, const char*>, 3> slotsOfSignals{
        std::pair{QStringLiteral("ActionInvoked"), SLOT(_takeAction(uint, QString))},
        std::pair{QStringLiteral("ActivationToken"), SLOT(_takeToken(uint, QString))},
        std::pair{QStringLiteral("NotificationClosed"), SLOT(_takeClosed(uint, uint))}};
    for (const auto& [signal, slot] : slotsOfSignals)
        bus.connect(QString(), objectPath, service, signal, this, slot);
    // With the bus, or with the service, go the notifications.
    const QString local = QStringLiteral("org.freedesktop.DBus.Local");
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"), local,
        QStringLiteral("Disconnected"), this, SLOT(_takeEndOfService()));
    auto* watcher
        = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(
        watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Notification::_takeEndOfService);
}

void Notification::_takeAction(uint id, const QString& action)
{
    if (id == _shownId && _shownId != 0)
        Q_EMIT invoked(action, std::exchange(_token, {}));
}

void Notification::_takeToken(uint id, const QString& token)
{
    if (id == _shownId)
        _token = token.toUtf8();
}

void Notification::_takeEndOfService()
{
    _takeClosed(_shownId, {});
}

void Notification::_takeClosed(uint id, uint /*reason*/)
{
    if (id != _shownId || _shownId == 0)
        return;
    _shownId = 0;
    if (!isShown())
        Q_EMIT gone();
}
