#include "platform/desktop/services/Inhibitor.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/services/BusCall.h"
#include "platform/desktop/services/BusProbe.h"
#include "platform/desktop/services/PortalRequest.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <chrono>
#include <memory>
#include <utility>

namespace
{

// Each may have to start first.
constexpr std::chrono::seconds replyTimeout{5};

constexpr uint logoutAndSuspend = 1 | 4; // as the portal and GNOME number them

QString program()
{
    return QString::fromLatin1(Bundle::name);
}

// Session managers that give a number, by which they let go.
struct Manager {
    QString service;
    QString path;
    QString interface;
    QString letGo;
    QVariantList (*arguments)(const QString& reason);
};

const std::array<Manager, 2>& managers()
{
    static const std::array<Manager, 2> table{
        Manager{QStringLiteral("org.gnome.SessionManager"), // also MATE's and Cinnamon's
            QStringLiteral("/org/gnome/SessionManager"), QStringLiteral("org.gnome.SessionManager"),
            QStringLiteral("Uninhibit"),
            [](const QString& reason) -> QVariantList {
                constexpr uint noWindow = 0;
                return {
                    QLatin1String(Bundle::bundleIdentifier), noWindow, reason, logoutAndSuspend};
            }},
        Manager{QStringLiteral("org.freedesktop.PowerManagement"), // KDE's and Xfce's
            QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
            QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("UnInhibit"),
            [](const QString& reason) -> QVariantList {
                return {program(), reason};
            }},
    };
    return table;
}

QDBusMessage messageTo(const Manager& manager, const QString& method, const QVariantList& arguments)
{
    QDBusMessage message
        = QDBusMessage::createMethodCall(manager.service, manager.path, manager.interface, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

Inhibitor::~Inhibitor()
{
    release();
}

void Inhibitor::hold(const QString& reason)
{
    _reason = reason;
    _isWanted = true;
    if (_release || std::exchange(_isAsking, true))
        return;
    BusProbe::ask(QDBusConnection::SessionBus, this,
        [this](bool answers) { answers ? _askPortal() : _askLogin(); });
}

// What is still being asked for is let go when it comes.
void Inhibitor::release()
{
    _isWanted = false;
    if (_release)
        std::exchange(_release, nullptr)();
}

void Inhibitor::_take(Release release)
{
    _isAsking = false;
    _release = std::move(release);
    if (!_isWanted)
        this->release();
}

void Inhibitor::_askPortal()
{
    const auto request = std::make_shared<PortalRequest*>(nullptr);
    *request = PortalRequest::call(QStringLiteral("Inhibit"), QStringLiteral("Inhibit"),
        {QString(), logoutAndSuspend}, {{QStringLiteral("reason"), _reason}}, this,
        [this, request](PortalRequest::Outcome outcome, const QVariantMap&) {
            if (outcome != PortalRequest::Outcome::done)
                return _askLogin();
            _take([this, path = (*request)->path()] {
                BusCall::sendOnly(
                    QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                        path, QStringLiteral("org.freedesktop.portal.Request"),
                        QStringLiteral("Close")),
                    this);
            });
        });
}

void Inhibitor::_askLogin()
{
    const QString name = QStringLiteral("org.freedesktop.login1");
    QDBusMessage message
        = QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    message << QStringLiteral("sleep:shutdown") << program() << _reason << QStringLiteral("block");
    BusCall::send(
        message, replyTimeout, this,
        [this](const QDBusPendingReply<QDBusUnixFileDescriptor>& reply) {
            if (reply.isError() || !reply.value().isValid())
                return _askManager(0);
            // Held as long as it is open.
            auto lock = std::make_shared<QDBusUnixFileDescriptor>(reply.value());
            _take([lock]() mutable { lock.reset(); });
        },
        QDBusConnection::SystemBus);
}

void Inhibitor::_askManager(std::size_t index)
{
    if (index == managers().size())
        return _take(nullptr);
    const Manager& manager = managers().at(index);
    BusCall::send(messageTo(manager, QStringLiteral("Inhibit"), manager.arguments(_reason)),
        replyTimeout, this, [this, index, &manager](const QDBusPendingReply<uint>& reply) {
            if (reply.isError())
                return _askManager(index + 1);
            _take([this, &manager, number = reply.value()] {
                BusCall::sendOnly(messageTo(manager, manager.letGo, {number}), this);
            });
        });
}
