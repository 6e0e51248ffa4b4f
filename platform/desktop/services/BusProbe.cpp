#include "platform/desktop/services/BusProbe.h"

#include "system/FileDescriptor.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

using namespace std::chrono_literals;

namespace
{

// Longer than a busy machine takes, and nobody waits meanwhile.
constexpr auto patience = 5s;

QByteArray addressOf(QDBusConnection::BusType bus)
{
    if (bus == QDBusConnection::SystemBus)
        return qEnvironmentVariableIsEmpty("DBUS_SYSTEM_BUS_ADDRESS")
            ? QByteArray("unix:path=/var/run/dbus/system_bus_socket")
            : qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return qgetenv("DBUS_SESSION_BUS_ADDRESS");
    return "unix:path=" + qgetenv("XDG_RUNTIME_DIR") + "/bus";
}

// The first of a list "unix:path=/run/bus,guid=1;tcp:…", as the D-Bus Specification has it under
// "Server Addresses". Nothing for other kinds than sockets of this computer.
std::optional<sockaddr_un> socketAt(const QByteArray& address)
{
    const QByteArray first = address.split(';').first();
    if (!first.startsWith("unix:"))
        return std::nullopt;
    sockaddr_un result{};
    result.sun_family = AF_UNIX;
    for (const QByteArray& field : first.mid(5).split(',')) {
        const bool isAbstract = field.startsWith("abstract=");
        if (!isAbstract && !field.startsWith("path="))
            continue;
        const QByteArray name = (isAbstract ? QByteArray(1, '\0') : QByteArray())
            + QByteArray::fromPercentEncoding(field.mid(field.indexOf('=') + 1));
        if (name.size() < qsizetype{sizeof result.sun_path})
            std::memcpy(result.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    }
    return result;
}

// Names in the abstract space have no end but that of the address.
socklen_t lengthOf(const sockaddr_un& address)
{
    const std::string_view name(address.sun_path + 1, sizeof address.sun_path - 1);
    return static_cast<socklen_t>(
        offsetof(sockaddr_un, sun_path) + 1 + std::min(name.find('\0'), name.size()));
}

// A connection that asks how one authenticates oneself; a bus says something to that.
FileDescriptor greet(const sockaddr_un& address)
{
    constexpr std::string_view question("\0AUTH\r\n", 7);
    FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const void* const anyAddress = &address;
    if (!connection
        || ::connect(
               connection.number(), static_cast<const sockaddr*>(anyAddress), lengthOf(address))
            != 0
        || ::send(connection.number(), question.data(), question.size(), MSG_NOSIGNAL)
            != static_cast<ssize_t>(question.size()))
        connection.close();
    return connection;
}

// Waits for the first bytes, and goes then.
class Probe : public QObject
{
public:
    Probe(const sockaddr_un& address, QObject* context, std::function<void(bool)> then)
        : QObject(context)
        , _connection(greet(address))
        , _then(std::move(then))
    {
        QTimer::singleShot(_connection ? patience : 0s, this, [this] { _finish(false); });
        if (!_connection)
            return;
        _notifier = std::make_unique<QSocketNotifier>(_connection.number(), QSocketNotifier::Read);
        connect(_notifier.get(), &QSocketNotifier::activated, this, [this] {
            char byte = 0;
            _finish(::recv(_connection.number(), &byte, 1, 0) == 1);
        });
    }

private:
    void _finish(bool answers)
    {
        if (!_then)
            return;
        deleteLater();
        std::exchange(_then, nullptr)(answers);
    }

    const FileDescriptor _connection;
    std::unique_ptr<QSocketNotifier> _notifier; // gone before it
    std::function<void(bool)> _then;
};

} // namespace

void BusProbe::ask(
    QDBusConnection::BusType bus, QObject* context, std::function<void(bool answers)> then)
{
    static std::set<QByteArray> answering;
    const QByteArray address = addressOf(bus);
    const std::optional<sockaddr_un> socket = socketAt(address);
    if (!socket || answering.contains(address))
        return then(true); // where we cannot look, Qt shall
    new Probe(*socket, context, [address, then = std::move(then)](bool answers) {
        if (answers)
            answering.insert(address);
        then(answers);
    });
}
