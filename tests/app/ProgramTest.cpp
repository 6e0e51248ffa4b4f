// The whole program, installed in a folder of the test's own with stand-ins for its tools.

#include "tests/support/EnvironmentVariable.h"
#include "tests/support/Files.h"
#include "tests/support/Run.h"
#include "tests/support/TestFolder.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <sstream>
#include <tuple>

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace support;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace
{

class Program : public testing::Test
{
protected:
    Program()
    {
        fs::create_directories(folder / "prefix/bin");
        fs::copy_file(PARCELO_PROGRAM, program);
        fs::create_directories(resources);
        fs::create_symlink(
            PARCELO_WINDOW_PROGRAM, folder / "prefix/libexec/parcelo/parcelo-window");
        for (const char* tool : {"zip", "tar", "ditto"})
            fs::create_symlink(PARCELO_TEST_STANDINS_DIR "/tool", resources / tool);
        for (const char* name : {"one.txt", "two.txt", "three.txt"})
            writeFile(folder / "in" / name, name);
        for (const char* name : {"out", "tmp"})
            fs::create_directory(folder / name);
        makes();
    }

    // The stand-ins make an archive after the script, in which "$item" is what they are to add.
    void makes(const std::string& script = "", const std::string& afterwards = "") const
    {
        writeFile(folder / "tmp/plan",
            R"(for argument; do case "$argument" in
            */*.zip | */*.tar.gz) archive="$argument" ;;
            ./*) item="$argument" ;; esac; done
            : "${item:=$argument}"
            [ "${0##*/} $1" != "hdiutil convert" ] || archive="$(pwd)/$argument.dmg"
            )" + script
                + R"(
            if [ -n "$archive" ]; then printf '%s|' "$item" >>"$archive"; fi
            )" + afterwards
                + "\n");
    }

    Lines command(Lines arguments) const
    {
        arguments.insert(arguments.begin(),
            {"/usr/bin/env", "-i", "TMPDIR=" + (folder / "tmp").native(), program});
        return arguments;
    }
    RunOptions options() const { return {.folder = folder / "in"}; }
    RunResult parcelo(const Lines& arguments) const { return run(command(arguments), options()); }

    Lines made() const { return namesIn(folder / "out"); }
    void useTool(const std::string& name) const
    {
        fs::remove(resources / name);
        fs::create_symlink(PARCELO_TOOLS_DIR "/" + name, resources / name);
    }
    // What an archive is known by: its inode, its times and its content.
    auto identityOf(const std::string& name) const
    {
        struct stat status = {};
        EXPECT_EQ(stat((folder / "out" / name).c_str(), &status), 0);
        return std::tuple(status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec,
            status.st_ctim.tv_nsec, readFile(folder / "out" / name));
    }
    // No working folder is left.
    Lines scratch() const
    {
        Lines names = namesIn(folder / "tmp");
        std::erase_if(names,
            [](const std::string& name) { return name.find("parcelo") == std::string::npos; });
        return names;
    }

    const TestFolder folder;
    const fs::path program = folder / "prefix/bin/parcelo";
    const fs::path resources = folder / "prefix/libexec/parcelo/Contents/Resources";
};

// The exit status, and all that the terminal got to show.
std::pair<int, std::string> runInTerminal(Lines arguments, unsigned short columns)
{
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    int terminal = -1;
    const pid_t pid = forkpty(&terminal, nullptr, nullptr, &size);
    if (pid == 0) {
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
    std::string output;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(terminal, buffer.data(), buffer.size())) > 0;)
        output.append(buffer.data(), static_cast<std::size_t>(count));
    close(terminal);
    int status = -1;
    waitpid(pid, &status, 0);
    return {WEXITSTATUS(status), output};
}

} // namespace

