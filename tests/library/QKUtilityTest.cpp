#include "shared/Library/Extras/QKUtility.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/Task.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

struct QKUtilityTest : testing::Test {
    const support::TestFolder folder;
};

TEST_F(QKUtilityTest, runsACommandInOurEnvironment)
{
    ::setenv("PARCELO_TEST", "a b", 1);
    const std::tuple<const char*, std::string, int, const char*> cases[]
        = {{"printf '%s|' \"$PARCELO_TEST\" \"$@\"; pwd",
               "a b||\xff|" + folder.path().native() + "\n", 0, ""},
            {"cat; test -p /dev/stdin && echo a; echo b >&2; exit 7", "a\n", 7, "b\n"},
            {"(sleep 0.3; echo late) & echo early", "early\nlate\n", 0, ""},
            {"exec >&-; sleep 0.2; exit 3", "", 3, ""},
            {"head -c 300000 /dev/zero | tr '\\0' x", std::string(300000, 'x'), 0, ""}};
    for (const auto& [script, expected, expectedStatus, error] : cases) {
        std::int32_t status = -1;
        testing::internal::CaptureStderr();
        const auto output = QKUtility::runCommand(
            "/bin/sh", {"-c", script, "sh", "", "\xff"}, folder.path(), &status);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), error);
        EXPECT_TRUE(output == expected) << script << ": " << output.substr(0, 100);
        EXPECT_EQ(status, expectedStatus) << script;
    }
    EXPECT_EQ(
        QKUtility::runCommand("/bin/pwd", {}), std::filesystem::current_path().native() + "\n");
    EXPECT_THROW(QKUtility::runCommand("/no/such/tool", {}), LaunchFailure);
    EXPECT_GT(QKUtility::residentSetSize(), 1000); // kilobytes
}

TEST_F(QKUtilityTest, asksForTheVersionUntilItIsKnown)
{
    for (const std::int32_t version : {0x101F, 0x1020, 0x102F, 0x1030, 0x103F, 0x1040}) {
        int queries = 0;
        QKUtility::setVersionQuery(
            [&] { return queries++ == 0 ? std::nullopt : std::optional(version); });
        EXPECT_EQ(QKUtility::systemVersion(), 0);
        EXPECT_EQ(QKUtility::isJaguar(), version / 16 == 0x102) << version;
        EXPECT_EQ(QKUtility::isPanther(), version / 16 == 0x103) << version;
        EXPECT_EQ(queries, 2);
    }
    QKUtility::setVersionQuery({});
}

TEST_F(QKUtilityTest, keepsTheAgentFlagInTheBundle)
{
    const Bundle former = Bundle::main();
    Bundle::setMain(Bundle(folder.path()));
    const std::string start = "<plist><dict><key>Kept</key><true/><key>LSUIElement</key>";
    for (const std::string value : {"<integer>2</integer>", "<array/>", "<string>1</string>"}) {
        support::writeFile(folder / "Contents/Info.plist", start + value + "</dict></plist>");
        EXPECT_EQ(QKUtility::isHeadless(), value == "<string>1</string>") << value;
    }
    support::setTime(folder.path(), 1000);
    QKUtility::setHeadless(false);
    const PropertyList::Dictionary expected{{"Kept", true}, {"LSUIElement", std::int64_t{0}}};
    EXPECT_EQ(Bundle(folder.path()).infoDictionary(), expected);
    const auto age = std::filesystem::file_time_type::clock::now()
        - std::filesystem::last_write_time(folder.path());
    EXPECT_LT(age, std::chrono::minutes(1));
    Bundle::setMain(former);
}

TEST_F(QKUtilityTest, addsAndRemovesWhatStartsWithTheSession)
{
    const std::filesystem::path program = folder / "Parcelo.app";
    support::writeFile(program, "#!/bin/sh\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    for (const char* name : {"Parcelo.app", "Parcelo"}) {
        QKUtility::addAutoLaunchPath(program, true);
        QKUtility::addAutoLaunchPath("/x\",hidden:true}\ndelete login item \"Parcelo", false);
        EXPECT_TRUE(QKUtility::appAutoLaunches("Parcelo.app"));
        EXPECT_FALSE(QKUtility::appAutoLaunches("Parcelo"));
        QKUtility::removeAutoLaunchAppNamed(name);
        EXPECT_FALSE(QKUtility::appAutoLaunches("Parcelo.app")) << name;
    }
}

TEST_F(QKUtilityTest, startsTheProgramAnewAndEnds)
{
    const std::filesystem::path file = folder / "result.xml";
    ::setenv("GTEST_FILTER", "none", 1); // what the new one is to do
    ::setenv("GTEST_OUTPUT", ("xml:" + file.native()).c_str(), 1);
    QTimer::singleShot(0, qApp, QKUtility::restartApplication);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(support::waitUntil([&] { return std::filesystem::exists(file); }));
    ::unsetenv("GTEST_FILTER");
    ::unsetenv("GTEST_OUTPUT");
}
