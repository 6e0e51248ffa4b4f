// The whole program, installed in a folder of the test's own with stand-ins for its tools.

#include "tests/support/Test.h"
#include "tests/support/ZipInspector.h"

namespace
{

Lines joined(Lines first, const Lines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class Program : public testing::Test
{
protected:
    Program()
    {
        for (const fs::path& place :
            {program.parent_path(), resources, folder / "out", folder / "tmp"})
            fs::create_directories(place);
        fs::copy_file(PARCELO_PROGRAM, program);
        fs::create_symlink(
            PARCELO_WINDOW_PROGRAM, folder / "prefix/libexec/parcelo/parcelo-window");
        for (const char* tool : {"zip", "tar", "ditto"})
            fs::create_symlink(PARCELO_TEST_STANDINS_DIR "/tool", resources / tool);
        for (const char* name : {"one.txt", "two.txt", "three.txt"})
            writeFile(folder / "in" / name, name);
        makes();
    }

    // The stand-ins make an archive after the script, in which "$item" is what they are to add.
    void makes(const std::string& script = "", const std::string& afterwards = "") const
    {
        const std::string begin = R"(for argument; do case "$argument" in
            */*.zip | */*.tar.gz) archive="$argument" ;;
            ./*) item="$argument" ;; esac; done
            : "${item:=$argument}"
            [ "${0##*/} $1" != "hdiutil convert" ] || archive="$(pwd)/$argument.dmg")";
        const std::string make = R"([ -z "$archive" ] || printf '%s|' "$item" >>"$archive")";
        writeFile(
            folder / "tmp/plan", begin + "\n" + script + "\n" + make + "\n" + afterwards + "\n");
    }

    Lines command(const Lines& arguments, const Lines& environment = {}) const
    {
        const Lines start{"/usr/bin/env", "-i", "TMPDIR=" + (folder / "tmp").native()};
        return joined(joined(start, environment), joined({program}, arguments));
    }
    RunOptions options() const { return {.folder = folder / "in"}; }
    RunResult parcelo(const Lines& arguments) const { return run(command(arguments), options()); }
    // The tests' archive, of what else is given.
    static Lines demo(const Lines& more) { return joined({"--to=../out", "--name=Demo"}, more); }

    Lines made() const { return namesIn(folder / "out"); }
    // In place of the stand-ins.
    void useTools() const
    {
        for (const char* name : {"zip", "tar", "ditto"}) {
            fs::remove(resources / name);
            fs::create_symlink(fs::path(PARCELO_TOOLS_DIR) / name, resources / name);
        }
    }
    // The working folders that are left.
    Lines scratch() const
    {
        Lines names = namesIn(folder / "tmp");
        std::erase_if(names, [](const auto& name) { return !contains(name, "parcelo"); });
        return names;
    }

    const TestFolder folder;
    const fs::path program = folder / "prefix/bin/parcelo";
    const fs::path resources = folder / "prefix/libexec/parcelo/Contents/Resources";
};

} // namespace

TEST_F(Program, printsThePathOfWhatItMade)
{
    const std::string own = folder.path().filename(), bytes(255, '\x80');
    std::string accents; // of two bytes each
    while (accents.size() < 254)
        accents += "\u00e9";
    const std::tuple<Lines, std::string, std::string> cases[] = {
        // What is asked for, the archive's name and its content.
        {{"one.txt"}, "one.zip", "./one.txt|"},
        {{"one.txt", "../in/two.txt", "./three.txt"}, "Untitled.zip",
            "./one.txt|./two.txt|./three.txt|"},
        {{"--name", "Demo.zip", "."}, "Demo.zip", "./in|"},
        {{"../in//"}, "in.zip", "./in|"},
        {{".."}, own + ".zip", "./" + own + "|"},
        {{"link"}, "link.zip", "./link|"},
        {{"--type=tar.gz", "one.txt"}, "one.tar.gz", "one|"},
        {{"--name=\xff\xfe", "\xff.txt"}, "\xff\xfe.zip", "./\xff.txt|"},
        {{"--name=-x", "--", "--help"}, "-x.zip", "./--help|"},
        {{"--type=tar.gz", "--name=Demo.tar.gz", "one.txt"}, "Demo.tar.gz", "Demo|"},
        {{"--name=.zip", "one.txt"}, ".zip.zip", "./one.txt|"},
        {{".bashrc"}, ".bashrc.zip", "./.bashrc|"},
        {{"--type=tar.gz", "a.tar.gz"}, "a.tar.tar.gz", "a.tar|"},
        // As much as fits; another byte would cut a letter in half.
        {{accents}, accents.substr(0, 250) + ".zip", "./" + accents + "|"},
        {{"--type=tar.gz", accents}, accents.substr(0, 248) + ".tar.gz",
            accents.substr(0, 248) + "|"},
        {{bytes}, bytes.substr(4) + ".zip", "./" + bytes + "|"},
    };
    fs::create_symlink("/none", folder / "in/link");
    for (const std::string& name :
        {"\xff.txt"s, "--help"s, ".bashrc"s, "a.tar.gz"s, accents, bytes})
        writeFile(folder / "in" / name, "");
    for (const auto& [arguments, archive, content] : cases) {
        const RunResult result = parcelo(joined({"--to", "../out"}, arguments));
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out, (folder / "out" / archive).native() + "\n");
        EXPECT_EQ(readFile(folder / "out" / archive), content);
    }
    EXPECT_EQ(scratch(), Lines{});
}

