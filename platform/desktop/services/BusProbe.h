// Whether a message bus is there and answers, found out without Qt: that waits for a bus that
// hangs, with all its other connections, and may start one where there is none. Main thread.
#pragma once

#include <QDBusConnection>
#include <QObject>

#include <functional>

namespace BusProbe
{

// Calls `then` once, unless the context is gone by then: at once when the bus has answered this
// process before, else later.
void ask(QDBusConnection::BusType bus, QObject* context, std::function<void(bool answers)> then);

} // namespace BusProbe
