// What is tried, one after another, to show a file and to send one by mail.

#include "platform/desktop/services/MailComposer.h"
#include "platform/desktop/services/Workspace.h"
#include "tests/desktop/StandIns.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"

#include <QCoreApplication>

#include <map>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using standins::Programs;
using standins::Service;
using Answer = standins::Service::Answer;
using Calls = std::vector<std::string>;
using support::EnvironmentVariable;

namespace
{

// What the desktop has, what it is asked for in order, and what is told in the end: once or not at
// all.
struct Case {
    std::optional<Answer> fileManager;
    std::optional<std::pair<Answer, unsigned>> portal; // and its outcome
    std::string defaultId; // of the program for the type
    std::map<std::string, int> programs; // with their exit statuses
    Calls calls;
    std::string told;
    bool isThere = true; // the file
};

// Asks about the file; the object has children until that is done.
using Ask = std::unique_ptr<QObject> (*)(const fs::path& file, Calls& told);

std::unique_ptr<QObject> mail(const fs::path& file, Calls& told)
{
    auto composer = std::make_unique<MailComposer>();
    const auto note = [&](const std::string& what) {
        return [&told, what](const fs::path& path) { told.push_back(what + " " + path.native()); };
    };
    QObject::connect(composer.get(), &MailComposer::attached, composer.get(),
        [note](
            const fs::path& path, bool certain) { note(certain ? "certain" : "uncertain")(path); });
    QObject::connect(composer.get(), &MailComposer::cancelled, composer.get(), note("cancelled"));
    QObject::connect(
        composer.get(), &MailComposer::couldNotAttach, composer.get(), note("could not"));
    EXPECT_EQ(composer->composeMessage(file), fs::exists(file));
    return composer;
}

std::unique_ptr<QObject> reveal(const fs::path& file, Calls& told)
{
    auto workspace = std::make_unique<Workspace>();
    QObject::connect(workspace.get(), &Workspace::couldNotReveal, workspace.get(),
        [&told](const fs::path& path) { told.push_back("could not " + path.native()); });
    std::jthread([&] { workspace->selectFile(file); }).join(); // as a job's thread does
    return workspace;
}

// The words FILE, FOLDER, ADDRESS and FIELD stand for the paths, the file's address, and that as
// the value of a field of a mailto address.
std::string filledIn(std::string text, const fs::path& file)
{
    const std::string folder = file.parent_path().native();
    const std::string uri = "/it%27s%2C%2050%25%26%23%3D%22%5C%20%E9.zip";
    const std::string field = "/it%2527s%252C%252050%2525%2526%2523%253D%2522%255C%2520%25E9.zip";
    const std::pair<std::string, std::string> values[] = {{"FILE", file}, {"FOLDER", folder},
        {"ADDRESS", "file://" + folder + uri}, {"FIELD", "file://" + folder + field}};
    for (const auto& [word, value] : values)
        if (const auto at = text.find(word); at != std::string::npos)
            text.replace(at, word.size(), value);
    return text;
}

void expect(const Case& each, Ask ask, const std::string& type)
{
    const support::TestFolder folder;
    // Quotes, separators and escapes of every form, and a byte that is no UTF-8.
    const fs::path file = folder / "it's, 50%&#=\"\\ \xe9.zip";
    if (each.isThere)
        support::writeFile(file, "");
    std::optional<Service> fileManager;
    std::optional<Service> portal;
    if (each.fileManager)
        fileManager.emplace("org.freedesktop.FileManager1", *each.fileManager);
    if (each.portal)
        portal.emplace("org.freedesktop.portal.Desktop", each.portal->first, each.portal->second);
    const Programs programs;
    programs.addScript(
        "xdg-mime", "[ \"$*\" != 'query default " + type + "' ] || echo " + each.defaultId);
    for (const auto& [name, status] : each.programs)
        programs.add(name, status);

    Calls told;
    const std::unique_ptr<QObject> asked = ask(file, told);
    EXPECT_EQ(told, Calls()) << "told before the call returned";
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(standins::waitForEndOf(*asked));

    Calls calls = fileManager ? fileManager->calls() : Calls();
    for (const std::string& call : portal ? portal->calls() : Calls())
        calls.push_back(call);
    for (const std::string& call : programs.calls())
        calls.push_back(call);
    Calls expected;
    for (const std::string& call : each.calls)
        expected.push_back(filledIn(call, file));
    EXPECT_EQ(calls, expected);
    EXPECT_EQ(told, each.told.empty() ? Calls() : Calls{each.told + " " + file.native()});
}

} // namespace

