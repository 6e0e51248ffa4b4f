// What stands in for the desktop: services on a message bus and programs in PATH, all of them
// private to the test program.
#pragma once

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/TestFolder.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QTest>

#include <string>
#include <vector>

namespace standins
{

// Serves events until nothing is under way for the object any more: until its children are gone.
inline bool waitForEndOf(const QObject& asked)
{
    return QTest::qWaitFor([&] { return asked.children().isEmpty(); }, 20000);
}

// As long as it lives, PATH holds nothing but the programs added to it.
class Programs
{
public:
    // Adds a program that notes its call and ends with that status.
    void add(const std::string& name, int status = 0) const;
    void addScript(const std::string& name, const std::string& script) const;
    // What was run, a line each: the name and every argument in angle brackets.
    std::vector<std::string> calls() const;

private:
    support::TestFolder _folder;
    support::EnvironmentVariable _path{"PATH", _folder.path().native()};
};

// A service on the private bus, with a connection of its own. It notes what is called: the method
// and its arguments in angle brackets, a file handed over as the path that it has in /proc.
class Service : public QDBusVirtualObject
{
public:
    enum class Answer {
        yes,
        error,
        response, // of a portal: yes, with the outcome after it
        responseBefore, // with the outcome before it
        responseElsewhere, // after it and at an object of another name
        goneAfterwards, // yes, and then the service is gone
    };
    Service(const QString& name, Answer answer, unsigned outcome = 0);
    ~Service() override;

    const std::vector<std::string>& calls() const { return _calls; }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    void _respond(const QString& path);

    const QString _name;
    const Answer _answer;
    const unsigned _outcome;
    QDBusConnection _connection;
    std::vector<std::string> _calls;
};

} // namespace standins
