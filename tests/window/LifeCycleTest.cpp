#include "app/window/AboutController.h"
#include "app/window/AdvertTextView.h"
#include "app/window/DropView.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "shared/Library/Extras/QKUtility.h"
#include "tests/window/Program.h"

#include <QApplication>
#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QTextBlock>

#include <algorithm>

#include <unistd.h>

namespace
{

UserDefaults& defaults()
{
    return UserDefaults::standardUserDefaults();
}

} // namespace

class LifeCycle : public Program
{
};

TEST_F(LifeCycle, takesOverTheUpdatersSwitchOnlyWhenItWasStored)
{
    struct Case {
        std::map<QString, QVariant> stored;
        bool checks;
    };
    const Case cases[] = {
        {{}, false},
        {{{"SUCheckAtStartup", true}}, true},
        {{{"SUCheckAtStartup", false}}, false},
        {{{"SUCheckAtStartup", false}, {"CheckAtStartup", true}}, true},
    };
    for (const Case& each : cases) {
        SetUp();
        for (const auto& [key, value] : each.stored)
            defaults().setObject(value, key);
        const AppController controller;
        EXPECT_EQ(defaults().boolForKey(QStringLiteral("CheckAtStartup")), each.checks);
        EXPECT_FALSE(defaults().boolForKey(QStringLiteral("SUCheckAtStartup")));
    }
}

TEST_F(LifeCycle, choosesTheFeedBySystemVersion)
{
    const std::pair<std::int32_t, const char*> versions[]
        = {{0x1090, "appcast-108.xml"}, {0x1080, "appcast-108.xml"}, {0x1075, "appcast-107.xml"},
            {0x1068, "appcast-106.xml"}, {0x1058, "appcast.xml"}, {0, "appcast.xml"}};
    for (const auto& [version, feed] : versions) {
        QKUtility::setVersionQuery([version = version] { return std::optional(version); });
        const AppController controller;
        EXPECT_EQ(defaults().stringForKey(QStringLiteral("SUFeedURL"))->toStdString(),
            std::string(PARCELO_SITE "parcelo/") + feed);
    }
    QKUtility::setVersionQuery({});
}

TEST_F(LifeCycle, countsItsRunsOnceEach)
{
    const std::pair<QVariant, int> stored[] = {{-5, 1}, {0, 1}, {7, 8}, {QVariant(), 1}};
    for (const auto& [value, count] : stored) {
        SetUp();
        if (value.isValid())
            defaults().setObject(value, QStringLiteral("R232"));
        AppController controller;
        EXPECT_EQ(controller.runCount(), count);
        EXPECT_EQ(controller.runCount(), count);
        EXPECT_EQ(defaults().integerForKey(QStringLiteral("R232")), count);
    }
}

TEST_F(LifeCycle, losesTheSecondMenuAndShowsAProduct)
{
    start();
    QStringList menus;
    for (const QAction* menu : find<QMenuBar>("mainMenu")->actions())
        menus.append(menu->text().remove(QLatin1Char('&')));
    EXPECT_EQ(menus, QStringList({"File", "Edit", "Window", "Help"}));
    EXPECT_EQ(window().windowTitle(), QStringLiteral("Parcelo"));
    auto* advert = find<AdvertTextView>("advertTextView");
    EXPECT_TRUE(advert->isVisible());
    EXPECT_NE(advert->productId(), 22);
    EXPECT_FALSE(advert->toPlainText().startsWith(QLatin1String("Brought")));
}

TEST_F(LifeCycle, closingTheWindowQuitsUnlessTheProgramShallStay)
{
    for (const bool stays : {false, true}) {
        SetUp();
        start({{QStringLiteral("StayRunningOnWindowClose"), stays}});
        const auto scratch = controller().tmpFolder();
        EXPECT_EQ(scratch.filename(), "Parcelo_" + std::to_string(::getpid()));
        EXPECT_EQ(
            std::filesystem::status(scratch).permissions(), std::filesystem::perms::owner_all);
        EXPECT_FALSE(window().close());
        EXPECT_EQ(window().isMinimized(), stays);
        EXPECT_EQ(std::filesystem::exists(scratch), stays) << "goes when the program ends";
        controller().applicationShouldTerminate();
        TearDown();
    }
}

