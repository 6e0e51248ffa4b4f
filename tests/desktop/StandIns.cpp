#include "tests/desktop/StandIns.h"

#include "system/FileDescriptor.h"
#include "tests/support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QSocketNotifier>

#include <array>

#include <fcntl.h>
#include <unistd.h>

using standins::Answer;

namespace
{

using Descriptors = QList<QDBusUnixFileDescriptor>;

std::string textOf(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QDBusUnixFileDescriptor>())
        return fs::read_symlink("/proc/self/fd/"
            + std::to_string(value.value<QDBusUnixFileDescriptor>().fileDescriptor()));
    if (value.userType() == QMetaType::UChar)
        return std::to_string(value.toInt());
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return (value.userType() == QMetaType::QStringList ? value.toStringList().join(u' ')
                                                           : value.toString())
            .toStdString();
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
        if (_answer == Answer::yes || message.member() == u"Close")
            return _bus.send(message.createReply(_valueOf(message.member())));
        return _answerAsPortal(message);
    }

private:
    // What its method gives, of those that give anything.
    QVariantList _valueOf(const QString& method)
    {
        if (method == u"GetCapabilities")
            return {QStringList{"actions", "body", "body-markup"}};
        if (method == u"Notify")
            return {7U};
        if (method != u"Inhibit")
            return {};
        if (_bus.name() != u"org.freedesktop.login1")
            return {5U};
        std::array<int, 2> ends{}; // of a pipe, whose end is that of what is inhibited
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        const FileDescriptor held(ends[1]);
        auto* letGo = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
        QObject::connect(letGo, &QSocketNotifier::activated, this, [this, letGo](int end) {
            _programs.note("let go");
            letGo->setEnabled(false);
            ::close(end);
        });
        return {QVariant::fromValue(QDBusUnixFileDescriptor(held.number()))};
    }

    bool _answerAsPortal(const QDBusMessage& message)
    {
        const auto options = qdbus_cast<QVariantMap>(message.arguments().constLast());
        const QString path = "/org/freedesktop/portal/desktop/request/"
            + message.service().mid(1).replace(u'.', u'_') + u'/'
            + options["handle_token"].toString();
        auto told = QDBusMessage::createSignal(path, "org.freedesktop.portal.Request", "Response");
        told << (_answer <= Answer::failed ? static_cast<uint>(_answer) : 0U)
             << QVariantMap{{"uris", QStringList{"file:///no/caf%E9/file"}}};
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

void standins::signal(const char* name, const QVariantList& arguments)
{
    auto told = QDBusMessage::createSignal(
        "/org/freedesktop/Notifications", "org.freedesktop.Notifications", name);
    told.setArguments(arguments);
    EXPECT_TRUE(QDBusConnection::sessionBus().send(told));
}

standins::Listener::Listener()
{
    QDBusConnection::sessionBus().connect({}, {}, "com.canonical.Unity.LauncherEntry", "Update",
        this, SLOT(_update(QString, QVariantMap)));
}

void standins::Listener::_update(const QString& program, const QVariantMap& state)
{
    const bool isVisible = state["progress-visible"].toBool();
    heard += program.toStdString() + " "
        + (isVisible ? state["progress"].toString().toStdString() : "hidden") + "\n";
}
