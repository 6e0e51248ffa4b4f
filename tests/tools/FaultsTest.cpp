// Failing calls, full disks, limits and signals: afterwards the archive is the old one or the new
// one, whole, and nothing else is left behind.

#include "tests/tools/ToolTest.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <thread>
#include <tuple>

namespace
{

// A tool about to make an archive or, in the other case, to add to or replace one.
struct Faults : EachToolAnd<bool> {
    void SetUp() override
    {
        if (theCase) {
            writeFile(folder / "first/old", "what was there before");
            ASSERT_EQ(run(tool, freshPlace(), folder / "first/old").status, 0);
            old = content();
        }
        writeFile(item / "a", "a");
        writeFile(item / "b", randomBytes(400'000, 1) + someText(800'000));
        writeFile(item / "sub/in", "in");
        fs::create_symlink("../a", item / "sub/link");
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
    bool isAsBefore() const
    {
        return content() == old && namesIn(archive.parent_path()).size() == (old.empty() ? 0 : 1);
    }

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
        TreeSnapshot expected = tree();
        if (tool.name == "tar")
            expected["item/sub/link"] = expected["item/a"];
        if (tool.name == "zip" && !old.empty())
            expected.merge(snapshot(folder / "first"));
        for (const std::string& fault : extractionFaults(tool.readers[0], archive, expected)) {
            const auto isIn = [&](const std::string& name) { return contains(fault, name); };
            EXPECT_TRUE(std::ranges::any_of(warned, isIn)) << fault;
            // Only tar has said how long a file is by the time when it cannot be read.
            EXPECT_TRUE(tool.name == "tar" || fault.ends_with("is missing")) << fault;
        }
    }

    const fs::path archive = folder / ("place/" + tool.archiveName); // with nothing beside it
    std::string old;
    std::string complete;
};

// One run for each call that is to be struck, by a fault as strace injects it. Each call that the
// tool makes takes minutes, so that is for the full sweep alone.
struct TracedFaults : Faults {
    void SetUp() override
    {
        if (isSanitized)
            GTEST_SKIP() << "the sanitizer's own calls would be struck as well";
        if (run({"strace", "-qq", "true"}).status != 0)
            GTEST_SKIP() << "no tracing here";
        Faults::SetUp();
        trace({});
        calls = readFile(folder / "log");
    }
    RunResult trace(Names options)
    {
        options.insert(options.begin(), {"strace", "-f", "-qq", "-y", "-o", folder / "log"});
        return run(tool, freshPlace(), item, {.threads = 2, .prefix = options});
    }
    // Which calls of that name are to be struck, counted in each thread as strace does: the first
    // at each place, which is told by the file and by how the text begins, and the last.
    std::set<int> occurrencesOf(const std::string& name) const
    {
        static const std::regex form(R"(^(\d+) +(\w+)\(\d*([^"{]*("[^"]*)?))");
        std::map<std::string, int> made; // by a thread
        std::map<std::string, int> places;
        std::istringstream lines(calls);
        std::smatch match;
        for (std::string line; std::getline(lines, line);) {
            if (std::regex_search(line, match, form) && match[2] == name)
                places.emplace(match[3], ++made[match[1]]);
        }
        std::set<int> occurrences;
        for (const auto& [place, count] : places)
            occurrences.insert(count);
        for (const auto& [thread, count] : made) {
            occurrences.insert(count);
            for (int each = 1; isFullSweep() && each < count; ++each)
                occurrences.insert(each);
        }
        return occurrences;
    }
    // How many runs were struck.
    int strike(const std::string& fault, const Names& names)
    {
        int runs = 0;
        for (const std::string& name : names) {
            const std::set<int> occurrences = occurrencesOf(name);
            const int runsBefore = runs;
            for (const int count : occurrences) {
                const RunResult result = trace({"-e", "trace=" + name, "-e",
                    "inject=" + name + ":" + fault + ":when=" + std::to_string(count)});
                SCOPED_TRACE(name + " " + std::to_string(count) + " " + fault + ": " + result.err);
                runs += expectNoHarm(result, fault) ? 1 : 0;
                if (HasFailure())
                    return runs;
            }
            EXPECT_EQ(runs > runsBefore, !occurrences.empty()) << name;
        }
        return runs;
    }
    // Whether the fault has struck at all: threads do not share the work alike each time.
    bool expectNoHarm(const RunResult& result, const std::string& fault)
    {
        const std::string log = readFile(folder / "log");
        const std::size_t first = std::min(log.find("INJECTED"), log.find("--- SIG"));
        if (result.status == 128 + SIGKILL) {
            EXPECT_TRUE(content() == old || content() == complete);
            return true;
        }
        // It counts in each thread, so two calls may have been struck: then even putting the
        // archive back may fail, which has to be said. The entries themselves must be there.
        const bool isStruckTwice = first != log.rfind("INJECTED");
        if (isStruckTwice && contains(result.err, "could not be put back")) {
            EXPECT_EQ(result.status, tool.writeError);
            EXPECT_TRUE(content().starts_with(old.substr(0, old.find("PK\1\2"))));
        } else {
            expectAllOrNothing(result, fault);
        }
        EXPECT_TRUE(fault != "error=EINTR" || content() == complete);
        // What a disk says only when all is written is a failure like any other.
        static const std::regex late(R"((close|fsync)\([^)]*\.part-[^)]*\) += -1 EIO)");
        EXPECT_TRUE(!std::regex_search(log, late) || result.status == tool.writeError);
        return first != std::string::npos;
    }

    std::string calls; // of a whole run, as strace writes them down
};

