#include "app/window/Destinations.h"

#include "app/window/DropView.h"
#include "platform/desktop/settings/UserDefaults.h"
#include "system/PathString.h"
#include "tests/support/Files.h"
#include "tests/window/Program.h"

#include <QAction>
#include <QMenu>
#include <QTest>
#include <QTimer>

namespace
{

const QString foldersKey = QStringLiteral("Destinations");
const QString choiceKey = QStringLiteral("SelectedDestination");

QStringList numberedFolders(int count)
{
    QStringList folders;
    for (int number = 1; number <= count; ++number)
        folders.append(QStringLiteral("/folder/%1").arg(number));
    return folders;
}

std::string describe(const PopUpMenuItem& item)
{
    return item.title.toStdString() + "|" + std::to_string(item.tag) + "|"
        + item.keyEquivalent.toStdString();
}

std::vector<std::string> itemsOf(const PopUpButton& menu)
{
    std::vector<std::string> items;
    for (int index = 0; index < menu.numberOfItems(); ++index)
        items.push_back(describe(menu.itemAtIndex(index)));
    return items;
}

QStringList storedFolders()
{
    return UserDefaults::standardUserDefaults()
        .stringArrayForKey(foldersKey)
        .value_or(QStringList());
}

} // namespace

class DestinationMenu : public Program
{
protected:
    PopUpButton& menu() { return *find<PopUpButton>("destinationPop"); }
    int indexOf(const char* title)
    {
        for (int index = 0; index < menu().numberOfItems(); ++index)
            if (menu().itemAtIndex(index).title == QLatin1String(title))
                return index;
        return -1;
    }
};

TEST_F(DestinationMenu, hasARowForEachFolderBetweenTheFixedOnes)
{
    // Of the rows from the first folder on, with so many folders; by position, and so odd.
    const char* keys[] = {"", "", " 3", " 34", " 345", " 3456", " 34567", " 345678", " 3456789",
        " 3456789", " 3456789", " 3456789", " 3456789"};
    for (int count = 0; count <= 12; ++count) {
        SCOPED_TRACE(count);
        SetUp();
        start({{foldersKey, numberedFolders(count)}});
        std::vector<std::string> expected{"Same as source|0|1", "Email|1|2"};
        if (count == 0)
            expected.emplace_back("|0|");
        std::string left = keys[count];
        left.resize(static_cast<std::size_t>(count), ' ');
        for (int row = 0; row < count; ++row)
            expected.push_back("/folder/" + std::to_string(row + 1) + "|" + std::to_string(row + 2)
                + "|" + (left[row] == ' ' ? "" : std::string(1, left[row])));
        if (count > 0)
            expected.push_back("|0|"); // the second blank, which took the place of the first
        expected.insert(expected.end(), {"Remove Selected Entry|0|", "Choose a Folder ...|0|"});
        EXPECT_EQ(itemsOf(menu()), expected);
        TearDown();
    }
}

TEST_F(DestinationMenu, opensByKeyAndNeverSelectsACommand)
{
    start({{foldersKey, numberedFolders(2)}, {choiceKey, 2}});
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

    menu().menu()->actions().at(1)->trigger(); // e-mail
    EXPECT_EQ(controller().selectedDestination(), DestinationTagEmail);
    EXPECT_FALSE(menu().isItemEnabledAtIndex(indexOf("Remove Selected Entry")));
    menu().menu()->actions().at(indexOf(""))->trigger();
    menu().menu()->actions().at(indexOf("Choose a Folder ..."))->trigger();
    EXPECT_EQ(menu().selectedTag(), DestinationTagEmail);
    QDialog* panel = nullptr;
    whenSheetIsUp([&](QDialog* sheet) { panel = sheet; });
    ASSERT_TRUE(waitFor([&] { return panel != nullptr; }));
    QTest::keyClick(panel, Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(menu().selectedTag(), DestinationTagEmail);
}

TEST_F(DestinationMenu, putsAChosenFolderInFrontAndForgetsARemovedOne)
{
    start({{foldersKey, numberedFolders(3)}});
    controller().addDestinationPath(QStringLiteral("/folder/3"));
    EXPECT_EQ(storedFolders(), QStringList({"/folder/3", "/folder/1", "/folder/2"}));
    EXPECT_EQ(menu().selectedTag(), DestinationTagFirstFolder);
    controller().removeDestination(nullptr);
    EXPECT_EQ(storedFolders(), numberedFolders(2));
    EXPECT_EQ(menu().selectedTag(), DestinationTagSameAsSource);
    controller().removeDestination(nullptr); // no folder is selected
    EXPECT_EQ(storedFolders(), numberedFolders(2));
}

TEST_F(DestinationMenu, followsAnotherProgramOfOurs)
{
    start({{foldersKey, numberedFolders(2)}});
    const auto otherStores = [&](const char* folders, int choice) {
        support::writeFile(folder.path() / "settings1",
            std::string("[General]\nDestinations=[, ") + folders
                + ", ]\nSelectedDestination=" + std::to_string(choice) + "\n");
    };
    otherStores("/x, /folder/1, /folder/2", 2);
    UserDefaults::standardUserDefaults().synchronize();
    EXPECT_TRUE(waitFor([&] { return menu().selectedTag() == 2 && indexOf("/x") >= 0; }));

    // What it has done meanwhile is not lost, and does not lead to the wrong folder.
    controller().setSelectedDestination(4);
    otherStores("/y, /x, /folder/1, /folder/2", 4);
    controller().removeDestination(nullptr);
    EXPECT_EQ(storedFolders(), QStringList({"/y", "/x", "/folder/1"}));
    otherStores("/z, /y", 0);
    controller().addDestinationPath(QStringLiteral("/new"));
    EXPECT_EQ(storedFolders(), QStringList({"/new", "/z", "/y"}));
}

TEST_F(DestinationMenu, leadsToTheFolderThatItShows)
{
    const std::string home = PathString::stringByExpandingTildeInPath("~");
    struct Case {
        int stored;
        int tag;
        std::optional<std::string> folder;
    };
    start({{foldersKey, QStringList{"~/Desk", "/b", "/c"}}});
    find<DropView>("saveDropView")->setFiles({"/source/a.txt", "/other/b.txt"});
    const Case cases[] = {
        {0, 0, "/source"},
        {1, 1, controller().tmpFolder().native()},
        {2, 2, home + "/Desk"},
        {4, 4, "/c"},
        {5, 0, "/source"}, // left by a longer list
        {7, 0, "/source"},
        {-3, -3, std::nullopt},
    };
    for (const Case& each : cases) {
        UserDefaults::standardUserDefaults().setInteger(each.stored, choiceKey);
        EXPECT_EQ(controller().selectedDestination(), each.tag);
        const auto directory = controller().destinationDirectory();
        EXPECT_EQ(directory ? std::optional(directory->native()) : std::nullopt, each.folder);
    }
    find<DropView>("saveDropView")->clearFiles();
    UserDefaults::standardUserDefaults().setInteger(0, choiceKey);
    EXPECT_FALSE(controller().destinationDirectory());
}

TEST(Destinations, areAbbreviatedAndListedOnce)
{
    const QString home = QString::fromStdString(PathString::stringByExpandingTildeInPath("~"));
    const QStringList stored{"/Users/ulto/Desktop", "~/Desktop", "", "/tmp", home + "/a", home,
        home + "x", "/tmp", "/Users/ulto/Documents"};
    EXPECT_EQ(Destinations::removeDuplicatesAndAbbreviateWithTilde(stored),
        QStringList({"~/Desktop", "/tmp", "~/a", "~", home + "x", "~/Documents"}));
}
