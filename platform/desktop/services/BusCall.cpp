#include "platform/desktop/services/BusCall.h"

#include "platform/desktop/services/BusProbe.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QTimer>

#include <utility>

namespace
{

using Then = std::function<void(const QDBusPendingCall& finished)>;

void await(const QDBusPendingCall& call, QObject* context, Then then)
{
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

QDBusConnection connectionTo(QDBusConnection::BusType bus)
{
    return bus == QDBusConnection::SystemBus ? QDBusConnection::systemBus()
                                             : QDBusConnection::sessionBus();
}

} // namespace

void BusCall::send(const QDBusMessage& message, std::chrono::milliseconds timeout, QObject* context,
    std::function<void(const QDBusPendingCall& finished)> then, QDBusConnection::BusType bus)
{
    BusProbe::ask(
        bus, context, [message, timeout, context, bus, then = std::move(then)](bool answers) {
            const int milliseconds = static_cast<int>(timeout.count());
            await(answers ? connectionTo(bus).asyncCall(message, milliseconds)
                          : QDBusPendingCall::fromError(
                              QDBusError(QDBusError::NoServer, QStringLiteral("no bus answers"))),
                context, then);
        });
}

void BusCall::sendOnly(const QDBusMessage& message, QObject* context)
{
    BusProbe::ask(QDBusConnection::SessionBus, context, [message](bool answers) {
        if (answers)
            QDBusConnection::sessionBus().send(message);
    });
}
