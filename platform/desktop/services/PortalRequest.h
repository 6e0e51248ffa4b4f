// One request to the desktop portal (org.freedesktop.portal.Desktop): a call that is answered with
// the path of a request object, whose signal Response brings the outcome, after a question to the
// user maybe. Lives until then, at most as long as its parent. Main thread.
#pragma once

#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <QObject>
#include <QString>
#include <QVariant>

#include <functional>

class PortalRequest : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        done,
        cancelled, // by the user
        failed, // also: there is no portal, or it cannot do this
    };
    using Then = std::function<void(Outcome, const QVariantMap& results)>;

    // `interface` is the last part of its name, "Email". `arguments` come before the options, to
    // which the request adds its token. Calls `then` later and once; the request goes by itself.
    static PortalRequest* call(const QString& interface, const QString& method,
        const QVariantList& arguments, const QVariantMap& options, QObject* parent, Then then);

    // Of the request object: what the portal grants for a time ends when that is closed.
    [[nodiscard]] const QString& path() const { return _path; }

    // Takes the question back that the user may see; nothing is called any more.
    void close();

private:
    Q_SLOT void _takeResponse(uint response, const QVariantMap& results);

    PortalRequest(QObject* parent, Then then);
    void _listenAt(const QString& path);
    void _takeReply(const QDBusPendingReply<QDBusObjectPath>& answer);
    void _finish(Outcome outcome, const QVariantMap& results = {});

    Then _then;
    QString _path;
};
