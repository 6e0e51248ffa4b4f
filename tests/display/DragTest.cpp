// Drags from a real file manager.

#include "tests/display/Desktop.h"
#include "tests/support/ForeignReaders.h"

namespace fs = std::filesystem;

using Drag = Desktop;

TEST_F(Drag, aFileIsArchivedBesideItselfAndShown)
{
    Program& parcelo = startParcelo();
    Program& fileManager = startFileManager();
    const auto original = support::snapshot(source);
    const QPoint item = selectAll(fileManager);
    ASSERT_TRUE(waitForBox(false));
    drag(item);
    xdotool({"key", "Escape"});
    EXPECT_TRUE(waitForBox(false));
    xdotool({"mouseup", "1", "keydown", "shift"}); // which moves
    drag(item);
    xdotool({"mouseup", "1", "keyup", "shift"});
    EXPECT_TRUE(waitForBox(false));

    drag(item);
    xdotool({"mouseup", "1"});
    EXPECT_TRUE(waitForBox(false));
    saveAndWait(parcelo);
    const Path archive = source / "one.zip";
    EXPECT_TRUE(waitFor([&] { return callOf("xdg-open") == source.native() + "|"; }));
    EXPECT_EQ(support::complaintsOf(support::zipReaders(), archive), Strings());
    EXPECT_EQ(support::inspectZip(archive).names(), Strings{"one.txt"});
    fs::remove(archive);
    EXPECT_EQ(support::differences(original, support::snapshot(source), {.seconds = 9}), Strings())
        << "a file was moved, not copied";
    quit(parcelo);
}

TEST_F(Drag, toMailOpensAMessageWithTheArchive)
{
    Program& parcelo = startParcelo({}, "SelectedDestination=1\n");
    Program& fileManager = startFileManager();
    drag(selectAll(fileManager));
    xdotool({"mouseup", "1"});
    press(parcelo, "Email Archive", {"W", "e", "e", "k", "space", "apostrophe", "Return"});
    EXPECT_TRUE(waitFor([&] { return !callOf("thunderbird").empty(); }));
    const Path archive = temporaryFiles();
    EXPECT_EQ(callOf("thunderbird"),
        "-compose|attachment='file://" + archive.parent_path().native() + "/Week%20%27.zip'|");
    EXPECT_EQ(support::inspectZip(archive).names(), Strings{"one.txt"});
    EXPECT_EQ(support::namesIn(source), Strings{"one.txt"});
    waitForNoWindow(parcelo, "Making Archive");
    press(parcelo, "Parcelo", {"ctrl+q"});
    press(parcelo, "The message may not have been sent yet", {"alt+q"});
    expectGoodEnd(parcelo);
}

TEST_F(Drag, thousandsOfItemsOfAnyNameBecomeOneArchive)
{
    constexpr int count = 2000;
    for (int number = 0; number < count; ++number)
        support::writeFile(source / ("item " + std::to_string(number)), std::to_string(number));
    support::writeFile(source / "folder/inner", "x");
    support::writeFile(source / "caf\xE9.txt", "x");
    const auto expected = support::snapshot(source);
    Program& parcelo = startParcelo();
    Program& fileManager = startFileManager();
    drag(selectAll(fileManager));
    xdotool({"mouseup", "1"});
    saveAndWait(parcelo);
    const Path archive = source / "Untitled.zip";
    EXPECT_EQ(support::inspectZip(archive).entries.size(), std::size_t{count + 4});
    EXPECT_EQ(
        support::extractionFaults(support::zipReaders().front(), archive, expected), Strings());
    quit(parcelo);
}
