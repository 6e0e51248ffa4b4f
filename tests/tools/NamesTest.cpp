// Single items with names that other programs take for options, lists or patterns.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"
#include "tests/support/ZipInspector.h"
#include "tools/common/OutputFile.h"
#include "tools/tar/StreamReader.h"

#include <algorithm>
#include <random>

#include <fcntl.h>
#include <gtest/gtest.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

class Names : public testing::TestWithParam<std::string>
{
protected:
    const Tool& tool = toolNamed(GetParam());
    const TestFolder folder;
};

const std::vector<std::string>& oddNames()
{
    static const std::vector<std::string> names = {"-", "--", "-x", "-rf", "-T", "-TT", "-m", "-@",
        "-C", "-X", "-9", "--help", "--version", "--delete", "--checkpoint=1",
        "--checkpoint-action=exec=touch PWNED", "--use-compress-program=touch PWNED",
        "-I touch PWNED", "--add-file=neighbour", "--files-from=neighbour", "--remove-files",
        "--exclude=*", "@", "@neighbour", "@@", "!x", "+x", "=x", "*", "?", "**", "[n]eighbour",
        "[a-z]*", "{neighbour,x}", "\\", "a\\b", "a\\nb", "\\*", "C:evil", "host:file", "~", "%s",
        "new\nline", "\x1b[31m", "caf\xe9", "\u00e9", " ", ".hidden", "...", ". ",
        "neighbour\n  adding: forged (stored 0%)", std::string(255, 'n')};
    return names;
}

// The names in an archive as they are stored, a line for each.
std::string listing(const Tool& tool, const fs::path& archive)
{
    if (!tool.makesZips)
        return run({"tar", "--force-local", "--quoting-style=literal", "-tzf", archive}).out;
    std::string lines;
    for (const std::string& name : inspectZip(archive).names())
        lines += name + "\n";
    return lines;
}

} // namespace

TEST_P(Names, anItemIsTakenLiterallyAndAlone)
{
    for (const std::string& name : oddNames()) {
        const fs::path place = folder / "in";
        writeFile(place / name, "the item");
        writeFile(place / "neighbour", "not to be touched");
        const fs::path archive = folder / tool.archiveName;
        fs::remove(archive);
        const RunResult result = run(tool, archive, place / name);
        EXPECT_EQ(result.status, 0) << testing::PrintToString(name) << result.err;
        EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1);
        const std::string bytes = readFile(archive);
        if (tool.makesZips) // one line of progress, so it is the only name
            EXPECT_EQ(bytes.substr(30, name.size()), name);
        else
            EXPECT_EQ(listing(tool, archive), name + "\n");
        fs::remove(archive);
        ToolCall bare = callOf(tool, archive, place / name);
        *std::find(bare.arguments.begin(), bare.arguments.end(), "./" + name) = name;
        EXPECT_EQ(run(bare.arguments, bare.options).status, 0) << testing::PrintToString(name);
        EXPECT_EQ(readFile(archive) == bytes, true) << testing::PrintToString(name);
        fs::remove_all(place);
    }
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{tool.archiveName});
}

TEST_P(Names, anArchiveMayHaveAnyName)
{
    writeFile(folder / "in/item", "item");
    for (const std::string name :
        {"host:x", "-x.zip", "[a].zip", "noExtension", "new\nline", "--help", "@x"}) {
        ToolCall call = callOf(tool, name, folder / "in/item");
        call.options.folder = folder.path();
        *std::find(call.arguments.begin(), call.arguments.end(), "./item") = "in";
        const RunResult result = run(call.arguments, call.options);
        EXPECT_EQ(result.status, 0) << name << result.err;
        EXPECT_EQ(namesIn(folder.path()),
            (std::vector<std::string>{
                std::min<std::string>(name, "in"), std::max<std::string>(name, "in")}));
        fs::remove(folder / name);
    }
}

