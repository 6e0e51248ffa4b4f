#include "platform/desktop/services/LoginItems.h"

#include "tests/support/qt/QtTest.h"

namespace
{

struct LoginItemsTest : ::testing::Test {
    // Makes a program and gives its path.
    std::string program(const std::string& name) const
    {
        const auto path = folder / "programs" / name;
        writeFile(path, "");
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }

    const TestFolder folder;
    const EnvironmentVariable users{"XDG_CONFIG_HOME", folder / "users"};
    const EnvironmentVariable systems{"XDG_CONFIG_DIRS", folder / "systems"};
};

} // namespace

TEST_F(LoginItemsTest, takeProgramsOfAnyNameAndGoAgain)
{
    std::vector<LoginItems::Record> expected;
    for (const std::string name : {" b ", ".hidden", "a", "b c", "d\"'`$\\%f", "e\xff=\n;"}) {
        expected.push_back({program(name), true});
        EXPECT_TRUE(LoginItems::add(expected.back().path, true)) << name;
    }
    EXPECT_EQ(LoginItems::list(), expected);
    EXPECT_FALSE(LoginItems::add("/no/such", false));
    for (const LoginItems::Record& record : expected)
        EXPECT_TRUE(LoginItems::remove(record.path.filename())) << record.path;
    EXPECT_TRUE(LoginItems::list().empty());
}

TEST_F(LoginItemsTest, leaveEverythingElseAsItIs)
{
    const auto kept = folder / "kept", own = folder / "users/autostart/own.desktop";
    const std::string one = program("one");
    const std::string start = "# kept\n[Desktop Entry]\nType=Application\nName=Eins\n";
    const std::string end = "Exec=" + one + " %u\nX-Other = a\\sb\n\n[Group]\nHidden=true\n";
    writeFile(kept, start + "Hidden=true\n" + end);
    writeFile(folder / "users/autostart/other.desktop", "[Desktop Entry]\nExec=" + one + " -c x");
    fs::create_symlink(kept, own);
    const std::vector<LoginItems::Record> others{{one, false}};
    EXPECT_EQ(LoginItems::list(), others);
    EXPECT_TRUE(LoginItems::add(one, true));
    EXPECT_TRUE(fs::is_symlink(own));
    const std::string entry = readFile(kept);
    EXPECT_TRUE(entry.starts_with(start + "Hidden=false\n")) << entry;
    EXPECT_NE(entry.find("\nX-Other = a\\sb\n"), entry.npos) << entry;
    EXPECT_TRUE(entry.ends_with("\n[Group]\nHidden=true\n")) << entry;
    EXPECT_TRUE(LoginItems::remove("one"));
    EXPECT_EQ(LoginItems::list(), others);
}
