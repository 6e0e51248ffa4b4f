#include "platform/desktop/updates/SUUpdater.h"

#include "platform/desktop/panels/Sheets.h"
#include "tests/support/FeedServer.h"
#include "tests/support/NotingDesktop.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <memory>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Feed = support::FeedServer;
using Strings = std::vector<std::string>;

namespace
{

const QByteArray description = "<description>&lt;b&gt;Fast&lt;/b&gt;er "
                               "&lt;img src='http://a.example/spy'&gt;</description>";

const QByteArray newer = Feed::feedWith("1.3");

class SUUpdaterTest : public testing::Test
{
protected:
    SUUpdaterTest()
    {
        QCoreApplication::setApplicationName("parcelo");
        QCoreApplication::setApplicationVersion("1.2");
        window.show();
        beginAnew(20s);
    }

    void beginAnew(std::chrono::milliseconds timeout)
    {
        updater = std::make_unique<SUUpdater>(
            SUUpdater::Defaults{
                .objectForKey = [this](const QString& key) { return defaults[key]; },
                .setObject
                = [this](const QString& key, const QVariant& object) { defaults[key] = object; }},
            timeout);
        updater->setParentWindow(&window);
    }

    void serve(const QList<QByteArray>& answers)
    {
        server = std::make_unique<Feed>(answers);
        defaults["SUFeedURL"] = server->url();
    }

    QVariant& lastCheck() { return defaults["SULastCheckTime"]; }

    QDialog* sheet() const { return Sheets::attachedSheet(&window); }

    void waitForSheet()
    {
        ASSERT_TRUE(QTest::qWaitFor([&] { return sheet() != nullptr; }, 20000));
    }

    // Dismisses what is up, and tells whether there was anything.
    bool dismissSheet()
    {
        const QPointer<QDialog> up = sheet();
        const bool wasUp = up != nullptr;
        if (wasUp)
            QTest::keyClick(up, Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !up; }));
        return wasUp;
    }

    // All that the sheet says which answers the user; then it is dismissed.
    QString answer()
    {
        updater->checkForUpdates(nullptr);
        waitForSheet();
        EXPECT_EQ(sheet()->windowType(), Qt::Sheet);
        QString text;
        for (const auto* label : sheet()->findChildren<QLabel*>())
            text += label->text() + u'\n';
        dismissSheet();
        return text;
    }

    // Whether a check in the background spoke, once it is over.
    bool speaksUnasked()
    {
        lastCheck() = QVariant();
        updater->checkForUpdatesInBackground();
        EXPECT_TRUE(QTest::qWaitFor([&] { return lastCheck().isValid(); }, 20000));
        return dismissSheet();
    }

    QWidget window;
    QMap<QString, QVariant> defaults;
    support::NotingWorkspace workspace;
    std::unique_ptr<Feed> server;
    std::unique_ptr<SUUpdater> updater;
};

} // namespace

TEST_F(SUUpdaterTest, alwaysAnswersTheUser)
{
    const QByteArray redirect = "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\n";
    const QByteArray endless
        = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + newer + QByteArray(3 << 20, ' ');
    struct Case {
        QList<QByteArray> answers;
        const char* text; // is in the answer
    };
    const Case cases[] = {
        {{Feed::answerWith(newer)}, "Parcelo 1.3 can be downloaded; you have 1.2."},
        {{Feed::answerWith(Feed::feedWith("1.2.0"))}, "up to date"},
        {{Feed::answerWith(Feed::feedWith("1.2~rc"))}, "up to date"},
        {{Feed::answerWith("<rss><channel/></rss>")}, "up to date"},
        {{Feed::answerWith("<rss><channel>")}, "cannot be read"},
        {{Feed::answerWith(newer + QByteArray(9, ' ')).chopped(60)}, "not possible"}, // cut short
        {{endless}, "too large"},
        {{"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"}, "error 404"},
        {{redirect + "Location: /other\r\n\r\n", Feed::answerWith(newer)}, "1.3 can be"},
        {{redirect + "Location: /other\r\n\r\n"}, "not possible"}, // in a circle
        {{redirect + "Location: file:///etc/passwd\r\n\r\n"}, "not possible"},
        {{"hello\r\n\r\n"}, "not possible"},
    };
    for (const Case& each : cases) {
        serve(each.answers);
        const QString text = answer();
        EXPECT_TRUE(text.contains(QLatin1String(each.text)))
            << each.answers[0].left(200).constData() << ": " << qPrintable(text);
        EXPECT_FALSE(text.contains(server->url())) << qPrintable(text);
    }
    server.reset(); // nobody listens there any more
    EXPECT_TRUE(answer().contains("not possible"));
    for (const char* address : {"", "file:///etc/passwd", "http://", "not an address"}) {
        defaults["SUFeedURL"] = QLatin1String(address);
        EXPECT_TRUE(answer().contains("No address")) << address;
    }
    EXPECT_EQ(workspace.opened, Strings());
}

TEST_F(SUUpdaterTest, givesUpOnAServerThatIsSilentOrDribbles)
{
    beginAnew(200ms);
    serve({QByteArray()});
    EXPECT_TRUE(answer().contains("in time"));

    QTcpServer slow;
    QTimer dribble;
    ASSERT_TRUE(slow.listen(QHostAddress::LocalHost));
    QObject::connect(&slow, &QTcpServer::newConnection, &slow, [&] {
        QTcpSocket* socket = slow.nextPendingConnection();
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        QObject::connect(&dribble, &QTimer::timeout, socket, [socket] { socket->write(" "); });
    });
    dribble.start(50ms);
    defaults["SUFeedURL"] = QStringLiteral("http://127.0.0.1:%1/").arg(slow.serverPort());
    EXPECT_TRUE(answer().contains("in time"));
}

