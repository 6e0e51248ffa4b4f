#include "platform/desktop/panels/Sheets.h"
#include "tests/support/FeedServer.h"
#include "tests/window/Program.h"

class Updates : public Program
{
protected:
    void startWithFeed()
    {
        start();
        store("SUFeedURL", server.url());
    }
    void expectOffer() { endSheet("updateSheet"); }

    support::FeedServer server{
        {support::FeedServer::answerWith(support::FeedServer::feedWith("999"))}};
};

TEST_F(Updates, areOfferedWhenAskedForAndAtLaunchWhenThatIsChosen)
{
    startWithFeed();
    find<QAction>("checkForUpdates")->trigger();
    expectOffer();
    store("SULastCheckTime", 0);
    controller().applicationDidFinishLaunching();
    QTest::qWait(100);
    EXPECT_EQ(server.requests.size(), 1);
    store("CheckAtStartup", true);
    controller().applicationDidFinishLaunching();
    expectOffer();
}

TEST_F(Updates, areLookedForOnceMoreWhenASheetIsInTheWay)
{
    startWithFeed();
    type(Qt::CTRL | Qt::Key_Comma);
    QDialog* sheet = waitForSheet("Preference");
    controller().checkForUpdatesInBackground(); // has its last attempt after 2 s
    QTimer::singleShot(
        300, Qt::PreciseTimer, &window(), [&] { controller().checkForUpdatesInBackground(); });
    QTimer::singleShot(2200, Qt::PreciseTimer, sheet, [&] { // between the last attempts of both
        EXPECT_EQ(server.requests.size(), 0);
        sheet->reject();
    });
    expectOffer();
    EXPECT_EQ(server.requests.size(), 1);
}
