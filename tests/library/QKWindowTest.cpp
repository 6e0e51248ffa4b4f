#include "shared/Library/Extras/QKWindow.h"

#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "platform/desktop/services/NotificationCenter.h"
#include "shared/Library/Extras/ViewSize.h"

#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolBar>

#include <gtest/gtest.h>

namespace
{

class QKWindowTest : public testing::Test
{
protected:
    QKWindowTest() { window.show(); }

    // Asks, and answers as soon as the sheet is up.
    int ask(const std::function<void(QDialog* sheet)>& answer, const QString& message = {})
    {
        QTimer::singleShot(0, &window, [=, this] { answer(Sheets::attachedSheet(&window)); });
        return window.runPromptSheetWithTitle({}, message, u"Yes"_qs, u"No"_qs, u"Never"_qs);
    }

    QKWindow window;
};

QPushButton* addButton(QWidget* parent, int tag)
{
    auto* button = new QPushButton(parent);
    Tag::set(button, tag);
    return button;
}

} // namespace

TEST_F(QKWindowTest, aPromptReturnsWhatWasPressed)
{
    const auto never = [](QDialog* panel) {
        const auto buttons = panel->findChildren<QPushButton*>();
        return *std::ranges::find(buttons, u"Never"_qs, &QPushButton::text);
    };
    EXPECT_EQ(ask([&](QDialog* panel) { never(panel)->click(); }), PromptResultOther);
    for (const auto& [key, result] : {std::pair(Qt::Key_Return, 1), {Qt::Key_Escape, 0}})
        EXPECT_EQ(ask([&, key = key](QDialog* panel) {
            never(panel)->setFocus();
            QTest::keyClick(panel, key);
        }),
            result);
    const QString message = u"30%% of <b>100%</b> %@ %1"_qs;
    const auto askAgain = [&](QDialog* panel) {
        EXPECT_EQ(panel->findChild<QLabel*>(u"alertMessage"_qs)->text(), message);
        EXPECT_EQ(window.runPromptSheetWithTitle({}, {}, {}, {}, {}), PromptResultOther);
        window.runMessageSheetWithTitle({}, {}); // refused too
        panel->close();
    };
    EXPECT_EQ(ask(askAgain, message), PromptResultAlternate);

    const auto begin = std::chrono::steady_clock::now();
    window.runMessageSheetWithTitle({}, {}, std::chrono::milliseconds(60));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));
    EXPECT_EQ(Sheets::attachedSheet(&window), nullptr);
}

TEST_F(QKWindowTest, buttonsHaveKeysByTheirTags)
{
    QWidget panel;
    QStringList keys;
    for (const int tag : {1, 0, -1})
        addButton(&panel, tag);
    QKWindow::setupKeyEquivalents(&panel);
    for (const auto* button : panel.findChildren<QPushButton*>())
        keys << button->shortcut().toString();
    EXPECT_EQ(keys, QStringList({u"Return"_qs, u"Esc"_qs, QString()}));
}

TEST_F(QKWindowTest, aSheetEndsWithTheTagOfAWiredButton)
{
    auto* sheet = new QDialog(&window);
    QPushButton* direct = addButton(sheet, 5);
    QPushButton* inBox = addButton(new QWidget(new QWidget(sheet)), 6); // third level: wired
    QPushButton* inView = addButton(new QWidget(sheet), 7); // second level: skipped
    QPushButton* busy = addButton(sheet, 8);
    int clicks = 0;
    QObject::connect(busy, &QPushButton::clicked, [&] { ++clicks; });
    auto* checkBox = new QCheckBox(sheet);
    for (QPushButton* ending : {direct, inBox}) {
        QTimer::singleShot(0, sheet, [&, ending] {
            for (QAbstractButton* harmless : QList<QAbstractButton*>{inView, checkBox, busy})
                harmless->click();
            EXPECT_EQ(Sheets::attachedSheet(&window), sheet);
            ending->click();
        });
        EXPECT_EQ(window.runPromptSheet(sheet), Tag::of(ending));
    }
    EXPECT_EQ(clicks, 2);
    window.beginSheet(sheet);
    EXPECT_EQ(Sheets::attachedSheet(&window), sheet);
    window.endSheet();
    EXPECT_EQ(Sheets::attachedSheet(&window), nullptr);
}

TEST_F(QKWindowTest, theToolbarIsShownHiddenAndKeptOutOfTheZoom)
{
    QToolBar* toolbar = window.addToolBar(QString());
    toolbar->show();
    QAction item;
    QStringList noted;
    item.setObjectName(u"toggleToolbarShown"_qs);
    QObject::connect(&NotificationCenter::defaultCenter(), &NotificationCenter::notified, &item,
        [&](const QString& name) { noted << name + u' ' + item.text(); });
    for (int count = 0; count < 2; ++count) {
        EXPECT_TRUE(window.validateMenuItem(&item));
        window.toggleToolbarShown(&item);
    }
    EXPECT_EQ(
        noted, QStringList({u"ToggleToolbar Hide Toolbar"_qs, u"ToggleToolbar Show Toolbar"_qs}));
    window.zoom(&item);
    EXPECT_TRUE(window.isMaximized());
    EXPECT_FALSE(toolbar->isHidden());

    window.setHideToolbarLabelOnlyMode(true);
    item.setObjectName(u"changeToolbarDisplayMode"_qs);
    for (const int tag : {2, 3}) { // 3 is the mode with labels only
        Tag::set(&item, tag);
        EXPECT_TRUE(window.validateMenuItem(&item));
        EXPECT_EQ(item.isVisible(), tag == 2);
    }
}

TEST_F(QKWindowTest, aCopyTakesOverWhatTheOtherWindowShows)
{
    window.setTitleSuffix(u"(2)"_qs);
    EXPECT_EQ(window.windowTitle(), u"null (2)");
    window.setTitle(u"Documents"_qs);
    window.setFrameAutosaveName(u"Frame"_qs);
    window.setCentralWidget(new QLabel(u"content"_qs));
    window.setDelegate({.windowShouldClose = [](QObject*) { return false; }});
    testing::internal::CaptureStderr();
    const auto copy = QKWindow::initWithWindow(window, false);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        "initWithWindow:textured:  DEPRECATED. STOP CALLING THIS.\n");
    EXPECT_EQ(copy->windowTitle() + copy->frameAutosaveName(), u"Documents (2)QKFrame");
    EXPECT_FALSE(copy->close());
    ViewSize::setFrameWidth(*copy->centralWidget(), 250);
    EXPECT_EQ(copy->centralWidget()->width(), 250);
}
