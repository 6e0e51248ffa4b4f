#include "platform/desktop/updates/SUUpdater.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/desktop/panels/Sheets.h"
#include "tests/support/FeedServer.h"
#include "tests/support/Files.h"
#include "tests/support/NotingDesktop.h"
#include "tests/support/qt/QtTest.h"

#include <QPlainTextEdit>

using Feed = FeedServer;

namespace
{

const QByteArray newer = Feed::feedWith("1.3");

struct SUUpdaterTest : testing::Test {
    SUUpdaterTest()
    {
        QCoreApplication::setApplicationName("parcelo");
        QCoreApplication::setApplicationVersion("1.2");
        window.show();
        updater.setParentWindow(&window);
    }

    void serve(const QList<QByteArray>& answers)
    {
        server = std::make_unique<Feed>(answers);
        defaults["SUFeedURL"] = server->url();
    }

    QDialog* waitForSheet() const
    {
        EXPECT_TRUE(QTest::qWaitFor([&] { return Sheets::attachedSheet(&window); }, 20000));
        return Sheets::attachedSheet(&window);
    }

    // All that the sheet says, if there is one; then it is dismissed.
    std::string dismissed()
    {
        QString text;
        for (const auto* label : window.findChildren<QLabel*>())
            text += label->text() + u'\n';
        if (auto* sheet = Sheets::attachedSheet(&window))
            QTest::keyClick(sheet, Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window.findChild<QDialog*>(); }));
        return text.toStdString();
    }

    bool answers(const std::string& text)
    {
        updater.checkForUpdates(nullptr);
        waitForSheet();
        return dismissed().find(text) != text.npos;
    }

    // What a check in the background says once it is over.
    std::string unasked()
    {
        lastCheck = QVariant();
        updater.checkForUpdatesInBackground();
        EXPECT_TRUE(QTest::qWaitFor([&] { return lastCheck.isValid(); }, 20000));
        return dismissed();
    }

    QWidget window;
    QMap<QString, QVariant> defaults;
    QVariant& lastCheck = defaults["SULastCheckTime"];
    NotingWorkspace workspace;
    std::unique_ptr<Feed> server;
    SUUpdater updater{{[this](const QString& key) { return defaults[key]; },
                          [this](const QString& key, const QVariant& to) { defaults[key] = to; }},
        std::chrono::seconds(3)};
};

} // namespace

TEST_F(SUUpdaterTest, alwaysAnswersTheUser)
{
    const QByteArray redirect = "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\n";
    const QByteArray ok = "HTTP/1.1 200 OK\r\nConnection: close\r\n";
    const std::pair<QList<QByteArray>, const char*> cases[] = {
        {{Feed::answerWith(newer)}, "Parcelo 1.3 can be downloaded; you have 1.2."},
        {{Feed::answerWith(Feed::feedWith("1.2.0"))}, "up to date"},
        {{Feed::answerWith("<rss><channel>")}, "cannot be read"},
        {{ok + "Content-Length: 999\r\n\r\n" + newer}, "not possible"}, // cut short
        {{ok + "\r\n" + newer + QByteArray(3 << 20, ' ')}, "too large"},
        {{"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"}, "error 404"},
        {{redirect + "Location: /other\r\n\r\n", Feed::answerWith(newer)}, "1.3 can be"},
        {{redirect + "Location: /other\r\n\r\n"}, "not possible"}, // in a circle
        {{redirect + "Location: file:///etc/passwd\r\n\r\n"}, "not possible"},
        {{"hello\r\n\r\n"}, "not possible"},
    };
    serve({QByteArray()});
    EXPECT_TRUE(answers("in time"));
    EXPECT_FALSE(lastCheck.isValid()) << "a silent server does not count";
    for (const auto& [served, text] : cases) {
        serve(served);
        EXPECT_TRUE(answers(text)) << served[0].left(200).constData();
    }
    server.reset(); // nobody listens there any more
    EXPECT_TRUE(answers("not possible"));
    for (const char* address : {"", "file:///etc/passwd", "http://", "not an address"}) {
        defaults["SUFeedURL"] = QLatin1String(address);
        EXPECT_TRUE(answers("No address")) << address;
    }
}

