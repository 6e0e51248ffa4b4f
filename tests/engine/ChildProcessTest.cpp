// Programs that are started: tasks that are waited for, and those that live on by themselves.

#include "platform/base/process/DetachedProcess.h"
#include "platform/base/process/Task.h"
#include "tests/support/Test.h"

#include <fcntl.h>
#include <sys/wait.h>

using Ended = std::pair<int, std::string>; // the status, and the output

namespace
{

// Status -1 when it could not be launched, and what is said of that.
Ended runTask(Task::Setup setup)
try {
    Task task(std::move(setup));
    std::string output;
    task.launch();
    task.readUntilExit([&](std::string_view bytes) { output += bytes; });
    return {task.terminationStatus(), output};
} catch (const LaunchFailure& failure) {
    return {-1, failure.what()};
}

Task::Setup script(const std::string& text)
{
    return {.launchPath = "/bin/sh", .arguments = {"-c", text}};
}

int statusOf(DetachedProcess&& process)
{
    EXPECT_TRUE(waitUntil([&] { return process.exitStatus().has_value(); }));
    return process.exitStatus().value_or(-1);
}

// Whether there is a child, be it a zombie; reaps none.
bool hasChildren()
{
    siginfo_t ended;
    return waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0;
}

} // namespace

TEST(ChildProcess, getsWhatIsSetAndNothingElse)
{
    const TestFolder folder;
    const FileDescriptor leak(fcntl(STDERR_FILENO, F_DUPFD, 50)); // not close-on-exec
    sigset_t blocked{};
    sigaddset(&blocked, SIGINT);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    signal(SIGPIPE, SIG_IGN);
    const EnvironmentVariable changed("PARCELO_TEST", "old");
    const EnvironmentVariable kept("PARCELO_TEST_2", "kept");
    const std::string stat = "read -r pid name state parent group session rest </proc/$$/stat; ";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        // A script, and what it says as a task and detached.
        {R"(printf '%s|' "$@")", "\xff\n|$(id)||", "\xff\n|$(id)||"},
        // An empty standard input; 3 is the listing itself.
        {"cat; ls /proc/self/fd", "0\n1\n2\n3\n", "0\n1\n2\n3\n"},
        // Blocked and ignored signals but for the C library's own, 32 and 33.
        {R"(sed -nE 's/^Sig(Blk|Ign):.*(.{7})$/\2/p' /proc/self/status)", "0000000\n0000000\n",
            "0000000\n0000000\n"},
        {stat + "echo $((group == $$)) $((session == $$))", "1 0\n", "1 1\n"},
        {"readlink /proc/$$/fd/1 | tr -d 0-9", "pipe:[]\n", "/dev/null\n"},
        {"echo $PARCELO_TEST $PARCELO_TEST_2", "\xff\n", "\xff kept\n"},
    };
    const Names environment{"PARCELO_TEST=\xff"};
    for (const auto& [text, asTask, detached] : cases) {
        const Names arguments{
            "-c", "cd \"$0\"; (" + text + ") >out", folder.path(), "\xff\n", "$(id)", ""};
        runTask({.launchPath = "/bin/sh", .arguments = arguments, .environment = environment});
        EXPECT_EQ(readFile(folder / "out"), asTask) << text;
        statusOf(DetachedProcess(
            {.program = "sh", .arguments = arguments, .changedEnvironment = environment}));
        EXPECT_EQ(readFile(folder / "out"), detached) << text;
    }
    pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    signal(SIGPIPE, SIG_DFL);
}

TEST(ChildProcess, endsWithItsStatusAndAllItsOutputInOrder)
{
    const std::tuple<std::string, int, std::string> cases[] = {
        {"echo out; echo err >&2; kill -9 $$", 128 + SIGKILL, "out\nerr\n"},
        {"head -c 5000000 /dev/zero", 0, std::string(5'000'000, '\0')},
        {"echo a; exec >&- 2>&-; sleep 0.2; exit 3", 3, "a\n"}, // closes its output early
        {"sleep 30 & echo a", 0, "a\n"}, // leaves a process behind that keeps the pipe open
    };
    const auto start = std::chrono::steady_clock::now();
    for (const auto& [text, status, output] : cases)
        EXPECT_TRUE(runTask(script(text)) == Ended(status, output)) << text;
    EXPECT_EQ(runTask(script("yes & sleep 0.2; exit 4")).first, 4); // writes until nobody reads
    EXPECT_LT(std::chrono::steady_clock::now() - start, 25s);
    EXPECT_EQ(statusOf(DetachedProcess({.program = "sh", .arguments = {"-c", "exit 7"}})), 7);
}

TEST(ChildProcess, namesWhatIsMissingWhenItCannotBeStarted)
{
    EXPECT_EQ(runTask({.launchPath = "/none"}),
        Ended(-1, "cannot run '/none': No such file or directory"));
    EXPECT_EQ(runTask({.launchPath = "/etc/passwd", .currentDirectory = "/"}),
        Ended(-1, "cannot run '/etc/passwd': Permission denied"));
    EXPECT_EQ(runTask({.launchPath = "/bin/true", .currentDirectory = "/none"}),
        Ended(-1, "cannot work in '/none': No such file or directory"));
    EXPECT_THROW(DetachedProcess({.program = "no-such-program"}), LaunchFailure);
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, interruptReachesTheWholeGroupAndNothingAfterTheEnd)
{
    Task task(script("trap : INT; (echo a; exec sleep 30); exit $?"));
    task.interrupt(); // nothing to send it to
    task.launch();
    task.readUntilExit([&](std::string_view) { task.interrupt(); });
    EXPECT_EQ(task.terminationStatus(), 128 + SIGINT);
    for (int round = 0; round < 200; ++round) {
        Task brief({.launchPath = "/bin/true"});
        const std::jthread racer([&](const std::stop_token& ended) {
            while (!ended.stop_requested())
                brief.interrupt();
        });
        brief.launch();
        brief.readUntilExit([](std::string_view) {});
        EXPECT_FALSE(brief.isRunning());
    }
}

TEST(ChildProcess, goesWithItsTask)
{
    const TestFolder folder;
    const std::pair<std::string, bool> cases[] = {
        // What it does, and whether it comes to the end of that.
        {"trap ': >ended; exit' INT; echo a; while :; do sleep 0.1; done", true},
        {"trap '' INT; yes; : >ended", true}, // yes ends when it cannot write any more
        {"trap '' INT; echo a; sleep 30; sleep 30; : >ended", false}, // is killed
    };
    for (const auto& [text, comesToItsEnd] : cases) {
        Task task(script("cd '" + folder.path().native() + "'; " + text));
        task.launch();
        const auto failing = [](std::string_view) { throw std::runtime_error("reader"); };
        EXPECT_THROW(task.readUntilExit(failing), std::runtime_error);
        EXPECT_FALSE(hasChildren());
        EXPECT_EQ(remove(folder / "ended"), comesToItsEnd) << text;
    }
    Task(script("sleep 30")).launch();
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, detachedLivesOnAfterItsOwnerAndLeavesNoZombie)
{
    const TestFolder folder;
    makeFifo(folder / "gate");
    const Names waiting{"-c", "cd \"$0\" && read line <gate && touch done", folder.path()};
    EXPECT_EQ(DetachedProcess({.program = "sh", .arguments = waiting}).exitStatus(), std::nullopt);
    EXPECT_TRUE(hasChildren());
    writeFile(folder / "gate", "go\n");
    EXPECT_TRUE(waitUntil([&] { return exists(folder / "done"); }));
    EXPECT_TRUE(waitUntil([&] { return !hasChildren(); }));
}
