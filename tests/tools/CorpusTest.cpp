// Trees that break archivers, put through both tools and brought back by other programs.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"

#include <functional>
#include <tuple>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

struct Scenario {
    std::string name;
    std::function<void(const fs::path& item)> make;
    std::set<std::string> unfitReaders = {}; // they cannot hold such names or trees themselves
    std::vector<std::string> skipped = {}; // what must be warned of and left out
};

void PrintTo(const Scenario& scenario, std::ostream* stream)
{
    *stream << scenario.name;
}

std::function<void(const fs::path&)> files(std::vector<std::string> names)
{
    return [names = std::move(names)](const fs::path& item) {
        for (const std::string& name : names)
            writeFile(item / name, "content of " + name);
    };
}

void makeControlBytes(const fs::path& item)
{
    for (char byte = 1; byte < 32; ++byte)
        writeFile(item / (std::to_string(byte) + byte + ".txt"), "control");
    files({"\x7f.txt", "\x1b[31mred\x1b[0m", "\n\nerror: Interrupted", "99%\r 100%",
        "x (deflated 10%)\n  adding: forged.txt"})(item);
}

void makeModes(const fs::path& item)
{
    for (const mode_t mode : {0400, 0444, 0600, 0666, 0777, 01755, 02755, 04755, 06755}) {
        const fs::path file = item / std::to_string(mode);
        writeFile(file, "#!/bin/sh\n");
        chmod(file.c_str(), mode);
    }
    for (const mode_t mode : {0555, 0700, 01777, 02755}) {
        const fs::path folder = item / ("folder" + std::to_string(mode));
        writeFile(folder / "inside" / "deeper", "x");
        writeFile(folder / "file", "y");
        chmod(folder.c_str(), mode);
        setTime(folder, 1'000'000'001);
    }
}

void makeSparse(const fs::path& item)
{
    writeFile(item / "holes", "head");
    fs::resize_file(item / "holes", 24 << 20);
    writeFile(item / "hole", "");
    fs::resize_file(item / "hole", (1 << 20) + 1);
}

void makeHeadersInData(const fs::path& item)
{
    const std::string end = "PK\5\6" + std::string(18, '\0');
    writeFile(item / "end", randomBytes(300, 1) + end + randomBytes(40, 2) + end);
    writeFile(item / "empty.zip", end);
    writeFile(item / "headers", "PK\7\10PK\3\4PK\1\2" + someText(5000) + "PK\6\7" + end);
    writeFile(item / "ustar", std::string(257, 'x') + "ustar" + std::string(2000, '\0'));
    writeFile(item / "gzip", "\x1f\x8b\b" + std::string(17, '\0'));
}

void makePipesAndSockets(const fs::path& item)
{
    files({"a", "z"})(item);
    makeFifo(item / "pipe");
    run({"python3", "-c", "import socket, sys; socket.socket(socket.AF_UNIX).bind(sys.argv[1])",
        item / "socket"});
}

void makeHardLinks(const fs::path& item)
{
    files({"one", "folder/other"})(item);
    fs::create_hard_link(item / "one", item / "two");
    fs::create_hard_link(item / "one", item / "folder/three");
}

const std::vector<Scenario>& scenarios()
{
    static const std::string e = "\u00e9";
    static const std::vector<Scenario> table = {
        {"spacesAndQuotes",
            files({"a b", " leading", "trailing ", "tab\tname", " ", "it's", "say \"hi\"", "''",
                "$(touch PWNED)", "`touch PWNED`", ";touch PWNED;x", "${HOME}", "a|b&c", "<in>",
                "!bang", "~", "#hash", "%s%n%d", "%41", "a=b", "folder with space / in"})},
        {"controlBytes", makeControlBytes},
        {"dashesAndLists",
            files({"-", "--", "-x", "-rf", "-TT", "-@", "--help", "--checkpoint-action=exec=x",
                "-I touch PWNED", "--files-from=x", "@", "@list", "@@", "+x", "-i!x", "-dir/-in"})},
        {"wildcards",
            files({"a.txt", "b.txt", "[ab].txt", "*.txt", "?.txt", "]x[", "[", "]", "{a,b}", "**",
                "*", "?", "[]", "[z-a]", "[[:alpha:]]", "a[!b]c", "[dir]/*in*"})},
        {"backslashes",
            files({"a\\b", "\\lead", "trail\\", "dir\\..\\..\\up", "C:\\x", "C:evil",
                "\\\\server\\share", "\\", "esc\\n", "\\[a\\]"})},
        {"invalidUtf8",
            files({"bad\xff", "latin1-caf\xe9", "trunc\xe2\x82", "overlong\xc0\xaf",
                "surrogate\xed\xa0\x80", "mixed-\xc3\xa9-\xe9", "beyond\xf4\x90\x80\x80",
                "c1-\x80\x9f", "dir\xfe/in\xfe"}),
            {"unzip", "python"}}, // unzip drops the byte 0xff, python shows other letters
        {"unicode",
            files({e, "e\u0301", "same-" + e, "same-e\u0301", "\U0001F600", "\u202egpj.exe",
                "\u65e5\u672c\u8a9e", "\ud55c\uae00", "\ufeffbom", "\u2028ls", "\u0085nel",
                "\U0010ffff", "\u0130stanbul", "\u30d5\u30a9/\u4e2d"}),
            {"bsdtar"}}, // composes what is decomposed
        {"otherSystems",
            files({"A", "a", "CON", "aux.c", "NUL", "trailing.", "a:b", "q?", "pi|pe", "...",
                "..foo", "a..b", ". ", "Dir/1", "dir/2"})},
        {"longNames",
            files({std::string(255, 'a'), std::string(251, 'b') + ".txt",
                std::string(255, 'd') + "/" + std::string(255, 'e')})},
        {"deepPath",
            [](const fs::path& item) { makeNestedFolders(item, std::string(150, 'x'), 8); }},
        {"manyLevels", [](const fs::path& item) { makeNestedFolders(item, "d", 400); }},
        {"emptyThings",
            [](const fs::path& item) {
                writeFile(item / "empty", "");
                fs::create_directories(item / "n1/n2/n3");
                setTime(item / "n1", 1'234'567'890);
            }},
        {"emptyFolder", [](const fs::path& item) { fs::create_directory(item); }},
        {"oneFile", [](const fs::path& item) { writeFile(item, someText(100'000)); }},
        {"modes", makeModes},
        {"sparse", makeSparse},
        {"headersInData", makeHeadersInData},
        {"hardLinks", makeHardLinks},
        {"pipesAndSockets", makePipesAndSockets, {}, {"pipe", "socket"}},
    };
    return table;
}

std::string nameOf(const testing::TestParamInfo<std::tuple<std::string, Scenario>>& info)
{
    return std::get<0>(info.param) + "_" + std::get<1>(info.param).name;
}

class Corpus : public testing::TestWithParam<std::tuple<std::string, Scenario>>
{
};

} // namespace

TEST_P(Corpus, comesBackWhole)
{
    const Tool& tool = toolNamed(std::get<0>(GetParam()));
    const Scenario& scenario = std::get<1>(GetParam());
    const TestFolder folder;
    const fs::path item = folder / ("in/" + scenario.name);
    fs::create_directory(folder / "in");
    scenario.make(item);
    TreeSnapshot expected = snapshot(folder / "in");
    std::vector<std::string> warned;
    for (const std::string& name : scenario.skipped) {
        expected.erase(scenario.name + "/" + name);
        warned.push_back(scenario.name + "/" + name);
    }

    const RunResult result = run(tool, folder / tool.archiveName, item);

    EXPECT_EQ(result.status, warned.empty() ? 0 : tool.skipped);
    EXPECT_EQ(warnedNames(result), warned);
    EXPECT_EQ(faultsOf(tool, result, folder / tool.archiveName, expected, scenario.unfitReaders),
        nothing);
    EXPECT_EQ(namesIn(folder.path()), (std::vector<std::string>{tool.archiveName, "in"}));
}

INSTANTIATE_TEST_SUITE_P(Tools, Corpus,
    testing::Combine(testing::Values("zip", "tar"), testing::ValuesIn(scenarios())), nameOf);
