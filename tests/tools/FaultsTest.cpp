// Failing calls, full disks, limits and signals: afterwards the archive is the old one or the new
// one, whole, and nothing else is left behind.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

using Names = std::vector<std::string>;

// A fault, as strace injects it, and the system calls it is to strike.
struct Strike {
    std::string fault;
    Names calls;
};

// A tool about to make an archive or, with `onto`, to add to or replace one.
class Faults : public testing::TestWithParam<std::tuple<std::string, bool>>
{
protected:
    void SetUp() override
    {
        if (std::get<1>(GetParam())) {
            writeFile(folder / "first/old", "what was there before");
            ASSERT_EQ(run(tool, freshPlace(), folder / "first/old").status, 0);
            old = content();
        }
        writeFile(item / "a", "a");
        writeFile(item / "b", randomBytes(2'500'000, 1));
        writeFile(item / "c", someText(2'500'000));
        writeFile(item / "sub/d", "d");
        writeFile(item / "sub/deep/e", someText(1000));
        fs::create_symlink("a", item / "link");
        learnComplete();
    }
    void learnComplete()
    {
        ASSERT_EQ(run(tool, freshPlace(), item).status, 0);
        complete = content();
    }
    // A folder with nothing but the archive of before; returns the archive's path.
    fs::path freshPlace()
    {
        fs::remove_all(archive.parent_path());
        fs::create_directory(archive.parent_path());
        if (!old.empty())
            writeFile(archive, old);
        return archive;
    }
    std::string content() const { return fs::exists(archive) ? readFile(archive) : ""; }

    // With a status of 0 the whole archive must be there, for skipped entries one of all that are
    // not named, with any other status the archive of before; and nothing else in any case.
    void expectAllOrNothing(const RunResult& result, const std::string& circumstance)
    {
        SCOPED_TRACE(circumstance + ": " + std::to_string(result.status) + ", " + result.err);
        const bool made = result.status == 0 || (result.status == tool.skipped && content() != old);
        const bool interrupted = result.status == tool.interrupted;
        EXPECT_TRUE(result.status < 124 || interrupted) << "hung or crashed";
        EXPECT_TRUE(made || content() == old);
        EXPECT_TRUE(result.status == 0 || interrupted || !result.err.empty()) << "nothing said";
        if (made && content() != complete)
            expectAllButWarned(result);
        Names left = namesIn(archive.parent_path());
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
        for (const std::string& fault : extractionFaults(tool.readers[0], archive, expected)) {
            const auto isIn
                = [&](const std::string& name) { return fault.find(name) != fault.npos; };
            EXPECT_TRUE(std::any_of(warned.begin(), warned.end(), isIn)) << fault;
            // Only tar has said how long a file is by the time when it cannot be read.
            EXPECT_TRUE(tool.name == "tar" || fault.ends_with("is missing")) << fault;
        }
    }

    // One run for each time the tool makes one of these calls, with just that call struck.
    void strikeEach(const std::vector<Strike>& strikes)
    {
        int runs = 0;
        // A sanitized program has a loader and a runtime, which make the other calls too.
        const std::set<std::string> ownCalls = {"pwrite64", "getdents64", "ftruncate", "fsync",
            "flock", "rename", "renameat2", "unlink"};
        for (const Strike& strike : strikes) {
            for (const std::string& call : strike.calls)
                runs
                    += isSanitized && !ownCalls.contains(call) ? 0 : strikeEach(call, strike.fault);
        }
        EXPECT_TRUE(runs > 0 || IsSkipped()) << "no such call is ever made";
    }
    int strikeEach(const std::string& call, const std::string& fault)
    {
        constexpr int mostRuns = isSanitized ? 6 : 40;
        for (int count = 1; count <= mostRuns && !HasFailure(); ++count) {
            std::string injection = "inject=" + call;
            injection.append(":").append(fault).append(":when=" + std::to_string(count));
            const Names tracer = {"strace", "-f", "-qq", "-o", folder / "log", "-e",
                "trace=" + call, "-e", injection};
            const RunResult result
                = run(tool, freshPlace(), item, {.threads = 2, .prefix = tracer});
            const bool killed = result.status == 128 + SIGKILL;
            const std::string log = readFile(folder / "log");
            if (!killed && log.find("INJECTED") == log.npos && log.find("--- SIG") == log.npos)
                return count - 1;
            const std::string left = content();
            // It counts in each thread, so two calls may have been struck: then even putting the
            // archive back may fail, which has to be said.
            const bool isStruckTwice = log.find("INJECTED") != log.rfind("INJECTED");
            if (isStruckTwice && result.err.find("could not be put back") != result.err.npos)
                continue;
            if (killed) {
                EXPECT_TRUE(left == old || left == complete) << injection;
            } else {
                expectAllOrNothing(result, injection);
            }
            EXPECT_TRUE(fault != "error=EINTR" || left == complete) << injection << result.err;
        }
        return mostRuns;
    }

