#include "tests/window/Program.h"

#include <QComboBox>
#include <QMenu>

class DestinationMenu : public Program
{
protected:
    static QStringList folders() { return stored("Destinations").toStringList(); }

    PopUpButton& menu() { return *find<PopUpButton>("destinationPop"); }
    int indexOf(const char* title)
    {
        for (int index = 0; index < menu().numberOfItems(); ++index)
            if (menu().itemAtIndex(index).title == QLatin1String(title))
                return index;
        return -1;
    }
    void choose(const char* title) { menu().menu()->actions().at(indexOf(title))->trigger(); }
};

TEST_F(DestinationMenu, hasARowForEachFolderBetweenTheFixedOnes)
{
    const std::pair<QStringList, std::string> cases[] = {{{}, ""},
        {{"/0", "/1", "/2", "/3", "/4", "/5", "/6", "/7", "/8"}, // the first has no key
            "/0 |/1 3|/2 4|/3 5|/4 6|/5 7|/6 8|/7 9|/8 |"}};
    for (const auto& [folders, rows] : cases) {
        start({{"Destinations", folders}});
        std::string items;
        for (int index = 0; index < menu().numberOfItems(); ++index) {
            const PopUpMenuItem item = menu().itemAtIndex(index);
            items += (item.title + " " + item.keyEquivalent + "|").toStdString();
        }
        EXPECT_EQ(items,
            "Same as source 1|Email 2|" + rows + " |Remove Selected Entry |Choose a Folder ... |");
    }
}

TEST_F(DestinationMenu, remembersAndForgetsFoldersAndNeverSelectsACommand)
{
    const QString home = qEnvironmentVariable("HOME");
    const QString chosen = QString::fromStdString(folder.path());
    start({{"Destinations", QStringList{"/1", chosen, "~/2", home + "/2", "", "/1"}},
        {"SelectedDestination", 5}}); // left by a longer list
    EXPECT_EQ(menu().selectedTag(), DestinationTagSameAsSource);
    type(Qt::CTRL | Qt::Key_2);
    EXPECT_EQ(stored("SelectedDestination").toInt(), DestinationTagEmail);
    EXPECT_FALSE(menu().isItemEnabledAtIndex(indexOf("")));
    EXPECT_FALSE(menu().isItemEnabledAtIndex(indexOf("Remove Selected Entry")));
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        EXPECT_EQ(menu().selectedTag(), DestinationTagEmail);
        choose("Choose a Folder ...");
        endSheet("chooseFolderPanel", key, chosen);
    }
    EXPECT_TRUE(waitFor([&] { return menu().selectedTag() == DestinationTagFirstFolder; }));
    EXPECT_EQ(folders(), QStringList({chosen, "/1", "~/2"}));
    EXPECT_EQ(controller().destinationDirectory(), folder.path());
    choose("Remove Selected Entry");
    EXPECT_EQ(folders(), QStringList({"/1", "~/2"}));
    EXPECT_EQ(menu().selectedTag(), DestinationTagSameAsSource);
}

TEST_F(DestinationMenu, followsAnotherProgramOfOurs)
{
    start({{"Destinations", QStringList{"/1", "/2"}}});
    const auto otherStores = [&](const std::string& folders, const std::string& choice) {
        support::writeFile(folder / "settings",
            "[General]\nArchiveType=3\nDestinations=[, " + folders
                + ", ]\nSelectedDestination=" + choice);
    };
    otherStores("/x, /1, /2", "2");
    UserDefaults::standardUserDefaults().synchronize();
    EXPECT_TRUE(waitFor([&] { return menu().selectedTag() == 2 && indexOf("/x") >= 0; }));
    EXPECT_EQ(find<QComboBox>("typePop")->currentData().toInt(), ArchiveTypeMacZip);

    // What it has done meanwhile is not lost, and does not lead to the wrong folder.
    choose("/2");
    otherStores("/y, /x, /1, /2", "4");
    choose("Remove Selected Entry");
    EXPECT_EQ(folders(), QStringList({"/y", "/x", "/1"}));
}
