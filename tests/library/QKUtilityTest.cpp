#include "shared/Library/Extras/QKUtility.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/base/process/Task.h"
#include "platform/base/seams/MainQueue.h"
#include "tests/support/qt/QtTest.h"

struct QKUtilityTest : testing::Test {
    const TestFolder folder;
};

TEST_F(QKUtilityTest, delaysBecomeWholeNanosecondsOf64Bits)
{
    std::int64_t given = 0;
    MainQueue::setSubmitter([&](auto delay, const auto& /*block*/) { given = delay.count(); });
    const std::pair<double, std::int64_t> cases[]
        = {{0.2, 200'000'000}, {-1.9e-9, -1}, {1e300, INT64_MAX}, {std::nan(""), 0}};
    for (const auto& [seconds, delay] : cases) {
        QKUtility::afterDelay(seconds, [] {});
        EXPECT_EQ(given, delay) << seconds;
    }
    MainQueue::setSubmitter({});
}

TEST_F(QKUtilityTest, runsACommandToItsEnd)
{
    const std::pair<const char*, std::string> cases[]
        = {{"printf '%s|' \"$@\"; pwd; cat; exit 7", "|\xff|" + folder.path().native() + "\n"},
            {"(sleep 0.3; echo late) & echo early; exit 7", "early\nlate\n"}};
    for (const auto& [script, expected] : cases) {
        std::int32_t status = -1;
        const std::vector<std::string> arguments{"-c", script, "sh", "", "\xff"};
        const auto output = QKUtility::runCommand("/bin/sh", arguments, folder.path(), &status);
        EXPECT_EQ(output, expected) << script;
        EXPECT_EQ(status, 7) << script;
    }
    EXPECT_THROW(QKUtility::runCommand("/no/such/tool", {}), LaunchFailure);
}

TEST_F(QKUtilityTest, tellsOfTheSystemWhenItCanBeAsked)
{
    EXPECT_GT(QKUtility::residentSetSize(), 1000); // kilobytes
    std::optional<std::int32_t> version;
    QKUtility::setVersionQuery([&] { return std::exchange(version, 0x1039); });
    EXPECT_EQ(QKUtility::systemVersion(), 0);
    EXPECT_TRUE(QKUtility::isPanther() && !QKUtility::isJaguar());
    QKUtility::setVersionQuery({});
}

TEST_F(QKUtilityTest, keepsTheAgentFlagInTheBundle)
{
    const Bundle former = Bundle::main();
    Bundle::setMain(Bundle(folder.path()));
    writeFile(folder / "Contents/Info.plist",
        "<plist><dict><key>a</key><true/><key>LSUIElement</key><string>1</string></dict></plist>");
    EXPECT_TRUE(QKUtility::isHeadless());
    QKUtility::setHeadless(false);
    const PropertyList::Dictionary expected{{"a", true}, {"LSUIElement", std::int64_t{0}}};
    EXPECT_EQ(Bundle(folder.path()).infoDictionary(), expected);
    Bundle::setMain(former);
}

TEST_F(QKUtilityTest, addsAndRemovesWhatStartsWithTheSession)
{
    QKUtility::addAutoLaunchPath("/bin/sh", true);
    EXPECT_TRUE(QKUtility::appAutoLaunches("sh"));
    QKUtility::removeAutoLaunchAppNamed("sh");
    EXPECT_FALSE(QKUtility::appAutoLaunches("sh"));
}

TEST_F(QKUtilityTest, startsTheProgramAnewAndEnds)
{
    ::setenv("GTEST_FILTER", "none", 1); // what the new one is to do
    ::setenv("GTEST_OUTPUT", ("xml:" + (folder / "result").native()).c_str(), 1);
    QTimer::singleShot(0, qApp, QKUtility::restartApplication);
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "result"); }));
}
