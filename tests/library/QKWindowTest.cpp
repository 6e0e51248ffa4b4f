#include "shared/Library/Extras/QKWindow.h"

#include "platform/desktop/panels/AlertPanelWindow.h"
#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/services/NotificationCenter.h"
#include "shared/Library/Extras/ViewSize.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include <functional>

#include <gtest/gtest.h>

namespace
{

// Runs the action as soon as a sheet is up on the window.
void whenSheetIsUp(QKWindow& window, const std::function<void(QDialog*)>& action)
{
    QTimer::singleShot(5, &window, [&window, action] {
        if (QDialog* sheet = Sheets::attachedSheet(&window))
            action(sheet);
        else
            whenSheetIsUp(window, action);
    });
}

QPushButton* buttonTitled(const QWidget* panel, const char* title)
{
    for (auto* button : panel->findChildren<QPushButton*>())
        if (button->text() == QLatin1String(title))
            return button;
    return nullptr;
}

QPushButton* addButton(QWidget* parent, int tag)
{
    auto* button = new QPushButton(parent);
    Tag::set(button, tag);
    return button;
}

int ask(QKWindow& window, const QString& message = {})
{
    return window.runPromptSheetWithTitle(QStringLiteral("Sendora"), message,
        QStringLiteral("Learn More"), QStringLiteral("Maybe Next Time"),
        QStringLiteral("Don't Ask Again"));
}

} // namespace

TEST(QKWindowPrompt, returnsWhatWasPressed)
{
    const auto press = [](const char* title) {
        return [title](QDialog* panel) { buttonTitled(panel, title)->click(); };
    };
    const auto type = [](Qt::Key key) {
        return [key](QDialog* panel) {
            buttonTitled(panel, "Don't Ask Again")->setFocus();
            QTest::keyClick(panel, key);
        };
    };
    struct Case {
        std::function<void(QDialog*)> action;
        int result;
    };
    const Case cases[] = {
        {press("Learn More"), PromptResultDefault},
        {press("Maybe Next Time"), PromptResultAlternate},
        {press("Don't Ask Again"), PromptResultOther},
        {type(Qt::Key_Return), PromptResultDefault},
        {type(Qt::Key_Escape), PromptResultAlternate},
        {[](QDialog* panel) { panel->close(); }, PromptResultAlternate},
    };
    for (const Case& each : cases) {
        QKWindow window;
        window.show();
        whenSheetIsUp(window, each.action);
        EXPECT_EQ(ask(window), each.result);
        EXPECT_EQ(Sheets::attachedSheet(&window), nullptr);
    }
}

TEST(QKWindowPrompt, isRefusedWhileAnotherIsUpAndShowsItsMessageAsItIs)
{
    QKWindow window;
    window.show();
    int refused = 0;
    QString shown;
    whenSheetIsUp(window, [&](QDialog* panel) {
        refused = ask(window);
        window.runMessageSheetWithTitle(QStringLiteral("dropped"), {});
        shown = panel->findChild<QLabel*>(QStringLiteral("alertMessage"))->text();
        QTest::keyClick(panel, Qt::Key_Escape);
    });
    EXPECT_EQ(ask(window, QStringLiteral("30%% of <b>100%</b> %@ %1")), PromptResultAlternate);
    EXPECT_EQ(refused, PromptResultOther);
    EXPECT_EQ(shown, QStringLiteral("30%% of <b>100%</b> %@ %1"));
}

TEST(QKWindowPrompt, aTimedMessageHasNoButtonAndGoesByItself)
{
    QKWindow window;
    window.show();
    const auto begin = std::chrono::steady_clock::now();
    window.runMessageSheetWithTitle(
        QStringLiteral("title"), QStringLiteral("message"), std::chrono::milliseconds(60));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));
    EXPECT_EQ(Sheets::attachedSheet(&window), nullptr);
}

TEST(QKWindowSheet, endsWithTheTagOfAWiredButton)
{
    QKWindow window;
    window.show();
    QDialog sheet;
    QPushButton* direct = addButton(&sheet, 5);
    auto* box = new QGroupBox(&sheet);
    auto* contents = new QWidget(box);
    QPushButton* inBox = addButton(contents, 6); // third level: wired
    QPushButton* inPlainView = addButton(new QWidget(&sheet), 7); // second level: skipped
    auto* checkBox = new QCheckBox(&sheet);
    QPushButton* busy = addButton(&sheet, 8);
    int busyClicks = 0;
    QObject::connect(busy, &QPushButton::clicked, [&] { ++busyClicks; });

    for (QPushButton* ending : {direct, inBox}) {
        bool survived = false;
        whenSheetIsUp(window, [&](QDialog*) {
            for (QAbstractButton* harmless :
                std::initializer_list<QAbstractButton*>{inPlainView, checkBox, busy})
                harmless->click();
            survived = sheet.isVisible();
            ending->click();
        });
        EXPECT_EQ(window.runPromptSheet(&sheet), Tag::of(ending));
        EXPECT_TRUE(survived);
    }
    EXPECT_EQ(busyClicks, 2);

    window.beginSheet(&sheet);
    EXPECT_EQ(Sheets::attachedSheet(&window), &sheet);
    window.endSheet();
    EXPECT_EQ(Sheets::attachedSheet(&window), nullptr);
    sheet.setParent(nullptr);
}

