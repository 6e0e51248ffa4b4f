// The arguments a tool takes, and what it does not let itself be told by its surroundings.

#include "tests/tools/ToolTest.h"

#include <map>
#include <sstream>

namespace
{

struct Usage : EachTool {
    void SetUp() override
    {
        writeFile(item / "file", someText(1'200'000));
        writeFile(item / "\u00e9", "name");
        setTime(item, 1'500'000'000);
    }
};
INSTANTIATE_TEST_SUITE_P(Tools, Usage, eachTool, [](const auto& test) { return test.param; });

// The words of a line, in which OUT stands for an archive and '' for a word without letters.
Names wordsOf(const std::string& line, const std::string& archive)
{
    Names words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;)
        words.push_back(word == "OUT" ? archive : word == "''" ? "" : word);
    return words;
}

} // namespace

TEST_P(Usage, anythingButTheOneFormIsRefused)
{
    const std::string form = "-V -c -k --keepParent --sequesterRsrc ";
    const std::map<std::string, Names> forms = {
        {"zip",
            {"", "-6", "-6 -y -r OUT", "-r OUT ./item", "-y OUT ./item", "-y -r -T OUT ./item",
                "-66 -y -r OUT ./item", "-6 -y -r OUT ./item -x *", "-6 -y -r OUT ./item -x",
                "-6 -y -r OUT ./item ./item", "-6 -y -r OUT ./item/file", "-6 -y -r OUT .",
                "-6 -y -r OUT ..", "-6 -y -r OUT ''", "-6 -y -r '' ./item", "-6 -y -r OUT /item"}},
        {"tar",
            {"", "-zhcf", "-zhcf OUT", "-cf OUT item", "-zhxf OUT item", "-zhcf OUT item item",
                "--exclude * -zhcf OUT item", "--exclude -zhcf OUT item", "-zhcf OUT ..",
                "-zhcf OUT ''", "-zhcf '' item", "--to-command=x -zhcf OUT item"}},
        {"ditto",
            {"", form, "-rsrcFork", "-rsrcFork .", "-rsrcFork . OUT OUT", "-rsrcFork '' OUT",
                "-rsrcFork . ''", "-rsrc . OUT", ". OUT", "-c -k --keepParent ./item OUT",
                "-c -k --keepParent --sequesterRsrc ./item OUT", "-x -k OUT .", "--help",
                form + "./item", form + "'' OUT", form + "item/file OUT", form + ".. OUT",
                form + "item ''", form + "item OUT OUT"}}};
    for (const std::string& line : forms.at(tool.name)) {
        Names arguments = wordsOf(line, archive);
        arguments.insert(arguments.begin(), PARCELO_TOOLS_DIR "/" + tool.name);
        const RunResult result = run(arguments, {.folder = folder / "in"});
        EXPECT_EQ(result.status, tool.usage) << line;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
        EXPECT_EQ(namesIn(folder.path()), Names{"in"});
    }
}

TEST_P(Usage, aMissingItemOrPlaceIsToldAndNothingIsMade)
{
    const RunResult missing = run(tool, archive, folder / "in/missing");
    EXPECT_EQ(missing.status, tool.nothingToDo);
    EXPECT_TRUE(contains(missing.err, "missing"));
    makeFifo(folder / "in/pipe"); // which is never waited for
    const RunResult pipe = run(tool, archive, folder / "in/pipe");
    EXPECT_EQ(pipe.status, tool.nothingToDo);
    EXPECT_TRUE(pipe.err.starts_with("warning: pipe: is a FIFO\n")) << pipe.err;
    const fs::path nowhere = folder / "nowhere/x";
    const RunResult noPlace = run(tool, nowhere, item);
    EXPECT_EQ(noPlace.status, tool.cannotCreate);
    EXPECT_TRUE(contains(noPlace.err, nowhere)) << noPlace.err;
    EXPECT_EQ(namesIn(folder.path()), Names{"in"});

    fs::permissions(folder / "in", fs::perms(0555));
    const ToolCall call = asOrdinaryUser(callOf(tool, folder / "in/x", item), folder.path());
    const RunResult refused = run(call.arguments, call.options);
    EXPECT_EQ(refused.status, tool.cannotCreate);
    EXPECT_TRUE(contains(refused.err, "Permission denied")) << refused.err;
    EXPECT_EQ(namesIn(folder / "in"), (Names{"item", "pipe"}));
}

TEST_P(Usage, theBytesDependOnTheItemAlone)
{
    ASSERT_EQ(make().status, 0);
    const std::string expected = readFile(archive);
    const std::vector<Names> surroundings
        = {{"LANG=C"}, {"LC_ALL=C.UTF-8"}, {"LC_ALL=tr_TR.UTF-8"}, {"LC_ALL=junk", "LANGUAGE=xx"},
            {"TZ=junk"}, {"TZ=XYZ-5:45"}, {"TMPDIR=/nowhere"}, {"PARCELO_THREADS=0"},
            {"ZIPOPT=-0", "GZIP=-1", "TAR_OPTIONS=--help"}, {"PARCELO_THREADS=junk"}};
    for (const auto& environment : surroundings) {
        fs::remove(archive);
        const RunResult result = make({.environment = environment});
        EXPECT_EQ(result.status, 0) << testing::PrintToString(environment) << result.err;
        EXPECT_EQ(readFile(archive) == expected, true) << testing::PrintToString(environment);
    }
    // The same tree made in another order: a folder's own order must not show.
    fs::create_directories(folder / "other/item");
    for (const std::string name : {"\u00e9", "file"})
        fs::copy_file(item / name, folder / ("other/item/" + name));
    for (const std::string name : {"item/\u00e9", "item/file", "item"})
        fs::last_write_time(
            folder / ("other/" + name), fs::last_write_time(folder / ("in/" + name)));
    fs::remove(archive);
    ASSERT_EQ(run(tool, archive, folder / "other/item").status, 0);
    EXPECT_EQ(readFile(archive) == expected, true) << "made in another order";
}

TEST_P(Usage, theArchiveIsAsOpenAsTheUserAllows)
{
    const std::map<std::string, mode_t> modes = {{"000", 0666}, {"022", 0644}, {"077", 0600}};
    for (const auto& [mask, mode] : modes) {
        fs::remove(archive);
        const std::string script = "umask " + mask + R"(; exec "$0" "$@")";
        ASSERT_EQ(make({.prefix = {"sh", "-c", script}}).status, 0);
        EXPECT_EQ(snapshot(folder.path())[tool.archiveName].mode, mode);
    }
}
