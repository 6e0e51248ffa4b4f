// Failing calls, full disks, limits and interrupts: afterwards the archive is the old one or the
// new one, whole, and nothing else is left behind.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"

#include <algorithm>
#include <csignal>
#include <functional>
#include <random>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

using Names = std::vector<std::string>;

// A tool about to make an archive or, with `onto`, to add to or replace one.
class Faults : public testing::TestWithParam<std::tuple<std::string, bool>>
{
protected:
    void SetUp() override
    {
        if (std::get<1>(GetParam())) {
            writeFile(folder / "first/old", "what was there before");
            old = bytesAfter(run(tool, archiveInPlace(), folder / "first/old"));
        }
        writeFile(item / "a", "a");
        writeFile(item / "b", randomBytes(2'500'000, 1));
        writeFile(item / "c", someText(2'500'000));
        writeFile(item / "sub/d", "d");
        writeFile(item / "sub/deep/e", someText(1000));
        fs::create_symlink("a", item / "link");
        complete = bytesAfter(run(tool, archiveInPlace(), item));
        ASSERT_FALSE(complete.empty());
    }

    // A fresh folder with the archive of before, for each run that is to go wrong.
    fs::path archiveInPlace()
    {
        removeTree(place);
        fs::create_directory(place);
        if (!old.empty())
            writeFile(place / tool.archiveName, old);
        return place / tool.archiveName;
    }
    std::string bytesAfter(const RunResult& result)
    {
        EXPECT_EQ(result.status, 0) << result.err;
        return readFile(place / tool.archiveName);
    }

    // What is left after a run: with a status of 0 the whole archive, for skipped entries one of
    // all entries that are not named, with any other the archive of before, untouched.
    void expectAllOrNothing(const RunResult& result, const std::string& circumstance)
    {
        SCOPED_TRACE(
            circumstance + ": status " + std::to_string(result.status) + ", " + result.err);
        EXPECT_TRUE(result.status < 124 || result.status == tool.interrupted) << "hung or crashed";
        const bool made
            = result.status == 0 || (result.status == tool.skipped && fs::exists(archive()));
        const std::string bytes = fs::exists(archive()) ? readFile(archive()) : "";
        if (made && bytes != complete)
            expectAllButWarned(result);
        EXPECT_TRUE(made || bytes == old);
        EXPECT_TRUE(!result.err.empty() || result.status == 0 || result.status == tool.interrupted);
        Names left = namesIn(place);
        std::erase(left, tool.archiveName);
        EXPECT_EQ(left, nothing);
    }
    void expectAllButWarned(const RunResult& result)
    {
        const Names warned = warnedNames(result);
        EXPECT_EQ(warned.empty(), result.status == 0);
        TreeSnapshot expected = snapshot(item.parent_path());
        if (tool.name == "tar")
            expected["item/link"] = expected["item/a"];
        if (tool.name == "zip" && !old.empty())
            expected.merge(snapshot(folder / "first"));
        for (const std::string& fault : extractionFaults(tool.readers[0], archive(), expected)) {
            EXPECT_TRUE(std::any_of(warned.begin(), warned.end(), [&](const std::string& name) {
                return fault.find(name) != std::string::npos;
            })) << fault;
        }
    }
    fs::path archive() const { return place / tool.archiveName; }

    // One run for each time the tool makes a system call, with that call struck by a fault.
    // How many runs that were.
    int strikeEach(const std::string& call, const std::string& fault)
    {
        constexpr int mostRuns = isSanitized ? 8 : 40;
        const std::string struckCall = "inject=" + call + ":" + fault + ":when=";
        for (int count = 1; count <= mostRuns; ++count) {
            std::string injection = struckCall;
            injection += std::to_string(count);
            const fs::path target = archiveInPlace();
            const RunResult result = run(tool, target, item,
                {.threads = 2,
                    .prefix = {"strace", "-f", "-qq", "-o", folder / "log", "-e", "trace=" + call,
                        "-e", injection}});
            const std::string log = readFile(folder / "log");
            if (log.find("INJECTED") == std::string::npos
                && log.find("--- SIG") == std::string::npos)
                return count - 1;
            struck(result, injection);
            if (HasFailure())
                return count;
        }
        return mostRuns;
    }
    std::function<void(const RunResult&, const std::string&)> struck
        = [this](const RunResult& result, const std::string& injection) {
              expectAllOrNothing(result, injection);
          };

    const Tool& tool = toolNamed(std::get<0>(GetParam()));
    const TestFolder folder;
    const fs::path item = folder / "in/item";
    const fs::path place = folder / "place";
    std::string old;
    std::string complete;
};

bool canTrace()
{
    return run({"strace", "-qq", "true"}).status == 0;
}

#define SKIP_WITHOUT_TRACING()                                                                     \
    if (!canTrace())                                                                               \
    GTEST_SKIP() << "no tracing here"

} // namespace

