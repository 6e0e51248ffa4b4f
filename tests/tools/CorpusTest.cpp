// Trees and names that break archivers, put through the tools and brought back by other programs.

#include "tests/support/ToolTest.h"

namespace
{

// Options, lists, patterns, paths and commands to other programs; every reader can hold them all.
Names oddNames()
{
    Names all = {"-", "--", "-x", "-rf", "-T", "-@", "-C", "-9", "--help", "--delete",
        "--checkpoint-action=exec=touch PWNED", "-I touch PWNED", "--add-file=neighbour",
        "--files-from=neighbour", "--remove-files", "--exclude=*", "@neighbour", "@@", "!x", "*",
        "?", "**", "[n]eighbour", "[a-z]*", "[", "[]", "[z-a]", "{neighbour,x}", "\\", "a\\nb",
        "\\*", "trail\\", "..\\up", "C:\\x", "host:file", "~", "%s%n%d", "%41", "new\nline",
        "\n\nerror: Interrupted", "\x1b[31mred\x1b[0m", "\x7f", "99%\r 100%", "\u00e9", " ",
        " leading", "trailing ", "it's", "say \"hi\"", "$(touch PWNED)", "`touch PWNED`",
        ";touch PWNED;x", "${HOME}", "a|b&c", "<in>", "#x", ".hidden", "...", "..foo", "trailing.",
        "A", "a", "CON", "neighbour\n  adding: forged (stored 0%)", std::string(255, 'n')};
    for (char byte = 1; byte < 32; ++byte)
        all.push_back(std::to_string(byte) + byte + ".txt");
    return all;
}

void makeOddContent(const fs::path& item)
{
    const std::string end = "PK\5\6" + std::string(18, '\0');
    writeFile(item / "end", randomBytes(300, 1) + end + randomBytes(40, 2) + end);
    writeFile(item / "headers", "PK\7\10PK\3\4PK\1\2" + someText(5000) + "PK\6\7" + end);
    writeFile(item / "ustar", std::string(257, 'x') + "ustar" + std::string(2000, '\0'));
    writeFile(item / "gzip", "\x1f\x8b\b" + std::string(17, '\0'));
    writeFile(item / "empty", "");
    fs::create_directories(item / "n1/n2");
    writeFile(item / "holes", "head");
    fs::resize_file(item / "holes", 12 << 20);
    writeFile(item / "one/file", "linked");
    fs::create_hard_link(item / "one/file", item / "two");
}

struct Corpus : EachTool {
};
INSTANTIATE_TEST_SUITE_P(Tools, Corpus, eachTool, itsParameter);

} // namespace

