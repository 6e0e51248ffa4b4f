// This program as the one of its name on the session bus: org.freedesktop.Application, as the
// Desktop Entry Specification has it under "D-Bus Activation". The first start takes the name, and
// what launchers and later starts ask of it comes to its handler; a later start hands over what it
// was asked for and ends. Main thread.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <functional>
#include <vector>

class QDeadlineTimer;

class ApplicationService : public QObject
{
public:
    struct Request {
        // Of the desktop entry's actions; empty: just to be there.
        QString action = {};
        std::vector<std::filesystem::path> files = {}; // absolute
        QStringList refused = {}; // addresses that are no files of this computer
        // By which the desktop lets a window come to the front for what a person did elsewhere.
        QByteArray activationToken = {};

        // To the files or to the refused.
        void addAddress(const QString& uri);
    };

    // Called by the event loop, never within the call that brought the request.
    using Handler = std::function<void(const Request& request)>;

    // `name` is that of the desktop entry and of the service on the bus. Neither is touched yet.
    ApplicationService(QString name, Handler handler, QObject* parent = nullptr);

    enum class Role {
        first, // serves the name from now on
        later, // the program that has the name has taken the request over
        alone, // there is no bus, or nobody on it who answers
    };
    [[nodiscard]] Role begin(const Request& request);

    // Of a program that ends: what others ask for from now on starts another.
    void leave();

private:
    [[nodiscard]] bool _takeName();
    [[nodiscard]] bool _handOver(const Request& request, const QDeadlineTimer& deadline) const;

    const QString _name;
    const QString _path;
    bool _hasName = false;
};