TEST_P(Faults, anyCallMayFailAnyTime)
{
    SKIP_WITHOUT_TRACING();
    const std::vector<std::pair<std::string, Names>> table = {
        {"EIO",
            {"read", "pread64", "getdents64", "openat", "newfstatat", "fstat", "statx",
                "readlinkat", "lseek", "close", "flock", "fsync"}},
        {"ENOSPC",
            {"write", "pwrite64", "writev", "pwritev", "ftruncate", "fallocate", "rename",
                "renameat", "renameat2", "linkat", "openat"}},
        {"EACCES", {"rename", "renameat", "renameat2", "unlink", "unlinkat", "fchmod"}},
        {"ENOMEM", {"mmap"}},
        {"EAGAIN", {"clone", "clone3"}},
    };
    int runs = 0;
    for (const auto& [error, calls] : table) {
        for (const std::string& call : calls)
            runs += strikeEach(call, "error=" + error);
    }
    EXPECT_GT(runs, 20);
}

TEST_P(Faults, anInterruptedCallIsMadeAgain)
{
    SKIP_WITHOUT_TRACING();
    struck = [this](const RunResult& result, const std::string& injection) {
        EXPECT_EQ(result.status, 0) << injection << result.err;
        EXPECT_EQ(readFile(archive()) == complete, true) << injection;
    };
    // The loader of a program that is not static does not make them again.
    const Names calls = isSanitized
        ? Names{"write", "pwrite64"}
        : Names{"read", "pread64", "write", "pwrite64", "fsync", "ftruncate", "flock"};
    int runs = 0;
    for (const std::string& call : calls)
        runs += strikeEach(call, "error=EINTR");
    EXPECT_GT(runs, 2);
}

TEST_P(Faults, aSignalMayComeAtAnyCall)
{
    SKIP_WITHOUT_TRACING();
    int runs = 0;
    struck = [&](const RunResult& result, const std::string& injection) {
        EXPECT_TRUE(result.status == 0 || result.status == tool.interrupted
            || (isSanitized && result.status == 130))
            << result.status;
        expectAllOrNothing(result, injection);
    };
    for (const std::string call : {"openat", "pread64", "read", "write", "pwrite64", "getdents64",
             "ftruncate", "fsync", "renameat", "renameat2", "rename", "close"}) {
        runs += strikeEach(call, "signal=INT");
        runs += strikeEach(call, "signal=TERM");
    }
    EXPECT_GT(runs, 20);
}

TEST_P(Faults, aTarKilledAtAnyCallIsAbsentOrWhole)
{
    SKIP_WITHOUT_TRACING();
    if (tool.name != "tar")
        GTEST_SKIP() << "a zip is added to in place, in a folder of the program's own";
    struck = [this](const RunResult& result, const std::string& injection) {
        EXPECT_EQ(result.status, 128 + SIGKILL);
        const std::string bytes = fs::exists(archive()) ? readFile(archive()) : "";
        EXPECT_TRUE(bytes == old || bytes == complete) << injection;
    };
    for (const std::string call : {"openat", "write", "fsync", "fchmod", "rename", "renameat",
             "renameat2", "close", "unlink", "unlinkat"})
        strikeEach(call, "signal=KILL");
}

TEST_P(Faults, aTarIsOnTheDiskBeforeItGetsItsName)
{
    SKIP_WITHOUT_TRACING();
    if (tool.name != "tar")
        GTEST_SKIP() << "the program writes a zip out when it delivers it";
    run(tool, archiveInPlace(), item,
        {.prefix = {"strace", "-f", "-qq", "-o", folder / "log", "-e",
             "trace=fsync,fdatasync,rename,renameat,renameat2"}});
    const std::string log = readFile(folder / "log");
    const std::size_t file = log.find("sync(");
    const std::size_t named = log.find("rename");
    const std::size_t last = log.rfind("sync(");
    EXPECT_TRUE(file < named && named < last && last != std::string::npos) << log;
}

TEST_P(Faults, aFailedCloseOfTheArchiveIsAFailure)
{
    SKIP_WITHOUT_TRACING();
    if (tool.name != "zip" || old.empty())
        GTEST_SKIP() << "its file has a hidden name while it is open";
    const fs::path target = archiveInPlace();
    const RunResult result = run(tool, target, item,
        {.prefix = {"strace", "-f", "-qq", "-o", folder / "log", "-P", target, "-e",
             "inject=close:error=EIO"}});
    EXPECT_EQ(result.status, tool.writeError);
    expectAllOrNothing(result, "close");
}

TEST_P(Faults, aFullDiskLeavesWhatWasThere)
{
    const fs::path disk = folder / "disk";
    fs::create_directory(disk);
    if (run({"mount", "-t", "tmpfs", "-o", "size=1m", "none", disk}).status != 0)
        GTEST_SKIP() << "no mounting here";
    if (!old.empty())
        writeFile(disk / tool.archiveName, old);
    const RunResult result = run(tool, disk / tool.archiveName, item);
    const Names left = namesIn(disk);
    const std::string bytes = old.empty() ? "" : readFile(disk / tool.archiveName);
    EXPECT_EQ(run({"umount", disk}).status, 0);
    EXPECT_EQ(result.status, tool.writeError);
    EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("No space"), result.err.rfind("No space")) << result.err;
    EXPECT_EQ(left, old.empty() ? nothing : Names{tool.archiveName});
    EXPECT_EQ(bytes == old, true);
}

