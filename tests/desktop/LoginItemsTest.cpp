#include "platform/desktop/services/LoginItems.h"

#include "tests/desktop/StandIns.h"
#include "tests/support/Files.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace fs = std::filesystem;
using support::readFile;
using support::writeFile;
using Records = std::vector<LoginItems::Record>;

namespace
{

class LoginItemsTest : public ::testing::Test
{
protected:
    fs::path users(const std::string& name) const { return _folder / ("users/autostart/" + name); }
    fs::path systems(const std::string& name) const
    {
        return _folder / ("systems/autostart/" + name);
    }
    // Makes a program and gives its path.
    fs::path program(const std::string& name) const
    {
        const fs::path path = _folder / ("programs/" + name);
        writeFile(path, "#!/bin/sh\n");
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }
    std::vector<std::string> usersFiles() const { return support::namesIn(users("")); }

private:
    const support::TestFolder _folder;
    const standins::EnvironmentVariable _users{"XDG_CONFIG_HOME", _folder / "users"};
    const standins::EnvironmentVariable _systems{
        "XDG_CONFIG_DIRS", "relative:" + (_folder / "systems").native()};
    const standins::EnvironmentVariable _path{"PATH", _folder / "programs"};
    const standins::EnvironmentVariable _desktop{"XDG_CURRENT_DESKTOP", "Other:This"};
};

std::string entry(const std::string& keys)
{
    return "[Desktop Entry]\nType=Application\n" + keys + "\n";
}

} // namespace

TEST_F(LoginItemsTest, listsWhatStartsInThisDesktop)
{
    const std::string path = program("one");
    const std::string exec = "Exec=" + path;
    const std::pair<std::string, std::optional<std::string>> cases[] = {
        {entry(exec + " --quiet %U"), path},
        {entry("Exec=one"), path},
        {entry("Exec=not-here"), "not-here"},
        {"# first\n\n[Desktop Entry]\nExec = " + path + "\n[Other]\nHidden=true\n", path},
        {entry(exec + "\nHidden=false\nX-GNOME-Autostart-enabled=true"), path},
        {entry(exec + "\nHidden=true"), {}},
        {entry(exec + "\nX-GNOME-Autostart-enabled=false"), {}},
        {entry(exec + "\nTryExec=one"), path},
        {entry(exec + "\nTryExec=not-here"), {}},
        {entry(exec + "\nOnlyShowIn=GNOME;This;"), path},
        {entry(exec + "\nOnlyShowIn=GNOME;"), {}},
        {entry(exec + "\nNotShowIn=GNOME;Other"), {}},
        {entry(exec + "\nno key"), {}},
        {entry("Exec=\"" + path), {}},
        {entry("Name=One"), {}},
        {exec, {}},
        {"", {}},
    };
    for (const auto& [content, expected] : cases) {
        writeFile(users("a.desktop"), content);
        const Records records = LoginItems::list();
        EXPECT_EQ(records, expected ? Records({{*expected, false}}) : Records()) << content;
    }
    support::makeFifo(users("pipe.desktop"));
    fs::create_directory(users("folder.desktop"));
    writeFile(users("a.txt"), entry(exec));
    EXPECT_EQ(LoginItems::list(), Records());
}

TEST_F(LoginItemsTest, usersEntriesStandForTheSystems)
{
    const std::string one = program("one");
    const std::string two = program("two");
    writeFile(systems("a.desktop"), entry("Exec=one"));
    writeFile(systems("b.desktop"), entry("Exec=two"));
    EXPECT_EQ(LoginItems::list(), (Records{{one, false}, {two, false}}));
    writeFile(users("a.desktop"), entry("Exec=two"));
    writeFile(users("b.desktop"), entry("Hidden=true"));
    EXPECT_EQ(LoginItems::list(), (Records{{two, false}}));
}