TEST_F(Program, refusesBeforeAnythingIsMade)
{
    writeFile(folder / "out/one.zip", "older");
    fs::create_directory(folder / "out/two.zip");
    const std::string older = folder / "out/one.zip";
    const fs::path window = folder / "prefix/libexec/parcelo/parcelo-window";
    const std::string noWindow = fs::exists(window) // it is not built under every sanitizer
        ? "there is no display to open the window on; give --to FOLDER"
        : "there is no window to open (" + window.native()
            + ": No such file or directory); give --to FOLDER";
    const std::string cannot = "Unable to write to '";
    const std::pair<Lines, std::string> cases[] = {
        {{"one.txt"}, noWindow},
        {{"--", "one.txt"}, noWindow},
        {{"--to=../out", "one.txt", "none"}, "'none': No such file or directory"},
        {{"--to=../out", "no\x1b\xc2\x9bne"}, "'no??ne': No such file or directory"},
        {{"--to=../out", "/"}, "'/' has no name to be archived under"},
        {{"--to=../out", "--type=tar.gz", "/dev/null"}, "'/dev/null' leads to no file or folder"},
        {{"--to=../none", "one.txt"}, "'../none': No such file or directory"},
        {{"--to=one.txt", "two.txt"},
            cannot + (folder / "in/one.txt/two.zip").native()
                + "': that folder cannot be used (Not a directory)"},
        {{"--to=/sys", "two.txt"}, cannot + "/sys/two.zip': you may not write in that folder"},
        {{"--to=../out", "two.txt"},
            cannot + (folder / "out/two.zip").native() + "': a folder has that name"},
        {{"--to=../out", older}, "the archive would replace '" + older + "', which is to be in it"},
        {{"--to=../out", "--type=dmg", "one.txt"},
            "this system has no tool for that type (/usr/bin/hdiutil)"},
    };
    for (const auto& [arguments, message] : cases) {
        const RunResult result = parcelo(arguments);
        EXPECT_EQ(result.status, 1) << message;
        EXPECT_EQ(result.err.substr(0, result.err.find('\n')), "parcelo: " + message);
        EXPECT_EQ(result.out, "");
    }
    EXPECT_FALSE(fs::exists(folder / "tmp/record"));
    fs::remove_all(folder / "tmp");
    EXPECT_EQ(parcelo({"--to=../out", "one.txt"}).err,
        "parcelo: cannot make a working folder in " + (folder / "tmp").native()
            + ": No such file or directory\n");
    EXPECT_EQ(made(), (Lines{"one.zip", "two.zip"}));
    for (const char* word : {"--help", "--version"}) {
        const RunResult told = parcelo({word});
        EXPECT_EQ(told.status, 0);
        EXPECT_TRUE(contains(told.out, "parcelo"));
    }
}

