// Requests by keys and by command line, and what can come between them and their archive.

#include "tests/display/Desktop.h"
#include "tests/support/ZipInspector.h"

#include <csignal>
#include <cstring>
#include <fstream>

namespace fs = std::filesystem;
using support::run;

class Request : public Desktop
{
protected:
    // Keeps the tool busy for many seconds.
    void makeLargeSource()
    {
        std::ofstream(source / "large").close();
        fs::resize_file(source / "large", std::uintmax_t{40} << 30);
    }

    void startLargeJob(Program& parcelo)
    {
        press(parcelo, "Save Archive", {"Return"});
        if (!waitFor([&] { return isToolRunning(); }))
            throw std::runtime_error("the tool does not start");
    }
};

TEST_F(Request, filesOfTheCommandLineBecomeOneArchiveAndTheProgramQuits)
{
    removeFileManagerService();
    support::writeFile(source / "two.txt", "contents of two");
    Program& parcelo = startParcelo({"one.txt", "two.txt"}, "AutoQuit=true\n");
    saveAndWait(parcelo);
    EXPECT_TRUE(waitFor([&] { return callOf("xdg-open") == Strings{source}; }))
        << "no file manager on the bus: the folder at least";
    expectGoodEnd(parcelo);
    EXPECT_EQ(
        support::inspectZip(source / "Untitled.zip").names(), (Strings{"one.txt", "two.txt"}));
}

TEST_F(Request, everythingCanBeDoneWithKeys)
{
    Program& parcelo = startParcelo({}, "RevealWhenComplete=false\n");
    press(parcelo, "Parcelo", {"space"}); // the box has the focus
    press(parcelo, "Choose Files to Archive", {"Escape"});
    waitForNoWindow(parcelo, "Choose Files to Archive");
    press(parcelo, "Parcelo", {"ctrl+2"});
    EXPECT_TRUE(
        waitFor([&] { return settings().find("SelectedDestination=1") != std::string::npos; }));

    Program& fileManager = startFileManager();
    (void)selectAll(fileManager);
    press(fileManager, source.filename(), {"ctrl+c"});
    press(parcelo, "Parcelo", {"ctrl+v"});
    press(parcelo, "Email Archive", {"Escape"});
    waitForNoWindow(parcelo, "Email Archive");
    press(parcelo, "Parcelo", {"ctrl+1", "ctrl+comma"});
    EXPECT_TRUE(
        waitFor([&] { return settings().find("SelectedDestination=0") != std::string::npos; }));
    press(parcelo, "Preferences", {"Escape"});
    waitForNoWindow(parcelo, "Preferences");
    press(parcelo, "Parcelo", {"ctrl+v"});
    press(parcelo, "Save Archive", {"Escape"});
    waitForNoWindow(parcelo, "Save Archive");
    press(parcelo, "Parcelo", {"ctrl+v"});
    saveAndWait(parcelo);
    EXPECT_EQ(support::inspectZip(source / "one.zip").names(), Strings{"one.txt"});
    EXPECT_EQ(shownItems(), Strings());
    quit(parcelo);
}

TEST_F(Request, twoProgramsShareTheirSettings)
{
    Program& one = startParcelo({"one.txt"}, "KeepExtensionForDefaultName=true\n");
    press(one, "Save Archive", {"F", "i", "r", "s", "t", "Return"});
    Program& other = startParcelo({"one.txt"});
    press(other, "Save Archive", {"Return"});
    press(other, "Parcelo", {"ctrl+2"});
    EXPECT_TRUE(waitFor([&] { return settings().find("UsageCount=2") != std::string::npos; }))
        << settings();
    EXPECT_NE(settings().find("SelectedDestination=1"), std::string::npos) << settings();
    EXPECT_NE(settings().find("KeepExtensionForDefaultName=true"), std::string::npos);
    EXPECT_EQ(support::namesIn(source), (Strings{"First.zip", "one.txt", "one.txt.zip"}));
    quit(one);
    quit(other);
}

