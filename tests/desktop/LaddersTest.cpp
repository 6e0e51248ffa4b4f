// What is tried, one after another, to show a file and to send one by mail.

#include "platform/desktop/panels/OpenPanel.h"
#include "platform/desktop/services/DefaultApplication.h"
#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/ProgramLauncher.h"
#include "platform/desktop/services/Workspace.h"
#include "tests/desktop/StandIns.h"

using standins::Programs;
using enum standins::Answer;

namespace
{

// What the desktop has, what it is asked for in order, and what is told in the end, if anything.
struct Case {
    standins::Answer fileManager;
    standins::Answer portal;
    std::string defaultId; // of the program for the type
    std::set<std::string> failing; // programs; all are there
    std::string calls;
    std::string told;
    bool isThere = true; // the file
};

// Asks about the file; the object has children until that is done.
using Ask = std::unique_ptr<QObject> (*)(const fs::path& file, std::string& told);

std::unique_ptr<QObject> mail(const fs::path& file, std::string& told)
{
    auto composer = std::make_unique<MailComposer>();
    auto* const it = composer.get();
    const auto note = [&](const std::string& what) {
        return [&, what](const fs::path& path, bool certain = true) {
            EXPECT_EQ(path, file);
            told += certain ? what : what + ", maybe";
        };
    };
    QObject::connect(it, &MailComposer::attached, it, note("mailed"));
    QObject::connect(it, &MailComposer::cancelled, it, note("cancelled"));
    QObject::connect(it, &MailComposer::couldNotAttach, it, note("could not"));
    EXPECT_EQ(it->composeMessage(file), fs::exists(file));
    return composer;
}

std::unique_ptr<QObject> reveal(const fs::path& file, std::string& told)
{
    auto workspace = std::make_unique<Workspace>();
    QObject::connect(workspace.get(), &Workspace::couldNotReveal, workspace.get(),
        [&](const fs::path& path) { told += path == file ? "could not" : "?"; });
    std::jthread([&] { workspace->selectFile(file); }).join(); // as a job's thread does
    return workspace;
}

void expect(const Case& each, Ask ask, const std::string& type)
{
    SCOPED_TRACE(each.defaultId + ": " + each.calls);
    const TestFolder folder;
    // Quotes, separators and escapes of every form, and a byte that is no UTF-8.
    const fs::path file = folder / "it's, 50%&#=\"\\ \xe9.zip";
    if (each.isThere)
        writeFile(file, "");
    const Programs programs;
    for (const char* name : {"nautilus", "dolphin", "thunar", "xdg-open", "thunderbird",
             "evolution", "kmail", "claws-mail", "balsa", "xdg-email"})
        programs.add(name, each.failing.contains(name) ? 4 : 0);
    programs.addScript(
        "xdg-mime", "[ \"$*\" != 'query default " + type + "' ] || echo " + each.defaultId);
    const auto fileManager
        = standins::serve("org.freedesktop.FileManager1", each.fileManager, programs);
    const auto portal = standins::serve("org.freedesktop.portal.Desktop", each.portal, programs);

    std::string told;
    const std::unique_ptr<QObject> asked = ask(file, told);
    EXPECT_EQ(told, "") << "told before the call returned";
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(standins::waitForEndOf(*asked));
    EXPECT_EQ(told, each.told);
    EXPECT_EQ(programs.calls(),
        QByteArray::fromStdString(each.calls)
            .replace("ADDRESS", "file://FOLDER/it%27s%2C%2050%25%26%23%3D%22%5C%20%E9.zip")
            .replace("FIELD", // the address as the value of a field of a mailto address
                "file://FOLDER/it%2527s%252C%252050%2525%2526%2523%253D%2522%255C%2520%25E9.zip")
            .replace("FOLDER", folder.path().c_str())
            .replace("FILE", file.c_str())
            .toStdString());
}

} // namespace

TEST(Workspace, revealsByTheFirstMeansThatWorks)
{
    const std::string showItems = "org.freedesktop.FileManager1.ShowItems <ADDRESS> <>\n";
    const std::string openDirectory = "org.freedesktop.portal.OpenURI.OpenDirectory <> <FILE> <>\n";
    const std::string openFolder = "xdg-open <FOLDER>\n";
    const Case cases[] = {
        {yes, done, "nautilus.desktop", {}, showItems, ""},
        {yes, done, "nautilus.desktop", {}, "", "could not", false},
        {error, doneBefore, "", {}, showItems + openDirectory, ""},
        {none, done, "", {}, openDirectory, ""},
        {none, failed, "nautilus.desktop", {}, openDirectory + "nautilus <--select> <ADDRESS>\n",
            ""},
        {none, goneAfterwards, "Thunar.desktop", {}, openDirectory + "thunar <FOLDER>\n", ""},
        {none, none, "dolphin.desktop", {"dolphin"}, "dolphin <--select> <ADDRESS>\n" + openFolder,
            ""},
        {none, none, "org.parcelo.Parcelo.desktop", {}, "", "could not"},
        {none, none, "pcmanfm.desktop", {"xdg-open"}, openFolder, "could not"},
    };
    for (const Case& each : cases)
        expect(each, reveal, "inode/directory");
}