TEST_F(Program, printsThePathOfWhatItMade)
{
    struct Case {
        Lines arguments;
        std::string archive;
        std::string content;
    };
    const Case cases[] = {
        {{"one.txt"}, "one.zip", "./one.txt|"},
        {{"one.txt", "../in/two.txt", "./three.txt"}, "Untitled.zip",
            "./one.txt|./two.txt|./three.txt|"},
        {{"--name", "Demo.zip", "."}, "Demo.zip", "./in|"},
        {{"../in//"}, "in.zip", "./in|"},
        {{".."}, "", ""}, // named below: the folder of the test
        {{"link"}, "link.zip", "./link|"},
        {{"--type=tar.gz", "one.txt"}, "one.tar.gz", "one|"},
        {{"--name=\xff\xfe", "\xff.txt"}, "\xff\xfe.zip", "./\xff.txt|"},
        {{"--name=-x", "--", "--help"}, "-x.zip", "./--help|"},
    };
    fs::create_symlink("/none", folder / "in/link");
    writeFile(folder / "in/\xff.txt", "");
    writeFile(folder / "in/--help", "");
    for (const Case& each : cases) {
        Lines arguments{"--to", "../out"};
        arguments.insert(arguments.end(), each.arguments.begin(), each.arguments.end());
        const RunResult result = parcelo(arguments);
        const std::string own = fs::canonical(folder.path()).filename();
        const std::string name = each.archive.empty() ? own + ".zip" : each.archive;
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out, (fs::canonical(folder / "out") / name).native() + "\n");
        EXPECT_EQ(readFile(folder / "out" / name),
            each.content.empty() ? "./" + own + "|" : each.content);
    }
    EXPECT_EQ(scratch(), Lines{});
}

TEST_F(Program, refusesBeforeAnythingIsMade)
{
    writeFile(folder / "out/one.zip", "older");
    fs::create_directory(folder / "out/two.zip");
    const std::string in = fs::canonical(folder / "in");
    const std::string out = fs::canonical(folder / "out");
    const fs::path window = folder / "prefix/libexec/parcelo/parcelo-window";
    const std::string noWindow = fs::exists(window) // it is not built under every sanitizer
        ? "there is no display to open the window on; give --to FOLDER"
        : "there is no window to open (" + window.native()
            + ": No such file or directory); give --to FOLDER";
    struct Case {
        Lines arguments;
        int status;
        std::string message;
    };
    const Case cases[] = {
        {{"one.txt"}, 1, noWindow},
        {{"--", "one.txt"}, 1, noWindow},
        {{"--to=../out", "one.txt", "none"}, 1, "'none': No such file or directory"},
        {{"--to=../out", "no\x1bne"}, 1, "'no?ne': No such file or directory"},
        {{"--to=../out", "/"}, 1, "'/' has no name to be archived under"},
        {{"--to=../out", "--type=tar.gz", "/dev/null"}, 1,
            "'/dev/null' leads to no file or folder"},
        {{"--to=../none", "one.txt"}, 1, "'../none': No such file or directory"},
        {{"--to=one.txt", "two.txt"}, 1,
            "Unable to write to '" + in
                + "/one.txt/two.zip': that folder cannot be used (Not a "
                  "directory)"},
        {{"--to=/sys", "two.txt"}, 1,
            "Unable to write to '/sys/two.zip': you may not write in that folder"},
        {{"--to=../out", "two.txt"}, 1,
            "Unable to write to '" + out + "/two.zip': a folder has that name"},
        {{"--to=../out", out + "/one.zip"}, 1,
            "the archive would replace '" + out + "/one.zip', which is to be in it"},
        {{"--to=../out", "--type=dmg", "one.txt"}, 1,
            "this system has no tool for that type (/usr/bin/hdiutil)"},
    };
    for (const Case& each : cases) {
        const RunResult result = parcelo(each.arguments);
        EXPECT_EQ(result.status, each.status) << each.message;
        EXPECT_EQ(result.err.substr(0, result.err.find('\n')), "parcelo: " + each.message);
        EXPECT_EQ(result.out, "");
    }
    EXPECT_FALSE(fs::exists(folder / "tmp/record"));
    fs::remove_all(folder / "tmp");
    const RunResult homeless = parcelo({"--to=../out", "one.txt"});
    EXPECT_EQ(homeless.status, 1);
    EXPECT_EQ(homeless.err,
        "parcelo: cannot make a working folder in " + (folder / "tmp").native()
            + ": No such file or directory\n");
    EXPECT_EQ(made(), (Lines{"one.zip", "two.zip"}));
    for (const char* word : {"--help", "--version"}) {
        const RunResult told = parcelo({word});
        EXPECT_EQ(told.status, 0);
        EXPECT_NE(told.out.find("parcelo"), std::string::npos);
    }
}

