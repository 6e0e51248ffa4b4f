// Requests by keys and by command line, and what can come between them and their archive.

#include "tests/display/Desktop.h"

#include <cstring>

namespace fs = std::filesystem;
using namespace std::string_literals;

using Request = Desktop;

TEST_F(Request, everythingCanBeDoneWithKeysAndWhatCannotBeMadeIsSaid)
{
    Program& parcelo = startParcelo({}, "RevealWhenComplete=false\n");
    press(parcelo, "Parcelo", {"space"}); // the box has the focus
    press(parcelo, "Choose Files and Folders", {"Escape"});
    waitForNoWindow(parcelo, "Choose Files and Folders");
    Program& fileManager = startFileManager();
    (void)selectAll(fileManager);
    press(fileManager, source.filename(), {"ctrl+c"});
    press(parcelo, "Parcelo", {"ctrl+v"});
    waitForWindow(parcelo, "Save Archive");
    fs::rename(source / "one.txt", folder / "one.txt");
    press(parcelo, "Save Archive", {"Return"});
    press(parcelo, "Error", {"Return"});
    waitForNoWindow(parcelo, "Error");
    waitForNoWindow(parcelo, "Making Archive");
    EXPECT_EQ(support::namesIn(source), Strings());

    fs::rename(folder / "one.txt", source / "one.txt");
    press(parcelo, "Parcelo", {"ctrl+v"});
    saveAndWait(parcelo);
    EXPECT_EQ(support::inspectZip(source / "one.zip").names(), Strings{"one.txt"});
    EXPECT_EQ(callOf("xdg-open"), "");
    quit(parcelo);
}

TEST_F(Request, laterStartsHandOverTheirFilesAndEachBecomesARequest)
{
    support::writeFile(source / "caf\xe9.txt", "e");
    Program& parcelo = startParcelo({}, "RevealWhenComplete=false\n");
    const Program desktop({"xev", "-root", "-event", "property"}, options());
    support::RunOptions announced = options();
    announced.environment->push_back("DESKTOP_STARTUP_ID=later start_TIME1");
    for (const std::string& file : {"file://" + source.native() + "/o%6Ee.txt", "caf\xe9.txt"s}) {
        EXPECT_EQ(support::run({PARCELO_PROGRAM, file}, announced).status, 0);
        waitForWindow(parcelo, "Save Archive");
    }
    EXPECT_TRUE(
        waitFor([&] { return desktop.out().find("(_NET_STARTUP_INFO)") != std::string::npos; }));
    saveAndWait(parcelo);
    saveAndWait(parcelo);
    (void)support::run({PARCELO_PROGRAM, "trash:///x"}, options());
    press(parcelo, "There are no such files", {"Return"});
    EXPECT_EQ(support::inspectZip(source / "one.zip").names(), Strings{"one.txt"});
    EXPECT_EQ(support::inspectZip(source / "caf\xef\xbf\xbd.zip").names(), Strings{"caf\xe9.txt"});
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
        press(parcelo, "Save Archive", {"Return"}); // which tells of the older file
        ASSERT_TRUE(waitFor([&] { return isToolRunning(); }));
        press(parcelo, "Making Archive", {"ctrl+q"});
        waitForActive("An archive is being made");
        xdotool({"key", "Escape"}); // keeps going
        waitForActive("Making Archive");
        parcelo.signal(signal);
        expectGoodEnd(parcelo);
        EXPECT_EQ(support::namesIn(source), (Strings{"large", "large.zip", "one.txt"}));
        EXPECT_EQ(support::readFile(source / "large.zip"), "an older file");
    }
}

TEST_F(Request, aWindowThatWaitsIsNeverWokenAndSpeaksTheUsersLanguage)
{
    language = "de";
    Program& parcelo = startParcelo();
    press(parcelo, "Parcelo", {"ctrl+comma"});
    press(parcelo, "Einstellungen", {"Escape"});
    const auto wakeUps = [&] {
        const auto status = support::readFile("/proc/" + std::to_string(parcelo.pid()) + "/status");
        return status.substr(status.find("\nvoluntary_ctxt_switches:"));
    };
    // What a start leaves to do takes some seconds.
    EXPECT_TRUE(waitFor([&] {
        const std::string before = wakeUps();
        QTest::qWait(1500);
        return wakeUps() == before;
    }));
    press(parcelo, "Parcelo", {"alt+F4"}); // the window manager closes it
    expectGoodEnd(parcelo);
}