TEST_F(Request, cancellingStopsTheToolAndKeepsTheProgram)
{
    makeLargeSource();
    Program& parcelo = startParcelo({"large"});
    startLargeJob(parcelo);
    press(parcelo, "Making Archive", {"Escape"});
    press(parcelo, "Error", {"Return"}); // nothing could be moved to its place
    waitForNoWindow(parcelo, "Making Archive");
    EXPECT_EQ(support::namesIn(source), (Strings{"large", "one.txt"}));
    quit(parcelo);
}

TEST_F(Request, quittingInTheMiddleLeavesTheDestinationAsItWas)
{
    makeLargeSource();
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(strsignal(signal));
        Program& parcelo = startParcelo({"large"});
        startLargeJob(parcelo);
        parcelo.signal(signal);
        expectGoodEnd(parcelo);
        EXPECT_EQ(support::namesIn(source), (Strings{"large", "one.txt"}));
    }
}

TEST_F(Request, whatCannotBeMadeIsSaidAndTheProgramLivesOn)
{
    struct Case {
        const char* name;
        std::vector<std::string> preparation;
        std::vector<std::string> after;
        std::size_t kept; // an archive that cannot be moved stays in the working folder
    };
    const std::string place = folder / "place";
    const Case cases[] = {
        {"full disk", {"mount", "-t", "tmpfs", "-o", "size=64k", "none", place}, {"umount", place},
            1},
        {"read-only disk", {"mount", "-t", "tmpfs", "-o", "ro", "none", place}, {"umount", place},
            1},
        {"source gone", {"rm", source / "noise"}, {"true"}, 0},
        {"tool unusable", {"chmod", "a-x", folder / "libexec/parcelo/Contents/Resources/zip"},
            {"true"}, 0},
    };
    fs::create_directory(place);
    const Path prefix = Path(PARCELO_PROGRAM).parent_path().parent_path();
    run({"cp", "-r", prefix / "bin", prefix / "libexec", folder.path()});
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        support::writeFile(source / "noise", support::randomBytes(1 << 20, 1));
        Program& parcelo = startParcelo({"noise"},
            "RevealWhenComplete=false\nSelectedDestination=2\nDestinations=[, " + place + ", ]\n",
            folder / "bin/parcelo");
        waitForWindow(parcelo, "Save Archive");
        if (run(each.preparation).status != 0) {
            std::cerr << "cannot try: " << each.name << "\n";
            quit(parcelo);
            continue;
        }
        press(parcelo, "Save Archive", {"Return"});
        press(parcelo, "Error", {"Return"});
        waitForNoWindow(parcelo, "Making Archive");
        EXPECT_EQ(support::namesIn(Path(place)), Strings());
        EXPECT_EQ(run(each.after).status, 0);
        EXPECT_EQ(temporaryFiles().size(), each.kept);
        for (const std::string& file : temporaryFiles())
            fs::remove(file);
        quit(parcelo);
    }
}

TEST_F(Request, aWindowThatWaitsTakesNoProcessorTime)
{
    Program& parcelo = startParcelo({});
    ASSERT_TRUE(waitForBox(idleColor));
    const auto ticks = [&] {
        std::istringstream status(
            support::readFile("/proc/" + std::to_string(parcelo.pid()) + "/stat"));
        std::string word;
        long sum = 0;
        for (int field = 1; status >> word; ++field)
            if (field == 14 || field == 15) // user and system time; the name has no blanks
                sum += std::stol(word);
        return sum;
    };
    QTest::qWait(1000); // for what a start leaves to do
    const long before = ticks();
    QTest::qWait(2000);
    EXPECT_EQ(ticks(), before);
    press(parcelo, "Parcelo", {"alt+F4"}); // the window manager closes it
    expectGoodEnd(parcelo);
}
