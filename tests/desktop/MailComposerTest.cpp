#include "platform/desktop/services/MailComposer.h"

#include "tests/desktop/StandIns.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"

#include <optional>

#include <gtest/gtest.h>

using standins::Programs;
using standins::Service;
using Answer = standins::Service::Answer;
using Calls = std::vector<std::string>;

namespace
{

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const std::string query = "xdg-mime <query> <default> <x-scheme-handler/mailto>";
const std::string composeEmail
    = "org.freedesktop.portal.Email.ComposeEmail <> <addresses=;attachment_fds=FILE;>";
const std::string xdgEmail = "xdg-email <--utf8> <--attach> <FILE>";

// Quotes, separators and escapes of every form, and a byte that is no UTF-8.
const std::string fileName = "it's, 50%&#=\"\\ \xe9.zip";

// The words FILE, URI and FIELD stand for the file's path, its address, and that as the value of a
// field of a mailto address.
std::string filledIn(std::string text, const support::TestFolder& folder)
{
    const std::string uriName = "/it%27s%2C%2050%25%26%23%3D%22%5C%20%E9.zip";
    const std::string fieldName
        = "/it%2527s%252C%252050%2525%2526%2523%253D%2522%255C%2520%25E9.zip";
    const std::string path = folder.path().native();
    const std::pair<std::string, std::string> values[] = {{"FILE", path + "/" + fileName},
        {"URI", "file://" + path + uriName}, {"FIELD", "file://" + path + fieldName}};
    for (const auto& [word, value] : values)
        if (const auto at = text.find(word); at != std::string::npos)
            text.replace(at, word.size(), value);
    return text;
}

// Every signal of a composer as it comes.
class Listener
{
public:
    explicit Listener(MailComposer& composer)
    {
        using Path = std::filesystem::path;
        QObject::connect(
            &composer, &MailComposer::attached, &composer, [this](const Path& path, bool certain) {
                told.emplace_back(certain ? "certain " : "uncertain ").append(path);
            });
        QObject::connect(&composer, &MailComposer::cancelled, &composer,
            [this](const Path& path) { told.emplace_back("cancelled ").append(path); });
        QObject::connect(&composer, &MailComposer::couldNotAttach, &composer,
            [this](const Path& path) { told.emplace_back("could not ").append(path); });
    }

    Calls told;
};

} // namespace

