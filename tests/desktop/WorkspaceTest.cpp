#include "platform/desktop/services/Workspace.h"

#include "tests/desktop/StandIns.h"
#include "tests/support/Files.h"

#include <memory>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

using standins::Programs;
using standins::Service;
using Answer = standins::Service::Answer;
using Calls = std::vector<std::string>;

namespace
{

const QString fileManagerName = QStringLiteral("org.freedesktop.FileManager1");
const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");

struct Portal {
    Answer answer;
    unsigned outcome;
};

const std::string fileName = "it's 50% \xe9.zip";

// "FOLDER" and "FILE" in a text stand for the paths of the test, "URI" for the file's address.
std::string filledIn(std::string text, const support::TestFolder& folder)
{
    const std::pair<std::string, std::string> values[] = {
        {"URI", "file://" + folder.path().native() + "/it%27s%2050%25%20%E9.zip"},
        {"FILE", folder / fileName},
        {"FOLDER", folder.path().native()},
    };
    for (const auto& [name, value] : values)
        if (const auto at = text.find("<" + name + ">"); at != std::string::npos)
            text.replace(at + 1, name.size(), value);
    return text;
}

} // namespace

TEST(Workspace, revealsByTheFirstMeansThatWorks)
{
    const std::string query = "xdg-mime <query> <default> <inode/directory>";
    const std::string showItems = "org.freedesktop.FileManager1.ShowItems <URI> <>";
    const std::string openDirectory = "org.freedesktop.portal.OpenURI.OpenDirectory <> <FILE> <>";
    struct Case {
        std::optional<Answer> fileManager;
        std::optional<Portal> portal;
        std::string defaultId;
        std::vector<std::pair<std::string, int>> programs; // with their exit statuses
        Calls calls;
        bool isRevealed = true;
    };
    const Case cases[] = {
        {Answer::yes, Portal{Answer::response, 0}, "org.gnome.Nautilus.desktop", {{"nautilus", 0}},
            {showItems}},
        {Answer::error, Portal{Answer::response, 0}, "", {{"xdg-open", 0}},
            {showItems, openDirectory}},
        {{}, Portal{Answer::responseBefore, 1}, "", {{"xdg-open", 0}}, {openDirectory}},
        {{}, Portal{Answer::responseElsewhere, 0}, "", {{"xdg-open", 0}}, {openDirectory}},
        {{}, Portal{Answer::response, 2}, "org.gnome.Nautilus.desktop", {{"nautilus", 0}},
            {openDirectory, query, "nautilus <--select> <URI>"}},
        {{}, Portal{Answer::error, 0}, "nemo.desktop", {{"nemo", 0}},
            {openDirectory, query, "nemo <FILE>"}},
        {{}, Portal{Answer::goneAfterwards, 0}, "thunar.desktop", {{"thunar", 0}},
            {openDirectory, query, "thunar <FOLDER>"}},
        {{}, {}, "org.kde.dolphin.desktop", {{"dolphin", 1}, {"xdg-open", 0}},
            {query, "dolphin <--select> <URI>", "xdg-open <FOLDER>"}},
        {{}, {}, "org.kde.dolphin.desktop", {{"xdg-open", 0}}, {query, "xdg-open <FOLDER>"}},
        {{}, {}, "pcmanfm.desktop", {{"xdg-open", 0}}, {query, "xdg-open <FOLDER>"}},
        {{}, {}, "", {{"xdg-open", 4}}, {query, "xdg-open <FOLDER>"}, false},
        {{}, {}, "org.parcelo.Parcelo.desktop", {{"xdg-open", 0}}, {query}, false},
        {{}, {}, "", {}, {query}, false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases);
        const support::TestFolder folder;
        const std::filesystem::path file = folder / fileName;
        support::writeFile(file, "");
        std::optional<Service> fileManager;
        std::optional<Service> portal;
        if (each.fileManager)
            fileManager.emplace(fileManagerName, *each.fileManager);
        if (each.portal)
            portal.emplace(portalName, each.portal->answer, each.portal->outcome);
        Calls expected;
        for (const std::string& call : each.calls)
            expected.push_back(filledIn(call, folder));
        const Programs programs;
        programs.add("xdg-mime", 0, each.defaultId);
        for (const auto& [name, status] : each.programs)
            programs.add(name, status);

        Workspace workspace;
        std::vector<std::filesystem::path> notRevealed;
        QObject::connect(&workspace, &Workspace::couldNotReveal, &workspace,
            [&](const std::filesystem::path& path) { notRevealed.push_back(path); });
        workspace.selectFile(file);
        EXPECT_TRUE(notRevealed.empty()) << "told before the call returned";
        EXPECT_TRUE(standins::spinUntil([&] { return workspace.children().isEmpty(); }));

        Calls calls;
        for (const auto* service : {&fileManager, &portal})
            if (*service)
                calls.insert(calls.end(), (*service)->calls().begin(), (*service)->calls().end());
        for (const std::string& call : programs.calls())
            calls.push_back(call);
        EXPECT_EQ(calls, expected);
        EXPECT_EQ(notRevealed.size(), each.isRevealed ? 0U : 1U);
    }
}

TEST(Workspace, asksNobodyForAFileThatIsNotThere)
{
    const Service fileManager(fileManagerName, Answer::yes);
    const Programs programs;
    Workspace workspace;
    std::filesystem::path notRevealed;
    QObject::connect(&workspace, &Workspace::couldNotReveal, &workspace,
        [&](const std::filesystem::path& path) { notRevealed = path; });
    std::jthread([&] { workspace.selectFile("/no/such/file"); }).join(); // as a job's thread does
    EXPECT_TRUE(standins::spinUntil([&] { return !notRevealed.empty(); }));
    EXPECT_EQ(notRevealed, "/no/such/file");
    EXPECT_EQ(fileManager.calls(), Calls());
}

TEST(Workspace, opensAddressesAndOnlyThose)
{
    Programs programs;
    Workspace workspace;
    EXPECT_FALSE(workspace.openURL(QUrl(QStringLiteral("http://parcelo.example/"))))
        << "there is nothing to open it";
    programs.add("xdg-open");
    for (const char* address : {"", "http://[", "no scheme", "/tmp"})
        EXPECT_FALSE(workspace.openURL(QUrl(QString::fromLatin1(address)))) << address;
    const QUrl valid(QStringLiteral("http://parcelo.example/a b?c=%26#d"));
    EXPECT_TRUE(workspace.openURL(valid));
    EXPECT_TRUE(standins::spinUntil([&] { return !programs.calls().empty(); }));
    EXPECT_EQ(programs.calls(), Calls{"xdg-open <http://parcelo.example/a%20b?c=%26#d>"});
}

TEST(Workspace, standsInForTheSharedOne)
{
    Workspace& desktop = Workspace::sharedWorkspace();
    Workspace standIn;
    Workspace::setSharedWorkspace(&standIn);
    EXPECT_EQ(&Workspace::sharedWorkspace(), &standIn);
    Workspace::setSharedWorkspace(nullptr);
    EXPECT_EQ(&Workspace::sharedWorkspace(), &desktop);
}