TEST_F(Program, tellsWhatToolsReportAndKeepsOnlyWholeArchives)
{
    struct Case {
        const char* afterwards;
        Lines arguments;
        int status;
        Lines errors;
        Lines made;
    };
    const Case cases[] = {
        {"echo 'warning: x: kept as x 2'", {}, 0, {"zip: warning: x: kept as x 2"}, {"Demo.zip"}},
        {"echo '  adding: a'; echo 'warning: m: Permission denied' >&2; exit 18", {}, 1,
            {"zip ended with status 18: warning: m: Permission denied"}, {"Demo.zip"}},
        {"exit 1", {"--type=tar.gz"}, 1, {"tar ended with status 1"}, {"Demo.tar.gz"}},
        {"echo 'no space'; exit 14", {}, 1,
            {"zip ended with status 14: no space", "no archive was made"}, {}},
        {"echo 'cannot write a: No space left on device'; exit 2", {"--type=tar.gz"}, 1,
            {"tar ended with status 2: cannot write a: No space left on device",
                "Unable to write to '@/Demo.tar.gz': the disk of that folder is full",
                "no archive was made"},
            {}},
        {"rm \"$archive\"; echo 'warning: a: b: gone'; exit 12", {}, 1,
            {"zip ended with status 12: warning: a: b: gone", "'a: b' cannot be read (gone)",
                "no archive was made"},
            {}},
        {"rm \"$archive\"", {"--type=tar.gz"}, 1,
            {"Unable to write to '@/Demo.tar.gz': the tool has made nothing",
                "no archive was made"},
            {}},
        {"rm \"$archive\"", {}, 1,
            {"Unable to write to '@/Demo.zip': the tool has made nothing", "no archive was made"},
            {}},
        {"rm \"$TMPDIR/../prefix/libexec/parcelo/Contents/Resources/zip\"", {"two.txt"}, 1,
            {"a tool could not be started (cannot run '@zip': No such file or directory)",
                "no archive was made"},
            {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.afterwards);
        makes("", each.afterwards);
        for (const fs::path& old : fs::directory_iterator(folder / "out"))
            fs::remove(old);
        Lines arguments{"--to=../out", "--name=Demo", "one.txt"};
        arguments.insert(arguments.end(), each.arguments.begin(), each.arguments.end());
        const RunResult result = parcelo(arguments);
        std::string expected;
        for (const std::string& error : each.errors)
            expected += "parcelo: " + error + "\n";
        std::string errors = result.err;
        for (const fs::path& path : {fs::canonical(folder / "out"), resources / ""})
            if (const auto at = errors.find(path.native()); at != std::string::npos)
                errors.replace(at, path.native().size(), "@");
        EXPECT_EQ(errors, expected);
        EXPECT_EQ(result.status, each.status);
        EXPECT_EQ(made(), each.made);
        EXPECT_EQ(result.out.empty(), each.made.empty());
        EXPECT_EQ(scratch(), Lines{});
    }
}

// With the tool itself, on a folder that contains the folder for temporary files.
TEST_F(Program, aMacZipHoldsWhatCouldBeStagedAndNamesTheRest)
{
    useTool("ditto");
    makeFifo(folder / "in/pipe");
    fs::rename(folder / "tmp", folder / "in/tmp");
    fs::create_directory_symlink(folder / "in/tmp", folder / "tmp");
    const bool hasAttributes = setxattr((folder / "in/one.txt").c_str(), "user.k", "v", 1, 0) == 0;
    const RunResult result
        = parcelo({"--to=../out", "--name=Demo", "--type=mac-zip", "two.txt", "../in"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
        "parcelo: '" + (folder / "in/../in/pipe").native()
            + "' is left out: Operation not supported\n");
    EXPECT_EQ(result.out, (folder / "out/Demo.zip").native() + "\n");
    Lines names{"Demo/", "Demo/in/", "Demo/in/one.txt", "Demo/in/three.txt", "Demo/in/tmp/",
        "Demo/in/tmp/plan", "Demo/in/two.txt", "Demo/two.txt"};
    if (hasAttributes)
        names.emplace_back("__MACOSX/Demo/in/._one.txt");
    std::istringstream listing(run({"unzip", "-Z1", folder / "out/Demo.zip"}).out);
    Lines listed{std::istream_iterator<std::string>(listing), {}};
    std::ranges::sort(listed);
    EXPECT_EQ(listed, names);
    EXPECT_EQ(scratch(), Lines{});

    fs::remove(folder / "in/pipe");
    EXPECT_EQ(parcelo({"--to=../out", "--type=mac-zip", "."}).status, 0);
}

TEST_F(Program, aMacZipIsMadeOfLinksWhereItsItemsAre)
{
    const fs::path in = fs::canonical(folder / "in");
    makes("pwd >\"$TMPDIR/where\"; [ Demo/in/one.txt -ef '" + (in / "one.txt").native()
        + "' ] || exit 1");
    // Whether destination and temporary files are elsewhere, and where the links are made.
    const std::tuple<bool, bool, fs::path> cases[] = {
        {false, true, in.parent_path() / "out/.org.parcelo"},
        {true, true, in.parent_path() / ".org.parcelo"}, {true, false, folder / "tmp/org.parcelo"}};
    for (const auto& [isToElsewhere, isTemporaryElsewhere, where] : cases) {
        const EnvironmentVariable temporary("TMPDIR", "/dev/shm");
        const TestFolder elsewhere;
        for (const char* name : {"out", "tmp"})
            fs::create_directory(elsewhere / name);
        fs::copy_file(folder / "tmp/plan", elsewhere / "tmp/plan");
        const fs::path tmp = (isTemporaryElsewhere ? elsewhere : folder) / "tmp";
        const fs::path out = (isToElsewhere ? elsewhere : folder) / "out";
        Lines arguments = command({"--to", out, "--name=Demo", "--type=mac-zip", "."});
        arguments.insert(arguments.begin() + 3, "TMPDIR=" + tmp.native());
        const RunResult result = run(arguments, options());
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(readFile(tmp / "where").starts_with(where.native())) << readFile(tmp / "where");
        EXPECT_EQ(namesIn(folder.path()), (Lines{"in", "out", "prefix", "tmp"}));
        EXPECT_EQ(namesIn(out), Lines{"Demo.zip"});
        EXPECT_EQ(scratch(), Lines{});
    }
}

// With the tools themselves and foreign readers.
TEST_F(Program, nothingIsLostOfItemsOfOneName)
{
    for (const char* tool : {"tar", "ditto"})
        useTool(tool);
    writeFile(folder / "in/a/x.txt", "first");
    writeFile(folder / "in/b/x.txt", "second");
    writeFile(folder / "in/c/x 2.txt", "third");
    writeFile(folder / "in/d/a/inside", "fourth");
    const Lines items{"a/x.txt", "b/x.txt", "c/x 2.txt", "a", "d/a"};
    struct Case {
        const char* type;
        Lines reader;
    };
    const Case cases[] = {{"tar.gz", {"tar", "-xzf", "../out/Demo.tar.gz", "-C", "../read"}},
        {"mac-zip", {"unzip", "-q", "../out/Demo.zip", "-d", "../read"}}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.type);
        fs::create_directory(folder / "read");
        Lines arguments{"--to=../out", "--name=Demo", "--type", each.type};
        arguments.insert(arguments.end(), items.begin(), items.end());
        const RunResult result = parcelo(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.err.find("/b/x.txt' is kept as 'x 2.txt'"), std::string::npos);
        EXPECT_EQ(run(each.reader, options()).status, 0);
        const fs::path read = folder / "read/Demo";
        EXPECT_EQ(namesIn(read), (Lines{"a", "a 2", "x 2 2.txt", "x 2.txt", "x.txt"}));
        EXPECT_EQ(readFile(read / "x.txt") + readFile(read / "x 2.txt")
                + readFile(read / "x 2 2.txt") + readFile(read / "a 2/inside"),
            "firstsecondthirdfourth");
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(read / "x 2.txt")));
        EXPECT_EQ(readFile(read / "a/x.txt"), "first");
        EXPECT_EQ(scratch(), Lines{});
        fs::remove_all(folder / "read");
    }
}

