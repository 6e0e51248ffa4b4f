// Trees and names that break archivers, put through the tools and brought back by other programs.

#include "tests/support/ZipInspector.h"
#include "tests/tools/ToolTest.h"

#include <algorithm>
#include <functional>
#include <random>
#include <tuple>

#include <sys/stat.h>

namespace
{

// Options, lists, patterns, paths and commands to other programs; every reader can hold them all.
const Names& oddNames()
{
    static const Names names = [] {
        Names all = {"-", "--", "-x", "-rf", "-T", "-TT", "-m", "-@", "-C", "-X", "-9", "--help",
            "--version", "--delete", "--checkpoint=1", "--checkpoint-action=exec=touch PWNED",
            "--use-compress-program=touch PWNED", "-I touch PWNED", "--add-file=neighbour",
            "--files-from=neighbour", "--remove-files", "--exclude=*", "@", "@neighbour", "@@",
            "!x", "+x", "=x", "-i!x", "*", "?", "**", "[n]eighbour", "[a-z]*", "[", "]x[", "[]",
            "[z-a]", "[[:alpha:]]", "{neighbour,x}", "\\", "a\\b", "a\\nb", "\\*", "\\lead",
            "trail\\", "..\\up", "\\\\server\\share", "C:evil", "C:\\x", "host:file", "~", "%s%n%d",
            "%41", "a=b", "new\nline", "\n\nerror: Interrupted", "\x1b[31mred\x1b[0m", "\x7f",
            "99%\r 100%", "\u00e9", " ", " leading", "trailing ", "tab\tname", "it's", "say \"hi\"",
            "$(touch PWNED)", "`touch PWNED`", ";touch PWNED;x", "${HOME}", "a|b&c", "<in>", "#x",
            ".hidden", "...", "..foo", ". ", "trailing.", "A", "a", "CON", "aux.c",
            "neighbour\n  adding: forged (stored 0%)", std::string(255, 'n')};
        for (char byte = 1; byte < 32; ++byte)
            all.push_back(std::to_string(byte) + byte + ".txt");
        return all;
    }();
    return names;
}

struct Scenario {
    std::string name;
    std::function<void(const fs::path& item)> make;
    std::set<std::string> unfitReaders = {}; // they cannot hold such names themselves
    Names skipped = {}; // what must be warned of and left out
};
void PrintTo(const Scenario& scenario, std::ostream* stream)
{
    *stream << scenario.name;
}

std::function<void(const fs::path&)> files(const Names& names)
{
    return [names](const fs::path& item) {
        for (const std::string& name : names)
            writeFile(item / name, "content of " + name);
    };
}

void makeRandomNames(const fs::path& item)
{
    static constexpr std::string_view favourites = "-@*?[]\\\n\r\x1b\xff\xc3\xa9 .~";
    std::mt19937 generator(20240607);
    for (int count = isSanitized ? 50 : 400; count > 0; --count) {
        std::string name = std::to_string(count);
        name.resize(name.size() + 1 + generator() % (generator() % 8 == 0 ? 80 : 12));
        for (char& letter : name) {
            letter = generator() % 2 == 0 ? favourites[generator() % favourites.size()]
                                          : static_cast<char>(1 + generator() % 255);
            letter = letter == '/' ? '_' : letter;
        }
        if (name != "." && name != "..")
            writeFile(item / name, name);
    }
}

void makeLongAndDeepPaths(const fs::path& item)
{
    files({std::string(251, 'b') + ".txt", std::string(255, 'd') + "/" + std::string(255, 'e')})(
        item);
    makeNestedFolders(item / "long", std::string(150, 'x'), 8);
    makeNestedFolders(item / "deep", "d", 400);
}

void makeModesAndTimes(const fs::path& item)
{
    for (const mode_t mode : {0400, 0444, 0600, 0666, 0777, 01755, 02755, 04755, 06755}) {
        const fs::path file = item / std::to_string(mode);
        writeFile(file, "#!/bin/sh\n");
        ::chmod(file.c_str(), mode);
    }
    for (const mode_t mode : {0555, 0700, 01777, 02755}) {
        const fs::path folder = item / ("folder" + std::to_string(mode));
        writeFile(folder / "inside" / "deeper", "x");
        ::chmod(folder.c_str(), mode);
        setTime(folder, 1'000'000'001);
    }
}

void makeOddContent(const fs::path& item)
{
    const std::string end = "PK\5\6" + std::string(18, '\0');
    writeFile(item / "end", randomBytes(300, 1) + end + randomBytes(40, 2) + end);
    writeFile(item / "empty.zip", end);
    writeFile(item / "headers", "PK\7\10PK\3\4PK\1\2" + someText(5000) + "PK\6\7" + end);
    writeFile(item / "ustar", std::string(257, 'x') + "ustar" + std::string(2000, '\0'));
    writeFile(item / "gzip", "\x1f\x8b\b" + std::string(17, '\0'));
    writeFile(item / "empty", "");
    fs::create_directories(item / "n1/n2/n3");
    writeFile(item / "holes", "head");
    fs::resize_file(item / "holes", 12 << 20);
    writeFile(item / "one/file", "linked");
    fs::create_hard_link(item / "one/file", item / "two");
    fs::create_hard_link(item / "two", item / "one/three");
}

void makePipesAndSockets(const fs::path& item)
{
    files({"a", "z"})(item);
    makeFifo(item / "pipe");
    run({"python3", "-c", "import socket, sys; socket.socket(socket.AF_UNIX).bind(sys.argv[1])",
        item / "socket"});
}

const std::vector<Scenario>& scenarios()
{
    static const std::string e = "\u00e9";
    static const std::vector<Scenario> table = {
        {"oddNames", files(oddNames())},
        {"invalidUtf8",
            files({"bad\xff", "latin1-caf\xe9", "trunc\xe2\x82", "overlong\xc0\xaf",
                "surrogate\xed\xa0\x80", "mixed-\xc3\xa9-\xe9", "beyond\xf4\x90\x80\x80",
                "c1-\x80\x9f", "dir\xfe/in\xfe"}),
            {"unzip"}}, // drops the byte 0xff
        {"unicode",
            files({e, "e\u0301", "same-" + e, "same-e\u0301", "\U0001F600", "\u202egpj.exe",
                "\u65e5\u672c\u8a9e", "\ud55c\uae00", "\ufeffbom", "\u2028ls", "\u0085nel",
                "\U0010ffff", "\u0130stanbul", "\u30d5\u30a9/\u4e2d"}),
            {"bsdtar"}}, // composes what is decomposed
        {"randomNames", makeRandomNames, {"unzip", "bsdtar"}},
        {"paths", makeLongAndDeepPaths},
        {"modes", makeModesAndTimes},
        {"content", makeOddContent},
        {"emptyFolder", [](const fs::path& item) { fs::create_directory(item); }},
        {"oneFile", [](const fs::path& item) { writeFile(item, someText(100'000)); }},
        {"pipesAndSockets", makePipesAndSockets, {}, {"pipe", "socket"}},
    };
    return table;
}

using Corpus = EachToolAnd<Scenario>;
INSTANTIATE_TEST_SUITE_P(Tools, Corpus, testing::Combine(eachTool, testing::ValuesIn(scenarios())),
    [](const auto& test) { return std::get<0>(test.param) + "_" + std::get<1>(test.param).name; });

// The names in an archive as they are stored, a line for each.
std::string listing(const fs::path& archive)
{
    if (archive.extension() == ".gz")
        return run({"tar", "--force-local", "--quoting-style=literal", "-tzf", archive}).out;
    std::string lines;
    for (const std::string& name : inspectZip(archive).names())
        lines += name + "\n";
    return lines;
}

} // namespace

TEST_P(Corpus, comesBackWhole)
{
    fs::create_directory(item.parent_path());
    theCase.make(item);
    TreeSnapshot expected = tree();
    Names warned;
    for (const std::string& name : theCase.skipped) {
        expected.erase("item/" + name);
        warned.push_back("item/" + name);
    }

    const RunResult result = make();

    EXPECT_EQ(result.status, warned.empty() ? 0 : tool.skipped);
    EXPECT_EQ(warnedNames(result), warned);
    EXPECT_EQ(faults(result, expected, theCase.unfitReaders), nothing);
    EXPECT_EQ(namesIn(folder.path()), (Names{tool.archiveName, "in"}));
}

TEST_P(EachTool, itemsAndArchivesAreTakenLiterallyAndAlone)
{
    const fs::path place = folder / "in";
    for (const std::string& name : oddNames()) {
        writeFile(place / name, "the item");
        writeFile(place / "neighbour", "not to be touched");
        fs::remove(archive);
        const RunResult result = run(tool, archive, place / name);
        EXPECT_EQ(result.status, 0) << testing::PrintToString(name) << result.err;
        EXPECT_EQ(std::ranges::count(result.out, '\n'), 1);
        const std::string bytes = readFile(archive);
        if (tool.makesZips) // one line of progress, so it is the only name
            EXPECT_EQ(bytes.substr(30, name.size()), name);
        else
            EXPECT_EQ(listing(archive), name + "\n");

        const std::string made = name.substr(0, 250) + ".new";
        ToolCall bare = callOf(tool, made, place / name);
        *std::ranges::find(bare.arguments, "./" + name) = name;
        EXPECT_EQ(run(bare.arguments, bare.options).status, 0) << testing::PrintToString(name);
        EXPECT_EQ(readFile(place / made) == bytes, true) << testing::PrintToString(name);
        EXPECT_EQ(namesIn(place).size(), 3U) << testing::PrintToString(name);
        fs::remove_all(place);
    }
    EXPECT_EQ(namesIn(folder.path()), Names{tool.archiveName});
}

TEST_P(EachTool, pathsMayBeLongerThanAnyOtherProgramOpens)
{
    makeNestedFolders(item, std::string(200, 'y'), 25);
    std::string expected;
    for (const auto& [path, entry] : tree())
        expected += path + (entry.kind == 'd' ? "/\n" : "\n");
    const RunResult result = make();
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(listing(archive), expected);
}

TEST_P(EachTool, anArchiveInsideTheItemIsLeftOut)
{
    writeFile(item / "a", "a");
    writeFile(item / "z", randomBytes(3'000'000, 1));
    const TreeSnapshot expected = tree();
    const fs::path inside = item / tool.archiveName;
    const RunResult result = run(tool, inside, item);
    EXPECT_EQ(result.status, 0) << result.err;
    Names found = faultsOf(tool, result, inside, expected);
    std::erase_if(
        found, [](const std::string& fault) { return contains(fault, ": item has time"); });
    EXPECT_EQ(found, nothing);
}

TEST_F(Zip, matchesNoItemThatVanishedAgainstTheArchive)
{
    writeFile(item / "a", "a");
    ASSERT_EQ(run(tool, archive, item / "a").status, 0);
    const std::string before = readFile(archive);
    for (const std::string name : {"[a]", "?", "*"}) {
        const RunResult result = run(tool, archive, item / name);
        EXPECT_EQ(result.status, tool.nothingToDo) << name;
        EXPECT_EQ(warnedNames(result).front(), name);
        EXPECT_EQ(readFile(archive), before) << name;
    }
}
