// Failing calls, full disks, limits and signals: afterwards the archive is the old one or the new
// one, whole, and nothing else is left behind.

#include "tests/support/ToolTest.h"

#include <fcntl.h>
#include <sys/file.h>

namespace
{

// A tool about to make an archive or, when the parameter says so, to add to or replace one.
struct Faults : EachTool {
    void SetUp() override
    {
        archive = folder / ("place/" + tool.archiveName); // with nothing beside it
        if (GetParam().ends_with("_ontoOne")) {
            fs::path deep = folder / "first/old";
            for (int level = 0; level < 16; ++level)
                deep /= std::string(200, 'd');
            // Names of twice the size of what is added: some are overwritten, the others moved.
            for (int number = 0; number < 160; ++number)
                writeFile(deep / std::to_string(number), "what was there before");
            ASSERT_EQ(run(tool, freshPlace(), folder / "first/old").status, 0);
            old = content();
        }
        writeFile(item / "a", "a");
        writeFile(item / "b", randomBytes(100'000, 1) + someText(1'100'000));
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

    std::string old;
    std::string complete;
};

// One run for each call that is to be struck, by a fault as strace injects it.
struct TracedFaults : Faults {
    void SetUp() override
    {
        if (!canTrace())
            GTEST_SKIP() << "no tracing here, or a sanitizer whose calls would be struck as well";
        Faults::SetUp();
        run(tool, freshPlace(), item, {.threads = 2, .prefix = strace("trace=all")});
        calls = readFile(folder / "log");
    }
    // Which calls of that name are to be struck, counted in each thread as strace does: the first
    // at each place, which is told by the file and by how the text begins, and the last; all of
    // them in a full sweep, which takes minutes.
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
                Names prefix = strace("inject=" + when);
                prefix.insert(prefix.end(), {"-e", "trace=" + name});
                const ToolOptions options{.threads = 2, .prefix = prefix};
                runs += expectNoHarm(run(tool, freshPlace(), item, options), fault);
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
    const Names reading
        = {"read", "pread64", "getdents64", "openat", "newfstatat", "fstat", "statx", "readlinkat",
            "lseek", "close", "flock", "fsync", "poll", "fcntl", "sync_file_range", "getrandom"};
    const Names writing = {"write", "pwrite64", "writev", "ftruncate", "rename", "renameat2"};
    const Names naming = {"rename", "renameat", "renameat2", "unlinkat", "fchmod"};
    int runs = strike("error=EIO", reading) + strike("error=ENOSPC", writing);
    runs += strike("error=EACCES", naming) + strike("error=ENOMEM", {"mmap"});
    runs += strike("error=EAGAIN", {"clone", "clone3"});
    EXPECT_GT(runs, 40);
    const Names repeated = {"read", "pread64", "write", "pwrite64", "fsync", "ftruncate", "flock",
        "openat", "getdents64", "close", "renameat", "renameat2", "poll"};
    EXPECT_GT(strike("error=EINTR", repeated), 8) << "an interrupted call is made again";
}

TEST_P(TracedFaults, aSignalMayComeAtAnyCall)
{
    const Names names = {"openat", "read", "pread64", "write", "pwrite64", "getdents64",
        "ftruncate", "fsync", "rename", "renameat", "renameat2", "close"};
    EXPECT_GT(strike("signal=INT", names), 25);
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
    RunningProgram program = start(
        tool, freshPlace(), item, {.prefix = strace("inject=flock:delay_enter=200000:when=1")});
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
    Names prefix = strace("inject=prctl:delay_enter=600000");
    prefix.insert(prefix.end(), {"/bin/sh", "-c", R"("$0" "$@" & sleep 0.2; kill -KILL $$)"});
    const ToolOptions options{.prefix = prefix, .timeout = 5s};
    EXPECT_EQ(run(tool, freshPlace(), item, options).status, 128 + SIGKILL);
    EXPECT_TRUE(content() == old);
}

TEST_P(Faults, limitsEndInAWholeArchiveOrNone)
{
    std::map<std::string, bool> table = {// and whether the archive must be made
        {R"(exec prlimit --fsize=300000 "$0" "$@")", false},
        {R"(exec "$0" "$@" > /dev/full)", true}, {R"(exec "$0" "$@" <&- >&- 2>&-)", true},
        {R"(set -o pipefail; "$0" "$@" | true)", true}};
    for (const std::string limit : {"stack=65536", "nofile=16", "nofile=8", "nofile=5",
             "as=4000000", "as=24000000", "as=64000000"}) {
        if (!isSanitized) // sanitizers need descriptors and address space of their own
            table["exec prlimit --" + limit + R"( "$0" "$@")"] = limit.ends_with("6");
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
    for (const unsigned threads : {1U, 4U}) {
        ToolOptions options{.threads = threads, .toolsFolder = PARCELO_FAILING_TOOLS_DIR};
        options.timeout = 10s;
        const RunResult counted = run(tool, freshPlace(), item, options);
        const int count = std::stoi(linesOf(counted.out).back());
        EXPECT_GT(count, 30);
        for (int number = 1; number <= count; number += isFullSweep() ? 1 : 1 + count / 6) {
            for (const std::string after : {"", "+"}) {
                const std::string which = std::to_string(number) + after;
                options.environment = {"PARCELO_FAILING_ALLOCATION=" + which};
                expectAllOrNothing(run(tool, freshPlace(), item, options), which);
                if (HasFailure())
                    return;
            }
        }
    }
}

TEST_P(Faults, whatAKilledRunLeftIsRemovedByTheNext)
{
    const std::string part = "." + tool.archiveName + ".part-abc12";
    for (const std::string& left : {part + "3", part, "." + part + "3"}) {
        writeFile(freshPlace().parent_path() / left, "left");
        EXPECT_EQ(run(tool, archive, item).status, 0);
        EXPECT_EQ(fs::exists(archive.parent_path() / left),
            left != part + "3" || (tool.name == "zip" && !old.empty()));
    }
}

TEST_P(Faults, aSignalEndsALongRunAtOnceAlsoWhenNobodyTakesTheOutput)
{
    const std::string toTerminal = R"(exec python3 -c 'import os, sys
for end in os.openpty(): os.set_inheritable(end, True); os.dup2(end, 1)
os.execv(sys.argv[1], sys.argv[1:])' "$0" "$@")";
    const std::pair<int, Names> cases[] = {{SIGINT, {}}, {SIGHUP, {}},
        {SIGTERM, {"bash", "-c", R"(exec "$0" "$@" > >(exec sleep 4))"}},
        {SIGTERM, {"bash", "-c", toTerminal}}};
    fs::resize_file(item / "b", std::uintmax_t{200} << 30);
    for (int number = 0; number < 600; ++number)
        writeFile(item / (std::to_string(number) + std::string(200, 'n')), "");
    for (const auto& [signal, prefix] : cases) {
        RunningProgram program = start(tool, freshPlace(), item, {.prefix = prefix, .timeout = 5s});
        const auto isAtTheLongOne = [&] { return linesOf(program.out()).size() > 600; };
        EXPECT_EQ(waitUntil(isAtTheLongOne, prefix.empty() ? 20s : 400ms), prefix.empty());
        const auto sent = std::chrono::steady_clock::now();
        program.signal(signal);
        const RunResult result = program.wait();
        EXPECT_LT(std::chrono::steady_clock::now() - sent, 2s);
        EXPECT_EQ(result.status, tool.interrupted);
        expectAllOrNothing(result, testing::PrintToString(prefix));
    }
}

TEST_P(Faults, aRunEndsWithTheProgramThatStartedItUnlessItIsToOutliveIt)
{
    fs::resize_file(item / "b", std::uintmax_t{200} << 30);
    for (const std::string trap : {"", "trap '' HUP; "}) {
        RunningProgram program = start(tool, freshPlace(), item,
            {.prefix = {"sh", "-c", trap + R"("$0" "$@" & echo $! >&2; wait)"}});
        ASSERT_TRUE(waitUntil([&] { return !program.out().empty() && !program.err().empty(); }));
        program.signal(SIGKILL);
        const pid_t started = std::stoi(program.wait().err);
        const auto hasEnded
            = [&] { return !fs::exists("/proc/" + std::to_string(started) + "/exe"); };
        EXPECT_EQ(waitUntil(hasEnded, trap.empty() ? 20s : 1s), trap.empty());
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
    const std::string script = R"(python3 -c 'import os, sys; os.set_blocking(1, False)
os.execv(sys.argv[1], sys.argv[1:])' "$0" "$@" 2>&1 | (sleep 1; cat))";
    std::map<std::string, int> counts;
    for (const std::string& line : linesOf(make({.prefix = {"sh", "-c", script}}).out))
        ++counts[line.ends_with("%)") ? line.substr(0, 10) : line.substr(0, 9)];
    EXPECT_EQ(counts, (std::map<std::string, int>{{"  adding: ", 3001}, {"warning: ", 30}}));
}
