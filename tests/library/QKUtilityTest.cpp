#include "shared/Library/Extras/QKUtility.h"

#include "platform/base/bundle/Bundle.h"
#include "platform/base/bundle/PropertyList.h"
#include "platform/base/process/Task.h"
#include "platform/base/seams/MainQueue.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QMainWindow>
#include <QTimer>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <limits>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using support::TestFolder;

namespace
{

constexpr const char* restartMark = "PARCELO_TEST_RESTARTED";

// This program, started anew by the test of that, only says so.
const bool isFirst = [] {
    const char* mark = std::getenv(restartMark);
    if (!mark)
        return true;
    std::ifstream commandLine("/proc/self/cmdline");
    const std::string words((std::istreambuf_iterator<char>(commandLine)), {});
    const std::string complete = std::string(mark) + ".new";
    std::ofstream(complete) << std::count(words.begin(), words.end(), '\0');
    std::filesystem::rename(complete, mark);
    std::_Exit(0);
}();

} // namespace

TEST(QKUtility, runsACommandInOurEnvironment)
{
    const TestFolder folder;
    ::setenv("PARCELO_TEST", "a b", 1);
    struct Case {
        std::vector<std::string> arguments;
        std::string output;
        int status;
    };
    const Case cases[] = {
        {{"-c", "printf '%s|' \"$PARCELO_TEST\" \"$@\"", "sh", "", "$(id)", "\xff"},
            "a b||$(id)|\xff|", 0},
        {{"-c", "pwd"}, folder.path().native() + "\n", 0},
        {{"-c", "cat; test -p /dev/stdin && echo pipe"}, "pipe\n", 0},
        {{"-c", "exit 7"}, "", 7},
        {{"-c", "(sleep 0.3; echo late) & echo early"}, "early\nlate\n", 0},
        {{"-c", "exec >&-; sleep 0.2; exit 3"}, "", 3},
        {{"-c", "head -c 300000 /dev/zero | tr '\\0' x"}, std::string(300000, 'x'), 0},
    };
    for (const Case& each : cases) {
        std::int32_t status = -1;
        const std::string output
            = QKUtility::runCommand("/bin/sh", each.arguments, folder.path(), &status);
        EXPECT_TRUE(output == each.output) << each.arguments[1] << ": " << output.substr(0, 100);
        EXPECT_EQ(status, each.status) << each.arguments[1];
    }
    EXPECT_EQ(
        QKUtility::runCommand("/bin/pwd", {}), std::filesystem::current_path().native() + "\n");
    EXPECT_THROW(QKUtility::runCommand("/no/such/tool", {}), LaunchFailure);
    EXPECT_THROW(QKUtility::runCommand("/bin/true", {}, "/no/folder", nullptr), LaunchFailure);
}

TEST(QKUtility, leavesStandardErrorAlone)
{
    const TestFolder folder;
    const std::filesystem::path file = folder / "error";
    const int former = ::dup(STDERR_FILENO);
    const int captured = ::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ::dup2(captured, STDERR_FILENO);
    const std::string output = QKUtility::runCommand("/bin/sh", {"-c", "echo a; echo b >&2"});
    ::dup2(former, STDERR_FILENO);
    ::close(former);
    ::close(captured);
    EXPECT_EQ(output, "a\n");
    EXPECT_EQ(support::readFile(file), "b\n");
}

TEST(QKUtility, asksForTheVersionUntilItIsKnown)
{
    struct Case {
        std::int32_t version;
        bool isJaguar;
        bool isPanther;
    };
    for (const Case& each : {Case{0x1020, true, false}, {0x102F, true, false},
             {0x101F, false, false}, {0x1030, false, true}, {0x103F, false, true},
             {0x1040, false, false}, {0x1068, false, false}}) {
        int queries = 0;
        QKUtility::setVersionQuery([&]() -> std::optional<std::int32_t> {
            return ++queries == 1 ? std::nullopt : std::optional(each.version);
        });
        EXPECT_EQ(QKUtility::systemVersion(), 0);
        EXPECT_EQ(QKUtility::systemVersion(), each.version);
        EXPECT_EQ(QKUtility::isJaguar(), each.isJaguar) << each.version;
        EXPECT_EQ(QKUtility::isPanther(), each.isPanther) << each.version;
        EXPECT_EQ(queries, 2);
    }
    QKUtility::setVersionQuery({});
    EXPECT_EQ(QKUtility::systemVersion(), 0);
    EXPECT_FALSE(QKUtility::isJaguar() || QKUtility::isPanther());
}

