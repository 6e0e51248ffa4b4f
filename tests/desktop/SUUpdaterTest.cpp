#include "platform/desktop/updates/SUUpdater.h"

#include "tests/support/FeedServer.h"
#include "tests/support/NotingDesktop.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <memory>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using support::FeedServer;
using Strings = std::vector<std::string>;

namespace
{

const QByteArray newer = FeedServer::feedWith("1.3",
    "<link>http://a.example/get</link><description>&lt;b&gt;Fast&lt;/b&gt;er "
    "&lt;img src='http://a.example/spy'&gt;</description>");

class SUUpdaterTest : public testing::Test
{
protected:
    SUUpdaterTest()
    {
        QCoreApplication::setApplicationName(QStringLiteral("parcelo"));
        QCoreApplication::setApplicationVersion(QStringLiteral("1.2"));
        window.show();
        updater.setParentWindow(&window);
    }

    void serve(const QList<QByteArray>& answers)
    {
        server = std::make_unique<FeedServer>(answers);
        defaults[QStringLiteral("SUFeedURL")] = server->url();
    }

    QVariant lastCheck() const { return defaults.value(QStringLiteral("SULastCheckTime")); }

    // The sheet on the window, when it comes in time.
    QDialog* sheet(std::chrono::milliseconds within = 5s)
    {
        const auto visible = [&]() -> QDialog* {
            for (auto* dialog : window.findChildren<QDialog*>())
                if (dialog->isVisible())
                    return dialog;
            return nullptr;
        };
        (void)QTest::qWaitFor([&] { return visible() != nullptr; }, int(within.count()));
        return visible();
    }

    // What a check that is asked for answers, as one text; nothing while it does not.
    QString answer()
    {
        updater.checkForUpdates(nullptr);
        QDialog* found = sheet();
        if (!found)
            return {};
        QStringList texts;
        if (auto* message = qobject_cast<QMessageBox*>(found))
            texts << message->text() << message->informativeText();
        for (const char* name : {"headline", "versions"})
            if (auto* label = found->findChild<QLabel*>(QLatin1String(name)))
                texts << label->text();
        EXPECT_TRUE(found->windowModality() == Qt::WindowModal);
        EXPECT_EQ(found->windowType(), Qt::Sheet);
        QTest::keyClick(found, Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.findChild<QDialog*>(); }));
        return texts.join(u'\n');
    }

    QWidget window;
    QMap<QString, QVariant> defaults;
    support::NotingWorkspace workspace;
    std::unique_ptr<FeedServer> server;
    SUUpdater updater{{.objectForKey = [this](const QString& key) { return defaults.value(key); },
                          .setObject = [this](const QString& key,
                                           const QVariant& object) { defaults[key] = object; }},
        300ms};
};

} // namespace

TEST_F(SUUpdaterTest, alwaysAnswersTheUser)
{
    const QByteArray redirect = "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\n";
    const QByteArray endless
        = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + newer + QByteArray(3 << 20, ' ');
    struct Case {
        const char* name;
        QList<QByteArray> answers;
        const char* text; // is in the answer
    };
    const Case cases[] = {
        {"newer", {FeedServer::answerWith(newer)}, "Parcelo 1.3 can be downloaded; you have 1.2."},
        {"same", {FeedServer::answerWith(FeedServer::feedWith("1.2.0"))}, "up to date"},
        {"older", {FeedServer::answerWith(FeedServer::feedWith("1.2~rc"))}, "up to date"},
        {"none", {FeedServer::answerWith("<rss><channel/></rss>")}, "up to date"},
        {"malformed", {FeedServer::answerWith("<rss><channel>")}, "cannot be read"},
        {"doctype", {FeedServer::answerWith("<!DOCTYPE x>" + newer)}, "cannot be read"},
        {"cut short", {FeedServer::answerWith(newer + QByteArray(9, ' ')).chopped(60)},
            "not possible"},
        {"huge", {endless}, "too large"},
        {"silent", {QByteArray()}, "in time"},
        {"gone", {"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"},
            "error 404"},
        {"redirected", {redirect + "Location: /other\r\n\r\n", FeedServer::answerWith(newer)},
            "1.3 can be"},
        {"in a circle", {redirect + "Location: /other\r\n\r\n"}, "not possible"},
        {"to a file", {redirect + "Location: file:///etc/passwd\r\n\r\n"}, "not possible"},
        {"no HTTP", {"hello\r\n\r\n"}, "not possible"},
    };
    for (const Case& each : cases) {
        serve(each.answers);
        const QString text = answer();
        EXPECT_TRUE(text.contains(QLatin1String(each.text)))
            << each.name << ": " << qPrintable(text);
        EXPECT_FALSE(text.contains(server->url())) << each.name;
    }
    server.reset(); // nobody listens there any more
    EXPECT_TRUE(answer().contains(u"not possible"_qs));
    for (const char* address : {"", "file:///etc/passwd", "http://", "not an address"}) {
        defaults[QStringLiteral("SUFeedURL")] = QLatin1String(address);
        EXPECT_TRUE(answer().contains(u"No address"_qs)) << address;
    }
    EXPECT_EQ(workspace.opened, Strings());
}

