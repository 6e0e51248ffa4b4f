#include "platform/desktop/services/ApplicationService.h"

#include "platform/desktop/services/UriList.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QSysInfo>

#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>

#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

const QString interfaceName = QStringLiteral("org.freedesktop.Application");

// Of the platform data that go with each call; the second is the first's older name.
const QString tokenKey = QStringLiteral("activation-token");
const QString startupIdKey = QStringLiteral("desktop-startup-id");

// With the one who has the name: it may still be loading its fonts.
constexpr auto patience = 25s;

using Request = ApplicationService::Request;

void addFiles(Request& request, const QStringList& uris)
{
    for (const QString& uri : uris)
        request.addAddress(uri);
}

Request requestWith(const QVariantMap& platformData)
{
    QByteArray token = platformData.value(tokenKey).toByteArray();
    if (token.isEmpty())
        token = platformData.value(startupIdKey).toByteArray();
    return {.activationToken = std::move(token)};
}

// What the bus calls. The answer goes out at once, and the handler is called after it.
class Calls : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    Calls(QObject* parent, ApplicationService::Handler handler)
        : QDBusAbstractAdaptor(parent)
        , _handler(std::move(handler))
    {
    }

public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers): moc sees one
    void Activate(const QVariantMap& platform_data) { _pass(requestWith(platform_data)); }

    void Open(const QStringList& uris, const QVariantMap& platform_data)
    {
        Request request = requestWith(platform_data);
        addFiles(request, uris);
        _pass(std::move(request));
    }

    // An action of ours may be given a list of files.
    void ActivateAction(
        const QString& action_name, const QVariantList& parameter, const QVariantMap& platform_data)
    {
        Request request = requestWith(platform_data);
        request.action = action_name;
        if (!parameter.isEmpty())
            addFiles(request, parameter.front().toStringList());
        _pass(std::move(request));
    }

private:
    void _pass(Request request)
    {
        QMetaObject::invokeMethod(
            this, [this, request = std::move(request)] { _handler(request); },
            Qt::QueuedConnection);
    }

    const ApplicationService::Handler _handler;
};

// Without a bus that is there, asking for one could start one.
bool hasBus()
{
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"))
        return *address != '\0';
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    return folder != nullptr && ::access((std::string(folder) + "/bus").c_str(), F_OK) == 0;
}

QString pathOfName(QString name)
{
    return u'/' + name.replace(u'.', u'/').replace(u'-', u'_');
}

} // namespace

// One with a line break would be two in a list, and is none by itself.
void ApplicationService::Request::addAddress(const QString& uri)
{
    const std::string hostName = QSysInfo::machineHostName().toStdString();
    if (const auto file = UriList::filePath(uri.toStdString(), hostName))
        files.push_back(*file);
    else
        refused.append(uri);
}

ApplicationService::ApplicationService(QString name, Handler handler, QObject* parent)
    : QObject(parent)
    , _name(std::move(name))
    , _path(pathOfName(_name))
{
    new Calls(this, std::move(handler)); // this object's child
}

// The one who had the name may end between being asked for it and being handed something.
ApplicationService::Role ApplicationService::begin(const Request& request)
{
    constexpr int mostTries = 3;
    if (!hasBus() || !QDBusConnection::sessionBus().isConnected())
        return Role::alone;
    const QDeadlineTimer deadline(patience);
    for (int tried = 0; tried < mostTries && !deadline.hasExpired(); ++tried) {
        if (_takeName())
            return Role::first;
        if (_handOver(request, deadline))
            return Role::later;
    }
    return Role::alone;
}

// Before the name is there to be called the object is, so that no call is lost.
bool ApplicationService::_takeName()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerObject(_path, this, QDBusConnection::ExportAdaptors);
    const auto taken = bus.interface()->registerService(_name,
        QDBusConnectionInterface::DontQueueService, QDBusConnectionInterface::DontAllowReplacement);
    _hasName = taken.isValid() && taken.value() == QDBusConnectionInterface::ServiceRegistered;
    return _hasName;
}

void ApplicationService::leave()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (std::exchange(_hasName, false) && bus.unregisterService(_name))
        bus.unregisterObject(_path);
}

bool ApplicationService::_handOver(const Request& request, const QDeadlineTimer& deadline) const
{
    QStringList uris = request.refused; // of which the one who has the name tells
    for (const auto& file : request.files)
        uris.append(QString::fromStdString(UriList::fileUri(file)));
    const QVariantMap platformData{{tokenKey, QString::fromUtf8(request.activationToken)},
        {startupIdKey, QString::fromUtf8(request.activationToken)}};

    const bool isAction = !request.action.isEmpty();
    const QString method = isAction ? QStringLiteral("ActivateAction")
        : uris.isEmpty()            ? QStringLiteral("Activate")
                                    : QStringLiteral("Open");
    QDBusMessage call = QDBusMessage::createMethodCall(_name, _path, interfaceName, method);
    if (isAction)
        call << request.action << QVariant(uris.isEmpty() ? QVariantList() : QVariantList{uris});
    else if (!uris.isEmpty())
        call << uris;
    call << platformData;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(
        call, QDBus::Block, static_cast<int>(deadline.remainingTime()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

#include "ApplicationService.moc"