TEST_F(Program, tellsWhatHappensAndReplacesAnOlderArchiveByAWholeOneOnly)
{
    const Lines all{"zip", "mac-zip", "tar.gz"};
    const std::string none = "no archive was made";
    const std::string hurt = "Unable to write to '@': ";
    // Half an archive of an item, and a tool that needs several interrupts.
    const std::string stays = R"(trap 'count=x$count; [ ${#count} -ge 3 ] && exit 9' INT
        : >"$TMPDIR/started"; while :; do sleep 0.05; done)";
    struct Case {
        Lines types;
        std::string afterwards;
        int status;
        Lines errors; // with the tool as % and the archive as @
        bool isMade = false;
        int signal = 0; // to the program, meanwhile
        Lines items{"one.txt"};
    };
    const Case cases[] = {
        {all, "echo 'warning: x: kept as x 2'", 0, {"%: warning: x: kept as x 2"}, true},
        {all, "rm \"$TMPDIR/../out/\"*", 0, {}, true}, // the older one, by somebody else
        {{"zip"}, "echo '  adding: a'; echo 'warning: m: Permission denied' >&2; exit 18", 1,
            {"% ended with status 18: warning: m: Permission denied"}, true},
        {{"tar.gz"}, "exit 1", 1, {"% ended with status 1"}, true},
        {{"zip"}, "echo 'no space'; exit 14", 1, {"% ended with status 14: no space", none}},
        {{"tar.gz"}, "echo 'cannot write a: No space left on device'; exit 2", 1,
            {"% ended with status 2: cannot write a: No space left on device",
                hurt + "the disk of that folder is full", none}},
        {{"zip"}, "rm \"$archive\"; echo 'warning: a: b: gone'; exit 12", 1,
            {"% ended with status 12: warning: a: b: gone", "'a: b' cannot be read (gone)", none}},
        {all, "rm \"$archive\"", 1, {hurt + "the tool has made nothing", none}},
        {all, ": >\"$archive\"", 1, {hurt + "the tool has made nothing", none}},
        {all, "exit 99", 1, {"% ended with status 99", none}},
        {all, "kill -9 $$", 1, {"% ended with status 137", none}},
        {{"zip"}, stays, 130, {"interrupted"}, false, SIGINT},
        {{"mac-zip"}, stays, 130, {"interrupted"}, false, SIGTERM},
        {{"tar.gz"}, stays, 130, {"interrupted"}, false, SIGHUP},
        {{"zip"}, "[ \"$item\" = ./one.txt ] || " + stays, 130, {"interrupted"}, false, SIGHUP,
            {"one.txt", "two.txt"}},
        {{"zip"}, "rm \"$TMPDIR/../prefix/libexec/parcelo/Contents/Resources/zip\"", 1,
            {"a tool could not be started (cannot run '" + (resources / "zip").native()
                    + "': No such file or directory)",
                none},
            false, 0, {"one.txt", "two.txt"}},
    };
    for (const Case& each : cases)
        for (const std::string& type : each.types) {
            SCOPED_TRACE(type + ": " + each.afterwards);
            const std::string tool = type == "zip" ? "zip" : type == "tar.gz" ? "tar" : "ditto";
            const fs::path archive = folder / (tool == "tar" ? "out/Demo.tar.gz" : "out/Demo.zip");
            writeFile(archive, "older");
            chmod(archive.c_str(), S_IRUSR | S_IWUSR);
            const auto identity = [&] {
                struct stat status = {};
                EXPECT_EQ(stat(archive.c_str(), &status), 0);
                EXPECT_EQ(status.st_mode, S_IFREG | S_IRUSR | S_IWUSR);
                return std::tuple(status.st_ino, status.st_ctim.tv_sec, status.st_ctim.tv_nsec,
                    readFile(archive));
            };
            const auto older = identity();
            makes("", each.afterwards);
            RunningProgram running(command(demo(joined({"--type", type}, each.items))), options());
            if (each.signal != 0) {
                EXPECT_TRUE(waitUntil([&] { return fs::remove(folder / "tmp/started"); }));
                running.signal(each.signal);
            }
            const RunResult result = running.wait();
            std::string expected;
            for (const std::string& error : each.errors)
                expected += "parcelo: " + error + "\n";
            for (const auto& [sign, text] : {std::pair("%", tool), {"@", archive.native()}})
                if (const auto at = expected.find(sign); at != std::string::npos)
                    expected.replace(at, 1, text);
            EXPECT_EQ(result.err, expected);
            EXPECT_EQ(result.status, each.status);
            EXPECT_EQ(identity() == older, !each.isMade);
            EXPECT_EQ(result.out, each.isMade ? archive.native() + "\n" : "");
            EXPECT_EQ(made(), Lines{archive.filename()});
            EXPECT_EQ(scratch(), Lines{});
            fs::remove(archive);
        }
}

