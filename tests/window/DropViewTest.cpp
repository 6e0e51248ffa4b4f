#include "app/window/DropView.h"

#include "app/window/AdvertTextView.h"
#include "platform/desktop/panels/Sheets.h"
#include "tests/window/Drag.h"
#include "tests/window/Program.h"

#include <QAccessible>

#include <numeric>
#include <set>

namespace
{

constexpr auto uriList = "text/uri-list";

// How much ink a pixel holds, from 0, as the background, to 1.
struct Ink {
    const QImage image;
    const int background;
    const int ink;

    double at(int x, int y) const
    {
        return (background - image.pixelColor(x, y).red()) / double(background - ink);
    }
    QRect extent(const QRect& within) const
    {
        QRect found;
        for (int x = within.left(); x <= within.right(); ++x)
            for (int y = within.top(); y <= within.bottom(); ++y)
                if (at(x, y) > 0.5)
                    found |= QRect(x, y, 1, 1);
        return found;
    }
};

} // namespace

class DropBox : public Program
{
};

TEST_F(DropBox, takesFilesOfThisComputerAndNothingElse)
{
    const std::tuple<const char*, const char*, bool> cases[] = {
        {uriList, "file:///tmp/a%20b.txt\r\n", true},
        {uriList, "file:///tmp/caf%E9.txt\r\n", true},
        {uriList, "file://localhost/tmp/a\r\n", true},
        {uriList, "http://example.com/a\r\n", false},
        {uriList, "file://elsewhere/tmp/a\r\n", false},
        {"text/plain", "/tmp/a", false},
    };
    start();
    for (const auto& [format, data, isTaken] : cases) {
        Drag drag(format, data);
        EXPECT_EQ(drag.hover(box()), isTaken) << data;
        EXPECT_TRUE(box().animate()) << "any drag is shown";
        Drag::leave(box());
        EXPECT_FALSE(box().animate());
    }
    Drag move(uriList, "file:///tmp/a\r\n");
    move.offered = Qt::MoveAction;
    EXPECT_FALSE(move.hover(box()));
    Drag::leave(box());

    Drag drag(uriList, "file:///tmp/a\r\n");
    EXPECT_TRUE(drag.hover(box()));
    type(Qt::CTRL | Qt::Key_Comma);
    (void)waitForSheet("Preference");
    drag.drop(box());
    EXPECT_TRUE(box().files().empty()) << "a dialog is up";
    EXPECT_FALSE(drag.hover(box()));
    EXPECT_FALSE(box().animate());
}

TEST_F(DropBox, recordsTheBytesOfEachDropInItsOrder)
{
    const std::pair<QByteArray, DropView::Files> drops[] = {
        {"file:///b\r\nfile:///a\r\nfile:///b\r\n", {"/b", "/a", "/b"}},
        {"file:///x/caf%E9%0A%25\r\n", {"/x/caf\xE9\n%"}},
    };
    start();
    for (const auto& [list, files] : drops) {
        Drag drag(uriList, list);
        EXPECT_TRUE(drag.hover(box()));
        drag.drop(box());
        EXPECT_FALSE(box().animate());
        EXPECT_EQ(box().files(), files);
        EXPECT_EQ(box().folder(), std::filesystem::path(files.front()).parent_path());
        endSheet("savePanel");
        EXPECT_TRUE(box().files().empty()) << "a cancelled panel clears the box";
    }
}

TEST_F(DropBox, isPressedByKeyToChooseFiles)
{
    start();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        QTest::keyClick(&box(), key);
        endSheet("chooseFilesPanel");
    }
    EXPECT_TRUE(box().files().empty());
    type(Qt::CTRL | Qt::SHIFT | Qt::Key_O);
    waitForSheet("chooseFolderPanel")
        ->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QString::fromStdString(folder.path()));
    endSheet("chooseFolderPanel", Qt::Key_Return);
    EXPECT_EQ(box().files(), DropView::Files{folder.path()});
    endSheet("savePanel");
}

TEST_F(DropBox, andItsNeighboursAreOneTabStopEach)
{
    start();
    box().setFocus();
    auto* advert = find<AdvertTextView>("advertTextView");
    const auto next = [](Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        return QApplication::focusWidget()->objectName().toStdString();
    };
    EXPECT_EQ(next(Qt::Key_Tab), "destinationPop");
    EXPECT_EQ(next(Qt::Key_Tab), "advertTextView");
    EXPECT_EQ(next(Qt::Key_Tab), "saveDropView");
    EXPECT_FALSE(advert->textCursor().hasSelection());
    EXPECT_EQ(next(Qt::Key_Backtab), "advertTextView");
    EXPECT_TRUE(advert->textCursor().hasSelection()) << "the link is chosen";
    QTest::keyClick(advert, Qt::Key_Return);
    EXPECT_EQ(workspace.opened.size(), 1U);
    EXPECT_EQ(next(Qt::Key_Backtab), "destinationPop");
}

