// Calls of methods on the session bus that do not wait for the answer. Main thread.
#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>

#include <chrono>
#include <functional>

namespace BusCall
{

// Calls `then` later and once with the finished call, which is an error too when there is no bus
// or no answer in time. Nothing is called once the context is gone.
void send(const QDBusMessage& message, std::chrono::milliseconds timeout, QObject* context,
    std::function<void(const QDBusPendingCall& finished)> then);

} // namespace BusCall
