// Failing calls, full disks, limits and signals: afterwards the archive is the old one or the new
// one, whole, and nothing else is left behind.

#include "tests/tools/ToolTest.h"

#include <algorithm>
#include <csignal>
#include <map>
#include <regex>

#include <fcntl.h>
#include <sys/file.h>

namespace
{

// A tool about to make an archive or, when the parameter says so, to add to or replace one.
struct Faults : EachTool {
    void SetUp() override
    {
        if (GetParam().ends_with("_ontoOne")) {
            writeFile(folder / "first/old", "what was there before");
            ASSERT_EQ(run(tool, freshPlace(), folder / "first/old").status, 0);
            old = content();
        }
        writeFile(item / "a", "a");
        writeFile(item / "b", randomBytes(400'000, 1) + someText(800'000));
        fs::create_directory(item / "sub");
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
        std::map<std::string, int> made, places; // by a thread; at each place, for the first time
        std::smatch match;
        for (const std::string& line : linesOf(calls)) {
            if (std::regex_search(line, match, form) && match[2] == name)
                places.emplace(match[3], ++made[match[1]]);
        }
        std::set<int> occurrences;
        for (const auto& [place, count] : places)
            occurrences.insert(count);
        for (const auto& [thread, count] : made) {
            for (int each = isFullSweep() ? 1 : count; each <= count; ++each)
                occurrences.insert(each);
        }
        return occurrences;
    }
    // How many runs were struck.
    int strike(const std::string& fault, const Names& names)
    {
        int all = 0;
        for (const std::string& name : names) {
            int runs = 0;
            const std::set<int> occurrences = occurrencesOf(name);
            for (const int count : occurrences) {
                const std::string when = name + ":" + fault + ":when=" + std::to_string(count);
                SCOPED_TRACE(when);
                runs += expectNoHarm(trace({"-e", "trace=" + name, "-e", "inject=" + when}), fault);
                if (HasFailure())
                    return all;
            }
            EXPECT_EQ(runs > 0, !occurrences.empty()) << name;
            all += runs;
        }
        return all;
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
        // A call may be made again, a thread be done without.
        EXPECT_TRUE((fault != "error=EINTR" && fault != "error=EAGAIN") || content() == complete);
        // What a disk says only when all is written is a failure like any other.
        static const std::regex late(R"((close|fsync)\([^)]*\.part-[^)]*\) += -1 EIO)");
        EXPECT_TRUE(!std::regex_search(log, late) || result.status == tool.writeError);
        return first != std::string::npos;
    }

    std::string calls; // of a whole run, as strace writes them down
};

const auto eachCase = testing::Values(
    "zip_fresh", "zip_ontoOne", "tar_fresh", "tar_ontoOne", "ditto_fresh", "ditto_ontoOne");
INSTANTIATE_TEST_SUITE_P(Tools, Faults, eachCase, itsParameter);
INSTANTIATE_TEST_SUITE_P(Tools, TracedFaults, eachCase, itsParameter);

} // namespace

TEST_P(TracedFaults, anyCallMayFail)
{
    const Names reading = {"read", "pread64", "getdents64", "openat", "newfstatat", "fstat",
        "statx", "readlinkat", "lseek", "close", "flock", "fsync"};
    const Names writing = {"write", "pwrite64", "writev", "ftruncate", "rename", "renameat2"};
    const Names naming = {"rename", "renameat", "renameat2", "unlinkat", "fchmod"};
    int runs = strike("error=EIO", reading) + strike("error=ENOSPC", writing);
    runs += strike("error=EACCES", naming) + strike("error=ENOMEM", {"mmap"});
    runs += strike("error=EAGAIN", {"clone", "clone3"});
    EXPECT_GT(runs, 40);
    for (const std::string error : {"EIO", "ENOSPC", "EDQUOT", "EACCES"}) {
        for (const Names& names :
            {reading, writing, naming, Names{"poll", "fcntl", "sync_file_range", "getrandom"}}) {
            if (isFullSweep())
                strike("error=" + error, names);
        }
    }
    const Names repeated = {"read", "pread64", "write", "pwrite64", "fsync", "ftruncate", "flock",
        "openat", "getdents64", "close", "renameat", "renameat2", "poll"};
    EXPECT_GT(strike("error=EINTR", repeated), 8) << "an interrupted call is made again";
}

