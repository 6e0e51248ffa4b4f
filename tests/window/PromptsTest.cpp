// What the window asks of its own accord, and the pages that it opens.

#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "tests/support/Files.h"
#include "tests/window/Program.h"

#include <cstdlib>

namespace
{

const std::string site = PARCELO_SITE;
using Pages = std::vector<std::string>;

} // namespace

class Prompts : public Program
{
protected:
    // What the prompt said that came while the action lasted, which was answered by the key,
    // pressed where the third button has the focus. None: nothing came.
    std::string said(Qt::Key key, const std::function<void()>& action)
    {
        std::string said;
        QTimer answering;
        QObject::connect(&answering, &QTimer::timeout, &window(), [&] {
            QDialog* panel = Sheets::attachedSheet(&window());
            if (panel == nullptr || !panel->isActiveWindow())
                return;
            for (const char* label : {"alertTitle", "alertMessage"})
                said += panel->findChild<QLabel*>(QLatin1String(label))->text().toStdString() + "|";
            for (QPushButton* button : panel->findChildren<QPushButton*>())
                if (Tag::of(button) == PromptResultOther)
                    button->setFocus();
            QTest::keyClick(panel->focusWidget(), key);
        });
        answering.start(1);
        action();
        return said;
    }
};

TEST_F(Prompts, openAPageAndAskNoMoreOnceTheyAreAnsweredForGood)
{
    const std::tuple<const char*, void (AppController::*)(), const char*> prompts[] = {
        {"SellSendora", &AppController::sellSendora, "sendora/?kvw5"},
        {"AskToShareOnFacebook", &AppController::runShareOnFacebookSheet, "parcelo/fb/"},
        {"AskToRateOnAppStore", &AppController::runRateOnAppStoreSheet, "parcelo/mas/"},
    };
    start();
    for (const auto& [key, action, page] : prompts) {
        SCOPED_TRACE(key);
        const auto ask = [&, action = action] { (controller().*action)(); };
        EXPECT_NE(said(Qt::Key_Escape, ask), "");
        EXPECT_TRUE(stored(key).toBool()) << "maybe next time";
        EXPECT_NE(said(Qt::Key_Enter, ask), "");
        EXPECT_FALSE(stored(key).toBool()) << "never again: it presses what has the focus";
        EXPECT_EQ(said(Qt::Key_Enter, ask), "");
        EXPECT_EQ(workspace.opened, Pages());
        store(key, true);
        EXPECT_NE(said(Qt::Key_Return, ask), "") << "presses the first, wherever the focus is";
        EXPECT_FALSE(stored(key).toBool());
        EXPECT_EQ(std::exchange(workspace.opened, {}), Pages{site + page});
    }
}

TEST_F(Prompts, aQuestionThatIsRefusedReadsLikeItsThirdButton)
{
    start();
    const auto ask = [&] { controller().sellSendora(); };
    QTimer::singleShot(0, &window(), ask); // comes while the first is up
    EXPECT_NE(said(Qt::Key_Escape, ask), "");
    EXPECT_FALSE(stored("SellSendora").toBool());
}

TEST_F(Prompts, theOfferComesWithTheSecondMessageEverAndIsSpecialForATime)
{
    start();
    const QDateTime end = QDate(2010, 10, 29).startOfDay();
    for (const auto& [now, isSpecial] : {std::pair(end.addSecs(-1), true), {end, false}}) {
        const std::string offer = said(Qt::Key_Escape, [&] { controller().sellSendora(now); });
        EXPECT_EQ(offer.starts_with("Sendora Special Offer|"), isSpecial);
        EXPECT_EQ(offer.ends_with("Hurry! Offer expires Oct 31, 2010.|"), isSpecial);
        EXPECT_EQ(offer.find("a 30%% discount") != std::string::npos, isSpecial);
    }
    for (const bool comes : {false, true, false})
        EXPECT_EQ(
            said(Qt::Key_Escape, [&] { controller().composeEmailWithAttachment(folder / "a.zip"); })
                != "",
            comes);
    EXPECT_EQ(stored("EmailCount").toInt(), 3);
    EXPECT_EQ(composer.mailed.size(), 3U);

    const Path settings = Path(std::getenv("XDG_CONFIG_HOME")) / "sendora/sendora.conf";
    support::writeFile(settings, "");
    EXPECT_EQ(said(Qt::Key_Escape, [&] { controller().sellSendora(); }), "") << "they have it";
    std::filesystem::remove(settings);
}

TEST_F(Prompts, theMenusAndTheAboutWindowLeadToTheirPages)
{
    const std::pair<const char*, const char*> items[] = {
        {"showHelp", "parcelo/help.html"},
        {"visitHomePage", ""},
        {"visitForum", "forum/"},
        {"visitSharePage", "parcelo/fb/"},
        {"visitCommentPage", "parcelo/mu/"},
        {"visitShop", "shop/"},
    };
    start();
    for (const auto& [item, page] : items) {
        find<QAction>(item)->trigger();
        EXPECT_EQ(std::exchange(workspace.opened, {}), Pages{site + page}) << item;
    }
    find<QAction>("showAbout")->trigger();
    EXPECT_TRUE(waitFor([] { return QApplication::activeWindow()->objectName() == u"About"; }));
    const QWidget* about = QApplication::activeWindow();
    EXPECT_EQ(about->findChild<QLabel*>("appNameAndVersion")->text(),
        QStringLiteral("Parcelo " PARCELO_VERSION));
    for (QPushButton* button : about->findChildren<QPushButton*>()) {
        EXPECT_FALSE(button->hasFocus());
        button->click();
    }
    EXPECT_EQ(workspace.opened, (Pages{"mailto:info@parcelo.example", site, site + "parcelo/mu/"}));
}
