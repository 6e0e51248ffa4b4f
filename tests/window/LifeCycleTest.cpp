#include "app/window/AdvertTextView.h"
#include "shared/Library/Extras/QKUtility.h"
#include "tests/window/Program.h"

#include <QMenuBar>
#include <QScopeGuard>

#include <unistd.h>

namespace fs = std::filesystem;

class LifeCycle : public Program
{
};

TEST_F(LifeCycle, beginsWithWhatWasStoredAndTheFeedOfItsSystem)
{
    const auto putBack = qScopeGuard([] { QKUtility::setVersionQuery({}); });
    // What was stored, whether it looks for updates, which run it is, system version and feed.
    const std::tuple<Settings, bool, int, int, std::string> cases[] = {
        {{{"SUCheckAtStartup", true}, {"R232", 7}}, true, 8, 0x1090, "appcast-108.xml"},
        {{{"SUCheckAtStartup", false}, {"R232", -5}}, false, 1, 0x1075, "appcast-107.xml"},
        {{{"CheckAtStartup", true}}, true, 1, 0x1060, "appcast-106.xml"},
        {{}, false, 1, 0x1058, "appcast.xml"},
    };
    for (const auto& [before, checks, run, version, feed] : cases) {
        QKUtility::setVersionQuery([version = version] { return std::optional(version); });
        start(before);
        EXPECT_EQ(stored("CheckAtStartup").toBool(), checks);
        EXPECT_FALSE(stored("SUCheckAtStartup").toBool());
        EXPECT_EQ(controller().runCount(), run);
        EXPECT_EQ(controller().runCount(), run) << "counted once";
        EXPECT_EQ(stored("R232").toInt(), run);
        EXPECT_EQ(stored("SUFeedURL").toString().toStdString(), PARCELO_SITE "parcelo/" + feed);
    }
}

TEST_F(LifeCycle, closingTheWindowQuitsUnlessTheProgramShallStay)
{
    for (const bool stays : {false, true}) {
        start({{"StayRunningOnWindowClose", stays}});
        const Path scratch = controller().tmpFolder();
        EXPECT_EQ(fs::status(scratch).permissions(), fs::perms::owner_all);
        type(Qt::CTRL | Qt::Key_W);
        EXPECT_EQ(window().isMinimized(), stays);
        EXPECT_EQ(hasQuit(), !stays);
        EXPECT_EQ(fs::exists(scratch), stays) << "goes when the program ends";
    }
}

TEST_F(LifeCycle, beginsWithoutTheSecondMenuAndWhereItsWindowWas)
{
    start();
    QStringList menus;
    for (const QAction* menu : find<QMenuBar>("mainMenu")->actions())
        menus.append(menu->text().remove(QLatin1Char('&')));
    EXPECT_EQ(menus, QStringList({"File", "Edit", "Window", "Help"}));
    EXPECT_EQ(window().windowTitle(), QStringLiteral("Parcelo"));
    EXPECT_FALSE(stored("Window Frame MainWindowAutosave").isValid());

    const QRect frame(123, 77, 543, 432);
    window().setGeometry(frame);
    EXPECT_TRUE(waitFor([] { return stored("Window Frame MainWindowAutosave").isValid(); }));
    startAgain();
    EXPECT_EQ(window().geometry(), frame);
}

TEST_F(LifeCycle, keepsItsOwnFolders)
{
    start();
    const auto support = controller().appSupportPath();
    ASSERT_TRUE(support);
    EXPECT_EQ(support->filename(), "org.parcelo.Parcelo");
    EXPECT_TRUE(fs::is_directory(*support));
    const auto working = controller().tmpdir();
    ASSERT_TRUE(working);
    EXPECT_TRUE(fs::is_directory(*working));
    EXPECT_TRUE(controller().cleanupTmpdir());
    EXPECT_FALSE(fs::exists(*working));
}

TEST(Advert, showsALinkToAProductOfTheMoment)
{
    for (const auto& [seconds, product] : {std::pair(0.0, 0), {86396, 2}, {5.9, 21}, {-1, 0}})
        EXPECT_EQ(AppController::randomProductId(seconds), product) << seconds;
    AdvertTextView advert;
    advert.setShortVersion(true);
    advert.setProductId(22);
    EXPECT_EQ(advert.toPlainText().toStdString(), "Parcelo - Free and easy zip utility");
    QTextCursor cursor(advert.document());
    cursor.movePosition(QTextCursor::Right);
    EXPECT_EQ(cursor.charFormat().anchorHref(), QLatin1String(PARCELO_SITE "parcelo/"));
    cursor.movePosition(QTextCursor::End);
    EXPECT_FALSE(cursor.charFormat().isAnchor());
}