// Of everything that takes the focus, in the window and all that it opens.
TEST_F(DropBox, andAllOtherControlsAreKnownToScreenReaders)
{
    start();
    drop({"/a"});
    (void)waitForSheet("savePanel");
    for (const char* action : {"showPreference", "showAbout"})
        find<QAction>(action)->trigger();
    std::map<std::string, QAccessible::Role> roles;
    std::set<std::string> nameless;
    for (const QWidget* top : QApplication::topLevelWidgets()) {
        for (QWidget* part : top->findChildren<QWidget*>()) {
            QAccessibleInterface* known = QAccessible::queryAccessibleInterface(part);
            if (known == nullptr || (part->focusPolicy() & Qt::TabFocus) == 0
                || part->objectName() == QLatin1String("qt_scrollarea_viewport"))
                continue;
            roles[part->objectName().toStdString()] = known->role();
            if (known->text(QAccessible::Name).isEmpty())
                nameless.insert(top->objectName().toStdString() + " "
                    + part->metaObject()->className() + " " + part->objectName().toStdString());
        }
    }
    EXPECT_EQ(nameless, std::set<std::string>());
    EXPECT_GT(roles.size(), 20U);
    EXPECT_EQ(roles["saveDropView"], QAccessible::Button);
    EXPECT_EQ(roles["destinationPop"], QAccessible::ButtonMenu);
    EXPECT_EQ(roles["nameField"], QAccessible::EditableText);
}

// The design's numbers, in pixels as they are drawn.
TEST(DropBoxLook, isAsDesigned)
{
    struct Greys {
        bool isHovered;
        int background;
        int ink;
    };
    for (const Greys& greys : {Greys{false, 255, 128}, Greys{true, 153, 242}}) {
        SCOPED_TRACE(greys.isHovered);
        DropView box;
        box.resize(400, 200);
        if (greys.isHovered)
            box.draggingEntered(QMimeData());
        const auto draw = [&] { return Ink{box.grab().toImage(), greys.background, greys.ink}; };
        const Ink drawn = draw();
        EXPECT_EQ(drawn.image.pixelColor(1, 1).red(), greys.background);

        // 20 on and 4 off, at the upper edge.
        const auto edge = [](const Ink& pass) {
            std::vector<double> shares;
            for (int x = 30; x < 30 + 14 * 24; ++x)
                shares.push_back(pass.at(x, 10));
            return shares;
        };
        const std::vector<double> top = edge(drawn);
        EXPECT_EQ(std::ranges::count_if(top, [](double ink) { return ink < 0.5; }), 14 * 4);
        EXPECT_NEAR(std::accumulate(top.begin(), top.end(), 0.0), 14 * 20, 2);
        EXPECT_NEAR(*std::ranges::max_element(top), 1, 0.01) << "the grey of the outline";
        const int x = 30 + int(std::ranges::max_element(top) - top.begin());
        EXPECT_NEAR(drawn.at(x, 9), 0.5, 0.01) << "2 thick, and its middle 10.5 inside";
        EXPECT_NEAR(drawn.at(x, 11), 0.5, 0.01);
        EXPECT_LT(drawn.at(x, 8) + drawn.at(x, 12), 0.01);
        EXPECT_LT(drawn.at(11, 11), 0.01) << "a round corner";

        const std::vector<double> next = edge(draw());
        const auto shifted = greys.isHovered ? std::vector(next.begin(), next.end() - 1) : next;
        EXPECT_TRUE(
            std::ranges::equal(shifted, std::vector(top.begin() + greys.isHovered, top.end()),
                [](double a, double b) { return std::abs(a - b) < 0.02; }))
            << "it marches by one, hovered";

        QFont font(QStringLiteral("Helvetica"));
        font.setPixelSize(20);
        const QRect text = QFontMetrics(font).tightBoundingRect(QStringLiteral("Drop Files Here"));
        const QRect caption = drawn.extent({20, 20, 360, 160});
        EXPECT_NEAR(caption.width(), text.width(), 3);
        EXPECT_NEAR(caption.height(), text.height(), 3);
        EXPECT_NEAR(caption.center().x(), 200, 2);
        EXPECT_NEAR(caption.center().y(), 100, 4);
    }
}
