// Messages to a bus that wait neither for an answer nor for a bus that hangs. Main thread.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>

#include <chrono>
#include <functional>

namespace BusCall
{

// Calls a method; then calls `then` later and once with the finished call, which is an error too
// when there is no bus or no answer in time. Nothing is called once the context is gone.
void send(const QDBusMessage& message, std::chrono::milliseconds timeout, QObject* context,
    std::function<void(const QDBusPendingCall& finished)> then,
    QDBusConnection::BusType bus = QDBusConnection::SessionBus);

// A signal, or a call of which nobody needs the answer, to the session bus.
void sendOnly(const QDBusMessage& message, QObject* context);

} // namespace BusCall