TEST_F(LoginItemsTest, addsProgramsOfAnyName)
{
    Records expected;
    for (const std::string name : {"a", "b c", " b ", "d\"'`$\\%f", "e\xff=\n;", "%U"}) {
        expected.push_back({program(name), true});
        EXPECT_TRUE(LoginItems::add(expected.back().path, true)) << name;
        EXPECT_TRUE(LoginItems::add(expected.back().path, true)) << "once more: nothing is added";
    }
    std::sort(expected.begin(), expected.end(),
        [](const auto& one, const auto& other) { return one.path < other.path; });
    EXPECT_EQ(LoginItems::list(), expected);
    EXPECT_NE(readFile(users("b c.desktop")).find("Exec=\"" + program("b c").native() + "\"\n"),
        std::string::npos);
    EXPECT_NE(readFile(users("d\"'`$\\%f.desktop")).find("/d\\\\\"'\\\\`\\\\$\\\\\\\\%%f\"\n"),
        std::string::npos);

    EXPECT_TRUE(LoginItems::add(fs::canonical("/proc/self/exe"), false));
    EXPECT_NE(
        readFile(users("org.parcelo.Parcelo.desktop")).find("\nName=Parcelo\n"), std::string::npos);
    for (const fs::path& wrong : {fs::path("a"), fs::path(), fs::path("/"), fs::path("/no/such")})
        EXPECT_FALSE(LoginItems::add(wrong, false)) << wrong;
    EXPECT_EQ(usersFiles().size(), 7U) << "something is left beside the entries";
}

TEST_F(LoginItemsTest, addingChangesNothingElse)
{
    const std::string one = program("one");
    const std::string strange = "# kept\n[Desktop Entry]\nName[de]=Eins\nHidden=true\nExec=" + one
        + " --quiet\nX-Other = a\\sb\n\n[Group]\nHidden=true\n";
    writeFile(users("own.desktop"), strange);
    writeFile(users("two.desktop"), entry("Exec=/elsewhere/two"));
    EXPECT_TRUE(LoginItems::add(one, true));
    EXPECT_EQ(readFile(users("own.desktop")),
        "# kept\n[Desktop Entry]\nName[de]=Eins\nHidden=false\nExec=" + one
            + " --quiet\nX-Other = a\\sb\nX-GNOME-Autostart-enabled=true\nX-Parcelo-Hide=true\n\n"
              "[Group]\nHidden=true\n");
    EXPECT_TRUE(LoginItems::add(program("two"), false)); // another one has that file
    EXPECT_EQ(readFile(users("two.desktop")), entry("Exec=/elsewhere/two"));
    EXPECT_EQ(
        usersFiles(), (std::vector<std::string>{"own.desktop", "two-2.desktop", "two.desktop"}));
}

TEST_F(LoginItemsTest, removesWhatIsSoNamedAndNothingElse)
{
    const std::string one = "Exec=" + program("one.sh").native();
    const std::string two = "Exec=" + program("two").native();
    struct Case {
        const char* name;
        bool isRemoved;
    };
    const Case cases[] = {{"One", true}, {"own", true}, {"one", true}, {"one.sh", false},
        {"own.desktop", false}, {"ONE", false}, {"", false}, {"../autostart/own", false}};
    for (const Case& each : cases) {
        writeFile(users("own.desktop"), entry("Name=One\n" + one));
        writeFile(users("two.desktop"), entry("Name=Two\n" + two));
        writeFile(users("off.desktop"), entry("Name=One\nHidden=true\n" + two));
        EXPECT_EQ(LoginItems::remove(each.name), each.isRemoved) << each.name;
        EXPECT_EQ(fs::exists(users("own.desktop")), !each.isRemoved) << each.name;
        EXPECT_TRUE(fs::exists(users("two.desktop")) && fs::exists(users("off.desktop")));
    }
}

TEST_F(LoginItemsTest, removesASystemsItemForTheUserAlone)
{
    const fs::path one = program("one");
    const std::string content = entry("Name=One\nX-Other=a\nExec=" + one.native());
    for (const bool hasUsers : {false, true}) {
        writeFile(systems("own.desktop"), content);
        if (hasUsers)
            writeFile(users("own.desktop"), content);
        EXPECT_TRUE(LoginItems::remove("One"));
        EXPECT_EQ(readFile(systems("own.desktop")), content);
        EXPECT_EQ(readFile(users("own.desktop")), content + "Hidden=true\n");
        EXPECT_EQ(LoginItems::list(), Records());
        EXPECT_TRUE(LoginItems::add(one, false));
        EXPECT_EQ(LoginItems::list(), (Records{{one, false}}));
        fs::remove(users("own.desktop"));
    }
}