// Neither the private folder nor what is in it is a file of the user's.
TEST_F(Program, anItemMayContainTheDestination)
{
    for (const char* tool : {"zip", "tar", "ditto"})
        useTool(tool);
    fs::create_directory(folder / "in/.org.parcelo.Parcelo-mine"); // of no job: a folder like any
    for (const char* type : {"zip", "mac-zip", "tar.gz"}) {
        ASSERT_EQ(parcelo({"--to=.", "--name=Demo", "--type", type, "../in"}).status, 0);
        const fs::path archive
            = folder / "in" / (std::string(type) == "tar.gz" ? "Demo.tar.gz" : "Demo.zip");
        const RunResult listing = run({"bsdtar", "-tf", archive});
        EXPECT_EQ(std::ranges::count(listing.out, '\n'), type[0] == 'z' ? 5 : 6) << listing.out;
        EXPECT_NE(listing.out.find("in/.org.parcelo.Parcelo-mine/\n"), std::string::npos);
        fs::remove(archive);
    }
}

TEST_F(Program, whatIsAskedForReachesTheTools)
{
    for (const char* tool : {"hdiutil", "du"})
        fs::create_symlink(PARCELO_TEST_STANDINS_DIR "/tool", resources / tool);
    struct Case {
        Lines arguments;
        std::string tool; // with what it is called with, paths as @
    };
    const Case cases[] = {
        {{"--level", "0", "--keep-ds-store"}, "zip|-0|-y|-r|@|./one.txt"},
        {{"--type=dmg", "--password-stdin", "--name=My.Files"}, // the image drops the extension
            "hdiutil|convert|My.sparseimage|-format|UDZO|-encryption|-passphrase|secret "
            "word|-o|My"},
    };
    for (const Case& each : cases) {
        fs::remove(folder / "tmp/record");
        Lines arguments{"--to=../out", "--name=Demo"};
        arguments.insert(arguments.end(), each.arguments.begin(), each.arguments.end());
        arguments.emplace_back("one.txt");
        RunOptions withInput = options();
        withInput.input = "secret word\nsecond line\n";
        EXPECT_EQ(run(command(arguments), withInput).status, 0) << each.tool;
        std::istringstream record(readFile(folder / "tmp/record"));
        Lines calls;
        for (std::string line; std::getline(record, line);) {
            std::string call;
            std::istringstream words(line);
            for (int index = 0; std::getline(words, line, '|'); ++index)
                if (index != 1) // its working folder
                    call += (call.empty() ? "" : "|") + (line.starts_with('/') ? "@" : line);
            calls.push_back(call);
        }
        EXPECT_EQ(std::ranges::count(calls, each.tool), 1) << testing::PrintToString(calls);
    }
    EXPECT_EQ(made(), (Lines{"Demo.zip", "My.Files.dmg"}));
}

