// Programs that are started: tasks that are waited for, and those that live on by themselves.

#include "platform/base/process/DetachedProcess.h"
#include "platform/base/process/Environment.h"
#include "platform/base/process/Task.h"
#include "tests/support/Files.h"
#include "tests/support/TestFolder.h"

#include <csignal>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>

using namespace std::chrono_literals;
using namespace support;
using Strings = std::vector<std::string>;

namespace
{

struct Ended {
    std::string output;
    int status;
};

Ended runTask(Task::Setup setup)
{
    Task task(std::move(setup));
    Ended ended;
    task.launch();
    task.readUntilExit([&](std::string_view bytes) { ended.output += bytes; });
    ended.status = task.terminationStatus();
    return ended;
}

Ended runScript(const std::string& script)
{
    return runTask({.launchPath = "/bin/sh", .arguments = {"-c", script}});
}

int statusOf(DetachedProcess& process)
{
    pollfd exited{.fd = process.exitDescriptor(), .events = POLLIN, .revents = 0};
    EXPECT_EQ(poll(&exited, 1, 20000), 1);
    return process.exitStatus().value_or(-1);
}

// Whether there is a child, be it a zombie; reaps none.
bool hasChildren()
{
    siginfo_t ended;
    return waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0;
}

void ignore(std::string_view /*bytes*/) { }

} // namespace

TEST(ChildProcess, getsWhatIsSetAndNothingElse)
{
    const TestFolder folder;
    const FileDescriptor leak(fcntl(STDERR_FILENO, F_DUPFD, 50)); // not close-on-exec
    sigset_t blocked;
    sigset_t former;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    pthread_sigmask(SIG_BLOCK, &blocked, &former);
    const auto pipeHandler = signal(SIGPIPE, SIG_IGN);
    setenv("PARCELO_TEST", "old", 1);
    setenv("PARCELO_TEST_2", "kept", 1);
    struct Case {
        std::string script;
        std::string asTask;
        std::string detached;
    };
    const std::string stat = "read -r pid name state parent group session rest </proc/$$/stat; ";
    const Case cases[] = {
        {R"(printf '%s|' "$@")", "\xff\n|$(id)||", "\xff\n|$(id)||"},
        {"cat", "", ""}, // an empty standard input
        {"ls /proc/self/fd", "0\n1\n2\n3\n", "0\n1\n2\n3\n"}, // 3 is the listing itself
        // Blocked and ignored signals but for the C library's own, 32 and 33.
        {R"(sed -nE 's/^Sig(Blk|Ign):.*(.{7})$/\2/p' /proc/self/status)", "0000000\n0000000\n",
            "0000000\n0000000\n"},
        {stat + "echo $((group == $$)) $((session == $$))", "1 0\n", "1 1\n"},
        {"readlink /proc/$$/fd/1 | tr -d 0-9", "pipe:[]\n", "/dev/null\n"},
        {R"(tr -cd '\0' </proc/$$/environ | wc -c)", "1\n",
            std::to_string(Environment::ours().size()) + "\n"},
        {"echo $PARCELO_TEST $PARCELO_TEST_2", "\xff\n", "\xff kept\n"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.script);
        const Strings arguments{
            "-c", "cd \"$0\"; (" + each.script + ") >out", folder.path(), "\xff\n", "$(id)", ""};
        const Strings environment{"PARCELO_TEST=\xff"};
        runTask({.launchPath = "/bin/sh", .arguments = arguments, .environment = environment});
        EXPECT_EQ(readFile(folder / "out"), each.asTask);
        DetachedProcess process(
            {.program = "sh", .arguments = arguments, .changedEnvironment = environment});
        statusOf(process);
        EXPECT_EQ(readFile(folder / "out"), each.detached);
    }
    EXPECT_EQ(runTask({.launchPath = "/bin/pwd", .currentDirectory = folder.path()}).output,
        folder.path().native() + "\n");
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    signal(SIGPIPE, pipeHandler);
}

TEST(ChildProcess, endsWithItsStatusAndAllItsOutputInOrder)
{
    std::string mixed;
    for (int i = 0; i < 300; ++i)
        mixed += "out" + std::to_string(i) + "\nerr" + std::to_string(i) + "\n";
    struct Case {
        const char* script;
        std::optional<std::string> output; // nothing: as much as there was
        int status;
    };
    const Case cases[] = {
        {"i=0; while [ $i -lt 300 ]; do echo out$i; echo err$i >&2; i=$((i+1)); done", mixed, 0},
        {"head -c 5000000 /dev/zero", std::string(5'000'000, '\0'), 0},
        {"echo a; kill -9 $$", "a\n", 128 + SIGKILL},
        {"echo a; exec >&- 2>&-; sleep 0.2; exit 3", "a\n", 3}, // closes its output early
        {"sleep 30 & echo a", "a\n", 0}, // leaves a process behind that keeps the pipe open
        {"yes & sleep 0.2; exit 4", {}, 4}, // one that goes on writing, until nobody reads
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.script);
        const auto start = std::chrono::steady_clock::now();
        const Ended ended = runScript(each.script);
        EXPECT_EQ(ended.status, each.status);
        EXPECT_TRUE(ended.output == each.output.value_or(ended.output));
        EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    }
    Task task({.launchPath = "/bin/sh", .arguments = {"-c", "(sleep 0.3; echo b) & echo a"}});
    std::string output;
    task.launch();
    task.readToEndOfOutput([&](std::string_view bytes) { output += bytes; });
    EXPECT_EQ(output, "a\nb\n");
    for (const auto& [script, status] : {std::pair("exit 7", 7), {"kill -9 $$", 128 + SIGKILL}}) {
        DetachedProcess process({.program = "sh", .arguments = {"-c", script}});
        EXPECT_EQ(statusOf(process), status);
    }
}