TEST_F(Program, aMacZipIsMadeOfLinksWhereItsItemsAre)
{
    makes(R"(pwd >"$TMPDIR/where"; [ Demo/in/one.txt -ef ')" + (folder / "in/one.txt").native()
        + "' ] || exit 1");
    // Whether destination and temporary files are elsewhere, and where the links are made.
    const std::tuple<bool, bool, fs::path> cases[] = {{false, true, folder / "out/.org.parcelo"},
        {true, true, folder / ".org.parcelo"}, {true, false, folder / "tmp/org.parcelo"}};
    for (const auto& [isToElsewhere, isTemporaryElsewhere, where] : cases) {
        const EnvironmentVariable temporary("TMPDIR", "/dev/shm");
        const TestFolder elsewhere;
        fs::create_directory(elsewhere / "out");
        writeFile(elsewhere / "tmp/plan", readFile(folder / "tmp/plan"));
        const fs::path tmp = (isTemporaryElsewhere ? elsewhere : folder) / "tmp";
        const fs::path out = (isToElsewhere ? elsewhere : folder) / "out";
        const RunResult result = run(command({"--to", out, "--name=Demo", "--type=mac-zip", "."},
                                         {"TMPDIR=" + tmp.native()}),
            options());
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_TRUE(readFile(tmp / "where").starts_with(where.native())) << readFile(tmp / "where");
        EXPECT_EQ(namesIn(folder.path()), (Lines{"in", "out", "prefix", "tmp"}));
        EXPECT_EQ(namesIn(out), Lines{"Demo.zip"});
        EXPECT_EQ(scratch(), Lines{});
    }
}

// With the tools themselves and a foreign reader: items of one name, and one that contains the
// destination and the working folder. Those that are a job's own are no files of the user's.
TEST_F(Program, nothingIsLostAndNothingOfItsOwnIsAdded)
{
    useTools();
    std::set<std::string> expected{"./a 2/inside:d/a/inside", "./a/x.txt:a/x.txt",
        "./x 2 2.txt:c/x 2.txt", "./x 2.txt:b/x.txt", "./x.txt:a/x.txt",
        "./in/.org.parcelo.Parcelo-mine"};
    for (const std::string file : {"a/x.txt", "b/x.txt", "c/x 2.txt", "d/a/inside", "one.txt",
             "two.txt", "three.txt", ".org.parcelo.Parcelo-mine/x"}) {
        writeFile(folder / "in" / file, file);
        expected.insert("./in/" + file + ":" + file);
    }
    fs::remove_all(folder / "tmp");
    fs::create_directory(folder / "in/tmp");
    fs::create_directory_symlink("in/tmp", folder / "tmp");
    const bool hasAttributes = setxattr((folder / "in/one.txt").c_str(), "user.k", "v", 1, 0) == 0;
    const std::tuple<std::string, bool, std::string> cases[] = {
        // A type, whether there is a pipe, and how a new name is told.
        {"mac-zip", true, "/b/x.txt' is kept as 'x 2.txt'"},
        {"mac-zip", false, "/b/x.txt' is kept as 'x 2.txt'"},
        {"tar.gz", false, "/b/x.txt' is kept as 'x 2.txt'"}, {"zip", false, "stored as x 2.txt"}};
    for (const auto& [type, hasPipe, told] : cases) {
        SCOPED_TRACE(type);
        if (hasPipe)
            makeFifo(folder / "in/pipe");
        const RunResult result = parcelo({"--to=.", "--name=Demo", "--type", type, "../in",
            "a/x.txt", "b/x.txt", "c/x 2.txt", "a", "d/a"});
        EXPECT_EQ(fs::remove(folder / "in/pipe"), result.status == 1);
        EXPECT_EQ(contains(result.err, "pipe' is left out: Operation not supported\n"), hasPipe);
        EXPECT_TRUE(contains(result.err, told)) << result.err;
        const fs::path archive = linesOf(result.out).at(0);
        const fs::path read = folder / "read";
        fs::create_directory(read);
        EXPECT_EQ(run({"bsdtar", "-xf", archive}, {.folder = read}).status, 0);
        EXPECT_EQ(
            fs::exists(read / "__MACOSX/Demo/in/._one.txt"), hasAttributes && type == "mac-zip");
        const Lines found = linesOf(run({"sh", "-c", "grep -r '' .; find . -name '*org.parcelo*'"},
            {.folder = type == "zip" ? read : read / "Demo"})
                                        .out);
        EXPECT_EQ(std::set(found.begin(), found.end()), expected);
        EXPECT_EQ(scratch(), Lines{});
        fs::remove_all(read);
        fs::remove(archive);
    }
    const Lines full{"strace", "-f", "-o", "/dev/null", "-e", "inject=mkdirat:error=ENOSPC"};
    const Lines again = command({"--to=../out", "--type=mac-zip", "."},
        {"ASAN_OPTIONS=detect_leaks=0"}); // which no tracer allows
    EXPECT_TRUE(
        contains(run(joined(full, again), options()).err, "the disk of that folder is full"));
}