TEST_F(SUUpdaterTest, givesUpOnAServerThatDribbles)
{
    QTcpServer slow;
    QTimer dribble;
    ASSERT_TRUE(slow.listen(QHostAddress::LocalHost));
    QObject::connect(&slow, &QTcpServer::newConnection, &slow, [&] {
        QTcpSocket* socket = slow.nextPendingConnection();
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
        QObject::connect(&dribble, &QTimer::timeout, socket, [socket] { socket->write(" "); });
    });
    dribble.start(50ms);
    defaults[QStringLiteral("SUFeedURL")]
        = QStringLiteral("http://127.0.0.1:%1/").arg(slow.serverPort());
    EXPECT_TRUE(answer().contains(u"in time"_qs));
}

TEST_F(SUUpdaterTest, offersThePageAndWhatIsNewAsPlainText)
{
    serve({FeedServer::answerWith(newer)});
    updater.checkForUpdates(nullptr);
    QDialog* found = sheet();
    ASSERT_TRUE(found);
    auto* notes = found->findChild<QPlainTextEdit*>(QStringLiteral("whatIsNew"));
    ASSERT_TRUE(notes);
    EXPECT_EQ(notes->toPlainText(), u"Faster");
    EXPECT_FALSE(notes->accessibleName().isEmpty());
    updater.checkForUpdates(nullptr); // is up already
    EXPECT_EQ(window.findChildren<QDialog*>().size(), 1);
    QTest::keyClick(found, Qt::Key_Return);
    EXPECT_EQ(workspace.opened, Strings{"http://a.example/get"});
    EXPECT_EQ(server->requests.size(), 1);

    // Only pages of the web can be opened.
    struct Case {
        const char* item;
        const char* page;
    };
    for (const Case& each : {Case{"<link>file:///etc/passwd</link>", nullptr},
             {"<link>javascript:alert(1)</link>", nullptr}, {"", nullptr},
             {"<link>ftp://a</link><enclosure url='https://a.example/b'/>",
                 "https://a.example/b"}}) {
        workspace.opened.clear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.findChild<QDialog*>(); }));
        serve({FeedServer::answerWith(FeedServer::feedWith("2", each.item))});
        updater.checkForUpdates(nullptr);
        found = sheet();
        ASSERT_TRUE(found) << each.item;
        auto* button = found->findChild<QPushButton*>(QStringLiteral("openPage"));
        EXPECT_EQ(button != nullptr, each.page != nullptr) << each.item;
        if (button)
            button->click();
        else
            found->findChild<QPushButton*>(QStringLiteral("notNow"))->click();
        EXPECT_EQ(workspace.opened, each.page ? Strings{each.page} : Strings()) << each.item;
    }
}