TEST_P(Names, anyBytesComeBack)
{
    constexpr unsigned seed = 20240607;
    static constexpr std::string_view favourites = "-@*?[]\\\n\r\x1b\xff\xc3\xa9 .~";
    std::mt19937 generator(seed);
    const fs::path item = folder / "in/item";
    while (!fs::exists(item) || namesIn(item).size() < (isSanitized ? 50 : 400)) {
        std::string name(1 + generator() % (generator() % 8 == 0 ? 80 : 12), '\0');
        for (char& letter : name) {
            letter = generator() % 2 == 0 ? favourites[generator() % favourites.size()]
                                          : static_cast<char>(1 + generator() % 255);
            letter = letter == '/' ? '_' : letter;
        }
        if (name != "." && name != "..")
            writeFile(item / name, name);
    }
    const TreeSnapshot expected = snapshot(folder / "in");
    const RunResult result = run(tool, folder / tool.archiveName, item);
    EXPECT_EQ(result.status, 0) << result.err;
    // The other readers have names of their own for some of these bytes.
    EXPECT_EQ(faultsOf(tool, result, folder / tool.archiveName, expected,
                  {"unzip", "bsdtar", tool.makesZips ? "python" : "bsdtar"}),
        nothing);
}

TEST_P(Names, pathsMayBeLongerThanAnyOtherProgramOpens)
{
    fs::create_directory(folder / "in");
    makeNestedFolders(folder / "in/item", std::string(200, 'y'), 25);
    std::string expected;
    for (const auto& [path, entry] : snapshot(folder / "in"))
        expected += path + (entry.kind == 'd' ? "/\n" : "\n");
    const RunResult result = run(tool, folder / tool.archiveName, folder / "in/item");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(listing(tool, folder / tool.archiveName), expected);
}

INSTANTIATE_TEST_SUITE_P(Tools, Names, testing::Values("zip", "tar", "ditto"),
    [](const auto& test) { return test.param; });

TEST(Names, aVanishedItemIsNeverMatchedAgainstTheArchive)
{
    const TestFolder folder;
    writeFile(folder / "item/a", "a");
    ASSERT_EQ(run(zipTool(), folder / "a.zip", folder / "item/a").status, 0);
    const std::string before = readFile(folder / "a.zip");
    for (const std::string name : {"[a]", "?", "*"}) {
        fs::remove(folder / "item/a");
        const RunResult result = run(zipTool(), folder / "a.zip", folder / ("item/" + name));
        EXPECT_EQ(result.status, zipTool().nothingToDo) << name;
        EXPECT_EQ(warnedNames(result).front(), name);
        EXPECT_EQ(readFile(folder / "a.zip"), before) << name;
    }
}

// Some 4,000 folders deep: read without making them, which no other program could clear away.
TEST(Names, aPathMayBeLongerThanABlockOfTheStream)
{
    const TestFolder folder;
    const std::string source = folder / "source";
    writeFile(source, someText(200'000));
    std::string path = "item";
    while (path.size() < 3 * pieceSize / 2)
        path += "/" + std::string(255, 'n');

    OutputFile output = OutputFile::createBeside(folder / "a.tar.gz");
    const OwnFiles ownFiles(output, folder.path());
    std::string stream;
    Pipeline<StreamBlock>(1).run(
        [&](auto& feed) {
            StreamReader reader(feed, ownFiles);
            reader.visitFile({path, AT_FDCWD, source.c_str(), false});
            reader.finish();
        },
        [] { return [](StreamBlock&) {}; },
        [&](const StreamBlock& block) {
            for (const std::byte byte : block.data())
                stream += static_cast<char>(byte);
        });
    writeFile(folder / "a.tar", stream);
    const RunResult read = run({"python3", "-c",
        "import sys, tarfile\n"
        "archive = tarfile.open(sys.argv[1])\n"
        "entry = archive.next()\n"
        "same = archive.extractfile(entry).read() == open(sys.argv[2], 'rb').read()\n"
        "print(len(entry.name), entry.name[-3:], same, archive.next())",
        folder / "a.tar", source});
    EXPECT_EQ(read.out, std::to_string(path.size()) + " nnn True None\n") << read.err;
}
