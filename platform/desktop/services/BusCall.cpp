#include "platform/desktop/services/BusCall.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QTimer>

#include <utility>

void BusCall::send(const QDBusMessage& message, std::chrono::milliseconds timeout, QObject* context,
    std::function<void(const QDBusPendingCall& finished)> then)
{
    const QDBusPendingCall call
        = QDBusConnection::sessionBus().asyncCall(message, static_cast<int>(timeout.count()));
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    const auto finish = [watcher, call, then = std::move(then)] {
        watcher->deleteLater();
        then(call);
    };
    // Qt 6.4 does not tell of a call that has failed already: without a bus it sends no signal.
    if (call.isFinished())
        QTimer::singleShot(0, watcher, finish);
    else
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, finish);
}