TEST_P(TracedFaults, aSignalMayComeAtAnyCall)
{
    const Names names = {"openat", "read", "pread64", "write", "pwrite64", "getdents64",
        "ftruncate", "fsync", "rename", "renameat", "renameat2", "close"};
    EXPECT_GT(strike("signal=INT", names), 25);
    EXPECT_TRUE(!isFullSweep() || strike("signal=TERM", names) > 25);
}

// Not so a zip: it is added to in place, in a folder of the program's own, and written out when the
// program delivers it.
TEST_P(TracedFaults, whatGrowsBesideItsPlaceIsOnTheDiskBeforeItGetsItsName)
{
    if (tool.name == "zip")
        return;
    static const std::regex form(R"( (pwrite|fsync|rename)\w*\()");
    Names order;
    std::smatch match;
    for (const std::string& line : linesOf(calls)) {
        if (!std::regex_search(line, match, form))
            continue;
        const std::string step = match[1].str() + (contains(line, ".part-") ? " file" : " folder");
        if (order.empty() || order.back() != step)
            order.push_back(step);
    }
    EXPECT_EQ(order, (Names{"pwrite file", "fsync file", "rename file", "fsync folder"}));
    const Names names = {"openat", "pwrite64", "fsync", "fchmod", "renameat", "renameat2", "close"};
    EXPECT_GT(strike("signal=KILL", names), 8);
}

// Between its making and its locking another process may take it for abandoned.
TEST_P(TracedFaults, aHiddenFileThatIsTakenIsLeftToWhoTookIt)
{
    if (tool.name == "zip" && !old.empty())
        return;
    const ToolCall call = callOf(tool, freshPlace(), item,
        {.prefix = {"strace", "-f", "-qq", "-o", folder / "log", "-e",
             "inject=flock:delay_enter=200000:when=1"}});
    RunningProgram program(call.arguments, call.options);
    FileDescriptor taken;
    ASSERT_TRUE(waitUntil([&] {
        for (const std::string& name : namesIn(archive.parent_path())) {
            if (name.starts_with('.'))
                taken = FileDescriptor(::open((archive.parent_path() / name).c_str(), O_RDWR));
        }
        return taken && ::flock(taken.number(), LOCK_EX | LOCK_NB) == 0;
    }));
    expectAllOrNothing(program.wait(), "taken");
    EXPECT_TRUE(content() == complete);
    EXPECT_FALSE(fs::equivalent("/proc/self/fd/" + std::to_string(taken.number()), archive));
}

TEST_P(TracedFaults, aParentThatEndsBeforeItsEndIsToBeToldEndsTheRun)
{
    fs::resize_file(item / "b", std::uintmax_t{200} << 30);
    const ToolCall call = callOf(tool, freshPlace(), item,
        {.prefix
            = {"strace", "-f", "-qq", "-o", folder / "log", "-e", "inject=prctl:delay_enter=600000",
                "/bin/sh", "-c", R"("$0" "$@" & sleep 0.2; kill -KILL $$)"},
            .timeout = std::chrono::seconds(5)});
    EXPECT_EQ(run(call.arguments, call.options).status, 128 + SIGKILL);
    EXPECT_TRUE(content() == old);
}

TEST_P(Faults, limitsEndInAWholeArchiveOrNone)
{
    std::vector<std::pair<std::string, bool>> table = {
        // and whether the archive must be made
        {R"(exec prlimit --fsize=300000 "$0" "$@")", false},
        {R"(exec "$0" "$@" > /dev/full)", true},
        {R"(exec "$0" "$@" <&- >&- 2>&-)", true},
        {R"(set -o pipefail; "$0" "$@" | true)", true},
    };
    if (!isSanitized) { // sanitizers need descriptors and address space of their own
        const auto add = [&](const std::string& limit, bool mustBeMade) {
            table.emplace_back("exec prlimit --" + limit + R"( "$0" "$@")", mustBeMade);
        };
        for (const std::string limit : {"stack=65536", "nofile=16", "nofile=8", "nofile=5"})
            add(limit, limit.ends_with("6"));
        for (int megabytes = 4; megabytes <= 64; megabytes += isFullSweep() ? 4 : 20)
            add("as=" + std::to_string(megabytes << 20), false);
    }
    for (const auto& [script, mustBeMade] : table) {
        const RunResult result
            = run(tool, freshPlace(), item, {.threads = 16, .prefix = {"bash", "-c", script}});
        EXPECT_TRUE(!mustBeMade || result.status == 0);
        expectAllOrNothing(result, script);
    }
}