    const Tool& tool = toolNamed(std::get<0>(GetParam()));
    const TestFolder folder = {};
    const fs::path item = folder / "in/item";
    const fs::path archive = folder / ("place/" + tool.archiveName);
    std::string old;
    std::string complete;
};

class TracedFaults : public Faults
{
    void SetUp() override
    {
        if (isSanitized)
            GTEST_SKIP() << "the sanitizer's own calls would be struck as well";
        if (run({"strace", "-qq", "true"}).status != 0)
            GTEST_SKIP() << "no tracing here";
        Faults::SetUp();
    }
};

const auto eachCase = testing::Combine(testing::Values("zip", "tar", "ditto"), testing::Bool());
std::string nameOf(const testing::TestParamInfo<std::tuple<std::string, bool>>& info)
{
    return std::get<0>(info.param) + (std::get<1>(info.param) ? "_ontoOne" : "_fresh");
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Tools, Faults, eachCase, nameOf);
INSTANTIATE_TEST_SUITE_P(Tools, TracedFaults, eachCase, nameOf);

TEST_P(TracedFaults, anyCallMayFail)
{
    strikeEach({
        {"error=EIO",
            {"read", "pread64", "getdents64", "openat", "newfstatat", "fstat", "statx",
                "readlinkat", "lseek", "close", "flock", "fsync"}},
        {"error=ENOSPC",
            {"write", "pwrite64", "writev", "ftruncate", "rename", "renameat2", "openat"}},
        {"error=EACCES", {"rename", "renameat", "renameat2", "unlink", "unlinkat", "fchmod"}},
        {"error=ENOMEM", {"mmap"}},
        {"error=EAGAIN", {"clone", "clone3"}},
    });
}

TEST_P(TracedFaults, anInterruptedCallIsMadeAgain)
{
    strikeEach(
        {{"error=EINTR", {"read", "pread64", "write", "pwrite64", "fsync", "ftruncate", "flock"}}});
}

TEST_P(TracedFaults, aSignalMayComeAtAnyCall)
{
    const Names calls = {"openat", "read", "pread64", "write", "pwrite64", "getdents64",
        "ftruncate", "fsync", "rename", "renameat2", "close"};
    strikeEach({{"signal=INT", calls}, {"signal=TERM", calls}});
}

// A zip is added to in place, in a folder of the program's own.
TEST_P(TracedFaults, whatGrowsBesideItsPlaceIsAbsentOrWholeWhenKilled)
{
    if (tool.name != "zip")
        strikeEach({{"signal=KILL",
            {"openat", "write", "fsync", "fchmod", "rename", "renameat2", "close", "unlink"}}});
}

TEST_P(TracedFaults, whatIsMadeInItsPlaceIsOnTheDiskBeforeItGetsItsName)
{
    const Names tracer = {
        "strace", "-f", "-qq", "-o", folder / "log", "-e", "trace=fsync,rename,renameat,renameat2"};
    ASSERT_EQ(run(tool, freshPlace(), item, {.prefix = tracer}).status, 0);
    const std::string log = readFile(folder / "log");
    const std::size_t named = log.find("rename");
    // The program writes a zip out when it delivers it.
    EXPECT_TRUE(tool.name == "zip" || (log.find("fsync(") < named && log.rfind("fsync(") > named));
}

TEST_P(Faults, aFullDiskLeavesWhatWasThere)
{
    if (run({"mount", "-t", "tmpfs", "-o", "size=1m", "none", freshPlace().parent_path()}).status
        != 0)
        GTEST_SKIP() << "no mounting here";
    if (!old.empty())
        writeFile(archive, old);
    const RunResult result = run(tool, archive, item);
    expectAllOrNothing(result, "full disk");
    EXPECT_EQ(result.status, tool.writeError);
    EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
    EXPECT_EQ(run({"umount", archive.parent_path()}).status, 0);
}