TEST_F(SUUpdaterTest, offersPagesOfTheWebAndWhatIsNewAsPlainText)
{
    struct Case {
        QByteArray item;
        const char* button;
        Strings opened;
    };
    const Case cases[] = {{"<link>file:///etc/passwd</link>", "notNow", {}},
        {"<link>javascript:alert(1)</link>", "notNow", {}},
        {"<link>ftp://a</link><enclosure url='https://a.example/b'/>", "openPage",
            {"https://a.example/b"}},
        {"<releaseNotesLink>https://a.example/n</releaseNotesLink>", "openNotes",
            {"https://a.example/n"}},
        {"<link>http://a.example/get</link>" + description, "openPage", {"http://a.example/get"}}};
    for (const Case& each : cases) {
        workspace.opened.clear();
        serve({Feed::answerWith(Feed::feedWith("2", each.item))});
        updater->checkForUpdates(nullptr);
        waitForSheet();
        updater->checkForUpdates(nullptr); // is up already
        EXPECT_EQ(window.findChildren<QDialog*>().size(), 1);
        const bool hasPage = each.button == std::string_view("openPage");
        EXPECT_EQ(sheet()->findChild<QPushButton*>("openPage") != nullptr, hasPage);
        const auto* notes = sheet()->findChild<QPlainTextEdit*>("whatIsNew");
        EXPECT_EQ(
            notes ? notes->toPlainText() : "", each.item.contains(description) ? "Faster" : "");
        if (hasPage)
            QTest::keyClick(sheet(), Qt::Key_Return);
        else
            sheet()->findChild<QPushButton*>(QLatin1String(each.button))->click();
        EXPECT_EQ(workspace.opened, each.opened) << each.item.constData();
        EXPECT_EQ(server->requests.size(), 1);
        dismissSheet();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.findChild<QDialog*>(); }));
    }
}

TEST_F(SUUpdaterTest, tellsTheServerNothingButNameAndVersion)
{
    serve({Feed::answerWith(newer, "ETag: \"a1\"\r\nSet-Cookie: id=7\r\n"),
        "HTTP/1.1 304 Not Modified\r\nConnection: close\r\n\r\n"});
    EXPECT_TRUE(answer().contains("1.3"));
    EXPECT_TRUE(answer().contains("1.3")); // from what was kept
    ASSERT_EQ(server->requests.size(), 2);
    EXPECT_TRUE(server->requests[0].contains("\r\nUser-Agent: parcelo/1.2\r\n"));
    EXPECT_FALSE(server->requests[0].contains("If-None-Match"));
    EXPECT_TRUE(server->requests[1].contains("\r\nIf-None-Match: \"a1\"\r\n"));
    EXPECT_FALSE(server->requests[1].toLower().contains("cookie"));
}

TEST_F(SUUpdaterTest, speaksUnaskedOnlyOfNewerVersionsAndOnceADay)
{
    for (const QByteArray& answer : {Feed::answerWith(Feed::feedWith("1.2")),
             Feed::answerWith("<rss>"), QByteArray("HTTP/1.1 500 No\r\n\r\n")}) {
        serve({answer});
        EXPECT_FALSE(speaksUnasked()) << answer.constData();
    }
    serve({Feed::answerWith(newer)});
    EXPECT_TRUE(speaksUnasked());
    const auto since2001
        = QDateTime(QDate(2001, 1, 1), {}, Qt::UTC).secsTo(QDateTime::currentDateTimeUtc());
    EXPECT_NEAR(lastCheck().toDouble(), double(since2001), 10);

    constexpr qlonglong day = 24 * 60 * 60;
    for (const qlonglong due : {since2001 - day, since2001 + day}) {
        const Feed early({Feed::answerWith(newer)});
        defaults["SUFeedURL"] = early.url();
        lastCheck() = qlonglong(since2001 - day / 2);
        updater->checkForUpdatesInBackground();
        serve({Feed::answerWith(newer)});
        lastCheck() = due;
        updater->checkForUpdatesInBackground();
        waitForSheet();
        EXPECT_EQ(early.requests.size(), 0) << "it was asked too early";
        dismissSheet();
    }

    beginAnew(200ms);
    lastCheck() = QVariant();
    serve({QByteArray()}); // no answer does not count: the next check asks again
    EXPECT_TRUE(QTest::qWaitFor([&] {
        updater->checkForUpdatesInBackground();
        return server->requests.size() == 2;
    }));
    EXPECT_FALSE(lastCheck().isValid() || sheet());
}

TEST_F(SUUpdaterTest, waitsUnaskedForAWindowThatIsOnScreenAndFree)
{
    QMessageBox other(&window);
    for (const bool isHidden : {true, false}) {
        serve({Feed::answerWith(newer)});
        lastCheck() = QVariant();
        isHidden ? window.hide() : other.open();
        updater->checkForUpdatesInBackground();
        EXPECT_TRUE(QTest::qWaitFor([&] { return server->requests.size() == 1; }));
        QTest::qWait(400);
        EXPECT_EQ(sheet(), isHidden ? nullptr : &other);
        EXPECT_FALSE(lastCheck().isValid());
        isHidden ? window.show() : other.reject();
        EXPECT_TRUE(QTest::qWaitFor([&] { return lastCheck().isValid() && sheet(); }));
        dismissSheet();
    }
}