TEST_F(SUUpdaterTest, tellsTheServerNothingButNameAndVersion)
{
    serve({FeedServer::answerWith(newer, "ETag: \"a1\"\r\nSet-Cookie: id=7\r\n"),
        "HTTP/1.1 304 Not Modified\r\nConnection: close\r\n\r\n"});
    EXPECT_TRUE(answer().contains(u"1.3"_qs));
    EXPECT_TRUE(answer().contains(u"1.3"_qs)); // from what was kept
    ASSERT_EQ(server->requests.size(), 2);
    EXPECT_TRUE(server->requests[0].contains("\r\nUser-Agent: parcelo/1.2\r\n"));
    EXPECT_FALSE(server->requests[0].contains("If-None-Match"));
    EXPECT_TRUE(server->requests[1].contains("\r\nIf-None-Match: \"a1\"\r\n"));
    EXPECT_FALSE(server->requests[1].toLower().contains("cookie"));
}

TEST_F(SUUpdaterTest, speaksUnaskedOnlyOfNewerVersionsAndOnceADay)
{
    const auto check = [&](std::chrono::milliseconds wait) {
        const qsizetype before = server ? server->requests.size() : 0;
        updater.checkForUpdatesInBackground();
        QDialog* found = sheet(wait);
        if (found) {
            found->reject();
            EXPECT_TRUE(QTest::qWaitFor([&] { return !window.findChild<QDialog*>(); }));
        }
        return std::make_pair(found != nullptr, server && server->requests.size() > before);
    };
    using Result = std::pair<bool, bool>; // it spoke, it asked

    for (const QByteArray& answer : {FeedServer::answerWith(FeedServer::feedWith("1.2")),
             FeedServer::answerWith("<rss>"), QByteArray("HTTP/1.1 500 No\r\n\r\n")}) {
        defaults.clear();
        serve({answer});
        EXPECT_EQ(check(400ms), Result(false, true));
        EXPECT_TRUE(lastCheck().isValid());
    }
    defaults.clear();
    serve({QByteArray()}); // no answer: is tried again at the next launch
    EXPECT_EQ(check(600ms), Result(false, true));
    EXPECT_FALSE(lastCheck().isValid());

    serve({FeedServer::answerWith(newer)});
    EXPECT_EQ(check(5s), Result(true, true));
    const auto since2001 = QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC)
                               .secsTo(QDateTime::currentDateTimeUtc());
    EXPECT_NEAR(lastCheck().toDouble(), double(since2001), 10);
    EXPECT_EQ(check(400ms), Result(false, false));
    constexpr qlonglong day = 24 * 60 * 60;
    for (const qlonglong due : {since2001 - day, since2001 + day}) {
        defaults[QStringLiteral("SULastCheckTime")] = qlonglong(due);
        EXPECT_EQ(check(5s), Result(true, true)) << due;
    }

    defaults.remove(QStringLiteral("SULastCheckTime"));
    QMessageBox other(&window);
    other.open(); // blocks the program's window
    updater.checkForUpdatesInBackground();
    QTest::qWait(400);
    EXPECT_EQ(window.findChildren<QDialog*>().size(), 1);
    EXPECT_FALSE(lastCheck().isValid());
    other.reject();
    EXPECT_TRUE(sheet() != nullptr) << "it waited";
    EXPECT_TRUE(lastCheck().isValid());
}

TEST_F(SUUpdaterTest, speaksUnaskedOnlyOnAWindowThatIsOnScreen)
{
    serve({FeedServer::answerWith(FeedServer::feedWith("2"))});
    window.hide();
    updater.checkForUpdatesInBackground();
    QTest::qWait(400);
    EXPECT_EQ(window.findChildren<QDialog*>().size(), 0);
    window.show();
    EXPECT_TRUE(sheet() != nullptr);
}

TEST_F(SUUpdaterTest, leadsToTheNotesWhereThereAreNone)
{
    serve({FeedServer::answerWith(
        FeedServer::feedWith("2", "<releaseNotesLink>https://a.example/n</releaseNotesLink>"))});
    updater.checkForUpdates(nullptr);
    ASSERT_TRUE(sheet());
    sheet()->findChild<QPushButton*>(QStringLiteral("openNotes"))->click();
    EXPECT_EQ(workspace.opened, Strings{"https://a.example/n"});
    EXPECT_TRUE(sheet()->isVisible());
}