// Those that give the archive its name themselves; a zip is added to in place, in a folder of the
// program's own, and written out when the program delivers it.
struct DeliveringFaults : TracedFaults {
};

std::string nameOf(const testing::TestParamInfo<std::tuple<std::string, bool>>& info)
{
    return std::get<0>(info.param) + (std::get<1>(info.param) ? "_ontoOne" : "_fresh");
}

const auto eachCase = testing::Combine(eachTool, testing::Bool());
INSTANTIATE_TEST_SUITE_P(Tools, Faults, eachCase, nameOf);
INSTANTIATE_TEST_SUITE_P(Tools, TracedFaults, eachCase, nameOf);
INSTANTIATE_TEST_SUITE_P(Tools, DeliveringFaults,
    testing::Combine(testing::Values("tar", "ditto"), testing::Bool()), nameOf);

} // namespace

TEST_P(TracedFaults, anyCallMayFail)
{
    int runs = strike("error=EIO",
        {"read", "pread64", "getdents64", "openat", "newfstatat", "fstat", "statx", "readlinkat",
            "lseek", "close", "flock", "fsync"});
    runs += strike(
        "error=ENOSPC", {"write", "pwrite64", "writev", "ftruncate", "rename", "renameat2"});
    runs += strike("error=EACCES", {"rename", "renameat", "renameat2", "unlinkat", "fchmod"});
    runs += strike("error=ENOMEM", {"mmap"}) + strike("error=EAGAIN", {"clone", "clone3"});
    EXPECT_GT(runs, 40);
}

TEST_P(TracedFaults, anInterruptedCallIsMadeAgain)
{
    EXPECT_GT(strike("error=EINTR",
                  {"read", "pread64", "write", "pwrite64", "fsync", "ftruncate", "flock"}),
        8);
}

TEST_P(TracedFaults, aSignalMayComeAtAnyCall)
{
    const Names names = {"openat", "read", "pread64", "write", "pwrite64", "getdents64",
        "ftruncate", "fsync", "rename", "renameat", "renameat2", "close"};
    EXPECT_GT(strike("signal=INT", names), 25);
    EXPECT_TRUE(!isFullSweep() || strike("signal=TERM", names) > 25);
}

TEST_P(DeliveringFaults, whatGrowsBesideItsPlaceIsAbsentOrWholeWhenKilled)
{
    const Names names
        = {"openat", "write", "fsync", "fchmod", "rename", "renameat", "renameat2", "close"};
    EXPECT_GT(strike("signal=KILL", names), 10);
}

TEST_P(DeliveringFaults, anArchiveIsOnTheDiskBeforeItGetsItsName)
{
    static const std::regex form(R"( (pwrite|fsync|rename)\w*\()");
    Names order;
    std::istringstream lines(calls);
    std::smatch match;
    for (std::string line; std::getline(lines, line);) {
        if (!std::regex_search(line, match, form))
            continue;
        const std::string step = match[1].str() + (contains(line, ".part-") ? " file" : " folder");
        if (order.empty() || order.back() != step)
            order.push_back(step);
    }
    EXPECT_EQ(order, (Names{"pwrite file", "fsync file", "rename file", "fsync folder"}));
}

