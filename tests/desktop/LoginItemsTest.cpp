#include "platform/desktop/services/LoginItems.h"

#include "platform/desktop/services/AppleScript.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using support::EnvironmentVariable;
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

private:
    const support::TestFolder _folder;
    const EnvironmentVariable _users{"XDG_CONFIG_HOME", _folder / "users"};
    const EnvironmentVariable _systems{
        "XDG_CONFIG_DIRS", "relative:" + (_folder / "systems").native()};
    const EnvironmentVariable _path{"PATH", _folder / "programs"};
    const EnvironmentVariable _desktop{"XDG_CURRENT_DESKTOP", "Other:This"};
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
        {entry("Exec=one --quiet %U\nTryExec=one\nOnlyShowIn=GNOME;This;"), path},
        {entry("Exec=not-here"), "not-here"},
        {"# first\n\n[Desktop Entry]\nExec = " + path + "\n[Other]\nHidden=true\n", path},
        {entry(exec + "\nHidden=true"), {}},
        {entry(exec + "\nX-GNOME-Autostart-enabled=false"), {}},
        {entry(exec + "\nTryExec=not-here"), {}},
        {entry(exec + "\nOnlyShowIn=GNOME;"), {}},
        {entry(exec + "\nNotShowIn=GNOME;Other"), {}},
        {entry(exec + "\nno key"), {}},
        {entry("Exec=\"" + path), {}},
        {exec, {}},
    };
    writeFile(users("b.desktop"), "");
    support::makeFifo(users("pipe.desktop")); // would hold us up
    for (const auto& [content, expected] : cases) {
        writeFile(users("a.desktop"), content);
        EXPECT_EQ(LoginItems::list(), expected ? Records({{*expected, false}}) : Records())
            << content;
    }
}

TEST_F(LoginItemsTest, addsProgramsOfAnyName)
{
    Records expected;
    for (const std::string name : {" b ", "a", "b c", "d\"'`$\\%f", "e\xff=\n;"}) {
        expected.push_back({program(name), true});
        EXPECT_TRUE(LoginItems::add(expected.back().path, true)) << name;
        EXPECT_TRUE(LoginItems::add(expected.back().path, true)) << "once more: nothing is added";
    }
    EXPECT_EQ(LoginItems::list(), expected);
    EXPECT_NE(readFile(users("d\"'`$\\%f.desktop")).find("/d\\\\\"'\\\\`\\\\$\\\\\\\\%%f\"\n"),
        std::string::npos);
    EXPECT_TRUE(LoginItems::add(fs::canonical("/proc/self/exe"), false));
    EXPECT_TRUE(fs::exists(users("org.parcelo.Parcelo.desktop")));
    for (const fs::path& wrong : {fs::path("a"), fs::path(), fs::path("/"), fs::path("/no/such")})
        EXPECT_FALSE(LoginItems::add(wrong, false)) << wrong;
    EXPECT_EQ(support::namesIn(users("")).size(), 6U) << "something is left beside the entries";
}

TEST_F(LoginItemsTest, addingChangesNothingElse)
{
    const std::string one = program("one");
    const std::string start = "# kept\n[Desktop Entry]\nName[de]=Eins\nHidden=";
    const std::string middle = "\nExec=" + one + " --quiet\nX-Other = a\\sb\n";
    const std::string end = "\n[Group]\nHidden=true\n";
    writeFile(users("own.desktop"), start + "true" + middle + end);
    writeFile(users("two.desktop"), entry("Exec=/elsewhere/two"));
    EXPECT_TRUE(LoginItems::add(one, true));
    EXPECT_EQ(readFile(users("own.desktop")),
        start + "false" + middle + "X-GNOME-Autostart-enabled=true\nX-Parcelo-Hide=true\n" + end);
    EXPECT_TRUE(LoginItems::add(program("two"), false)); // another one has that file
    EXPECT_EQ(readFile(users("two.desktop")), entry("Exec=/elsewhere/two"));
    EXPECT_TRUE(fs::exists(users("two-2.desktop")));
}

TEST_F(LoginItemsTest, removesWhatIsSoNamedAndASystemsItemForTheUserAlone)
{
    const std::string content = entry("Name=One\nExec=" + program("uno.sh").native());
    const std::string off = entry("Name=One\nHidden=true\nExec=" + program("two").native());
    writeFile(users("off.desktop"), off);
    for (const fs::path& file : {users("own.desktop"), systems("own.desktop")}) {
        for (const std::string name : {"One", "own", "uno", "uno.sh", "own.desktop", "ONE", ""}) {
            writeFile(file, content);
            const bool isRemoved = name == "One" || name == "own" || name == "uno";
            EXPECT_EQ(LoginItems::remove(name), isRemoved) << name;
            EXPECT_EQ(LoginItems::list().empty(), isRemoved) << name;
            EXPECT_EQ(readFile(users("off.desktop")), off);
            if (fs::exists(file)) {
                EXPECT_EQ(readFile(file), content);
            }
            fs::remove(users("own.desktop"));
        }
    }
    EXPECT_TRUE(LoginItems::remove("One"));
    EXPECT_EQ(readFile(users("own.desktop")), content + "Hidden=true\n");
    EXPECT_TRUE(LoginItems::add(program("uno.sh"), false));
    EXPECT_EQ(LoginItems::list(), (Records{{program("uno.sh"), false}}));
}

TEST_F(LoginItemsTest, areMadeAndDeletedByScripts)
{
    const auto run = [](const std::string& command) {
        return AppleScript::initWithSource(
            "tell application \"System Events\"\n" + command + "\nend tell")
            .executeAndReturnError();
    };
    const std::string make = "make new login item at end with properties {path:\"";
    EXPECT_TRUE(run(make + program("one").native() + "\",hidden:true}\n"));
    EXPECT_FALSE(run(make + "/no/such\",hidden:true}\ndelete login item \"one\""));
    EXPECT_EQ(LoginItems::list(), (Records{{program("one"), true}}));
    EXPECT_TRUE(run("delete login item \"one\""));
    EXPECT_EQ(LoginItems::list(), Records());
}