TEST_F(Program, whatIsAskedForReachesTheTools)
{
    for (const char* tool : {"hdiutil", "du"})
        fs::create_symlink(PARCELO_TEST_STANDINS_DIR "/tool", resources / tool);
    const std::pair<Lines, const char*> cases[] = {
        // What a tool is called with, but for its folder, and paths as @.
        {{"--level", "0", "--keep-ds-store"}, "zip|-0|-y|-r|@|./one.txt"},
        {{"--type=dmg", "--password-stdin", "--name=My.Files"}, // the image drops the extension
            "hdiutil|convert|My.sparseimage|-format|UDZO|-encryption|-passphrase|secret "
            "word|-o|My"},
    };
    for (const auto& [arguments, call] : cases) {
        RunOptions withInput = options();
        withInput.input = "secret word\nsecond line\n";
        EXPECT_EQ(run(command(demo(joined(arguments, {"one.txt"}))), withInput).status, 0);
        const Lines calls = linesOf(
            run({"sed", "-E", R"(s/\|[^|]*//; s/\|\/[^|]*/|@/g)", folder / "tmp/record"}).out);
        EXPECT_EQ(std::ranges::count(calls, call), 1) << testing::PrintToString(calls);
    }
    EXPECT_EQ(made(), (Lines{"Demo.zip", "My.Files.dmg"}));
}

TEST_F(Program, isOnTheDiskBeforeItHasItsName)
{
    const std::string out = folder / "out";
    const Lines traced = joined({"strace", "-f", "-y", "-o", "../tmp/trace", "-e",
                                    "trace=fsync,fdatasync,rename,renameat2"},
        command(demo({"one.txt"}), {"ASAN_OPTIONS=detect_leaks=0"}));
    ASSERT_EQ(run(traced, options()).status, 0);
    const std::string trace = readFile(folder / "tmp/trace");
    const auto named = trace.find("\"" + out + "/Demo.zip\"");
    const auto onDisk = trace.find("fdatasync(");
    ASSERT_NE(named, std::string::npos) << trace;
    EXPECT_LT(onDisk, named) << trace;
    EXPECT_EQ(trace.find("/Demo.zip>) = 0", onDisk), trace.find(">) = 0", onDisk) - 9) << trace;
    EXPECT_NE(trace.find("<" + out + ">) = 0", named), std::string::npos) << trace;
}

TEST_F(Program, anInterruptEndsTheWaitForAPassword)
{
    makeFifo(folder / "tmp/input");
    RunningProgram running(joined({"/bin/sh", "-c", "exec \"$@\" <>../tmp/input", "sh"},
                               command(demo({"--type=dmg", "--password-stdin", "one.txt"}))),
        {.folder = folder / "in", .timeout = std::chrono::seconds(10)});
    const std::regex heedsTerm("SigCgt:.*[4-7c-f]...\n");
    const std::string status = "/proc/" + std::to_string(running.pid()) + "/status";
    ASSERT_TRUE(waitUntil([&] { return std::regex_search(readFile(status), heedsTerm); }));
    running.signal(SIGTERM);
    const RunResult result = running.wait();
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.err, "parcelo: interrupted\n");
    EXPECT_EQ(made(), Lines{});
}

class Here : public Program
{
protected:
    void SetUp() override
    {
        if (!fs::exists(PARCELO_WINDOW_PROGRAM))
            GTEST_SKIP() << "the window is not built";
    }
    Lines here(const Lines& files) const
    {
        return joined(
            command({"--here"}, {"HOME=/", "XDG_CONFIG_HOME=" + folder.path().native()}), files);
    }
};

