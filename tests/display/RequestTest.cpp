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
    EXPECT_TRUE(waitFor([&] { return hasSetting("SelectedDestination=1"); }));

    Program& fileManager = startFileManager();
    (void)selectAll(fileManager);
    press(fileManager, source.filename(), {"ctrl+c"});
    press(parcelo, "Parcelo", {"ctrl+v"});
    press(parcelo, "Email Archive", {"Escape"});
    waitForNoWindow(parcelo, "Email Archive");
    press(parcelo, "Parcelo", {"ctrl+1", "ctrl+comma"});
    EXPECT_TRUE(waitFor([&] { return hasSetting("SelectedDestination=0"); }));
    press(parcelo, "Preferences", {"Escape"});
    waitForNoWindow(parcelo, "Preferences");
    press(parcelo, "Parcelo", {"ctrl+v"});
    saveAndWait(parcelo);
    EXPECT_EQ(support::inspectZip(source / "one.zip").names(), Strings{"one.txt"});
    EXPECT_EQ(shownItems(), Strings());
    quit(parcelo);
}

TEST_F(Request, quittingInTheMiddleLeavesTheDestinationAsItWas)
{
    support::writeFile(source / "large", "");
    fs::resize_file(source / "large", std::uintmax_t{40} << 30); // takes the tool many seconds
    support::writeFile(source / "large.zip", "an older file");
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(strsignal(signal));
        Program& parcelo = startParcelo({"large"});
        press(parcelo, "Save Archive", {"Return", "alt+y"}); // the older file may be replaced
        ASSERT_TRUE(waitFor([&] { return isToolRunning(); }));
        parcelo.signal(signal);
        expectGoodEnd(parcelo);
        EXPECT_EQ(support::namesIn(source), (Strings{"large", "large.zip", "one.txt"}));
        EXPECT_EQ(support::readFile(source / "large.zip"), "an older file");
    }
}

TEST_F(Request, whatCannotBeMadeIsSaidAndTheProgramLivesOn)
{
    struct Case {
        const char* name;
        std::string place;
        Strings preparation; // when the files have been dropped
    };
    const Path prefix = Path(PARCELO_PROGRAM).parent_path().parent_path();
    run({"cp", "-r", prefix / "bin", prefix / "libexec", folder.path()});
    const Case cases[] = {
        {"nobody can write there", "/sys", {"true"}},
        {"source gone", folder.path(), {"rm", source / "noise"}},
        {"tool unusable", folder.path(),
            {"chmod", "a-x", folder / "libexec/parcelo/Contents/Resources/zip"}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        support::writeFile(source / "noise", support::randomBytes(1 << 20, 1));
        Program& parcelo = startParcelo({"noise"},
            "RevealWhenComplete=false\nSelectedDestination=2\nDestinations=[, " + each.place
                + ", ]\n",
            folder / "bin/parcelo");
        waitForWindow(parcelo, "Save Archive");
        ASSERT_EQ(run(each.preparation).status, 0);
        press(parcelo, "Save Archive", {"Return"});
        press(parcelo, "Error", {"Return"});
        waitForNoWindow(parcelo, "Error");
        waitForNoWindow(parcelo, "Making Archive");
        EXPECT_FALSE(fs::exists(Path(each.place) / "noise.zip"));
        quit(parcelo);
    }
}

TEST_F(Request, aWindowThatWaitsIsNeverWokenAndSpeaksTheUsersLanguage)
{
    Program& parcelo = startParcelo({}, {}, PARCELO_PROGRAM, {"LANGUAGE=de"});
    press(parcelo, "Parcelo", {"ctrl+comma"});
    press(parcelo, "Einstellungen", {"Escape"});
    const auto wakeUps = [&] {
        std::ifstream status("/proc/" + std::to_string(parcelo.pid()) + "/status");
        std::string word;
        while (status >> word && word != "voluntary_ctxt_switches:") { }
        long count = -1;
        status >> count;
        return count;
    };
    // What a start leaves to do takes some seconds.
    EXPECT_TRUE(waitFor([&] {
        const long before = wakeUps();
        QTest::qWait(1500);
        return before > 0 && wakeUps() == before;
    }));
    press(parcelo, "Parcelo", {"alt+F4"}); // the window manager closes it
    expectGoodEnd(parcelo);
}