TEST_F(SUUpdaterTest, offersPagesOfTheWebAndWhatIsNewAsPlainText)
{
    const std::tuple<QByteArray, std::string, const char*> cases[] = {
        {"<link>file:///etc/passwd</link>", "", ""}, {"<link>javascript:alert(1)</link>", "", ""},
        {"<link>ftp://a</link><enclosure url='https://a.example/b'/>", "https://a.example/b", ""},
        {"<link>http://a.example/get</link><description>&lt;b&gt;Fast&lt;/b&gt;er "
         "&lt;img src='http://a.example/spy'&gt;</description>",
            "http://a.example/get", "Faster"}};
    for (const auto& [item, page, whatIsNew] : cases) {
        workspace.opened.clear();
        serve({Feed::answerWith(Feed::feedWith("2", item))});
        updater.checkForUpdates(nullptr);
        QDialog* sheet = waitForSheet();
        const auto* notes = sheet->findChild<QPlainTextEdit*>("whatIsNew");
        EXPECT_EQ(notes ? notes->toPlainText() : "", whatIsNew);
        EXPECT_EQ(sheet->findChild<QPushButton*>("openPage") != nullptr, !page.empty());
        if (!page.empty())
            QTest::keyClick(sheet, Qt::Key_Return);
        dismissed();
        EXPECT_EQ(workspace.opened, std::vector<std::string>(page.empty() ? 0 : 1, page));
    }
}

TEST_F(SUUpdaterTest, tellsTheServerNothingButNameAndVersion)
{
    serve({Feed::answerWith(newer, "ETag: \"a1\"\r\nSet-Cookie: id=7\r\n"),
        "HTTP/1.1 304 Not Modified\r\nConnection: close\r\n\r\n"});
    EXPECT_TRUE(answers("1.3") && answers("1.3")) << "from what was kept";
    EXPECT_TRUE(server->requests.value(0).contains("\r\nUser-Agent: parcelo/1.2\r\n"));
    EXPECT_TRUE(server->requests.value(1).contains("\r\nIf-None-Match: \"a1\"\r\n"));
    EXPECT_FALSE(server->requests.value(1).toLower().contains("cookie"));
}

TEST_F(SUUpdaterTest, speaksUnaskedOnlyOfNewerVersionsAndOnceADay)
{
    for (const QByteArray& quiet : {Feed::answerWith(Feed::feedWith("1.2")),
             Feed::answerWith("<rss>"), QByteArray("HTTP/1.1 500 No\r\n\r\n")}) {
        serve({quiet});
        EXPECT_EQ(unasked(), "") << quiet.constData();
    }
    serve({Feed::answerWith(newer)});
    EXPECT_NE(unasked(), "");
    const auto now = QDateTime(QDate(2001, 1, 1), {}, Qt::UTC).secsTo(QDateTime::currentDateTime());
    EXPECT_NEAR(lastCheck.toDouble(), double(now), 10);

    constexpr qlonglong day = 24 * 60 * 60;
    for (const qlonglong due : {now - day, now + day}) {
        lastCheck = now - day / 2;
        updater.checkForUpdatesInBackground();
        serve({Feed::answerWith(newer)}); // where it was, nobody would answer
        lastCheck = due;
        updater.checkForUpdatesInBackground();
        EXPECT_NE(waitForSheet(), nullptr);
        dismissed();
    }
}

TEST_F(SUUpdaterTest, looksForNothingWhereAPackageInstalledIt)
{
    const support::TestFolder folder;
    support::writeFile(folder / "Contents/Resources/packaged", "");
    const Bundle former = Bundle::main();
    Bundle::setMain(Bundle(folder.path()));
    serve({Feed::answerWith(newer)});
    updater.checkForUpdatesInBackground();
    EXPECT_TRUE(answers("Updates come with your system's software."));
    EXPECT_FALSE(QTest::qWaitFor([&] { return !server->requests.isEmpty(); }, 300));
    Bundle::setMain(former);
}