TEST_F(Here, itIsMadeWithoutAQuestionWhereTheSettingsSayAndReplacesNothing)
{
    const std::string in = (folder / "in/").native();
    const std::string out = (folder / "out/").native();
    const std::string chosen = "Destinations=/, " + out + "\nSelectedDestination=3";
    const std::string none = "'none': No such file or directory\n";
    const std::string remote = "'sftp://h/x': not a file on this computer\n";
    writeFile(folder / "in/two.ZIP", "");
    // A line of the settings, the files, the archive, what is complained of, and its names.
    const std::tuple<std::string, Lines, std::string, std::string, Lines> cases[] = {
        {"", {"one.txt"}, in + "one.zip", "", {"one.txt"}},
        {"", {in + "one.txt", "two.txt"}, in + "Untitled.zip", "", {"one.txt", "two.txt"}},
        {"SelectedDestination=1", {"one.txt"}, in + "one 2.zip", "", {"one.txt"}},
        {"ArchiveType=0", {"one.txt"}, in + "one.tar.gz", "", {}},
        {"KeepExtensionForDefaultName=true", {"two.ZIP"}, in + "two.zip", "", {"two.ZIP"}},
        {"KeepExtensionForDefaultName=true", {"two.zip"}, in + "two 2.zip", "", {"two.zip"}},
        {chosen, {"file://" + in + "on%65.txt", "none", "sftp://h/x"}, out + "one.zip",
            none + remote, {"one.txt"}},
        {chosen, {"none"}, "", none + "'none' cannot be read (No such file or directory)\n", {}},
        {"Destinations=/none, /\nSelectedDestination=2", {"one.txt"}, "",
            "Unable to write to '/none/one.zip': that folder cannot be used (No such file or "
            "directory)\n",
            {}},
    };
    for (const auto& [settings, files, archive, complaints, names] : cases) {
        writeFile(folder / "parcelo/parcelo.conf", "[General]\n" + settings + "\n");
        const RunResult result = run(here(files), options());
        EXPECT_EQ(result.out, archive.empty() ? "" : archive + "\n");
        EXPECT_EQ(std::regex_replace(result.err, std::regex("parcelo: "), ""),
            archive.empty() ? complaints + "no archive was made\n" : complaints);
        EXPECT_EQ(result.status, complaints.empty() ? 0 : 1);
        EXPECT_EQ(names.empty() ? names : inspectZip(archive).names(), names);
    }
    EXPECT_EQ(scratch(), Lines{});
}

TEST_F(Here, whoeverEndsItLeavesNothing)
{
    writeFile(folder / "in/large", "");
    fs::resize_file(folder / "in/large", std::uintmax_t{40} << 30); // takes the tool many seconds
    const Lines before = namesIn(folder / "in");
    for (const int signal : {SIGTERM, SIGKILL}) {
        RunningProgram running(here({"large"}), options());
        ASSERT_TRUE(waitUntil([&] { return namesIn(folder / "in") != before; }));
        running.signal(signal);
        EXPECT_EQ(running.wait().status, signal == SIGTERM ? 130 : 128 + SIGKILL);
        EXPECT_TRUE(waitUntil([&] { return namesIn(folder / "in") == before; }));
        EXPECT_TRUE(waitUntil([&] { return scratch().empty(); }));
    }
}

TEST_F(Program, drawsOneLineThatNeverWraps)
{
    makes("", "for i in 1 2 3 4; do echo \"  adding: $i\"; sleep 0.06; done");
    const std::string path = (folder / "out/Demo.zip").native() + "\r\n";
    const auto shown = [&](const std::string& terminal, const char* option, int columns) {
        const Lines inTerminal{"python3", "-c",
            "import os, pty, sys\n"
            "sys.exit(os.waitstatus_to_exitcode(pty.spawn(sys.argv[1:])))",
            "/bin/sh", "-c", "stty cols $0; exec \"$@\"", std::to_string(columns)};
        const auto [status, output, errors, memory] = run(
            joined(inTerminal, command(demo({option, "one.txt", "two.txt"}), {"TERM=" + terminal})),
            options());
        EXPECT_EQ(status, 0) << errors;
        EXPECT_TRUE(output.ends_with(path)) << output; // on a line that was cleared
        return output.substr(0, output.size() - path.size());
    };
    EXPECT_EQ(shown("dumb", "--level=1", 80), "");
    EXPECT_EQ(shown("xterm", "--quiet", 80), "");
    for (const int columns : {80, 20}) {
        const std::string output = shown("xterm", "--level=1", columns);
        const std::regex lines(
            "(\r[^\r\033]{0," + std::to_string(columns - 1) + "}\033\\[K)+\r\033\\[K");
        EXPECT_TRUE(std::regex_match(output, lines) && contains(output, "% ")) << output;
    }
}