TEST_F(LifeCycle, preferencesAreKeptByOKAndForgottenByCancel)
{
    start();
    const auto editAndEnd = [&](Qt::Key key) {
        controller().showPreference(nullptr);
        QDialog* sheet = Sheets::attachedSheet(&window());
        ASSERT_NE(sheet, nullptr);
        EXPECT_EQ(sheet->findChild<QSlider*>("compressionLevel")->value(), 6);
        EXPECT_FALSE(sheet->findChild<QCheckBox*>("hideAdvertBtn")->isChecked());
        sheet->findChild<QSlider*>("compressionLevel")->setValue(9);
        for (const char* box : {"hideAdvertBtn", "autoQuit", "stayRunning", "keepExtension"})
            sheet->findChild<QCheckBox*>(QLatin1String(box))->click();
        EXPECT_FALSE(defaults().boolForKey(QStringLiteral("AutoQuit"))) << "not before OK";
        QTest::keyClick(sheet, key);
        EXPECT_FALSE(sheet->isVisible());
    };
    const auto expectStored = [&](int level, bool flag) {
        EXPECT_EQ(defaults().integerForKey(QStringLiteral("CompressionLevel")), level);
        for (const char* key :
            {"HideAdvert", "AutoQuit", "StayRunningOnWindowClose", "KeepExtensionForDefaultName"})
            EXPECT_EQ(defaults().boolForKey(QLatin1String(key)), flag) << key;
        EXPECT_EQ(find<AdvertTextView>("advertTextView")->isVisible(), !flag);
    };
    editAndEnd(Qt::Key_Escape);
    expectStored(6, false);
    controller().showPreference(nullptr);
    QDialog* sheet = Sheets::attachedSheet(&window());
    sheet->findChild<QSlider*>("compressionLevel")->setValue(9);
    sheet->findChild<QPushButton*>("cancelButton")->click();
    EXPECT_FALSE(sheet->isVisible());
    expectStored(6, false);
    editAndEnd(Qt::Key_Return);
    expectStored(9, true);
}

TEST(Advert, changesWithTime)
{
    const std::pair<double, int> moments[]
        = {{0, 0}, {86396, 2}, {86400, 20}, {5.9, 21}, {-1, 0}, {-7, 0}};
    for (const auto& [seconds, product] : moments)
        EXPECT_EQ(AppController::randomProductId(seconds), product) << seconds;
}

TEST(Advert, namesAProductAsALinkWithItsBlurb)
{
    AdvertTextView advert;
    advert.setProductId(22);
    EXPECT_EQ(advert.toPlainText().toStdString(),
        "Brought to you by Parcelo - Free and easy zip utility");
    advert.setShortVersion(true);
    advert.setProductId(22);
    EXPECT_EQ(advert.toPlainText().toStdString(), "Parcelo - Free and easy zip utility");
    EXPECT_EQ(advert.document()->firstBlock().blockFormat().alignment(), Qt::AlignCenter);
    QTextCursor cursor(advert.document());
    cursor.movePosition(QTextCursor::Right);
    EXPECT_EQ(cursor.charFormat().anchorHref(), QLatin1String(PARCELO_SITE "parcelo/"));
    EXPECT_EQ(cursor.charFormat().foreground().color(), QColor(Qt::white));
    EXPECT_FALSE(cursor.charFormat().fontUnderline());
    cursor.movePosition(QTextCursor::End);
    EXPECT_EQ(cursor.charFormat().foreground().color(), QColor(Qt::black));
    QTextCharFormat large;
    large.setFontPointSize(20);
    advert.setTextAttributes(large);
    EXPECT_EQ(cursor.charFormat().fontPointSize(), 0) << "takes effect with the next product";
    advert.setProductId(21);
    cursor.setPosition(1);
    EXPECT_EQ(cursor.charFormat().fontPointSize(), 20);
    EXPECT_TRUE(cursor.charFormat().isAnchor());
    advert.setProductId(23);
    EXPECT_TRUE(advert.toPlainText().endsWith(QLatin1String(" - (null)")));
}

