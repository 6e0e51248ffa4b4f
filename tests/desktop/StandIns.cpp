#include "tests/desktop/StandIns.h"

#include "tests/support/Files.h"
#include "tests/support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <sstream>

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

std::string textOf(const QDBusUnixFileDescriptor& file)
{
    return fs::read_symlink("/proc/self/fd/" + std::to_string(file.fileDescriptor()));
}

// Of the kinds of argument that the services here are given; options in the order of their keys.
std::string textOf(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<QDBusUnixFileDescriptor>())
        return textOf(value.value<QDBusUnixFileDescriptor>());
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.toStringList().join(u' ').toStdString();
    const auto argument = value.value<QDBusArgument>();
    std::string text;
    if (argument.currentSignature() == QLatin1String("ah"))
        for (const QDBusUnixFileDescriptor& file : qdbus_cast<Descriptors>(argument))
            text += textOf(file);
    if (argument.currentSignature() == QLatin1String("a{sv}")) {
        const auto options = qdbus_cast<QVariantMap>(argument);
        for (auto option = options.begin(); option != options.end(); ++option)
            if (option.key() != QLatin1String("handle_token"))
                text += option.key().toStdString() + "=" + textOf(*option) + ";";
    }
    return text;
}

} // namespace

bool standins::spinUntil(const std::function<bool()>& condition)
{
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.exit(1);
    });
    check.start(2ms);
    QTimer::singleShot(20s, &loop, [&] { loop.exit(0); });
    return loop.exec() == 1;
}

standins::EnvironmentVariable::EnvironmentVariable(const char* name, const std::string& value)
    : _name(name)
    , _wasSet(std::getenv(name) != nullptr)
{
    if (_wasSet)
        _former = std::getenv(name);
    ::setenv(name, value.c_str(), 1);
}

standins::EnvironmentVariable::~EnvironmentVariable()
{
    if (_wasSet)
        ::setenv(_name, _former.c_str(), 1);
    else
        ::unsetenv(_name);
}

void standins::Programs::add(const std::string& name, int status, const std::string& line) const
{
    addScript(name,
        "{ printf %s " + name + "; printf ' <%s>' \"$@\"; echo; } >>'" + (_notes / "calls").native()
            + "'\necho '" + line + "'\nexit " + std::to_string(status));
}

void standins::Programs::addScript(const std::string& name, const std::string& script) const
{
    support::writeFile(_folder / name, "#!/bin/sh\n" + script + "\n");
    fs::permissions(_folder / name, fs::perms::owner_all);
}

std::vector<std::string> standins::Programs::calls() const
{
    std::vector<std::string> lines;
    if (!fs::exists(_notes / "calls"))
        return lines;
    std::istringstream notes(support::readFile(_notes / "calls"));
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

QString standins::Service::introspect(const QString& /*path*/) const
{
    return {};
}

bool standins::Service::handleMessage(
    const QDBusMessage& message, const QDBusConnection& /*connection*/)
{
    std::string call = (message.interface() + u'.' + message.member()).toStdString();
    QString token;
    for (const QVariant& argument : message.arguments()) {
        call += " <" + textOf(argument) + ">";
        if (const auto options = argument; options.userType() == qMetaTypeId<QDBusArgument>())
            token
                = qdbus_cast<QVariantMap>(options).value(QStringLiteral("handle_token")).toString();
    }
    _calls.push_back(call);

    if (_answer == Answer::error)
        return _connection.send(
            message.createErrorReply(QDBusError::Failed, QStringLiteral("as the test wants it")));
    if (_answer == Answer::yes)
        return _connection.send(message.createReply());

    const QString path
        = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
              .arg(message.service().mid(1).replace(u'.', u'_'),
                  _answer == Answer::responseElsewhere ? QStringLiteral("t") : token);
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