TEST(MailComposer, attachesByTheFirstMeansThatWorks)
{
    const std::string composeEmail
        = "org.freedesktop.portal.Email.ComposeEmail <> <addresses=;attachment_fds=FILE;>\n";
    const std::string xdgEmail = "xdg-email.UTF-8 <--utf8> <--attach> <FILE>\n";
    const std::string thunderbird = "thunderbird <-compose> <attachment='ADDRESS'>\n";
    const Case cases[] = {
        {none, done, "net.thunderbird.Thunderbird.desktop", {}, thunderbird, "mailed"},
        {none, done, "thunderbird.desktop", {}, "", "could not", false},
        {none, done, "evolution.desktop", {}, "evolution <mailto:?attach=FIELD>\n", "mailed"},
        {none, done, "kmail2.desktop", {}, "kmail <--composer> <--attach> <ADDRESS>\n", "mailed"},
        {none, done, "claws-mail.desktop", {}, "claws-mail <--compose> <--attach> <FILE>\n",
            "mailed"},
        {none, done, "balsa.desktop", {}, "balsa <-m> <mailto:> <--attach=ADDRESS>\n", "mailed"},
        {none, done, "kmailservice5.desktop", {}, composeEmail, "mailed, maybe"},
        {none, cancelled, "mutt.desktop", {}, composeEmail, "cancelled"},
        {none, error, "", {}, composeEmail + xdgEmail, "mailed, maybe"},
        {none, none, "thunderbird.desktop", {"thunderbird", "xdg-email"}, thunderbird + xdgEmail,
            "could not"},
        {none, done, "brave-browser.desktop", {}, "", "could not"},
    };
    for (const Case& each : cases)
        expect(each, mail, "x-scheme-handler/mailto");
}

TEST(OpenPanel, letsTheDesktopChooseAFolderElseQt)
{
    const Programs programs;
    for (const auto answer : {done, cancelled, none}) {
        const auto portal = standins::serve("org.freedesktop.portal.Desktop", answer, programs);
        QDialog sheet;
        bool isQts = false;
        std::optional<std::vector<fs::path>> chosen;
        OpenPanel::beginForFolder(&sheet, "/tmp", [&](const auto& paths) { chosen = paths; });
        EXPECT_TRUE(QTest::qWaitFor([&] {
            if (auto* panel = sheet.findChild<QDialog*>("chooseFolderPanel")) {
                isQts = true;
                panel->reject();
            }
            return chosen.has_value();
        }));
        EXPECT_EQ(isQts, answer == none);
        // What it names is no folder: a portal older than the option.
        const std::vector<fs::path> expected{"/no/caf\xe9"};
        EXPECT_EQ(*chosen, answer == done ? expected : std::vector<fs::path>());
    }
    EXPECT_NE(programs.calls().find("directory="), std::string::npos);
}

TEST(Workspace, opensAddresses)
{
    const Programs programs;
    Workspace workspace;
    EXPECT_FALSE(workspace.openURL(QUrl("http://parcelo.example/"))) << "with nothing to open it";
    programs.add("xdg-open");
    EXPECT_TRUE(workspace.openURL(QUrl("http://parcelo.example/a b?c=%26#d")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return programs.calls().ends_with('\n'); }, 20000));
    EXPECT_EQ(programs.calls(), "xdg-open <http://parcelo.example/a%20b?c=%26#d>\n");
}

TEST(Workspace, opensAPageWhereABrowserIsInstalled)
{
    const Programs programs;
    for (const auto& [browser, status, calls] :
        {std::tuple("", 0, ""), {"firefox.desktop", 0, "xdg-open <file:///a%20b.html>\n"},
            {"firefox.desktop", 4, "xdg-open <file:///a%20b.html>\n"}}) {
        programs.addScript("xdg-mime",
            std::string("[ \"$*\" != 'query default x-scheme-handler/http' ] || echo ") + browser);
        programs.add("xdg-open", status);
        std::optional<bool> works;
        QObject context;
        Workspace().openPage("/a b.html", &context, [&](bool does) { works = does; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return works.has_value(); }, 20000));
        EXPECT_EQ(works, *calls != 0 && status == 0);
        EXPECT_TRUE(programs.calls().ends_with(calls));
    }
}

TEST(ProgramLauncher, tellsOnceWhetherTheProgramWorksIfAnybodyStillWantsToKnow)
{
    const std::tuple<std::string, bool, int> cases[]
        = {{"exit 0", true, 20000}, {"exit 4", false, 20000}, {"kill -9 $$", false, 20000},
            // Runs until its file is gone; nobody waits for that.
            {"while [ -e \"$0\" ]; do /bin/sleep 0.1; done; exit 1", true, 50}};
    for (const auto& [script, works, milliseconds] : cases) {
        const Programs programs;
        programs.addScript("program", script);
        for (const std::string program : {"program", "not there"}) {
            std::vector<bool> told;
            QObject context;
            auto isGoneSoon = std::make_unique<QObject>();
            for (QObject* each : {isGoneSoon.get(), &context})
                ProgramLauncher::launch(
                    {.program = program}, each, [&](bool itWorks) { told.push_back(itWorks); },
                    std::chrono::milliseconds(milliseconds));
            isGoneSoon.reset();
            EXPECT_TRUE(told.empty()) << "told before the call returned";
            EXPECT_TRUE(standins::waitForEndOf(context));
            EXPECT_EQ(told, std::vector{works && program == "program"}) << script;
        }
    }
}