TEST(ChildProcess, namesWhatIsMissingWhenItCannotBeStarted)
{
    struct Case {
        const char* program;
        const char* folder; // none: detached
        const char* text;
    };
    const Case cases[] = {
        {"/no/such/tool", "", "cannot run '/no/such/tool': No such file or directory"},
        {"/etc/passwd", "/", "cannot run '/etc/passwd': Permission denied"},
        {"/bin/true", "/no/folder", "cannot work in '/no/folder': No such file or directory"},
        {"/bin/true", "/etc/passwd", "cannot work in '/etc/passwd': Not a directory"},
        {"no-such-program", nullptr, "cannot run 'no-such-program': No such file or directory"},
    };
    for (const Case& each : cases) {
        try {
            if (each.folder == nullptr)
                const DetachedProcess process({.program = each.program});
            else
                runTask({.launchPath = each.program, .currentDirectory = each.folder});
            ADD_FAILURE() << "launched " << each.program;
        } catch (const LaunchFailure& failure) {
            EXPECT_STREQ(failure.what(), each.text);
        }
    }
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, interruptReachesTheWholeGroupAndNothingAfterTheEnd)
{
    const TestFolder folder;
    Task task({.launchPath = "/bin/sh",
        .arguments = {"-c", ": >\"$0/started\"; sleep 30; exit 5", folder.path()},
        .environment = {"PATH=/usr/bin:/bin"}});
    task.interrupt(); // nothing to send it to
    task.launch();
    std::jthread interrupter([&] {
        EXPECT_TRUE(waitUntil([&] { return exists(folder / "started"); }));
        task.interrupt();
    });
    task.readUntilExit(ignore);
    EXPECT_EQ(task.terminationStatus(), 128 + SIGINT);

    for (int round = 0; round < 200; ++round) {
        Task brief({.launchPath = "/bin/true"});
        std::jthread racer([&](const std::stop_token& ended) {
            while (!ended.stop_requested())
                brief.interrupt();
        });
        brief.launch();
        brief.readUntilExit(ignore);
        EXPECT_FALSE(brief.isRunning());
    }
}

TEST(ChildProcess, goesWithItsTask)
{
    const std::pair<std::string, bool> cases[] = {
        // What it does, and whether it comes to the end of that.
        {"trap ': >ended; exit' INT; echo a; sleep 30", true},
        {"trap '' INT; yes; : >ended", true}, // yes ends when it cannot write any more
        {"trap '' INT; echo a; sleep 30; sleep 30; : >ended", false}, // is killed
    };
    for (const auto& [script, comesToItsEnd] : cases) {
        SCOPED_TRACE(script);
        const TestFolder folder;
        Task task({.launchPath = "/bin/sh",
            .arguments = {"-c", script},
            .environment = {"PATH=/usr/bin:/bin"},
            .currentDirectory = folder.path()});
        task.launch();
        const auto start = std::chrono::steady_clock::now();
        const auto failing = [](std::string_view) { throw std::runtime_error("reader"); };
        EXPECT_THROW(task.readUntilExit(failing), std::runtime_error);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 15s);
        EXPECT_EQ(exists(folder / "ended"), comesToItsEnd);
        EXPECT_FALSE(hasChildren());
    }
    {
        Task forgotten({.launchPath = "/bin/sleep", .arguments = {"30"}});
        forgotten.launch();
    }
    EXPECT_FALSE(hasChildren());
}

TEST(ChildProcess, detachedLivesOnAfterItsOwnerAndLeavesNoZombie)
{
    const TestFolder folder;
    makeFifo(folder / "gate");
    {
        DetachedProcess process({.program = "sh",
            .arguments = {"-c", "cd \"$0\" && read line <gate && touch done", folder.path()}});
        EXPECT_EQ(process.exitStatus(), std::nullopt);
    }
    EXPECT_TRUE(hasChildren());
    writeFile(folder / "gate", "go\n");
    EXPECT_TRUE(waitUntil([&] { return exists(folder / "done"); }));
    EXPECT_TRUE(waitUntil([&] { return !hasChildren(); }));
}