TEST_P(Faults, aFullDiskLeavesWhatWasThere)
{
    const fs::path place = freshPlace().parent_path();
    if (run({"mount", "-t", "tmpfs", "-o", "size=256k", "none", place}).status != 0)
        GTEST_SKIP() << "no mounting here";
    if (!old.empty())
        writeFile(archive, old);
    const RunResult result = run(tool, archive, item);
    expectAllOrNothing(result, "full disk");
    EXPECT_EQ(result.status, tool.writeError);
    EXPECT_TRUE(contains(result.err, "No space left on device")) << result.err;
    EXPECT_EQ(run({"umount", place}).status, 0);
}

TEST_P(Faults, limitsEndInAWholeArchiveOrNone)
{
    const auto shell = [](const std::string& script) { return Names{"bash", "-c", script}; };
    std::vector<std::pair<Names, bool>> table = {
        // and whether the archive must be made
        {{"prlimit", "--fsize=300000"}, false},
        {shell("trap '' XFSZ; exec prlimit --fsize=300000 \"$0\" \"$@\""), false},
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
        for (int megabytes = 4; megabytes <= 64; megabytes += isFullSweep() ? 4 : 20)
            table.push_back({{"prlimit", "--as=" + std::to_string(megabytes << 20)}, false});
    }
    for (const auto& [prefix, mustBeMade] : table) {
        const RunResult result = run(tool, freshPlace(), item, {.threads = 16, .prefix = prefix});
        EXPECT_TRUE(!mustBeMade || result.status == 0);
        expectAllOrNothing(result, testing::PrintToString(prefix));
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
    fs::resize_file(item / "b", std::uintmax_t{200} << 30);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const ToolCall call = callOf(tool, freshPlace(), item);
        RunningProgram program(call.arguments, call.options);
        ASSERT_TRUE(waitUntil([&] { return !program.out().empty(); }));
        const auto sent = std::chrono::steady_clock::now();
        program.signal(signal);
        const RunResult result = program.wait();
        EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::seconds(10));
        EXPECT_EQ(result.status, tool.interrupted);
        expectAllOrNothing(result, "a long run");
    }
}

TEST_P(Faults, aRunEndsWithTheProgramThatStartedItUnlessItIsToOutliveIt)
{
    fs::resize_file(item / "b", std::uintmax_t{200} << 30);
    for (const bool outlives : {false, true}) {
        const std::string script
            = std::string(outlives ? "trap '' HUP; " : "") + R"("$0" "$@" & echo $! >&2; wait)";
        const ToolCall call = callOf(tool, freshPlace(), item, {.prefix = {"sh", "-c", script}});
        RunningProgram program(call.arguments, call.options);
        ASSERT_TRUE(waitUntil([&] { return !program.out().empty(); }));
        program.signal(SIGKILL);
        const pid_t started = std::stoi(program.wait().err);
        if (outlives) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            EXPECT_FALSE(isAsBefore());
            ::kill(started, SIGTERM);
        }
        const bool hasEnded = waitUntil([&] { return isAsBefore(); });
        EXPECT_TRUE(hasEnded);
        if (!hasEnded)
            ::kill(started, SIGKILL);
    }
}

// The program reads both streams from one pipe, and a full pipe takes a long write in parts.
TEST_F(Zip, keepsLinesWholeWhenBothStreamsAreOnePipe)
{
    for (int number = 0; number < 3000; ++number) {
        const std::string name = std::to_string(number) + std::string(150, 'n');
        writeFile(item / name, "");
        if (number % 100 == 0)
            makeFifo(item / ("p" + name));
    }
    const ToolCall call = callOf(
        tool, archive, item, {.prefix = {"sh", "-c", R"("$0" "$@" 2>&1 | (sleep 1; cat))"}});
    std::istringstream lines(run(call.arguments, call.options).out);
    std::map<std::string, int> counts;
    for (std::string line; std::getline(lines, line);)
        ++counts[line.ends_with("(stored 0%)") ? line.substr(0, 10) : line.substr(0, 9)];
    EXPECT_EQ(counts, (std::map<std::string, int>{{"  adding: ", 3001}, {"warning: ", 30}}));
}
