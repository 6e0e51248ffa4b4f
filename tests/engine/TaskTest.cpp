#include "platform/base/process/Task.h"

#include "tests/support/TestFolder.h"

#include <chrono>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

using namespace std::chrono_literals;
using support::TestFolder;

namespace
{

struct Ended {
    std::string output;
    std::string error;
    int status;
};

Ended runTask(Task::Setup setup)
{
    Task task(std::move(setup));
    Ended ended;
    task.launch();
    task.readUntilExit([&](Task::Stream stream, std::string_view bytes) {
        (stream == Task::Stream::standardOutput ? ended.output : ended.error) += bytes;
    });
    ended.status = task.terminationStatus();
    return ended;
}

Ended runScript(const std::string& script, Task::Output output = Task::Output::combined)
{
    return runTask({.launchPath = "/bin/sh", .arguments = {"-c", script}, .output = output});
}

bool hasChildren()
{
    return waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}

} // namespace

TEST(Task, givesTheChildWhatIsSetAndNothingElse)
{
    const TestFolder folder;
    const FileDescriptor leak(fcntl(STDERR_FILENO, F_DUPFD, 50)); // not close-on-exec
    sigset_t blocked;
    sigset_t former;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    pthread_sigmask(SIG_BLOCK, &blocked, &former);
    const auto pipeHandler = signal(SIGPIPE, SIG_IGN);

    struct Case {
        std::vector<std::string> command;
        std::string output;
    };
    const Case cases[] = {
        {{"/usr/bin/env"}, "A=1\nB=\xff x\n"},
        {{"/bin/pwd"}, std::filesystem::canonical(folder.path()).native() + "\n"},
        {{"/bin/cat"}, ""}, // an empty standard input
        {{"/bin/ls", "/proc/self/fd"}, "0\n1\n2\n3\n"}, // 3 is the listing itself
        {{"/usr/bin/printf", "%s|", "\xff\n", "$(id)", ""}, "\xff\n|$(id)||"},
        // Blocked and ignored signals but for the C library's own, 32 and 33.
        {{"/bin/sed", "-nE", "s/^Sig(Blk|Ign):.*(.{7})$/\\2/p", "/proc/self/status"},
            "0000000\n0000000\n"},
        {{"/bin/sh", "-c",
             "read -r p n s parent group r </proc/$$/stat; [ $group = $$ ] && echo own"},
            "own\n"},
    };
    for (const Case& each : cases) {
        const Ended ended = runTask({.launchPath = each.command.front(),
            .arguments = {each.command.begin() + 1, each.command.end()},
            .environment = {"A=1", "B=\xff x"},
            .currentDirectory = folder.path()});
        EXPECT_EQ(ended.output, each.output) << each.command.front();
        EXPECT_EQ(ended.status, 0) << each.command.front();
    }
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    signal(SIGPIPE, pipeHandler);
}

TEST(Task, handsOnAllOutputInOrder)
{
    const std::string script
        = "i=0; while [ $i -lt 300 ]; do echo out$i; echo err$i >&2; i=$((i+1)); done";
    std::string both;
    std::string out;
    for (int i = 0; i < 300; ++i) {
        out += "out" + std::to_string(i) + "\n";
        both += "out" + std::to_string(i) + "\nerr" + std::to_string(i) + "\n";
    }
    EXPECT_EQ(runScript(script).output, both);
    const Ended separate = runScript(script, Task::Output::separate);
    EXPECT_EQ(separate.output, out);
    EXPECT_EQ(separate.error.size(), out.size());
    EXPECT_EQ(runScript("head -c 5000000 /dev/zero").output.size(), 5000000U);
}

TEST(Task, endsWithTheToolAndItsStatus)
{
    struct Case {
        const char* script;
        const char* output;
        int status;
    };
    const Case cases[] = {
        {"exit 7", "", 7}, {"echo a; kill -9 $$", "a\n", 128 + SIGKILL},
        {"echo a; exec >&- 2>&-; sleep 0.2; exit 3", "a\n", 3}, // closes its output early
        {"sleep 30 & echo a", "a\n", 0}, // leaves a process behind that keeps the pipe open
        {"yes & sleep 0.2; exit 4", nullptr, 4}, // one that goes on writing, until nobody reads
    };
    for (const Case& each : cases) {
        const auto start = std::chrono::steady_clock::now();
        const Ended ended = runScript(each.script);
        EXPECT_EQ(ended.status, each.status) << each.script;
        EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << each.script;
        if (each.output != nullptr) {
            EXPECT_EQ(ended.output, each.output) << each.script;
        }
    }
}

TEST(Task, namesWhatIsMissingWhenItCannotLaunch)
{
    struct Case {
        const char* program;
        const char* folder;
        const char* text;
    };
    const Case cases[] = {
        {"/no/such/tool", "", "cannot run '/no/such/tool': No such file or directory"},
        {"/etc/passwd", "/", "cannot run '/etc/passwd': Permission denied"},
        {"/bin/true", "/no/folder", "cannot work in '/no/folder': No such file or directory"},
        {"/bin/true", "/etc/passwd", "cannot work in '/etc/passwd': Not a directory"},
    };
    for (const Case& each : cases) {
        Task task({.launchPath = each.program, .currentDirectory = each.folder});
        try {
            task.launch();
            ADD_FAILURE() << "launched " << each.program;
        } catch (const LaunchFailure& failure) {
            EXPECT_STREQ(failure.what(), each.text);
        }
        EXPECT_FALSE(task.isRunning());
        task.interrupt(); // nothing to send it to
    }
    EXPECT_FALSE(hasChildren());
}

TEST(Task, interruptReachesTheWholeGroupAndNothingAfterTheEnd)
{
    Task task({.launchPath = "/bin/sh", .arguments = {"-c", "sleep 30; exit 5"}});
    task.launch();
    std::jthread interrupter([&] {
        std::this_thread::sleep_for(50ms);
        task.interrupt();
    });
    task.readUntilExit([](Task::Stream, std::string_view) {});
    EXPECT_EQ(task.terminationStatus(), 128 + SIGINT);

    for (int round = 0; round < 200; ++round) {
        Task brief({.launchPath = "/bin/true"});
        std::atomic<bool> ended = false;
        std::jthread racer([&] {
            while (!ended)
                brief.interrupt();
        });
        brief.launch();
        brief.readUntilExit([](Task::Stream, std::string_view) {});
        EXPECT_FALSE(brief.isRunning());
        ended = true;
    }
}

TEST(Task, leavesNoChildWhenTheReaderThrows)
{
    struct Case {
        const char* script;
        std::chrono::seconds limit;
    };
    const Case cases[] = {{"echo a; exec sleep 30", 1s},
        {"trap '' INT; exec yes", 1s}, // ends when it cannot write any more
        {"trap '' INT; echo a; sleep 30; sleep 30", 10s}}; // only when it is killed
    for (const Case& each : cases) {
        Task task({.launchPath = "/bin/sh", .arguments = {"-c", each.script}});
        task.launch();
        const auto start = std::chrono::steady_clock::now();
        const auto failing = [](Task::Stream, std::string_view) { throw std::runtime_error("r"); };
        EXPECT_THROW(task.readUntilExit(failing), std::runtime_error);
        EXPECT_LT(std::chrono::steady_clock::now() - start, each.limit) << each.script;
        EXPECT_FALSE(hasChildren()) << each.script;
    }
    {
        Task forgotten({.launchPath = "/bin/sleep", .arguments = {"30"}});
        forgotten.launch();
    }
    EXPECT_FALSE(hasChildren());
}
