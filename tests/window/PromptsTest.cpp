// What the window asks of its own accord.

#include "app/window/Manual.h"
#include "tests/support/FeedServer.h"
#include "tests/window/Program.h"

using Prompts = Program;
using Updates = Program;
using Help = Program;

TEST_F(Prompts, openAPageAndAskNoMoreOnceTheyAreAnsweredForGood)
{
    const std::tuple<const char*, void (AppController::*)(), const char*> prompts[]
        = {{"SellSendora", &AppController::sellSendora, "sendora/?kvw5"},
            {"AskToShareOnFacebook", &AppController::runShareOnFacebookSheet, "parcelo/fb/"},
            {"AskToRateOnAppStore", &AppController::runRateOnAppStoreSheet, "parcelo/mas/"}};
    start();
    readMessages();
    for (const auto& [key, action, page] : prompts) {
        SCOPED_TRACE(key);
        // Maybe next time; never again, which has the focus; the first, wherever the focus is.
        const Texts pages{std::string(PARCELO_SITE) + page};
        for (const auto& [with, staysOpen, opened] :
            {std::tuple(Qt::Key_Escape, true, Texts()), {Qt::Key_Space, false, Texts()},
                {Qt::Key_Enter, false, pages}, {Qt::Key_Return, false, pages}}) {
            store(key, true);
            answer = with;
            for (const bool comes : {true, staysOpen}) {
                (controller().*action)();
                EXPECT_EQ(std::exchange(told, {}).empty(), !comes);
            }
            EXPECT_EQ(stored(key).toBool(), staysOpen);
            EXPECT_EQ(std::exchange(workspace.opened, {}), opened);
        }
    }
    store("SellSendora", true);
    for (const bool comes : {false, true, false}) {
        controller().composeEmailWithAttachment(folder / "a.zip");
        EXPECT_EQ(std::exchange(told, {}).empty(), !comes)
            << "the offer comes with the second message ever";
    }
}

TEST_F(Updates, areOfferedWhenAskedForAndAtLaunchWhenThatIsChosen)
{
    using support::FeedServer;
    FeedServer server{{FeedServer::answerWith(FeedServer::feedWith("999"))}};
    start();
    store("SUFeedURL", server.url());
    find<QAction>("checkForUpdates")->trigger();
    endSheet("updateSheet");
    store("SULastCheckTime", 0);
    controller().applicationDidFinishLaunching();
    QTest::qWait(100);
    EXPECT_EQ(server.requests.size(), 1) << "not at launch, unless that is chosen";
    store("CheckAtStartup", true);
    controller().applicationDidFinishLaunching();
    endSheet("updateSheet");
}

TEST_F(Help, comesByF1InTheBrowserOrElseInAWindowOfOurs)
{
    start();
    type(Qt::Key_F1);
    EXPECT_EQ(workspace.opened, Texts{Manual::page().value_or("no manual")});
    find<QAction>("showHelp")->trigger();
    EXPECT_EQ(workspace.opened.back(), PARCELO_SITE "parcelo/help.html");
    workspace.hasBrowser = false;
    type(Qt::CTRL | Qt::Key_Comma);
    QTest::keyClick(waitForSheet("Preference"), Qt::Key_F1);
    const auto isManual = [] {
        const QWidget* active = QApplication::activeWindow();
        return active != nullptr && active->windowTitle() == "Parcelo Help";
    };
    ASSERT_TRUE(waitFor(isManual));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(isManual());
    EXPECT_TRUE(sheet());
}
