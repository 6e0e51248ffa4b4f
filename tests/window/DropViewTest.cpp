#include "app/window/DropView.h"

#include "app/window/AdvertTextView.h"
#include "platform/desktop/panels/SavePanel.h"
#include "shared/Library/Extras/BezierPathExtras.h"
#include "tests/window/Program.h"

#include <QAccessible>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainterPath>
#include <QTest>

#include <set>

namespace
{

constexpr auto uriList = "text/uri-list";

struct Drag {
    QMimeData data;

    Drag(const char* format, const QByteArray& bytes)
    {
        data.setData(QLatin1String(format), bytes);
    }

    // Whether the box takes it when it hovers.
    bool enter(DropView& box, Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction)
    {
        QDragEnterEvent enter({50, 50}, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &enter);
        QDragMoveEvent move({60, 60}, offered, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &move);
        EXPECT_TRUE(box.animate()) << "any drag is shown";
        EXPECT_TRUE(!move.isAccepted() || move.dropAction() == Qt::CopyAction);
        return move.isAccepted();
    }
    static void leave(DropView& box)
    {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(&box, &leave);
    }
    void drop(DropView& box)
    {
        QDropEvent drop({60, 60}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &drop);
    }
};

} // namespace

class DropBox : public Program
{
protected:
    DropView& box() { return *find<DropView>("saveDropView"); }
};

TEST_F(DropBox, takesFilesOfThisComputerAndNothingElse)
{
    start();
    struct Case {
        const char* format;
        QByteArray data;
        Qt::DropActions offered;
        bool isTaken;
    };
    const Qt::DropActions copyOrMove = Qt::CopyAction | Qt::MoveAction;
    const Case cases[] = {
        {uriList, "file:///tmp/a%20b.txt\r\n", copyOrMove, true},
        {uriList, "file:///tmp/caf%E9.txt\r\n", copyOrMove, true},
        {uriList, "file://localhost/tmp/a\r\n", Qt::CopyAction, true},
        {uriList, "file:///tmp/a\r\n", Qt::MoveAction, false},
        {uriList, "http://example.com/a\r\n", copyOrMove, false},
        {uriList, "file://elsewhere/tmp/a\r\n", copyOrMove, false},
        {"text/plain", "/tmp/a", copyOrMove, false},
    };
    for (const Case& each : cases) {
        Drag drag(each.format, each.data);
        EXPECT_EQ(drag.enter(box(), each.offered), each.isTaken) << each.data.toStdString();
        Drag::leave(box());
        EXPECT_FALSE(box().animate());
    }
}

TEST_F(DropBox, recordsTheBytesOfEachDropInItsOrder)
{
    start();
    QByteArray many;
    DropView::Files expected;
    for (int number = 0; number < 2000; ++number) {
        many += "file:///src/" + QByteArray::number(number) + "\r\n";
        expected.push_back("/src/" + std::to_string(number));
    }
    const std::pair<QByteArray, DropView::Files> drops[] = {
        {many, expected},
        {"file:///b\r\nfile:///a\r\nfile:///b\r\n", {"/b", "/a", "/b"}},
        {"file:///x/caf%E9%0A%25\r\n", {"/x/caf\xE9\n%"}},
    };
    for (const auto& [list, files] : drops) {
        Drag drag(uriList, list);
        EXPECT_TRUE(drag.enter(box()));
        drag.drop(box());
        EXPECT_FALSE(box().animate());
        EXPECT_EQ(box().files(), files);
        EXPECT_EQ(box().folder(), std::filesystem::path(files.front()).parent_path());
        ASSERT_TRUE(waitFor([&] { return window().findChild<QDialog*>("savePanel") != nullptr; }));
        ASSERT_TRUE(waitFor([&] { return find<QDialog>("savePanel")->isVisible(); }));
        QTest::keyClick(find<QDialog>("savePanel"), Qt::Key_Escape);
        EXPECT_TRUE(box().files().empty()) << "a cancelled panel clears the box";
    }
    box().addFileWithPath("/a");
    box().addFileWithPath("/a");
    EXPECT_EQ(box().files().size(), 2u);
}

TEST_F(DropBox, marchesOnlyWhileItIsHoveredAndGoesOnFromThere)
{
    start();
    Drag drag(uriList, "file:///a\r\n");
    drag.enter(box());
    ASSERT_TRUE(waitFor([&] { return box().phase() >= 5; }));
    EXPECT_EQ(box().grab().toImage().pixelColor(1, 1), DropView::hbgColor());
    Drag::leave(box());
    serveEventsFor(50);
    const float phase = box().phase();
    serveEventsFor(50);
    EXPECT_EQ(box().phase(), phase);
    EXPECT_EQ(box().grab().toImage().pixelColor(1, 1), DropView::bgColor());
    drag.enter(box());
    EXPECT_TRUE(waitFor([&] { return box().phase() > phase; }));
    Drag::leave(box());
}