TEST_P(Faults, limitsEndInAWholeArchiveOrNone)
{
    const auto shell = [](const std::string& script) { return Names{"bash", "-c", script}; };
    std::vector<std::pair<Names, bool>> table = {
        // and whether the archive must be made
        {{"prlimit", "--fsize=1000000"}, false},
        {shell("trap '' XFSZ; exec prlimit --fsize=1000000 \"$0\" \"$@\""), false},
        {shell("exec \"$0\" \"$@\" > /dev/full"), true},
        {shell("exec \"$0\" \"$@\" >&-"), true},
        {shell("exec \"$0\" \"$@\" <&- >&- 2>&-"), true},
        {shell("set -o pipefail; \"$0\" \"$@\" | true"), true},
    };
    if (!isSanitized) { // sanitizers need descriptors and address space of their own
        table.insert(table.end(),
            {{{"prlimit", "--nofile=16"}, true}, {{"prlimit", "--nofile=8"}, false},
                {{"prlimit", "--nofile=5"}, false}, {{"prlimit", "--stack=65536"}, true},
                {{"strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=read:error=EIO:when=3+"},
                    false}});
        for (int megabytes = 4; megabytes <= 64; megabytes += 4)
            table.push_back({{"prlimit", "--as=" + std::to_string(megabytes << 20)}, false});
    }
    for (const auto& [prefix, mustBeMade] : table) {
        for (const unsigned threads : {1u, 16u}) {
            const RunResult result
                = run(tool, freshPlace(), item, {.threads = threads, .prefix = prefix});
            EXPECT_TRUE(!mustBeMade || result.status == 0);
            expectAllOrNothing(result, testing::PrintToString(prefix));
        }
    }
}

TEST_P(Faults, anUnwritablePlaceIsTold)
{
    const fs::path place = freshPlace().parent_path();
    chmod(place.c_str(), 0555);
    const ToolCall call = asOrdinaryUser(callOf(tool, place / "x", item), folder.path());
    const RunResult result = run(call.arguments, call.options);
    EXPECT_EQ(result.status, tool.cannotCreate);
    EXPECT_NE(result.err.find("Permission denied"), std::string::npos) << result.err;
    EXPECT_FALSE(fs::exists(place / "x"));
}

TEST_P(Faults, aSignalMayComeAtAnyMoment)
{
    writeFile(item / "large", someText(4'000'000) + randomBytes(3'000'000, 2));
    const auto start = std::chrono::steady_clock::now();
    learnComplete();
    const auto whole = std::chrono::steady_clock::now() - start;
    std::mt19937 generator(1);
    for (int round = 0; round < 36; ++round) {
        const int signal = std::array{SIGINT, SIGTERM, SIGHUP}.at(generator() % 3);
        const ToolCall call = callOf(tool, freshPlace(), item);
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

TEST_P(Faults, whatAKilledRunLeftIsRemovedByTheNext)
{
    const auto makeWith = [&](const fs::path& left) {
        writeFile(freshPlace().parent_path() / left, "left");
        EXPECT_EQ(run(tool, archive, item).status, 0);
        return fs::exists(archive.parent_path() / left);
    };
    const std::string part = "." + tool.archiveName + ".part-";
    EXPECT_EQ(makeWith(part + "abc123"), tool.name == "zip" && !old.empty());
    EXPECT_TRUE(makeWith(part + "abc12"));
    EXPECT_TRUE(makeWith("." + part + "abc123"));
}

TEST_P(Faults, aSignalEndsALongRunAtOnce)
{
    fs::resize_file(item / "c", std::uintmax_t{200} << 30);
    const ToolCall call = callOf(tool, freshPlace(), item);
    RunningProgram program(call.arguments, call.options);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const auto sent = std::chrono::steady_clock::now();
    program.signal(SIGINT);
    const RunResult result = program.wait();
    EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::seconds(isSanitized ? 10 : 2));
    EXPECT_EQ(result.status, tool.interrupted);
    expectAllOrNothing(result, "a long run");
}

// The program reads both streams from one pipe, and a full pipe takes a long write in parts.
TEST(Zip, keepsLinesWholeWhenBothStreamsAreOnePipe)
{
    const TestFolder folder;
    for (int number = 0; number < 6000; ++number) {
        const std::string name = std::to_string(number) + std::string(150, 'n');
        writeFile(folder / "item" / name, "");
        if (number % 100 == 0) {
            ASSERT_EQ(mkfifo((folder / ("item/p" + name)).c_str(), 0600), 0);
        }
    }
    ToolCall call = callOf(zipTool(), folder / "a.zip", folder / "item");
    call.arguments.insert(
        call.arguments.begin(), {"sh", "-c", R"("$0" "$@" 2>&1 | (sleep 1; cat))"});
    std::istringstream lines(run(call.arguments, call.options).out);
    std::map<std::string, int> counts;
    for (std::string line; std::getline(lines, line);)
        ++counts[line.ends_with("(stored 0%)") ? line.substr(0, 10) : line.substr(0, 9)];
    EXPECT_EQ(counts, (std::map<std::string, int>{{"  adding: ", 6001}, {"warning: ", 60}}));
}
