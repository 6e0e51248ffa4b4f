#include "shared/Library/Extras/QKWindow.h"

#include "platform/desktop/panels/Sheets.h"
#include "platform/desktop/panels/Tag.h"
#include "tests/support/qt/QtTest.h"

#include <QTextEdit>
#include <QToolBar>

struct QKWindowTest : testing::Test {
    QKWindowTest() { window.show(); }

    void whenAsked(const std::function<void(QDialog* sheet)>& answer)
    {
        QTimer::singleShot(0, &window, [=, this] { answer(Sheets::attachedSheet(&window)); });
    }

    int ask(const QString& message = {})
    {
        return window.runPromptSheetWithTitle({}, message, u"Yes"_qs, u"No"_qs, u"Never"_qs);
    }

    QKWindow window;
};

TEST_F(QKWindowTest, whatIsAskedWhileAPanelIsUpIsRefused)
{
    const QString message = u"30%% of <b>100%</b> %@ %1"_qs;
    whenAsked([&](QDialog* panel) {
        EXPECT_EQ(panel->findChild<QTextEdit*>(u"alertMessage"_qs)->toPlainText(), message);
        EXPECT_EQ(ask(), PromptResultOther);
        window.runMessageSheetWithTitle({}, {});
        panel->close();
    });
    EXPECT_EQ(ask(message), PromptResultAlternate);
}

TEST_F(QKWindowTest, aMessageWaitsForATimeOrForItsButton)
{
    const auto begin = std::chrono::steady_clock::now();
    window.runMessageSheetWithTitle({}, {}, std::chrono::milliseconds(60));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(60));

    bool isDismissed = false;
    whenAsked([&](QDialog* panel) {
        isDismissed = true;
        panel->findChild<QPushButton*>()->click();
    });
    window.runMessageSheetWithTitle({}, {});
    EXPECT_TRUE(isDismissed);
}

TEST_F(QKWindowTest, aSheetEndsWithTheTagOfAWiredButton)
{
    auto* sheet = new QDialog(&window);
    auto* button = new QPushButton(new QWidget(new QWidget(sheet))); // second levels are skipped
    Tag::set(button, 6);
    QTimer::singleShot(0, button, &QPushButton::click);
    EXPECT_EQ(window.runPromptSheet(sheet), 6);
    window.beginSheet(sheet);
    EXPECT_EQ(Sheets::attachedSheet(&window), sheet);
    window.endSheet();
    EXPECT_EQ(Sheets::attachedSheet(&window), nullptr);
}

TEST_F(QKWindowTest, hasAToolbarATitleAndCopies)
{
    window.addToolBar(QString()); // hidden so far
    QAction item;
    item.setObjectName(u"toggleToolbarShown"_qs);
    window.toggleToolbarShown(&item);
    EXPECT_TRUE(window.validateMenuItem(&item) && item.text() == u"Hide Toolbar");

    window.setTitleSuffix(u"(2)"_qs);
    window.setDelegate({.windowShouldClose = [](QObject*) { return false; }});
    const auto copy = QKWindow::initWithWindow(window, false);
    EXPECT_EQ(copy->windowTitle(), u"null (2)");
    EXPECT_FALSE(copy->close());
}