TEST(Workspace, revealsByTheFirstMeansThatWorks)
{
    const std::string showItems = "org.freedesktop.FileManager1.ShowItems <ADDRESS> <>";
    const std::string openDirectory = "org.freedesktop.portal.OpenURI.OpenDirectory <> <FILE> <>";
    const std::string openFolder = "xdg-open <FOLDER>";
    const std::pair works(Answer::response, 0U);
    const std::map<std::string, int> all
        = {{"nautilus", 0}, {"nemo", 0}, {"thunar", 0}, {"xdg-open", 0}};
    const Case cases[] = {
        {Answer::yes, works, "org.gnome.Nautilus.desktop", all, {showItems}, ""},
        {Answer::yes, works, "org.gnome.Nautilus.desktop", all, {}, "could not", false},
        {Answer::error, works, "", all, {showItems, openDirectory}, ""},
        {{}, std::pair(Answer::responseBefore, 1U), "", all, {openDirectory}, ""},
        {{}, std::pair(Answer::responseElsewhere, 0U), "", all, {openDirectory}, ""},
        {{}, std::pair(Answer::response, 2U), "org.gnome.Nautilus.desktop", all,
            {openDirectory, "nautilus <--select> <ADDRESS>"}, ""},
        {{}, std::pair(Answer::goneAfterwards, 0U), "thunar.desktop", all,
            {openDirectory, "thunar <FOLDER>"}, ""},
        {{}, {}, "org.kde.dolphin.desktop", {{"dolphin", 1}, {"xdg-open", 0}},
            {"dolphin <--select> <ADDRESS>", openFolder}, ""},
        {{}, {}, "org.parcelo.Parcelo.desktop", all, {}, "could not"},
        {{}, {}, "pcmanfm.desktop", {{"xdg-open", 4}}, {openFolder}, "could not"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases);
        expect(each, reveal, "inode/directory");
    }
}

TEST(MailComposer, attachesByTheFirstMeansThatWorks)
{
    const std::string composeEmail
        = "org.freedesktop.portal.Email.ComposeEmail <> <addresses=;attachment_fds=FILE;>";
    const std::string xdgEmail = "xdg-email <--utf8> <--attach> <FILE>";
    const std::string thunderbird = "thunderbird <-compose> <attachment='ADDRESS'>";
    const std::pair works(Answer::response, 0U);
    const std::map<std::string, int> all = {{"thunderbird", 0}, {"evolution", 0}, {"kmail", 0},
        {"claws-mail", 0}, {"balsa", 0}, {"xdg-email", 0}};
    const Case cases[] = {
        {{}, works, "net.thunderbird.Thunderbird.desktop", all, {thunderbird}, "certain"},
        {{}, works, "thunderbird.desktop", all, {}, "could not", false},
        {{}, works, "org.gnome.Evolution.desktop", all, {"evolution <mailto:?attach=FIELD>"},
            "certain"},
        {{}, works, "org.kde.kmail2.desktop", all, {"kmail <--composer> <--attach> <ADDRESS>"},
            "certain"},
        {{}, works, "claws-mail.desktop", all, {"claws-mail <--compose> <--attach> <FILE>"},
            "certain"},
        {{}, works, "balsa.desktop", all, {"balsa <-m> <mailto:> <--attach=ADDRESS>"}, "certain"},
        {{}, works, "kmailservice5.desktop", all, {composeEmail}, "uncertain"},
        {{}, std::pair(Answer::response, 1U), "mutt.desktop", all, {composeEmail}, "cancelled"},
        {{}, std::pair(Answer::error, 0U), "", all, {composeEmail, xdgEmail}, "uncertain"},
        // A program that is not there, as with one in a sandbox, or that fails at once.
        {{}, works, "thunderbird.desktop", {}, {composeEmail}, "uncertain"},
        {{}, {}, "thunderbird.desktop", {{"thunderbird", 1}, {"xdg-email", 3}},
            {thunderbird, xdgEmail}, "could not"},
        {{}, works, "brave-browser.desktop", all, {}, "could not"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases);
        expect(each, mail, "x-scheme-handler/mailto");
    }
}

TEST(MailComposer, keepsXdgEmailInUtf8)
{
    const support::TestFolder folder;
    support::writeFile(folder / "a.zip", "");
    const std::pair<const char*, const char*> cases[]
        = {{"C", "C.UTF-8"}, {"", "C.UTF-8"}, {"de_DE.UTF-8", "de_DE.UTF-8"}};
    for (const auto& [locale, expected] : cases) {
        const EnvironmentVariable all("LC_ALL", locale);
        const EnvironmentVariable type("LC_CTYPE", "");
        const EnvironmentVariable language("LANG", "C");
        const Programs programs;
        programs.add("xdg-mime");
        programs.addScript("xdg-email", "echo \"$LC_ALL\" >'" + (folder / "locale").native() + "'");
        MailComposer composer;
        EXPECT_TRUE(composer.composeMessage(folder / "a.zip"));
        EXPECT_TRUE(standins::waitForEndOf(composer));
        EXPECT_EQ(support::readFile(folder / "locale"), std::string(expected) + "\n");
    }
}

TEST(MailComposer, needsNoBusForXdgEmail)
{
    const EnvironmentVariable withoutBus("PARCELO_TEST_WITHOUT_BUS", "1");
    // Qt looks for the bus once: it takes a process of its own.
    const auto result = support::run(
        {fs::canonical("/proc/self/exe"), "--gtest_filter=MailComposer.keepsXdgEmailInUtf8"});
    EXPECT_EQ(result.status, 0) << result.out;
}

TEST(Workspace, opensAddressesAndOnlyThose)
{
    const Programs programs;
    Workspace workspace;
    EXPECT_FALSE(workspace.openURL(QUrl("http://parcelo.example/"))) << "with nothing to open it";
    programs.add("xdg-open");
    for (const char* address : {"", "http://[", "no scheme", "/tmp"})
        EXPECT_FALSE(workspace.openURL(QUrl(address))) << address;
    EXPECT_TRUE(workspace.openURL(QUrl("http://parcelo.example/a b?c=%26#d")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !programs.calls().empty(); }, 20000));
    EXPECT_EQ(programs.calls(), Calls{"xdg-open <http://parcelo.example/a%20b?c=%26#d>"});
}