TEST_P(Faults, limitsEndInAWholeArchiveOrNone)
{
    struct Limit {
        Names prefix;
        bool mustComplete;
    };
    std::vector<Limit> limits = {
        {{"prlimit", "--fsize=1000000"}, false},
        {{"sh", "-c", "trap '' XFSZ; exec prlimit --fsize=1000000 \"$0\" \"$@\""}, false},
        {{"prlimit", "--nofile=16"}, true},
        {{"prlimit", "--nofile=8"}, false},
        {{"prlimit", "--nofile=5"}, false},
        {{"sh", "-c", "exec \"$0\" \"$@\" > /dev/full"}, true},
        {{"sh", "-c", "exec \"$0\" \"$@\" >&-"}, true},
        {{"sh", "-c", "exec \"$0\" \"$@\" <&- >&- 2>&-"}, true},
        {{"bash", "-c", "set -o pipefail; \"$0\" \"$@\" | true"}, true},
    };
    if (!isSanitized) {
        limits.push_back({{"prlimit", "--stack=65536"}, true});
        for (int megabytes = 4; megabytes <= 64; megabytes += 4)
            limits.push_back({{"prlimit", "--as=" + std::to_string(megabytes << 20)}, false});
    }
    for (const Limit& limit : limits) {
        const fs::path target = archiveInPlace();
        const RunResult result = run(tool, target, item, {.threads = 4, .prefix = limit.prefix});
        EXPECT_TRUE(!limit.mustComplete || result.status == 0);
        expectAllOrNothing(result, testing::PrintToString(limit.prefix));
    }
}

TEST_P(Faults, anUnwritablePlaceIsTold)
{
    archiveInPlace();
    const fs::path locked = folder / "locked";
    fs::create_directory(locked);
    chmod(locked.c_str(), 0555);
    const ToolCall call = asOrdinaryUser(callOf(tool, locked / "x", item), folder.path());
    const RunResult result = run(call.arguments, call.options);
    EXPECT_EQ(result.status, tool.cannotCreate);
    EXPECT_NE(result.err.find("Permission denied"), std::string::npos) << result.err;
    EXPECT_EQ(namesIn(locked), nothing);
}

TEST_P(Faults, anErrorWhileReadingNeverHangsTheThreads)
{
    SKIP_WITHOUT_TRACING();
    for (const unsigned threads : {1u, 2u, 16u}) {
        for (const std::string call : {"read", "pread64"}) {
            const fs::path target = archiveInPlace();
            ToolCall traced = callOf(tool, target, item,
                {.threads = threads,
                    .prefix = {"strace", "-f", "-qq", "-o", "/dev/null", "-e",
                        "inject=" + call + ":error=EIO:when=3+"}});
            traced.options.timeout = std::chrono::seconds(20);
            expectAllOrNothing(run(traced.arguments, traced.options), call);
        }
    }
}

TEST_P(Faults, aSignalMayComeAtAnyMoment)
{
    writeFile(item / "large", someText(6'000'000) + randomBytes(3'000'000, 2));
    const auto start = std::chrono::steady_clock::now();
    complete = bytesAfter(run(tool, archiveInPlace(), item));
    const auto whole = std::chrono::steady_clock::now() - start;
    std::mt19937 generator(1);
    for (int round = 0; round < 20; ++round) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            const ToolCall call = callOf(tool, archiveInPlace(), item);
            RunningProgram program(call.arguments, call.options);
            std::this_thread::sleep_for(whole * (generator() % 1000) / 1000);
            program.signal(signal);
            const RunResult result = program.wait();
            if (result.status == 128 + signal && result.out.empty())
                continue; // before its first instruction a program cannot but die from it
            EXPECT_TRUE(result.status == 0 || result.status == tool.interrupted) << result.status;
            expectAllOrNothing(result, "signal " + std::to_string(signal));
        }
    }
}

TEST_P(Faults, aSignalEndsALongRunAtOnce)
{
    fs::resize_file(item / "c", std::uintmax_t{200} << 30);
    const ToolCall call = callOf(tool, archiveInPlace(), item);
    RunningProgram program(call.arguments, call.options);
    ASSERT_TRUE(waitUntil([&] { return namesIn(place).size() == 1; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const auto sent = std::chrono::steady_clock::now();
    program.signal(SIGINT);
    const RunResult result = program.wait();
    EXPECT_EQ(result.status, tool.interrupted);
    EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::seconds(isSanitized ? 10 : 2));
    expectAllOrNothing(result, "long run");
}

INSTANTIATE_TEST_SUITE_P(Tools, Faults,
    testing::Combine(testing::Values("zip", "tar"), testing::Bool()), [](const auto& test) {
        return std::get<0>(test.param) + (std::get<1>(test.param) ? "_ontoOne" : "_fresh");
    });
