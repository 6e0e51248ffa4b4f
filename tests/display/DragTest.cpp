#include "tests/display/Desktop.h"
#include "tests/support/ForeignReaders.h"
#include "tests/support/ZipInspector.h"

namespace fs = std::filesystem;

class Drag : public Desktop
{
protected:
    static std::string uriOf(const Path& path) { return "file://" + path.native(); }
};

TEST_F(Drag, aFileFromTheFileManagerIsArchivedBesideItAndShown)
{
    Program& parcelo = startParcelo();
    Program& fileManager = startFileManager();
    const auto original = support::snapshot(source);
    ASSERT_TRUE(waitForBox(idleColor));
    drag(selectAll(fileManager), box);
    EXPECT_TRUE(waitForBox(hoverColor));
    const auto outline = boxOutline();
    EXPECT_TRUE(waitFor([&] { return boxOutline() != outline; })) << "the outline stands still";

    mouse({"mouseup", "1"});
    EXPECT_TRUE(waitForBox(idleColor));
    saveAndWait(parcelo);
    const Path archive = source / "one.zip";
    EXPECT_TRUE(waitFor([&] { return shownItems() == Strings{uriOf(archive)}; }));
    EXPECT_EQ(support::complaintsOf(support::zipReaders(), archive), Strings());
    EXPECT_EQ(support::inspectZip(archive).names(), Strings{"one.txt"});
    fs::remove(archive);
    EXPECT_EQ(support::differences(original, support::snapshot(source), {.seconds = 9}), Strings())
        << "a file was moved, not copied";
    EXPECT_TRUE(waitFor([&] { return settings().find("UsageCount=1\n") != std::string::npos; }));
    quit(parcelo);
}

TEST_F(Drag, toMailOpensAMessageWithTheArchive)
{
    Program& parcelo = startParcelo({}, "SelectedDestination=1\n");
    Program& fileManager = startFileManager();
    drag(selectAll(fileManager), box);
    mouse({"mouseup", "1"});
    press(parcelo, "Email Archive", {"W", "e", "e", "k", "space", "apostrophe", "Return"});
    EXPECT_TRUE(waitFor([&] { return !callOf("thunderbird").empty(); }));
    const Strings files = temporaryFiles();
    ASSERT_EQ(files.size(), 1u);
    const Path archive = files.front();
    EXPECT_EQ(archive.filename(), "Week '.zip");
    EXPECT_EQ(callOf("thunderbird"),
        (Strings{"-compose", "attachment='" + uriOf(archive.parent_path()) + "/Week%20%27.zip'"}));
    EXPECT_EQ(support::inspectZip(archive).names(), Strings{"one.txt"});
    EXPECT_EQ(support::namesIn(source), Strings{"one.txt"});
    waitForNoWindow(parcelo, "Making Archive");
    quit(parcelo);
}

TEST_F(Drag, severalItemsOfAnyNameBecomeOneArchive)
{
    support::writeFile(source / "folder/inner", "x");
    support::writeFile(source / "caf\xE9.txt", "x");
    const auto expected = support::snapshot(source);
    Program& parcelo = startParcelo();
    Program& fileManager = startFileManager();
    drag(selectAll(fileManager), box);
    mouse({"mouseup", "1"});
    saveAndWait(parcelo);
    ASSERT_TRUE(fs::exists(source / "Untitled.zip"));
    EXPECT_EQ(
        support::extractionFaults(support::zipReaders().front(), source / "Untitled.zip", expected),
        Strings());
    quit(parcelo);
}

TEST_F(Drag, whatCannotBeCopiedAsAFileIsRefused)
{
    struct Case {
        const char* action;
        const char* format;
        std::string data;
        const char* endingWith; // escape or release
    };
    const std::string file = uriOf(source / "one.txt");
    const Case cases[] = {
        {"copy", "text/plain", "some text", "mouseup"},
        {"copy", "text/uri-list", "http://example.org/one.txt\r\n", "mouseup"},
        {"move", "text/uri-list", file, "mouseup"},
        {"copy", "text/uri-list", file, "key"},
    };
    Program& parcelo = startParcelo();
    for (const Case& each : cases) {
        SCOPED_TRACE(std::string(each.action) + " " + each.data + " " + each.endingWith);
        Program& dragSource = startDragSource(each.action, each.format, each.data);
        drag({100, 100}, box);
        EXPECT_TRUE(waitForBox(hoverColor));
        if (each.endingWith == std::string("key"))
            mouse({"key", "Escape"});
        mouse({"mouseup", "1"});
        EXPECT_TRUE(waitFor([&] { return !dragSource.out().empty(); }));
        EXPECT_EQ(dragSource.out(), "nothing\n");
        EXPECT_TRUE(waitForBox(idleColor));
    }
    Program& fileManager = startFileManager();
    const Point item = selectAll(fileManager);
    mouse({"keydown", "shift"});
    drag(item, box);
    EXPECT_TRUE(waitForBox(hoverColor));
    mouse({"mouseup", "1", "keyup", "shift"});
    EXPECT_TRUE(waitForBox(idleColor));
    press(parcelo, "Parcelo", {"ctrl+q"}); // no sheet keeps the window from it
    expectGoodEnd(parcelo);
    EXPECT_EQ(support::namesIn(source), Strings{"one.txt"});
}

TEST_F(Drag, thousandsOfItemsAreTaken)
{
    constexpr int count = 2000;
    std::string list;
    for (int number = 0; number < count; ++number) {
        const Path item = source / ("item " + std::to_string(number));
        support::writeFile(item, std::to_string(number));
        list += uriOf(source) + "/item%20" + std::to_string(number) + "\r\n";
    }
    Program& parcelo = startParcelo();
    Program& dragSource = startDragSource("copy", "text/uri-list", list);
    drag({100, 100}, box);
    EXPECT_TRUE(waitForBox(hoverColor));
    mouse({"mouseup", "1"});
    EXPECT_TRUE(waitFor([&] { return dragSource.out() == "copied\n"; })) << dragSource.out();
    saveAndWait(parcelo);
    EXPECT_EQ(support::inspectZip(source / "Untitled.zip").entries.size(), std::size_t{count});
    quit(parcelo);
}