TEST_P(Corpus, comesBackWhole)
{
    const struct {
        const char* name;
        std::function<void()> make;
        std::set<std::string> unfitReaders = {}; // they cannot hold such names themselves
        Names skipped = {}; // what must be warned of and left out
    } scenarios[] = {
        {"odd names", [&] { write(oddNames()); }},
        {"invalid UTF-8",
            [&] {
                write({"bad\xff", "latin1-caf\xe9", "trunc\xe2\x82", "overlong\xc0\xaf",
                    "surrogate\xed\xa0\x80", "mixed-\xc3\xa9-\xe9", "beyond\xf4\x90\x80\x80",
                    "c1-\x80\x9f", "dir\xfe/in\xfe"});
            },
            {"unzip"}}, // drops the byte 0xff
        {"Unicode",
            [&] {
                write({"\u00e9", "e\u0301", "\U0001F600", "\u202egpj.exe", "\u65e5\u672c\u8a9e",
                    "\ufeffbom", "\u2028ls", "\u0085nel", "\U0010ffff", "\u30d5\u30a9/\u4e2d"});
            },
            {"bsdtar"}}, // composes what is decomposed
        {"paths",
            [&] {
                write({std::string(255, 'd') + "/" + std::string(255, 'e'), "deep/e/in"});
                makeNestedFolders(item / "long", std::string(150, 'x'), 8);
                makeNestedFolders(item / "deep", "d", 400);
            }},
        {"modes",
            [&] {
                shell(R"(for mode in 400 444 666 777 1755 2755 4755 6755; do
                    echo >$mode; chmod $mode $mode; done
                    for mode in 555 700 1777 2755; do mkdir -p in$mode/inner; echo >in$mode/inner/x
                    chmod $mode in$mode; touch -d @1000000001 in$mode; done)");
            }},
        {"times", // the ends of what 32 bits, a sign and DOS dates hold
            [&] {
                shell(R"(for time in -2147483648 -1 0 315532799 315532800 2147483647 2147483648 \
                    4294967296 4354819198 4354819200 15032385535; do
                    echo >./$time; touch -d @$time ./$time; done)");
            },
            {"unzip", "bsdtar"}}, // they know none after 2038 in a zip
        {"content", [&] { makeOddContent(item); }},
        {"an empty folder", [&] { fs::create_directory(item); }},
        {"one file", [&] { writeFile(item, someText(100'000)); }},
        {"pipes and sockets",
            [&] {
                write({"a", "z"});
                makeFifo(item / "pipe");
                ::mknod((item / "socket").c_str(), S_IFSOCK | 0644, 0);
            },
            {}, {"item/pipe", "item/socket"}},
    };
    for (const auto& scenario : scenarios) {
        SCOPED_TRACE(scenario.name);
        run({"rm", "-rf", item});
        fs::create_directory(item.parent_path());
        scenario.make();
        TreeSnapshot expected = tree();
        for (const std::string& name : scenario.skipped)
            expected.erase(name);

        const RunResult result = make();

        EXPECT_EQ(result.status, scenario.skipped.empty() ? 0 : tool.skipped);
        EXPECT_EQ(warnedNames(result), scenario.skipped);
        EXPECT_EQ(faults(result, expected, scenario.unfitReaders), nothing);
        EXPECT_EQ(namesIn(folder.path()), (Names{tool.archiveName, "in"}));
    }
}

TEST_P(Corpus, itemsAndArchivesAreTakenLiterallyAndAlone)
{
    const fs::path place = folder / "in";
    for (const std::string& name : oddNames()) {
        SCOPED_TRACE(testing::PrintToString(name));
        writeFile(place / name, "the item");
        writeFile(place / "neighbour", "not to be touched");
        fs::remove(archive);
        const RunResult result = run(tool, archive, place / name);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(std::ranges::count(result.out, '\n'), 1);
        const std::string bytes = readFile(archive);
        if (tool.makesZips) // one line of progress, so it is the only name
            EXPECT_EQ(bytes.substr(30, name.size()), name);
        else
            EXPECT_EQ(run({"tar", "--quoting-style=literal", "-tzf", archive}).out, name + "\n");

        const std::string made = name.substr(0, 250) + ".new";
        EXPECT_EQ(run(tool, made, place / name, {.itemFolder = ""}).status, 0);
        EXPECT_TRUE(readFile(place / made) == bytes);
        EXPECT_EQ(namesIn(place).size(), 3U);
        fs::remove_all(place);
    }
    EXPECT_EQ(namesIn(folder.path()), Names{tool.archiveName});
}

TEST_P(Corpus, pathsMayBeLongerThanAnyOtherProgramOpens)
{
    makeNestedFolders(item, std::string(200, 'y'), 25);
    std::string expected;
    for (const auto& [path, entry] : tree())
        expected += path + (entry.kind == 'd' ? "/\n" : "\n");
    const RunResult result = make({.prefix = {"prlimit", "-n24"}}); // of 28 folders
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(run({"bsdtar", "-tf", archive}).out, expected);
}

TEST_P(Corpus, anArchiveInsideTheItemIsLeftOut)
{
    writeFile(item / "a", "a");
    writeFile(item / "z", randomBytes(3'000'000, 1));
    const TreeSnapshot expected = tree();
    archive = item / tool.archiveName;
    const RunResult result = make();
    EXPECT_EQ(result.status, 0) << result.err;
    Names found = faults(result, expected);
    std::erase_if(found, [](const std::string& fault) { return contains(fault, ": item is d"); });
    EXPECT_EQ(found, nothing); // but for the time of the item, which changes
}
