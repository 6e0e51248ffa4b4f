#include "tests/window/Program.h"

#include <QTreeWidget>

using DropBox = Program;

TEST_F(DropBox, takesFilesOfThisComputerInTheirOrderAndNothingElse)
{
    const char* uriList = "text/uri-list";
    const std::tuple<const char*, const char*, DropView::Files> cases[]
        = {{uriList, "file:///b\r\nfile:///a%20b\r\nfile:///b\r\n", {"/b", "/a b", "/b"}},
            {"x-special/gnome-copied-files", "copy\nfile:///a/caf%E9\n", {"/a/caf\xE9"}},
            {uriList, "file://elsewhere/tmp/a\r\n", {}}, {"text/plain", "/tmp/a", {}}};
    start();
    for (const auto& [format, bytes, files] : cases) {
        EXPECT_EQ(drop(bytes, format), !files.empty()) << bytes;
        EXPECT_EQ(box().files(), files) << bytes;
        if (!files.empty())
            endSheet("savePanel");
        EXPECT_TRUE(box().files().empty()) << "a cancelled panel clears the box";
    }
    // Beside the box: the whole window takes files.
    for (const auto& [bytes, isTaken] :
        {std::pair("http://example.org/a", false), {"file:///a", true}}) {
        QMimeData data;
        data.setData(uriList, bytes);
        QDragEnterEvent enter({1, 1}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(find<QWidget>("destinationLabel"), &enter);
        EXPECT_EQ(enter.isAccepted(), isTaken) << bytes;
        EXPECT_EQ(box().animate(), isTaken) << bytes;
    }
    // Chosen, while a request of another origin began.
    find<QAction>("chooseFiles")->trigger();
    (void)waitForSheet("chooseFilesPanel");
    controller().startProcessing(nullptr);
    endSheet("chooseFilesPanel", Qt::Key_Return, "/etc/hostname");
    EXPECT_TRUE(box().files().empty());
    endSheet("savePanel");
    (void)waitForSheet("savePanel");
    EXPECT_EQ(box().files(), DropView::Files{"/etc/hostname"});
    endSheet("savePanel");

    type(Qt::CTRL | Qt::Key_Comma);
    (void)waitForSheet("Preference");
    EXPECT_FALSE(drop("file:///tmp/a\r\n")) << "a dialog is up";
}

TEST_F(DropBox, takesFilesAndFoldersThatAreChosenTogetherWhateverTheirNames)
{
    const Path inside = folder / "sub/inside";
    const Path odd = folder / "sub/caf\xe9"; // no UTF-8
    support::writeFile(odd, "");
    support::writeFile(inside / "file", "");
    start();
    const QString path = QString::fromStdString(folder / "sub");
    const std::pair<QString, DropView::Files> cases[] = {
        {path + "/", {inside, odd}}, // shows what is in it
        {path + "/../sub/inside", {inside}},
        {"file://" + path + "/caf%E9", {odd}},
    };
    for (const auto& [typed, chosen] : cases) {
        find<QAction>("chooseFiles")->trigger();
        (void)waitForSheet("chooseFilesPanel");
        sheet()->findChild<QLineEdit*>()->setText(typed);
        if (typed.endsWith('/')) {
            auto* list = sheet()->findChild<QTreeWidget*>();
            list->topLevelItem(0)->setExpanded(true);
            QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
        }
        endSheet("chooseFilesPanel", Qt::Key_Return);
        EXPECT_EQ(box().files(), chosen) << typed.toStdString();
        endSheet("savePanel");
    }
}

TEST(DropBoxLook, isAsDesigned)
{
    for (const auto& [step, background, ink] : {std::tuple(0, 255, 128), {1, 153, 242}}) {
        DropView box;
        box.resize(400, 200);
        if (step > 0)
            box.draggingEntered(QMimeData());
        QImage image;
        // How much ink a pixel holds, from 0, as the background, to 1.
        const auto at = [&, background = background, ink = ink](int x, int y) {
            return (background - image.pixelColor(x, y).red()) / double(background - ink);
        };
        std::vector<bool> edges[2]; // the upper ones of two passes
        for (std::vector<bool>& edge : edges) {
            image = box.grab().toImage();
            for (int x = 30; x < 30 + 14 * 24; ++x)
                edge.push_back(at(x, 10) > 0.5);
        }
        EXPECT_EQ(std::ranges::count(edges[0], true), 14 * 20) << "20 on and 4 off";
        EXPECT_TRUE(std::equal(edges[0].begin() + step, edges[0].end(), edges[1].begin()))
            << "it marches by one, hovered";
        const auto dash = std::ranges::search_n(edges[1], 9, true);
        const int middle = 34 + int(dash.begin() - edges[1].begin());
        const double ideal[] = {0, 0.5, 1, 0.5, 0}; // 2 thick, and its middle 10.5 inside
        for (int y = 8; y <= 12; ++y)
            EXPECT_NEAR(at(middle, y), ideal[y - 8], 0.01) << y;
        EXPECT_LT(at(11, 11), 0.01) << "a round corner";
    }
}
