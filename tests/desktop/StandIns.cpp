#include "tests/desktop/StandIns.h"

#include "tests/support/Files.h"
#include "tests/support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace
{

// Runs from before the first test to behind the last one.
class BusForAllTests : public ::testing::Environment
{
public:
    void SetUp() override
    {
        if (!std::getenv("PARCELO_TEST_WITHOUT_BUS"))
            _bus.emplace();
        const std::string address = _bus ? _bus->address() : "unix:path=/no/such/bus";
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    }
    void TearDown() override { _bus.reset(); }

private:
    std::optional<support::PrivateBus> _bus;
};

const auto* const busForAllTests = ::testing::AddGlobalTestEnvironment(new BusForAllTests);

using Descriptors = QList<QDBusUnixFileDescriptor>;

std::string textOf(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QDBusUnixFileDescriptor>())
        return fs::read_symlink("/proc/self/fd/"
            + std::to_string(value.value<QDBusUnixFileDescriptor>().fileDescriptor()));
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.toStringList().join(u' ').toStdString();
    const auto argument = value.value<QDBusArgument>();
    std::string text;
    if (argument.currentSignature() == QLatin1String("ah"))
        for (const auto& file : qdbus_cast<Descriptors>(argument))
            text += textOf(QVariant::fromValue(file));
    if (argument.currentSignature() == QLatin1String("a{sv}")) {
        const auto options = qdbus_cast<QVariantMap>(argument);
        for (auto option = options.begin(); option != options.end(); ++option)
            if (option.key() != QLatin1String("handle_token"))
                text += option.key().toStdString() + "=" + textOf(*option) + ";";
    }
    return text;
}

} // namespace

void standins::Programs::add(const std::string& name, int status) const
{
    addScript(name,
        "{ printf %s " + name + "; printf ' <%s>' \"$@\"; echo; } >>\"${0%/*}/calls\"\nexit "
            + std::to_string(status));
}

void standins::Programs::addScript(const std::string& name, const std::string& script) const
{
    support::writeFile(_folder / name, "#!/bin/sh\n" + script + "\n");
    fs::permissions(_folder / name, fs::perms::owner_all);
}

std::vector<std::string> standins::Programs::calls() const
{
    std::vector<std::string> lines;
    std::ifstream notes(_folder / "calls");
    for (std::string line; std::getline(notes, line);)
        lines.push_back(line);
    return lines;
}

standins::Service::Service(const QString& name, Answer answer, unsigned outcome)
    : _name(name)
    , _answer(answer)
    , _outcome(outcome)
    , _connection(
          QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), name))
{
    qDBusRegisterMetaType<Descriptors>();
    EXPECT_TRUE(
        _connection.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath));
    EXPECT_TRUE(_connection.registerService(name));
}

standins::Service::~Service()
{
    _connection.unregisterService(_name);
    _connection.unregisterObject(QStringLiteral("/"), QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus(_name);
}

bool standins::Service::handleMessage(
    const QDBusMessage& message, const QDBusConnection& /*connection*/)
{
    std::string call = (message.interface() + u'.' + message.member()).toStdString();
    for (const QVariant& argument : message.arguments())
        call += " <" + textOf(argument) + ">";
    _calls.push_back(call);

    if (_answer == Answer::error)
        return _connection.send(
            message.createErrorReply(QDBusError::Failed, QStringLiteral("as the test wants it")));
    if (_answer == Answer::yes)
        return _connection.send(message.createReply());

    const auto options = qdbus_cast<QVariantMap>(message.arguments().constLast());
    const QString token = _answer == Answer::responseElsewhere
        ? QStringLiteral("other")
        : options.value(QStringLiteral("handle_token")).toString();
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                             .arg(message.service().mid(1).replace(u'.', u'_'), token);
    const QDBusMessage reply = message.createReply(QVariant::fromValue(QDBusObjectPath(path)));
    if (_answer == Answer::responseBefore)
        _respond(path);
    _connection.send(reply);
    if (_answer == Answer::response)
        _respond(path);
    if (_answer == Answer::responseElsewhere) // when the other side had the time to listen there
        QTimer::singleShot(200ms, this, [this, path] { _respond(path); });
    if (_answer == Answer::goneAfterwards)
        _connection.unregisterService(_name);
    return true;
}

void standins::Service::_respond(const QString& path)
{
    QDBusMessage response = QDBusMessage::createSignal(
        path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
    response << _outcome << QVariantMap();
    _connection.send(response);
}
