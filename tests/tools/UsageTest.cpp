// The arguments a tool takes, and what it does not let itself be told by its surroundings.

#include "tests/support/ToolTest.h"

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
INSTANTIATE_TEST_SUITE_P(Tools, Usage, eachTool, itsParameter);

} // namespace

TEST_P(Usage, anythingButTheOneFormIsRefused)
{
    const std::string form = "-V -c -k --keepParent --sequesterRsrc ";
    const std::map<std::string, Names> forms = {// a shell's, after which is the archive
        {"zip",
            {"", "-6 -y -r $0", "-y $0 ./item", "-y -r -T $0 ./item", "-66 -y -r $0 ./item",
                "-6 -y -r $0 ./item -x '*'", "-6 -y -r $0 ./item ./item", "-6 -y -r $0 ./item/file",
                "-6 -y -r $0 ..", "-6 -y -r $0 ''", "-6 -y -r '' ./item", "-6 -y -r $0 /item"}},
        {"tar",
            {"", "-zhcf $0", "-zhxf $0 item", "-zhcf $0 item item", "--exclude '*' -zhcf $0 item",
                "-zhcf $0 ..", "-zhcf $0 ''", "-zhcf '' item", "--to-command=x -zhcf $0 item"}},
        {"ditto",
            {"", form, "-rsrcFork .", "-rsrcFork . $0 $0", "-rsrcFork '' $0", "-rsrcFork . ''",
                "-rsrc . $0", ". $0", "-c -k --keepParent --sequesterRsrc ./item $0", "-x -k $0 .",
                form + "'' $0", form + "item/file $0", form + ".. $0", form + "item ''",
                form + "item $0 $0"}}};
    for (const std::string& line : forms.at(tool.name)) {
        const std::string command = "exec " PARCELO_TOOLS_DIR "/" + tool.name + " " + line;
        const RunResult result = run({"sh", "-c", command, archive}, {.folder = folder / "in"});
        EXPECT_EQ(result.status, tool.usage) << line;
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
        EXPECT_EQ(namesIn(folder.path()), Names{"in"});
    }
}

TEST_P(Usage, aMissingItemOrPlaceIsToldAndNothingIsMade)
{
    makeFifo(folder / "in/pipe"); // which is never waited for
    for (const std::string name : {"missing", "pipe"}) {
        const RunResult result = run(tool, archive, folder / "in" / name);
        EXPECT_EQ(result.status, tool.nothingToDo);
        EXPECT_TRUE(contains(result.err, name)) << result.err;
    }
    const RunResult noPlace = run(tool, folder / "nowhere/x", item);
    EXPECT_EQ(noPlace.status, tool.cannotCreate);
    EXPECT_TRUE(contains(noPlace.err, folder / "nowhere/x")) << noPlace.err;
    EXPECT_EQ(namesIn(folder.path()), Names{"in"});

    fs::permissions(folder / "in", fs::perms(0555));
    const RunResult refused = run(tool, folder / "in/x", item, {.prefix = asOwner});
    EXPECT_EQ(refused.status, tool.cannotCreate);
    EXPECT_TRUE(contains(refused.err, "Permission denied")) << refused.err;
    EXPECT_EQ(namesIn(folder / "in"), (Names{"item", "pipe"}));
}

TEST_P(Usage, theBytesDependOnTheItemAlone)
{
    ASSERT_EQ(make().status, 0);
    const std::string expected = readFile(archive);
    for (const Names& environment : {Names{"LC_ALL=tr_TR.UTF-8"}, {"LC_ALL=junk", "LANGUAGE=xx"},
             {"TZ=XYZ-5:45"}, {"TMPDIR=/nowhere"}, {"PARCELO_THREADS=0"}, {"PARCELO_THREADS=junk"},
             {"ZIPOPT=-0", "GZIP=-1", "TAR_OPTIONS=--help"}}) {
        const RunResult result = make({.environment = environment});
        EXPECT_EQ(result.status, 0) << testing::PrintToString(environment) << result.err;
        EXPECT_TRUE(readFile(archive) == expected) << testing::PrintToString(environment);
    }
}

TEST_P(Usage, theArchiveIsAsOpenAsTheUserAllows)
{
    const std::map<std::string, mode_t> modes = {{"000", 0666}, {"022", 0644}, {"077", 0600}};
    for (const auto& [mask, mode] : modes) {
        const std::string script = "umask " + mask + R"(; exec "$0" "$@")";
        ASSERT_EQ(make({.prefix = {"sh", "-c", script}}).status, 0);
        EXPECT_EQ(snapshot(folder.path())[tool.archiveName].mode, mode);
    }
}
