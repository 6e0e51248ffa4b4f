#include "platform/desktop/services/PortalRequest.h"

#include "platform/desktop/services/BusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>

#include <chrono>
#include <utility>

namespace
{

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString desktopPath = QStringLiteral("/org/freedesktop/portal/desktop");

// For the answer that the request was taken on; it may have to start the portal first.
constexpr std::chrono::seconds replyTimeout{5};

} // namespace

PortalRequest::PortalRequest(QObject* parent, Then then)
    : QObject(parent)
    , _then(std::move(then))
{
}

PortalRequest* PortalRequest::call(const QString& interface, const QString& method,
    const QVariantList& arguments, const QVariantMap& options, QObject* parent, Then then)
{
    static unsigned count = 0;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    auto* request = new PortalRequest(parent, std::move(then));
    const QString token = QStringLiteral("parcelo%1").arg(++count);
    const QString sender = bus.baseService().mid(1).replace(u'.', u'_');
    // Before the call: a portal may answer at once.
    request->_listenAt(QStringLiteral("%1/request/%2/%3").arg(desktopPath, sender, token));
    auto* watcher = new QDBusServiceWatcher(
        service, bus, QDBusServiceWatcher::WatchForUnregistration, request);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, request,
        [request] { request->_finish(Outcome::failed); });

    QVariantMap withToken = options;
    withToken.insert(QStringLiteral("handle_token"), token);
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, desktopPath, QStringLiteral("org.freedesktop.portal.") + interface, method);
    message.setArguments(arguments + QVariantList{withToken});
    BusCall::send(message, replyTimeout, request,
        [request](const QDBusPendingCall& reply) { request->_takeReply(reply); });
    return request;
}

void PortalRequest::close()
{
    _then = nullptr;
    deleteLater();
    QDBusConnection::sessionBus().send(
        QDBusMessage::createMethodCall(service, _path, requestInterface, QStringLiteral("Close")));
}

void PortalRequest::_listenAt(const QString& path)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QString signal = QStringLiteral("Response");
    const char* slot = SLOT(_takeResponse(uint, QVariantMap));
    // From whomever: to find out who owns the service, Qt would wait for the bus.
    if (!_path.isEmpty())
        bus.disconnect(QString(), _path, requestInterface, signal, this, slot);
    bus.connect(QString(), path, requestInterface, signal, this, slot);
    _path = path;
}

void PortalRequest::_takeReply(const QDBusPendingReply<QDBusObjectPath>& answer)
{
    if (answer.isError())
        _finish(Outcome::failed);
    else if (answer.value().path() != _path)
        _listenAt(answer.value().path()); // portals before 0.9 name the object as they like
}

void PortalRequest::_takeResponse(uint response, const QVariantMap& results)
{
    constexpr Outcome outcomes[] = {Outcome::done, Outcome::cancelled};
    _finish(response < std::size(outcomes) ? outcomes[response] : Outcome::failed, results);
}

void PortalRequest::_finish(Outcome outcome, const QVariantMap& results)
{
    if (!_then)
        return;
    deleteLater();
    std::exchange(_then, nullptr)(outcome, results);
}
