#include "platform/base/process/DetachedProcess.h"

#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <csignal>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>

using namespace std::chrono_literals;
using support::TestFolder;

namespace
{

// Runs a script to its end, watching it; the file `out` in the folder takes what it wrote there.
std::optional<int> runScript(const std::string& script, const TestFolder& folder)
{
    DetachedProcess process({.program = "sh",
        .arguments = {"-c", "cd \"$0\" && { " + script + "; }", folder.path().native(), "\xff\n"},
        .changedEnvironment = {"LANG=\xff", "PARCELO_TEST=new"}});
    pollfd exited{.fd = process.exitDescriptor(), .events = POLLIN, .revents = 0};
    EXPECT_EQ(poll(&exited, 1, 20000), 1) << script;
    return process.exitStatus();
}

// Whether there is a child, be it a zombie; reaps none.
bool hasChildren()
{
    siginfo_t ended;
    return waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0;
}

} // namespace

TEST(DetachedProcess, givesTheProgramASessionOfItsOwnAndNothingOfOurs)
{
    const TestFolder folder;
    const FileDescriptor leak(fcntl(STDERR_FILENO, F_DUPFD, 50)); // not close-on-exec
    setenv("PARCELO_TEST", "old", 1);
    setenv("PARCELO_TEST_2", "kept", 1);
    const std::string self = "read -r pid name state parent group session rest </proc/$$/stat; ";
    struct Case {
        std::string script;
        std::string output;
    };
    const Case cases[] = {
        {self + "[ $session = $$ ] && echo own >out", "own\n"},
        {"cat >out", ""}, // an empty standard input
        {"ls /proc/self/fd >out", "0\n1\n2\n3\n"}, // 3 is the listing itself
        {"(readlink /proc/$$/fd/1 >out)", "/dev/null\n"},
        {"printf %s \"$1\" >out", "\xff\n"},
        {"echo $PARCELO_TEST $PARCELO_TEST_2 $LANG >out", "new kept \xff\n"},
        {"env | grep -c ^PARCELO_TEST= >out", "1\n"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(runScript(each.script, folder), 0) << each.script;
        EXPECT_EQ(support::readFile(folder / "out"), each.output) << each.script;
    }
}

TEST(DetachedProcess, tellsHowTheProgramEnded)
{
    const TestFolder folder;
    EXPECT_EQ(runScript("exit 7", folder), 7);
    EXPECT_EQ(runScript("kill -9 $$", folder), 128 + SIGKILL);
    DetachedProcess running({.program = "/bin/sleep", .arguments = {"0.2"}});
    EXPECT_EQ(running.exitStatus(), std::nullopt);
    EXPECT_TRUE(support::waitUntil([&] { return running.exitStatus() == 0; }));
    EXPECT_FALSE(hasChildren());
}

TEST(DetachedProcess, namesTheProgramThatCannotBeStarted)
{
    const std::pair<const char*, const char*> cases[] = {
        {"no-such-program", "cannot run 'no-such-program': No such file or directory"},
        {"/etc/passwd", "cannot run '/etc/passwd': Permission denied"},
    };
    for (const auto& [program, text] : cases) {
        try {
            const DetachedProcess process({.program = program});
            ADD_FAILURE() << "started " << program;
        } catch (const LaunchFailure& failure) {
            EXPECT_STREQ(failure.what(), text);
        }
    }
    EXPECT_FALSE(hasChildren());
}

TEST(DetachedProcess, livesOnAfterItsOwnerAndLeavesNoZombie)
{
    const TestFolder folder;
    support::makeFifo(folder / "gate");
    {
        const DetachedProcess process({.program = "sh",
            .arguments
            = {"-c", "cd \"$0\" && read line <gate && touch done", folder.path().native()}});
    }
    EXPECT_TRUE(hasChildren());
    support::writeFile(folder / "gate", "go\n");
    EXPECT_TRUE(support::waitUntil([&] { return exists(folder / "done"); }));
    EXPECT_TRUE(support::waitUntil([&] { return !hasChildren(); }));
}
