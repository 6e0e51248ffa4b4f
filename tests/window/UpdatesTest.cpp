#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "tests/window/Program.h"

#include <QLabel>
#include <QTcpServer>
#include <QTcpSocket>

namespace
{

// Offers a version that is newer than any.
class FeedServer : public QTcpServer
{
public:
    FeedServer()
    {
        EXPECT_TRUE(listen(QHostAddress::LocalHost));
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                ++requests;
                socket->readAll();
                socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n<rss><channel><item>"
                              "<version>999</version></item></channel></rss>");
                socket->disconnectFromHost();
            });
        });
    }

    int requests = 0;
};

} // namespace

class Updates : public Program
{
protected:
    void startWithFeed()
    {
        start();
        UserDefaults::standardUserDefaults().setObject(
            QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort()),
            QStringLiteral("SUFeedURL"));
    }

    bool isOffered()
    {
        return waitFor([&] {
            const QDialog* sheet = Sheets::attachedSheet(&window());
            return sheet != nullptr && sheet->objectName() == QStringLiteral("updateSheet");
        });
    }

    FeedServer server;
};

TEST_F(Updates, areOfferedOnTheWindow)
{
    startWithFeed();
    find<QAction>("checkForUpdates")->trigger();
    EXPECT_TRUE(isOffered());
}

TEST_F(Updates, areLookedForOnceMoreWhenASheetIsInTheWay)
{
    constexpr int moreThanTheRetry = 2300; // milliseconds
    startWithFeed();
    for (const bool staysUp : {true, false}) {
        QDialog sheet(&window());
        Sheets::begin(&sheet, &window());
        controller().checkForUpdatesInBackground();
        if (!staysUp)
            sheet.reject();
        serveEventsFor(moreThanTheRetry);
        if (staysUp)
            EXPECT_EQ(server.requests, 0);
        else
            EXPECT_TRUE(waitFor([&] { return server.requests == 1; }));
    }
    EXPECT_TRUE(isOffered());
}

TEST_F(Updates, areLookedForAtLaunchWhenThatIsChosen)
{
    startWithFeed();
    controller().applicationDidFinishLaunching();
    serveEventsFor(100);
    EXPECT_EQ(server.requests, 0);
    UserDefaults::standardUserDefaults().setBool(true, QStringLiteral("CheckAtStartup"));
    controller().applicationDidFinishLaunching();
    EXPECT_TRUE(isOffered());
}

TEST_F(Updates, takeOverTheSwitchOfTheUpdaterItself)
{
    start();
    auto& defaults = UserDefaults::standardUserDefaults();
    for (const bool isOn : {false, true}) {
        defaults.setBool(isOn, QStringLiteral("SUCheckAtStartup"));
        controller().migrateCheckAtStartup();
        EXPECT_EQ(defaults.boolForKey(QStringLiteral("QKCheckAtStartup")), isOn);
        EXPECT_FALSE(defaults.boolForKey(QStringLiteral("SUCheckAtStartup")));
    }
}