TEST_F(DropBox, isPressedByKeyToChooseFiles)
{
    start();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        bool hasAsked = false;
        whenSheetIsUp([&](QDialog* sheet) {
            hasAsked = sheet->objectName() == QLatin1String("chooseFilesPanel");
            QTest::keyClick(sheet, Qt::Key_Escape);
        });
        QTest::keyClick(&box(), key);
        EXPECT_TRUE(waitFor([&] { return hasAsked; }));
        serveEventsFor(20);
    }
    EXPECT_TRUE(box().files().empty());

    QString asked;
    whenSheetIsUp([&](QDialog* sheet) {
        asked = sheet->objectName();
        QTest::keyClick(sheet, Qt::Key_Escape);
    });
    find<QAction>("chooseFolder")->trigger();
    EXPECT_TRUE(waitFor([&] { return asked == QStringLiteral("chooseFolderPanel"); }));
}

TEST_F(DropBox, isShutWhileADialogIsUp)
{
    start();
    controller().showPreference(nullptr);
    Drag drag(uriList, "file:///tmp/a\r\n");
    QDragEnterEvent enter({50, 50}, Qt::CopyAction, &drag.data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&box(), &enter);
    EXPECT_FALSE(enter.isAccepted());
    EXPECT_FALSE(box().animate());
    drag.drop(box());
    EXPECT_TRUE(box().files().empty());
}

TEST_F(DropBox, andItsNeighboursAreOneTabStopEach)
{
    start();
    window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    box().setFocus();
    auto* advert = find<AdvertTextView>("advertTextView");
    QStringList stops;
    for (int stop = 0; stop < 3; ++stop) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        stops.append(QApplication::focusWidget()->objectName());
        EXPECT_EQ(advert->textCursor().hasSelection(), stop == 1) << "the link is chosen";
    }
    EXPECT_EQ(stops, QStringList({"destinationPop", "advertTextView", "saveDropView"}));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_TRUE(advert->textCursor().hasSelection());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("destinationPop"));
}

TEST_F(DropBox, andItsNeighboursAreKnownToScreenReaders)
{
    start();
    const std::pair<const char*, QAccessible::Role> parts[] = {
        {"saveDropView", QAccessible::Button},
        {"destinationPop", QAccessible::ButtonMenu},
        {"progress", QAccessible::ProgressBar},
        {"nameField", QAccessible::EditableText},
    };
    for (const auto& [name, role] : parts) {
        QAccessibleInterface* part = QAccessible::queryAccessibleInterface(find<QWidget>(name));
        EXPECT_EQ(part->role(), role) << name;
        EXPECT_FALSE(part->text(QAccessible::Name).isEmpty()) << name;
    }
}

// Of everything that takes the focus, in the window and all that it opens.
TEST_F(DropBox, andAllOtherControlsHaveNames)
{
    start();
    controller().showPreference(nullptr);
    controller().showAbout(nullptr);
    controller().savePanel().setNameFieldStringValue(QStringLiteral("a"));
    int controls = 0;
    std::set<std::string> nameless;
    const auto inspect = [&](const QWidget* top) {
        for (QWidget* part : top->findChildren<QWidget*>()) {
            QAccessibleInterface* known = QAccessible::queryAccessibleInterface(part);
            const bool isControl = (part->focusPolicy() & Qt::TabFocus) != 0
                && part->objectName() != QLatin1String("qt_scrollarea_viewport");
            controls += isControl ? 1 : 0;
            if (isControl && known && known->text(QAccessible::Name).isEmpty())
                nameless.insert(top->objectName().toStdString() + " "
                    + part->metaObject()->className() + " " + part->objectName().toStdString());
        }
    };
    for (const QWidget* top : QApplication::topLevelWidgets())
        inspect(top);
    EXPECT_EQ(nameless, std::set<std::string>());
    EXPECT_GT(controls, 25);
}

TEST(RoundRectPath, hasItsSidesHalfAPointInsideAndClampsTheRadius)
{
    struct Case {
        QRectF rect;
        float radius;
        double clamped;
    };
    for (const Case& each : {Case{{10, 10, 180, 80}, 10, 10}, Case{{0, 0, 40, 30}, 50, 15}}) {
        const QPainterPath path
            = BezierPathExtras::bezierPathWithRoundRectInRect(each.rect, each.radius);
        const double inset = each.clamped + 0.5;
        EXPECT_NEAR(path.elementAt(0).x, each.rect.left() + 0.5, 1e-6);
        EXPECT_NEAR(path.elementAt(0).y, each.rect.top() + inset, 1e-6);
        // Also where the arcs cross.
        const QRectF bounds = path.boundingRect().normalized();
        EXPECT_NEAR(bounds.top(), each.rect.top() + 0.5, 1e-6);
        EXPECT_NEAR(bounds.height(), each.rect.height() - 1, 1e-6);
        EXPECT_FALSE(path.contains(each.rect.topLeft() + QPointF(1, 1)));
    }
}