TEST(MailComposer, attachesByTheFirstMeansThatWorks)
{
    struct Case {
        std::string defaultId;
        std::optional<std::pair<Answer, unsigned>> portal; // and its outcome
        std::vector<std::pair<std::string, int>> programs; // with their exit statuses
        Calls calls;
        std::string told;
    };
    const std::pair works(Answer::response, 0U);
    const std::vector<std::pair<std::string, int>> all
        = {{"thunderbird", 0}, {"icedove", 0}, {"betterbird", 0}, {"evolution", 0}, {"geary", 0},
            {"kmail", 0}, {"claws-mail", 0}, {"sylpheed", 0}, {"balsa", 0}, {"xdg-email", 0}};
    const Case cases[] = {
        {"thunderbird.desktop", works, all, {"thunderbird <-compose> <attachment='URI'>"},
            "certain"},
        {"net.thunderbird.Thunderbird.desktop", works, all,
            {"thunderbird <-compose> <attachment='URI'>"}, "certain"},
        {"eu.betterbird.Betterbird.desktop", works, all,
            {"betterbird <-compose> <attachment='URI'>"}, "certain"},
        {"org.gnome.Evolution.desktop", works, all, {"evolution <mailto:?attach=FIELD>"},
            "certain"},
        {"org.gnome.Geary.desktop", works, all, {"geary <mailto:?attach=FIELD>"}, "certain"},
        {"org.kde.kmail2.desktop", works, all, {"kmail <--composer> <--attach> <URI>"}, "certain"},
        {"claws-mail.desktop", works, all, {"claws-mail <--compose> <--attach> <FILE>"}, "certain"},
        {"sylpheed.desktop", works, all, {"sylpheed <--compose> <--attach> <FILE>"}, "certain"},
        {"balsa.desktop", works, all, {"balsa <-m> <mailto:> <--attach=URI>"}, "certain"},
        {"kmailservice5.desktop", works, all, {composeEmail}, "uncertain"},
        {"mutt.desktop", works, all, {composeEmail}, "uncertain"},
        {"", std::pair(Answer::responseBefore, 0U), all, {composeEmail}, "uncertain"},
        {"", std::pair(Answer::response, 1U), all, {composeEmail}, "cancelled"},
        {"", std::pair(Answer::response, 2U), all, {composeEmail, xdgEmail}, "uncertain"},
        {"", std::pair(Answer::error, 0U), all, {composeEmail, xdgEmail}, "uncertain"},
        // A program that is not there, as with one in a sandbox, or that fails at once.
        {"thunderbird.desktop", works, {}, {composeEmail}, "uncertain"},
        {"thunderbird.desktop", {}, {{"thunderbird", 1}, {"xdg-email", 0}},
            {"thunderbird <-compose> <attachment='URI'>", xdgEmail}, "uncertain"},
        {"", {}, {{"xdg-email", 3}}, {xdgEmail}, "could not"},
        {"", {}, {}, {}, "could not"},
        {"firefox-esr.desktop", works, all, {}, "could not"},
        {"com.google.Chrome.desktop", works, all, {}, "could not"},
        {"brave-browser.desktop", works, all, {}, "could not"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.defaultId + " " + each.told);
        const support::TestFolder folder;
        const std::filesystem::path file = folder / fileName;
        support::writeFile(file, "");
        std::optional<Service> portal;
        if (each.portal)
            portal.emplace(portalName, each.portal->first, each.portal->second);
        const Programs programs;
        programs.add("xdg-mime", 0, each.defaultId);
        for (const auto& [name, status] : each.programs)
            programs.add(name, status);

        MailComposer composer;
        Listener listener(composer);
        EXPECT_TRUE(composer.composeMessage(file));
        EXPECT_EQ(listener.told, Calls()) << "told before the call returned";
        EXPECT_TRUE(standins::spinUntil([&] { return composer.children().isEmpty(); }));

        Calls calls = portal ? portal->calls() : Calls();
        for (const std::string& call : programs.calls())
            if (call != query)
                calls.push_back(call);
        Calls expected;
        for (const std::string& call : each.calls)
            expected.push_back(filledIn(call, folder));
        EXPECT_EQ(calls, expected);
        EXPECT_EQ(listener.told, Calls{each.told + " " + file.native()});
    }
}

TEST(MailComposer, asksNobodyForAFileThatIsNotThere)
{
    const support::TestFolder folder;
    const Programs programs;
    programs.add("xdg-mime", 0, "thunderbird.desktop");
    programs.add("thunderbird");
    for (const std::filesystem::path& path :
        {folder / "missing.zip", folder.path(), std::filesystem::path()}) {
        MailComposer composer;
        Listener listener(composer);
        EXPECT_FALSE(composer.composeMessage(path));
        EXPECT_TRUE(standins::spinUntil([&] { return !listener.told.empty(); }));
        EXPECT_EQ(listener.told, Calls{"could not " + path.native()});
    }
    EXPECT_EQ(programs.calls(), Calls());
}

TEST(MailComposer, keepsXdgEmailInUtf8)
{
    const support::TestFolder folder;
    support::writeFile(folder / "a.zip", "");
    const std::pair<const char*, const char*> cases[]
        = {{"C", "C.UTF-8"}, {"", "C.UTF-8"}, {"de_DE.UTF-8", "de_DE.UTF-8"}};
    for (const auto& [locale, expected] : cases) {
        const standins::EnvironmentVariable all("LC_ALL", locale);
        const standins::EnvironmentVariable type("LC_CTYPE", "");
        const standins::EnvironmentVariable language("LANG", "C");
        const Programs programs;
        programs.add("xdg-mime");
        programs.addScript(
            "xdg-email", "echo \"$LC_ALL\" >>'" + (folder / "locale").native() + "'");
        MailComposer composer;
        EXPECT_TRUE(composer.composeMessage(folder / "a.zip"));
        EXPECT_TRUE(standins::spinUntil([&] { return composer.children().isEmpty(); }));
        EXPECT_EQ(support::readFile(folder / "locale"), std::string(expected) + "\n");
        std::filesystem::remove(folder / "locale");
    }
}

TEST(MailComposer, needsNoBusForXdgEmail)
{
    const standins::EnvironmentVariable withoutBus("PARCELO_TEST_WITHOUT_BUS", "1");
    // Qt looks for the bus once: it takes a process of its own.
    const auto result = support::run({std::filesystem::canonical("/proc/self/exe"),
        "--gtest_filter=MailComposer.keepsXdgEmailInUtf8"});
    EXPECT_EQ(result.status, 0) << result.out;
}