TEST_F(LifeCycle, theAboutWindowLeadsToTheMaker)
{
    start();
    find<QAction>("showAbout")->trigger();
    const auto windows = QApplication::topLevelWidgets();
    const auto about = std::ranges::find_if(windows,
        [](const QWidget* each) { return each->isVisible() && each->objectName() == u"About"; });
    ASSERT_NE(about, windows.end());
    EXPECT_EQ((*about)->findChild<QLabel*>("appNameAndVersion")->text(),
        QStringLiteral("Parcelo " PARCELO_VERSION));
    EXPECT_TRUE(QTest::qWaitForWindowActive(*about));
    for (QPushButton* button : (*about)->findChildren<QPushButton*>()) {
        EXPECT_FALSE(button->hasFocus());
        button->click();
    }
    const std::string site = PARCELO_SITE;
    EXPECT_EQ(workspace.opened,
        (std::vector<std::string>{"mailto:info@parcelo.example", site, site + "parcelo/mu/"}));
    AboutController ofNoProduct;
    ofNoProduct.visitCommentPage(nullptr);
    EXPECT_EQ(workspace.opened.size(), 3U) << "which has no page";
    ofNoProduct.setProductId(22);
    ofNoProduct.visitCommentPage(nullptr);
    EXPECT_EQ(workspace.opened.size(), 4U);
}

TEST_F(LifeCycle, keepsItsOwnFolders)
{
    start();
    const auto support = controller().appSupportPath();
    ASSERT_TRUE(support);
    EXPECT_EQ(support->filename(), "org.parcelo.Parcelo");
    EXPECT_TRUE(std::filesystem::is_directory(*support));
    const auto working = controller().tmpdir();
    ASSERT_TRUE(working);
    EXPECT_TRUE(std::filesystem::is_directory(*working));
    EXPECT_TRUE(controller().cleanupTmpdir());
    EXPECT_FALSE(std::filesystem::exists(*working));
    EXPECT_TRUE(controller().cleanupTmpdir()) << "there is nothing to clean up";
}

TEST_F(LifeCycle, hidesTheLineAboutOtherProductsFromTheStart)
{
    start({{QStringLiteral("HideAdvert"), true}});
    auto* advert = find<AdvertTextView>("advertTextView");
    EXPECT_FALSE(advert->isVisible());
    const int height = find<QFrame>("footBar")->height();
    EXPECT_FALSE(advert->toPlainText().isEmpty());
    advert->setVisible(true);
    serveEventsFor(20);
    EXPECT_EQ(find<QFrame>("footBar")->height(), height);
}

TEST(Advert, opensItsLinkByKeyAndMouse)
{
    NotingWorkspace workspace;
    Workspace::setSharedWorkspace(&workspace);
    const auto putBack = qScopeGuard([] { Workspace::setSharedWorkspace(nullptr); });
    AdvertTextView advert;
    advert.setProductId(22);
    advert.resize(400, 30);
    advert.show();
    for (int x = 0; x < advert.width(); x += 4)
        QTest::mouseClick(advert.viewport(), Qt::LeftButton, {}, {x, 8});
    EXPECT_FALSE(workspace.opened.empty());
    for (const std::string& page : workspace.opened)
        EXPECT_EQ(page, PARCELO_SITE "parcelo/");
    workspace.opened.clear();
    advert.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&advert));
    advert.clearFocus();
    advert.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&advert, Qt::Key_Return);
    EXPECT_EQ(workspace.opened, std::vector<std::string>{PARCELO_SITE "parcelo/"});
}

TEST(About, tellsNameAndVersion)
{
    EXPECT_EQ(AboutController::appNameAndVersion().toStdString(), "Parcelo " PARCELO_VERSION);
    EXPECT_EQ(AboutController().productId(), -1);
}
