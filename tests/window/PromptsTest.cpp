#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "tests/support/Files.h"
#include "tests/window/Program.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <cstdlib>

namespace
{

const std::string site = PARCELO_SITE;

} // namespace

class Prompts : public Program
{
protected:
    // Presses the button with this tag in the prompt that the action brings up; what it said.
    std::string answer(int tag, const std::function<void()>& action)
    {
        std::string said;
        whenSheetIsUp([&](QDialog* panel) {
            for (const char* label : {"alertTitle", "alertMessage"})
                said += panel->findChild<QLabel*>(QLatin1String(label))->text().toStdString() + "|";
            for (QPushButton* button : panel->findChildren<QPushButton*>())
                said += button->text().toStdString() + "|";
            for (QPushButton* button : panel->findChildren<QPushButton*>())
                if (Tag::of(button) == tag)
                    button->click();
        });
        action();
        return said;
    }
};

TEST_F(Prompts, openAPageAndAskNoMoreOnceTheyAreAnswered)
{
    struct Prompt {
        const char* key;
        void (AppController::*ask)();
        std::string page;
        const char* said;
    };
    const Prompt prompts[] = {
        {"SellSendora", static_cast<void (AppController::*)()>(&AppController::sellSendora),
            site + "sendora/?kvw5",
            "Sendora|If you enjoy the way Parcelo makes it easy to zip and email files in one "
            "step, "
            "you will love Sendora.\n\nSendora combines the drag-and-drop simplicity of Parcelo "
            "with "
            "the ability to send large files.|Don't Ask Again|Maybe Next Time|Learn More|"},
        {"AskToShareOnFacebook", &AppController::runShareOnFacebookSheet, site + "parcelo/fb/",
            "Share on Facebook|As an independent developer, our single greatest challenge is "
            "getting "
            "the word out.  Please consider taking a minute to share Parcelo on your Facebook and "
            "help spread the word.\n\nThank you!|Don't ask again|Maybe next time|Share on "
            "Facebook|"},
        {"AskToRateOnAppStore", &AppController::runRateOnAppStoreSheet, site + "parcelo/mas/",
            "We Need Your Help!|As an indie developer, our biggest challenge is getting the word "
            "out."
            "  Please take a minute to rate Parcelo on the App Store and help spread the word."
            "\n\nThank you!|Don't ask again|Maybe next time|Rate Parcelo|"},
    };
    for (const Prompt& prompt : prompts) {
        for (const int tag : {0, -1, 1}) {
            TearDown();
            SetUp();
            start();
            workspace.opened.clear();
            const auto ask = [&] { (controller().*prompt.ask)(); };
            EXPECT_EQ(answer(tag, ask), prompt.said);
            EXPECT_EQ(workspace.opened,
                tag == 1 ? std::vector<std::string>{prompt.page} : std::vector<std::string>());
            EXPECT_EQ(UserDefaults::standardUserDefaults().boolForKey(QLatin1String(prompt.key)),
                tag == 0);
            if (tag != 0)
                ask(); // shows nothing, or this would wait for ever
        }
    }
}

TEST_F(Prompts, theSpecialOfferEndsTwoDaysEarly)
{
    start();
    const QDateTime end = QDate(2010, 10, 29).startOfDay();
    for (const auto& [now, isSpecial] : {std::pair(end.addSecs(-1), true), {end, false}}) {
        const std::string said = answer(0, [&] { controller().sellSendora(now); });
        EXPECT_EQ(said.starts_with("Sendora Special Offer|"), isSpecial);
        EXPECT_EQ(
            said.find("\n\nHurry! Offer expires Oct 31, 2010.|") != std::string::npos, isSpecial);
        EXPECT_EQ(said.find("a 30%% discount") != std::string::npos, isSpecial);
    }
}

TEST_F(Prompts, waitForNoOtherPanel)
{
    start();
    const auto ask = [&] { controller().sellSendora(); };
    EXPECT_NE(answer(0,
                  [&] {
                      QTimer::singleShot(0, &window(), ask); // comes while the first is up
                      controller().sellSendora();
                  }),
        "");
    EXPECT_FALSE(UserDefaults::standardUserDefaults().boolForKey(QStringLiteral("SellSendora")))
        << "a question that was refused reads like its third button";
}

TEST_F(Prompts, nobodyIsOfferedWhatTheyHave)
{
    start();
    const auto settings
        = std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "sendora/sendora.conf";
    support::writeFile(settings, "");
    controller().sellSendora(); // shows nothing, or this would wait for ever
    std::filesystem::remove(settings);
    EXPECT_TRUE(UserDefaults::standardUserDefaults().boolForKey(QStringLiteral("SellSendora")));
}

TEST_F(Prompts, theSecondMessageEverBringsTheOffer)
{
    start();
    controller().composeEmailWithAttachment(folder / "a.zip");
    EXPECT_NE(answer(0, [&] { controller().composeEmailWithAttachment(folder / "b.zip"); }), "");
    controller().composeEmailWithAttachment(folder / "c.zip");
    EXPECT_EQ(UserDefaults::standardUserDefaults().integerForKey(QStringLiteral("EmailCount")), 3);
    EXPECT_EQ(composer.mailed.size(), 3u);
}

TEST_F(Prompts, menuItemsOpenTheirPages)
{
    start();
    const std::pair<const char*, std::string> items[] = {
        {"showHelp", "parcelo/help.html"},
        {"visitHomePage", ""},
        {"visitForum", "forum/"},
        {"visitSharePage", "parcelo/fb/"},
        {"visitCommentPage", "parcelo/mu/"},
        {"visitShop", "shop/"},
    };
    for (const auto& [item, page] : items) {
        workspace.opened.clear();
        find<QAction>(item)->trigger();
        EXPECT_EQ(workspace.opened, std::vector<std::string>{site + page}) << item;
    }
    QObject other;
    Tag::set(&other, 4);
    workspace.opened.clear();
    controller().visitWebsite(&other);
    EXPECT_TRUE(workspace.opened.empty());
}