TEST(QKUtility, keepsTheAgentFlagInTheBundle)
{
    const TestFolder folder;
    const Bundle former = Bundle::main();
    const std::filesystem::path bundle = folder / "bundle";
    const std::filesystem::path file = bundle / "Contents" / "Info.plist";
    Bundle::setMain(Bundle(bundle));
    QKUtility::setHeadless(true); // nothing there to write to
    EXPECT_FALSE(std::filesystem::exists(bundle));

    struct Case {
        const char* value;
        bool isHeadless;
    };
    for (const Case& each : {Case{"<integer>1</integer>", true}, {"<string>1</string>", true},
             {"<true/>", true}, {"<integer>2</integer>", false}, {"<false/>", false},
             {"<string>YES</string>", false}, {"<array/>", false}}) {
        support::writeFile(file,
            std::string("<plist version='1.0'><dict><key>Kept</key><string>x</string>"
                        "<key>LSUIElement</key>")
                + each.value + "</dict></plist>");
        EXPECT_EQ(QKUtility::isHeadless(), each.isHeadless) << each.value;
    }
    for (const bool headless : {true, false}) {
        support::setTime(bundle, 1000);
        QKUtility::setHeadless(headless);
        EXPECT_EQ(QKUtility::isHeadless(), headless);
        const PropertyList::Dictionary expected{
            {"Kept", std::string("x")}, {"LSUIElement", std::int64_t(headless)}};
        EXPECT_EQ(PropertyList::dictionaryWithContentsOfFile(file), expected);
        const auto age = std::filesystem::file_time_type::clock::now()
            - std::filesystem::last_write_time(bundle);
        EXPECT_LT(age, std::chrono::minutes(1));
    }
    support::writeFile(file, "rubbish");
    QKUtility::setHeadless(true);
    EXPECT_EQ(support::readFile(file), "rubbish");
    EXPECT_FALSE(QKUtility::isHeadless());
    Bundle::setMain(former);
}

TEST(QKUtility, addsAndRemovesWhatStartsWithTheSession)
{
    const TestFolder folder;
    const std::string former = std::getenv("XDG_CONFIG_HOME") ? std::getenv("XDG_CONFIG_HOME") : "";
    ::setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", (folder / "none").c_str(), 1);
    const std::string program = folder / "Parcelo.app";
    const std::string other = folder / "a b";
    for (const std::string& each : {program, other}) {
        support::writeFile(each, "#!/bin/sh\n");
        std::filesystem::permissions(each, std::filesystem::perms::owner_all);
    }
    EXPECT_TRUE(QKUtility::getAutoLaunchedApplications().empty());
    EXPECT_FALSE(QKUtility::appAutoLaunches("Parcelo.app"));

    for (const char* name : {"Parcelo.app", "Parcelo"}) {
        QKUtility::addAutoLaunchPath(program, true);
        QKUtility::addAutoLaunchPath(other, false);
        EXPECT_EQ(QKUtility::getAutoLaunchedApplications().size(), 2U);
        EXPECT_TRUE(QKUtility::appAutoLaunches("Parcelo.app"));
        EXPECT_TRUE(QKUtility::appAutoLaunches("a b"));
        EXPECT_FALSE(QKUtility::appAutoLaunches("Parcelo"));
        EXPECT_FALSE(QKUtility::appAutoLaunches("parcelo.app"));
        QKUtility::removeAutoLaunchAppNamed(name);
        EXPECT_FALSE(QKUtility::appAutoLaunches("Parcelo.app")) << name;
    }
    QKUtility::addAutoLaunchPath(folder / "x\",hidden:true}\ndelete login item \"a b", false);
    QKUtility::tellSystemEvents("do what no desktop does");
    const auto items = QKUtility::getAutoLaunchedApplications();
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(std::get<std::string>(items[0].at("Path")), other);
    ::unsetenv("XDG_CONFIG_DIRS");
    ::setenv("XDG_CONFIG_HOME", former.c_str(), 1);
}

TEST(QKUtility, tellsTheMemoryInUse)
{
    long pages = 0;
    long residentPages = 0;
    std::ifstream("/proc/self/statm") >> pages >> residentPages;
    const double expected = double(residentPages) * double(::sysconf(_SC_PAGESIZE)) / 1024;
    EXPECT_NEAR(QKUtility::residentSetSize(), expected, expected / 4);
}

TEST(QKUtility, startsTheProgramAnewAndEnds)
{
    ASSERT_TRUE(isFirst);
    const TestFolder folder;
    const std::filesystem::path mark = folder / "mark";
    ::setenv(restartMark, mark.c_str(), 1);
    bool isEnded = false;
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [&] { isEnded = true; });
    QMainWindow window; // that stays open is no reason to go on
    struct Refusal : QObject {
        bool eventFilter(QObject*, QEvent* event) override
        {
            event->ignore();
            return event->type() == QEvent::Close;
        }
    } refusal;
    window.installEventFilter(&refusal);
    window.show();
    QTimer::singleShot(0, qApp, [] { QKUtility::restartApplication(); });
    QTimer::singleShot(std::chrono::seconds(20), qApp, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(isEnded);
    EXPECT_TRUE(support::waitUntil([&] { return std::filesystem::exists(mark); }));
    EXPECT_EQ(support::readFile(mark), "1"); // its own name, and no arguments
    ::unsetenv(restartMark);
}

TEST(QKUtility, delaysBecomeWholeNanosecondsOf64Bits)
{
    using std::chrono::nanoseconds;
    nanoseconds told{};
    MainQueue::setSubmitter([&](nanoseconds delay, const MainQueue::Block&) { told = delay; });
    const std::pair<double, nanoseconds> cases[] = {{1e-10, nanoseconds(0)},
        {1.9e-9, nanoseconds(1)}, {0.2, nanoseconds(200'000'000)}, {-1.9e-9, nanoseconds(-1)},
        {1e300, nanoseconds::max()}, {std::numeric_limits<double>::quiet_NaN(), nanoseconds(0)}};
    for (const auto& [seconds, delay] : cases) {
        QKUtility::afterDelay(seconds, [] {});
        EXPECT_EQ(told, delay) << seconds;
    }
    MainQueue::setSubmitter({});
}
