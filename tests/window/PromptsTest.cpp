// What the window asks of its own accord.

#include "tests/support/FeedServer.h"
#include "tests/window/Program.h"

using Prompts = Program;
using Updates = Program;

TEST_F(Prompts, openAPageAndAskNoMoreOnceTheyAreAnsweredForGood)
{
    const std::tuple<const char*, void (AppController::*)(), const char*> prompts[] = {
        {"SellSendora", &AppController::sellSendora, PARCELO_SITE "sendora/?kvw5"},
        {"AskToShareOnFacebook", &AppController::runShareOnFacebookSheet,
            PARCELO_SITE "parcelo/fb/"},
        {"AskToRateOnAppStore", &AppController::runRateOnAppStoreSheet,
            PARCELO_SITE "parcelo/mas/"},
    };
    start();
    readMessages();
    for (const auto& [key, action, page] : prompts) {
        SCOPED_TRACE(key);
        // Maybe next time; never again, which has the focus; the first, wherever the focus is.
        for (const auto& [with, staysOpen, opened] :
            {std::tuple(Qt::Key_Escape, true, Texts()), {Qt::Key_Space, false, Texts()},
                {Qt::Key_Enter, false, Texts{page}}, {Qt::Key_Return, false, Texts{page}}}) {
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
