#include "app/window/Destinations.h"

#include "app/window/DropView.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "system/PathString.h"
#include "tests/support/Files.h"
#include "tests/window/Program.h"

#include <QMenu>

class DestinationMenu : public Program
{
protected:
    static QStringList numberedFolders(int count)
    {
        QStringList folders;
        for (int number = 1; number <= count; ++number)
            folders.append(QStringLiteral("/folder/%1").arg(number));
        return folders;
    }
    static QStringList folders() { return stored("Destinations").toStringList(); }

    PopUpButton& menu() { return *find<PopUpButton>("destinationPop"); }
    int indexOf(const char* title)
    {
        for (int index = 0; index < menu().numberOfItems(); ++index)
            if (menu().itemAtIndex(index).title == QLatin1String(title))
                return index;
        return -1;
    }
    // As by mouse.
    void choose(const char* title) { menu().menu()->actions().at(indexOf(title))->trigger(); }
};

TEST_F(DestinationMenu, hasARowForEachFolderBetweenTheFixedOnes)
{
    // The keys of the folders' rows, which go by position; nine digits are all there are.
    const std::pair<int, std::string> cases[] = {{0, ""}, {3, " 34"}, {12, " 3456789    "}};
    for (const auto& [count, keys] : cases) {
        start({{"Destinations", numberedFolders(count)}});
        std::vector<std::string> expected{"Same as source|0|1", "Email|1|2"};
        if (count == 0)
            expected.emplace_back("|0|");
        for (int row = 0; row < count; ++row)
            expected.push_back("/folder/" + std::to_string(row + 1) + "|" + std::to_string(row + 2)
                + "|" + (keys[row] == ' ' ? "" : std::string(1, keys[row])));
        if (count > 0)
            expected.emplace_back("|0|"); // the second blank, which took the place of the first
        expected.insert(expected.end(), {"Remove Selected Entry|0|", "Choose a Folder ...|0|"});
        std::vector<std::string> items;
        for (int index = 0; index < menu().numberOfItems(); ++index) {
            const PopUpMenuItem item = menu().itemAtIndex(index);
            items.push_back(item.title.toStdString() + "|" + std::to_string(item.tag) + "|"
                + item.keyEquivalent.toStdString());
        }
        EXPECT_EQ(items, expected);
    }
}

TEST_F(DestinationMenu, opensByKeyAndNeverSelectsACommand)
{
    start({{"Destinations", numberedFolders(2)}, {"SelectedDestination", 2}});
    EXPECT_EQ(menu().selectedTag(), 2);
    bool wasOpen = false;
    QTimer::singleShot(20, &menu(), [&] {
        wasOpen = menu().menu()->isVisible();
        menu().menu()->hide();
    });
    QTest::keyClick(&menu(), Qt::Key_Down); // returns when the menu has gone
    EXPECT_TRUE(wasOpen);
    EXPECT_FALSE(menu().isItemEnabledAtIndex(indexOf("")));
    EXPECT_TRUE(menu().isItemEnabledAtIndex(indexOf("Remove Selected Entry")));

    type(Qt::CTRL | Qt::Key_2);
    EXPECT_EQ(stored("SelectedDestination").toInt(), DestinationTagEmail);
    EXPECT_FALSE(menu().isItemEnabledAtIndex(indexOf("Remove Selected Entry")));
    choose("");
    EXPECT_EQ(menu().selectedTag(), DestinationTagEmail);
}

TEST_F(DestinationMenu, putsAChosenFolderInFrontAndForgetsARemovedOne)
{
    const QString chosen = QString::fromStdString(folder.path());
    start({{"Destinations", QStringList{"/folder/1", chosen, "/folder/2"}}});
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        choose("Choose a Folder ...");
        waitForSheet("chooseFolderPanel")
            ->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
            ->setText(chosen);
        endSheet("chooseFolderPanel", key);
        EXPECT_EQ(menu().selectedTag(), DestinationTagSameAsSource);
    }
    EXPECT_TRUE(waitFor([&] { return menu().selectedTag() == DestinationTagFirstFolder; }));
    EXPECT_EQ(folders(), QStringList({chosen, "/folder/1", "/folder/2"}));
    choose("Remove Selected Entry");
    EXPECT_EQ(folders(), numberedFolders(2));
    EXPECT_EQ(menu().selectedTag(), DestinationTagSameAsSource);
}

TEST_F(DestinationMenu, followsAnotherProgramOfOurs)
{
    start({{"Destinations", numberedFolders(2)}});
    const auto otherStores = [&](const std::string& folders, int choice) {
        support::writeFile(folder.path() / "settings1",
            "[General]\nDestinations=[, " + folders
                + ", ]\nSelectedDestination=" + std::to_string(choice) + "\n");
    };
    otherStores("/x, /folder/1, /folder/2", 2);
    UserDefaults::standardUserDefaults().synchronize();
    EXPECT_TRUE(waitFor([&] { return menu().selectedTag() == 2 && indexOf("/x") >= 0; }));

    // What it has done meanwhile is not lost, and does not lead to the wrong folder.
    choose("/folder/2");
    otherStores("/y, /x, /folder/1, /folder/2", 4);
    choose("Remove Selected Entry");
    EXPECT_EQ(folders(), QStringList({"/y", "/x", "/folder/1"}));
    otherStores("/z, /y", 0);
    controller().addDestinationPath(QStringLiteral("/new"));
    EXPECT_EQ(folders(), QStringList({"/new", "/z", "/y"}));
}

TEST_F(DestinationMenu, leadsToTheFolderThatItShows)
{
    const std::string home = PathString::stringByExpandingTildeInPath("~");
    start({{"Destinations", QStringList{"~/Desk", "/b", "/c"}}});
    box().setFiles({"/source/a.txt", "/other/b.txt"});
    const std::tuple<int, int, std::optional<Path>> cases[] = {
        {0, 0, "/source"},
        {1, 1, controller().tmpFolder()},
        {2, 2, home + "/Desk"},
        {4, 4, "/c"},
        {5, 0, "/source"}, // left by a longer list
        {-3, -3, std::nullopt},
    };
    for (const auto& [choice, tag, directory] : cases) {
        store("SelectedDestination", choice);
        EXPECT_EQ(controller().selectedDestination(), tag);
        EXPECT_EQ(controller().destinationDirectory(), directory);
    }
}

TEST(Destinations, areAbbreviatedAndListedOnce)
{
    const QString home = QString::fromStdString(PathString::stringByExpandingTildeInPath("~"));
    const QStringList stored{"/Users/ulto/Desktop", "~/Desktop", "", "/tmp", home + "/a", home,
        home + "x", "/tmp", "/Users/ulto/Documents"};
    EXPECT_EQ(Destinations::removeDuplicatesAndAbbreviateWithTilde(stored),
        QStringList({"~/Desktop", "/tmp", "~/a", "~", home + "x", "~/Documents"}));
}