TEST(QKWindowTitle, isPutTogetherFromWhatIsSet)
{
    struct Case {
        std::optional<QString> title;
        std::optional<QString> suffix;
        const char* visible;
    };
    const Case cases[] = {
        {QStringLiteral("Documents"), std::nullopt, "Documents"},
        {QStringLiteral("Documents"), QStringLiteral("(2)"), "Documents (2)"},
        {std::nullopt, QStringLiteral("(2)"), "null (2)"},
        {std::nullopt, std::nullopt, "null"},
    };
    for (const Case& each : cases) {
        QKWindow window;
        window.setTitle(each.title);
        window.setTitleSuffix(each.suffix);
        EXPECT_EQ(window.windowTitle().toStdString(), each.visible);
    }
}

TEST(QKWindowToolbar, isShownHiddenAndKeptOutOfTheZoom)
{
    QKWindow window;
    auto* toolbar = new QToolBar(&window);
    window.addToolBar(toolbar);
    window.show();
    QAction toggle;
    toggle.setObjectName(QStringLiteral("toggleToolbarShown"));
    QStringList posted;
    QObject::connect(&NotificationCenter::defaultCenter(), &NotificationCenter::notified, &toggle,
        [&](const QString& name, QObject* object) {
            if (object == &window)
                posted.append(name);
        });
    for (const char* title : {"Hide Toolbar", "Show Toolbar", "Hide Toolbar"}) {
        EXPECT_TRUE(window.validateMenuItem(&toggle));
        EXPECT_EQ(toggle.text().toStdString(), title);
        window.toggleToolbarShown(&toggle);
    }
    EXPECT_EQ(posted, QStringList(3, QStringLiteral("ToggleToolbar")));
    window.toggleToolbarShown(&toggle);
    window.zoom(&toggle);
    EXPECT_TRUE(window.isMaximized());
    EXPECT_FALSE(toolbar->isHidden());

    struct Case {
        const char* action;
        int tag;
        bool hides;
    };
    for (const Case& each :
        {Case{"changeToolbarDisplayMode", 3, true}, Case{"changeToolbarDisplayMode", 2, false},
            Case{"toggleUsingSmallToolbarIcons", 0, true}, Case{"other", 3, false}}) {
        for (const bool isSet : {false, true}) {
            window.setHideToolbarLabelOnlyMode(isSet);
            window.setHideToolbarUseSmallIcons(isSet);
            QAction item;
            item.setObjectName(QLatin1String(each.action));
            Tag::set(&item, each.tag);
            EXPECT_TRUE(window.validateMenuItem(&item));
            EXPECT_EQ(item.isVisible(), !(isSet && each.hides)) << each.action;
        }
    }
}

TEST(QKWindowCopy, takesOverWhatTheOtherWindowShows)
{
    QKWindow window;
    window.setTitle(QStringLiteral("Original"));
    window.setMinimumSize(120, 90);
    window.setFrameAutosaveName(QStringLiteral("Frame"));
    auto* content = new QLabel(&window);
    window.setCentralWidget(content);
    int asked = 0;
    window.setDelegate({.windowShouldClose = [&](QObject*) { return ++asked, false; }});
    for (int round = 1; round <= 2; ++round) {
        testing::internal::CaptureStderr();
        const auto copy = QKWindow::initWithWindow(window, false);
        EXPECT_NE(testing::internal::GetCapturedStderr().find(
                      "initWithWindow:textured:  DEPRECATED. STOP CALLING THIS."),
            std::string::npos);
        EXPECT_EQ(copy->windowTitle(), QStringLiteral("Original"));
        EXPECT_EQ(copy->minimumSize(), QSize(120, 90));
        EXPECT_EQ(copy->frameAutosaveName(), QStringLiteral("QKFrame"));
        EXPECT_EQ(copy->centralWidget(), content);
        copy->show();
        EXPECT_FALSE(copy->close());
        EXPECT_EQ(asked, round);
        window.setCentralWidget(copy->takeCentralWidget());
    }
}

TEST(ViewSize, changesTheWidthAlone)
{
    QWidget view;
    view.setGeometry(3, 4, 50, 60);
    for (const auto& [width, expected] : {std::pair(80.0F, 80), {0.0F, 0}}) {
        ViewSize::setFrameWidth(view, width);
        EXPECT_EQ(view.geometry(), QRect(3, 4, expected, 60));
    }
}