TEST_F(Program, anOlderArchiveStandsUntilANewOneTakesItsPlace)
{
    struct Case {
        const char* afterwards; // of the tool
        int signal; // to the program, meanwhile
        int status;
    };
    const Case cases[] = {{"exit 99", 0, 1}, {"kill -9 $$", 0, 1}, {": >\"$archive\"", 0, 1},
        {"rm \"$archive\"", 0, 1}, {": >\"$TMPDIR/started\"; sleep 1", SIGKILL, 128 + SIGKILL},
        {": >\"$TMPDIR/started\"; trap 'exit 9' INT; sleep 1", SIGTERM, 130}};
    writeFile(folder / "in/noise", randomBytes(300'000, 1));
    for (const char* type : {"zip", "mac-zip", "tar.gz"}) {
        const std::string name = std::string(type) == "tar.gz" ? "Demo.tar.gz" : "Demo.zip";
        Lines arguments{"--to=../out", "--name=Demo", "--type", type, "one.txt"};
        for (const Case& each : cases) {
            SCOPED_TRACE(std::string(type) + ": " + each.afterwards);
            writeFile(folder / "out" / name, "older");
            const auto older = identityOf(name);
            makes("", each.afterwards);
            RunningProgram running(command(arguments), options());
            if (each.signal != 0) {
                ASSERT_TRUE(waitUntil([&] { return fs::exists(folder / "tmp/started"); }));
                running.signal(each.signal);
            }
            EXPECT_EQ(running.wait().status, each.status);
            EXPECT_EQ(identityOf(name), older);
            fs::remove(folder / "tmp/started");
        }
        // No room, for the tool itself; it ends each job whose file outgrows the limit.
        useTool(std::string(type) == "mac-zip" ? "ditto"
                : name.substr(5, 3) == "tar"   ? "tar"
                                               : "zip");
        Lines limited = command(arguments);
        limited.back() = "noise";
        limited.insert(limited.begin(), {"/bin/sh", "-c", "ulimit -f 100; exec \"$@\"", "sh"});
        const auto older = identityOf(name);
        const RunResult full = run(limited, options());
        EXPECT_EQ(full.status, 1);
        EXPECT_NE(full.err.find("File too large"), std::string::npos) << full.err;
        EXPECT_EQ(identityOf(name), older);

        if (std::string(type) == "mac-zip") { // no room for the copy of a folder
            Lines unstaged = command({"--to=../out", "--name=Demo", "--type=mac-zip", "../in"});
            unstaged.insert(unstaged.begin() + 2, "ASAN_OPTIONS=detect_leaks=0");
            unstaged.insert(unstaged.begin(),
                {"strace", "-f", "-o", "/dev/null", "-e", "inject=mkdirat:error=ENOSPC"});
            const RunResult staging = run(unstaged, options());
            EXPECT_EQ(staging.status, 1);
            EXPECT_NE(staging.err.find("the disk of that folder is full"), std::string::npos)
                << staging.err;
            EXPECT_EQ(identityOf(name), older);
        }

        EXPECT_EQ(parcelo(arguments).status, 0);
        EXPECT_NE(readFile(folder / "out" / name), "older");
        EXPECT_EQ(made(), Lines{name}); // nothing is left of the killed one, either
        fs::remove(folder / "out" / name);
    }
}

// A power cut may come at any time.
TEST_F(Program, isOnTheDiskBeforeItHasItsName)
{
    const std::string out = fs::canonical(folder / "out");
    Lines traced = command({"--to=../out", "--name=Demo", "one.txt"});
    traced.insert(traced.begin() + 2, "ASAN_OPTIONS=detect_leaks=0"); // it cannot under a tracer
    traced.insert(traced.begin(),
        {"strace", "-f", "-y", "-o", "../tmp/trace", "-e",
            "trace=fsync,fdatasync,rename,renameat2"});
    ASSERT_EQ(run(traced, options()).status, 0);
    const std::string trace = readFile(folder / "tmp/trace");
    const auto named = trace.find("\"" + out + "/Demo.zip\"");
    const auto onDisk = trace.find("fdatasync(");
    ASSERT_NE(named, std::string::npos) << trace;
    EXPECT_LT(onDisk, named) << trace;
    EXPECT_EQ(trace.find("/Demo.zip>) = 0", onDisk), trace.find(">) = 0", onDisk) - 9) << trace;
    EXPECT_NE(trace.find("<" + out + ">) = 0", named), std::string::npos) << trace;
}

TEST_F(Program, aFileThatCameMeanwhileStays)
{
    const std::string out = fs::canonical(folder / "out");
    struct Case {
        const char* before;
        std::string meanwhile; // before the tool makes the archive
        Lines made;
        const char* content; // of the file at the archive's path
    };
    const Case cases[] = {
        {"", "printf theirs >'" + out + "/Demo.zip'", {"Demo 2.zip", "Demo.zip"}, "theirs"},
        {"older", "printf theirs >x; mv x '" + out + "/Demo.zip'", {"Demo 2.zip", "Demo.zip"},
            "theirs"},
        {"older", "rm '" + out + "/Demo.zip'", {"Demo.zip"}, "./one.txt|"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.meanwhile);
        if (*each.before != '\0')
            writeFile(folder / "out/Demo.zip", each.before);
        makes(each.meanwhile);
        const RunResult result = parcelo({"--to=../out", "--name=Demo", "one.txt"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(made(), each.made);
        EXPECT_EQ(readFile(folder / "out/Demo.zip"), each.content);
        const std::string own = each.content == std::string("theirs") ? "Demo 2.zip" : "Demo.zip";
        EXPECT_EQ(result.out, out + "/" + own + "\n");
        EXPECT_EQ(readFile(folder / "out" / own), "./one.txt|");
        fs::remove_all(folder / "out");
        fs::create_directory(folder / "out");
    }
}

TEST_F(Program, anInterruptLeavesNothingBehind)
{
    struct Case {
        int signal;
        const char* during; // the stand-in's item
        const char* type;
    };
    const Case cases[] = {{SIGINT, "./one.txt", "zip"}, {SIGTERM, "./two.txt", "zip"},
        {SIGHUP, "./three.txt", "zip"}, {SIGINT, "Demo", "tar.gz"}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.during);
        // Half an archive, and a tool that needs several interrupts.
        makes(R"(if [ "$item" = )" + std::string(each.during) + R"( ]; then
            trap 'count=x$count; [ ${#count} -ge 3 ] && exit 9' INT
            printf half >"$archive"; : >"$TMPDIR/started"
            while :; do sleep 0.05; done; fi)");
        RunningProgram running(command({"--to=../out", "--name=Demo", "--type", each.type,
                                   "one.txt", "two.txt", "three.txt"}),
            options());
        ASSERT_TRUE(waitUntil([&] { return fs::exists(folder / "tmp/started"); }));
        running.signal(each.signal);
        const RunResult result = running.wait();
        EXPECT_EQ(result.status, 130);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "parcelo: interrupted\n");
        EXPECT_EQ(made(), Lines{});
        EXPECT_EQ(scratch(), Lines{});
        fs::remove(folder / "tmp/started");
    }
}

TEST_F(Program, anInterruptEndsTheWaitForAPassword)
{
    makeFifo(folder / "tmp/input");
    Lines arguments = command({"--to=../out", "--type=dmg", "--password-stdin", "one.txt"});
    arguments.insert(arguments.begin(), {"/bin/sh", "-c", "exec \"$@\" <>../tmp/input", "sh"});
    RunningProgram running(
        arguments, {.folder = folder / "in", .timeout = std::chrono::seconds(10)});
    const auto heedsSignals = [&] {
        const std::string status = readFile("/proc/" + std::to_string(running.pid()) + "/status");
        const auto caught = std::stoull(status.substr(status.find("SigCgt:") + 7), nullptr, 16);
        return (caught >> (SIGTERM - 1) & 1) != 0;
    };
    ASSERT_TRUE(waitUntil(heedsSignals));
    running.signal(SIGTERM);
    const RunResult result = running.wait();
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "parcelo: interrupted\n");
    EXPECT_EQ(made(), Lines{});
}

TEST_F(Program, drawsOneLineThatNeverWraps)
{
    makes("", "for i in 1 2 3 4; do echo \"  adding: $i\"; sleep 0.06; done");
    const std::string path = fs::canonical(folder / "out").native() + "/Untitled.zip\r\n";
    const auto shown = [&](const char* terminal, const char* option, unsigned short columns) {
        Lines arguments = command({"--to=" + (folder / "out").native(), option,
            folder / "in/one.txt", folder / "in/two.txt"});
        arguments.insert(arguments.begin() + 2, std::string("TERM=") + terminal);
        const auto [status, output] = runInTerminal(arguments, columns);
        EXPECT_EQ(status, 0);
        EXPECT_TRUE(output.ends_with(path)) << output; // on a line that was cleared
        return output.substr(0, output.size() - path.size());
    };
    EXPECT_EQ(shown("dumb", "--level=1", 80), "");
    EXPECT_EQ(shown("xterm", "--quiet", 80), "");
    for (const unsigned short columns : {80, 20}) {
        std::string left = shown("xterm", "--level=1", columns);
        EXPECT_NE(left.find("% "), std::string::npos);
        EXPECT_TRUE(left.ends_with("\r\033[K"));
        const std::string end = "\033[K";
        for (std::size_t at = 0; (at = left.find(end)) != std::string::npos;) {
            EXPECT_EQ(left.rfind('\r', at), 0U);
            EXPECT_LE(at, columns); // with the carriage return
            left.erase(0, at + end.size());
        }
        EXPECT_EQ(left, "");
    }
}
