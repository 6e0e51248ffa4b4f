#include "tests/desktop/StandIns.h"

#include "tests/support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>

using standins::Answer;

namespace
{

using Descriptors = QList<QDBusUnixFileDescriptor>;

std::string textOf(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QDBusUnixFileDescriptor>())
        return fs::read_symlink("/proc/self/fd/"
            + std::to_string(value.value<QDBusUnixFileDescriptor>().fileDescriptor()));
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.toStringList().join(u' ').toStdString();
    std::string text;
    if (value.value<QDBusArgument>().currentSignature() == u"ah")
        for (const auto& file : qdbus_cast<Descriptors>(value))
            text += textOf(QVariant::fromValue(file));
    else
        for (const auto& [key, option] : qdbus_cast<QVariantMap>(value).asKeyValueRange())
            if (key != u"handle_token")
                text += key.toStdString() + "=" + textOf(option) + ";";
    return text;
}

class Service : public QDBusVirtualObject
{
public:
    Service(const QString& name, Answer answer, const standins::Programs& programs)
        : _programs(programs)
        , _answer(answer)
        , _bus(
              QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), name))
    {
        qDBusRegisterMetaType<Descriptors>();
        EXPECT_TRUE(_bus.registerVirtualObject("/", this, QDBusConnection::SubPath));
        EXPECT_TRUE(_bus.registerService(name));
    }
    ~Service() override
    {
        _bus.unregisterObject("/", QDBusConnection::UnregisterTree);
        QDBusConnection::disconnectFromBus(_bus.name());
    }

    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*same*/) override
    {
        std::string call = (message.interface() + u'.' + message.member()).toStdString();
        for (const QVariant& argument : message.arguments())
            call += " <" + textOf(argument) + ">";
        _programs.note(call);
        if (_answer == Answer::error)
            return _bus.send(message.createErrorReply(QDBusError::Failed, "by the test"));
        return _answer == Answer::yes ? _bus.send(message.createReply()) : _answerAsPortal(message);
    }

private:
    bool _answerAsPortal(const QDBusMessage& message)
    {
        const auto options = qdbus_cast<QVariantMap>(message.arguments().constLast());
        const QString path = "/org/freedesktop/portal/desktop/request/"
            + message.service().mid(1).replace(u'.', u'_') + u'/'
            + options["handle_token"].toString();
        auto told = QDBusMessage::createSignal(path, "org.freedesktop.portal.Request", "Response");
        told << (_answer <= Answer::failed ? static_cast<uint>(_answer) : 0U) << QVariantMap();
        if (_answer == Answer::doneBefore)
            _bus.send(told);
        _bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(path))));
        if (_answer == Answer::goneAfterwards)
            return _bus.unregisterService(_bus.name());
        return _answer == Answer::doneBefore || _bus.send(told);
    }

    const standins::Programs& _programs;
    const Answer _answer;
    QDBusConnection _bus;
};

} // namespace

std::unique_ptr<QObject> standins::serve(
    const QString& name, Answer answer, const Programs& programs)
{
    return answer == Answer::none ? nullptr : std::make_unique<Service>(name, answer, programs);
}

std::string standins::sessionBus()
{
    static const PrivateBus bus; // to the end of the process
    return bus.address();
}
