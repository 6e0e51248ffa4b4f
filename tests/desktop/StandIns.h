// What stands in for the desktop: programs in PATH and services on a message bus, all of them
// private to the test program.
#pragma once

#include "tests/support/qt/QtTest.h"

namespace standins
{

// Serves events until nothing is under way for the object any more: until its children are gone.
inline bool waitForEndOf(const QObject& asked)
{
    return QTest::qWaitFor([&] { return asked.children().isEmpty(); }, 20000);
}

std::string sessionBus();

// As long as it lives, PATH holds nothing but the programs added to it, and the locale is C.
class Programs
{
public:
    Programs() { writeFile(_folder / "calls", ""); }
    // Adds a program that notes its call, with what LC_ALL says behind that C, and ends with the
    // status.
    void add(const std::string& name, int status = 0) const
    {
        addScript(name,
            "{ printf %s " + name + "${LC_ALL#C}; printf ' <%s>' \"$@\"; echo; } >>"
                + (_folder / "calls").native() + "\nexit " + std::to_string(status));
    }
    void addScript(const std::string& name, const std::string& script) const
    {
        writeFile(_folder / name, "#!/bin/sh\n" + script + "\n");
        fs::permissions(_folder / name, fs::perms::owner_all);
    }
    void note(const std::string& call) const
    {
        std::ofstream(_folder / "calls", std::ios::app) << call << '\n';
    }
    // What was called, a line each: the name and every argument in angle brackets.
    std::string calls() const { return readFile(_folder / "calls"); }

private:
    TestFolder _folder;
    EnvironmentVariable _bus{"DBUS_SESSION_BUS_ADDRESS", sessionBus()}; // with the user's PATH
    EnvironmentVariable _systemBus{"DBUS_SYSTEM_BUS_ADDRESS", sessionBus()};
    EnvironmentVariable _path{"PATH", _folder.path()};
    EnvironmentVariable _locale{"LC_ALL", "C"};
};

// What a service says when it is called. A portal says yes and tells later what the user did; these
// come first, as it numbers them.
enum class Answer { done, cancelled, failed, doneBefore, goneAfterwards, yes, error, none };

// A service on the private bus, unless its answer is none. Its calls are noted as the programs'
// are, a file handed over as the path that it has in /proc.
std::unique_ptr<QObject> serve(const QString& name, Answer answer, const Programs& programs);

// A signal of the notification service.
void signal(const char* name, const QVariantList& arguments);

// Hears of the progress of launcher entries: the program and how far it is, a line each.
class Listener : public QObject
{
    Q_OBJECT

public:
    Listener();
    std::string heard;

private:
    Q_SLOT void _update(const QString& program, const QVariantMap& state);
};

} // namespace standins