TEST_P(Faults, anyAllocationMayFail)
{
    const auto runWith = [&](const Names& environment, unsigned threads) {
        return run(tool, freshPlace(), item,
            {.threads = threads,
                .environment = environment,
                .toolsFolder = PARCELO_FAILING_TOOLS_DIR,
                .timeout = std::chrono::seconds(10)});
    };
    for (const unsigned threads : {1U, 4U}) {
        const int count = std::stoi(linesOf(runWith({}, threads).out).back());
        EXPECT_GT(count, 30);
        for (int number = 1; number <= count; number += isFullSweep() ? 1 : 1 + count / 6) {
            for (const std::string after : {"", "+"}) {
                const std::string failing
                    = "PARCELO_FAILING_ALLOCATION=" + std::to_string(number) + after;
                expectAllOrNothing(runWith({failing}, threads), failing);
                if (HasFailure())
                    return;
            }
        }
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

TEST_P(Faults, aSignalEndsARunOfWhichNobodyTakesTheOutput)
{
    const std::string toPipe = R"(exec "$0" "$@" > >(exec sleep 4))";
    const std::string toTerminal = R"(exec python3 -c 'import os, sys
for end in os.openpty(): os.set_inheritable(end, True); os.dup2(end, 1)
os.execv(sys.argv[1], sys.argv[1:])' "$0" "$@")";
    for (int number = 0; number < 600; ++number)
        writeFile(item / (std::to_string(number) + std::string(200, 'n')), "");
    for (const std::string& script : {toPipe, toTerminal}) {
        const ToolCall call = callOf(tool, freshPlace(), item,
            {.prefix = {"bash", "-c", script}, .timeout = std::chrono::seconds(5)});
        RunningProgram program(call.arguments, call.options);
        std::this_thread::sleep_for(std::chrono::milliseconds(400)); // it is full
        const auto sent = std::chrono::steady_clock::now();
        program.signal(SIGTERM);
        const RunResult result = program.wait();
        EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::seconds(2));
        EXPECT_EQ(result.status, tool.interrupted);
        expectAllOrNothing(result, script);
    }
}

TEST_P(Faults, aRunEndsWithTheProgramThatStartedItUnlessItIsToOutliveIt)
{
    fs::resize_file(item / "b", std::uintmax_t{200} << 30);
    for (const std::string trap : {"", "trap '' HUP; "}) {
        const ToolCall call = callOf(tool, freshPlace(), item,
            {.prefix = {"sh", "-c", trap + R"("$0" "$@" & echo $! >&2; wait)"}});
        RunningProgram program(call.arguments, call.options);
        ASSERT_TRUE(waitUntil([&] { return !program.out().empty() && !program.err().empty(); }));
        program.signal(SIGKILL);
        const pid_t started = std::stoi(program.wait().err);
        const auto hasEnded
            = [&] { return !fs::exists("/proc/" + std::to_string(started) + "/exe"); };
        EXPECT_EQ(waitUntil(hasEnded, std::chrono::seconds(trap.empty() ? 20 : 1)), trap.empty());
        ::kill(started, SIGTERM);
        EXPECT_TRUE(waitUntil(hasEnded));
        EXPECT_EQ(content(), old);
        EXPECT_EQ(namesIn(archive.parent_path()).size(), old.empty() ? 0U : 1U);
    }
}

// The program reads both streams from one pipe, and a full pipe takes a long write in parts, or,
// if that is not to wait, not at all.
TEST_F(Zip, keepsLinesWholeWhenBothStreamsAreOnePipe)
{
    for (int number = 0; number < 3000; ++number)
        write({std::to_string(number) + std::string(150, 'n')});
    for (int number = 0; number < 30; ++number)
        makeFifo(item / (std::to_string(number * 100) + "p"));
    const ToolCall call = callOf(tool, archive, item,
        {.prefix = {"sh", "-c",
             R"(python3 -c 'import os, sys; os.set_blocking(1, False); os.execv(sys.argv[1], sys.argv[1:])' "$0" "$@" 2>&1 | (sleep 1; cat))"}});
    std::map<std::string, int> counts;
    for (const std::string& line : linesOf(run(call.arguments, call.options).out))
        ++counts[line.ends_with("%)") ? line.substr(0, 10) : line.substr(0, 9)];
    EXPECT_EQ(counts, (std::map<std::string, int>{{"  adding: ", 3001}, {"warning: ", 30}}));
}
