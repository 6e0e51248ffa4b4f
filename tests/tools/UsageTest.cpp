// The arguments a tool takes, and what it does not let itself be told by its surroundings.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

class Usage : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        writeFile(folder / "in/item/file", someText(3 << 20));
        writeFile(folder / "in/item/\u00e9", "name");
        setTime(folder / "in/item", 1'500'000'000);
    }
    RunResult runWith(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), PARCELO_TOOLS_DIR "/" + tool.name);
        return run(arguments, {.folder = folder / "in"});
    }

    const Tool& tool = toolNamed(GetParam());
    const TestFolder folder;
};

} // namespace

TEST_P(Usage, anythingButTheOneFormIsRefused)
{
    const std::string made = (folder / "x").string();
    const std::vector<std::vector<std::string>> zipForms = {{}, {"-6"}, {"-6", "-y", "-r", made},
        {"-r", made, "./item"}, {"-y", made, "./item"}, {"-y", "-r", "-T", made, "./item"},
        {"-66", "-y", "-r", made, "./item"}, {"-6", "-y", "-r", made, "./item", "-x", "*"},
        {"-6", "-y", "-r", made, "./item", "-x"}, {"-6", "-y", "-r", made, "./item", "./item"},
        {"-6", "-y", "-r", made, "./item/file"}, {"-6", "-y", "-r", made, "."},
        {"-6", "-y", "-r", made, ".."}, {"-6", "-y", "-r", made, ""},
        {"-6", "-y", "-r", "", "./item"}, {"-6", "-y", "-r", made, "/item"}};
    const std::vector<std::vector<std::string>> tarForms
        = {{}, {"-zhcf"}, {"-zhcf", made}, {"-cf", made, "item"}, {"-zhxf", made, "item"},
            {"-zhcf", made, "item", "item"}, {"--exclude", "*", "-zhcf", made, "item"},
            {"--exclude", "-zhcf", made, "item"}, {"-zhcf", made, ".."}, {"-zhcf", made, ""},
            {"-zhcf", "", "item"}, {"--to-command=touch x", "-zhcf", made, "item"}};
    const std::string in = (folder / "in").string();
    const std::vector<std::string> form = {"-V", "-c", "-k", "--keepParent", "--sequesterRsrc"};
    std::vector<std::vector<std::string>> dittoForms
        = {{}, form, {"-rsrcFork"}, {"-rsrcFork", in}, {"-rsrcFork", in, made, made},
            {"-rsrcFork", "", made}, {"-rsrcFork", in, ""}, {"-rsrc", in, made}, {in, made},
            {"-c", "-k", "--keepParent", "--sequesterRsrc", "./item", made}, {"-x", "-k", made, in},
            {"--help"}};
    for (const std::vector<std::string>& names : std::vector<std::vector<std::string>>{{"./item"},
             {"", made}, {"item/file", made}, {"..", made}, {"item", ""}, {"item", made, made}}) {
        dittoForms.push_back(form);
        dittoForms.back().insert(dittoForms.back().end(), names.begin(), names.end());
    }
    for (const auto& arguments : tool.name == "zip" ? zipForms
            : tool.name == "tar"                    ? tarForms
                                                    : dittoForms) {
        const RunResult result = runWith(arguments);
        EXPECT_EQ(result.status, tool.usage) << testing::PrintToString(arguments);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
        EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"in"});
    }
}

TEST_P(Usage, aMissingItemOrPlaceIsToldAndNothingIsMade)
{
    const RunResult missing = run(tool, folder / "x", folder / "in/missing");
    EXPECT_EQ(missing.status, tool.nothingToDo);
    EXPECT_NE(missing.err.find("missing"), std::string::npos);
    const fs::path nowhere = folder / "nowhere/x";
    const RunResult noPlace = run(tool, nowhere, folder / "in/item");
    EXPECT_EQ(noPlace.status, tool.cannotCreate);
    EXPECT_NE(noPlace.err.find(nowhere.string()), std::string::npos) << noPlace.err;
    EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"in"});
}

TEST_P(Usage, theBytesDependOnTheItemAlone)
{
    const fs::path archive = folder / "x";
    ASSERT_EQ(run(tool, archive, folder / "in/item").status, 0);
    const std::string expected = readFile(archive);
    std::vector<std::vector<std::string>> surroundings
        = {{"LANG=C"}, {"LC_ALL=C.UTF-8"}, {"LC_ALL=tr_TR.UTF-8"}, {"LC_ALL=junk", "LANGUAGE=xx"},
            {"TZ=junk"}, {"TMPDIR=/nowhere"}, {"ZIPOPT=-0", "GZIP=-1", "TAR_OPTIONS=--help"},
            {"PARCELO_THREADS=0"}, {"PARCELO_THREADS=junk"}};
    if (tool.name == "tar") // a zip holds the local time too
        surroundings.push_back({"TZ=XYZ-5:45"});
    for (const auto& environment : surroundings) {
        fs::remove(archive);
        const RunResult result
            = run(tool, archive, folder / "in/item", {.environment = environment});
        EXPECT_EQ(result.status, 0) << testing::PrintToString(environment) << result.err;
        EXPECT_EQ(readFile(archive) == expected, true) << testing::PrintToString(environment);
    }
    // The same tree made in another order: a folder's own order must not show.
    fs::create_directories(folder / "other/item");
    for (const std::string name : {"\u00e9", "file"})
        fs::copy_file(folder / ("in/item/" + name), folder / ("other/item/" + name));
    for (const std::string name : {"item/\u00e9", "item/file", "item"}) {
        struct stat status = {};
        stat((folder / ("in/" + name)).c_str(), &status);
        setTime(folder / ("other/" + name), status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
    }
    fs::remove(archive);
    ASSERT_EQ(run(tool, archive, folder / "other/item").status, 0);
    EXPECT_EQ(readFile(archive) == expected, true) << "made in another order";
}

TEST_P(Usage, theArchiveIsAsOpenAsTheUserAllows)
{
    for (const mode_t mask : {0000, 0022, 0077}) {
        const std::string command = "umask " + std::to_string(mask / 64)
            + std::to_string(mask / 8 % 8) + std::to_string(mask % 8) + "; exec \"$0\" \"$@\"";
        fs::remove(folder / "x");
        ASSERT_EQ(
            run(tool, folder / "x", folder / "in/item", {.prefix = {"sh", "-c", command}}).status,
            0);
        struct stat status = {};
        stat((folder / "x").c_str(), &status);
        EXPECT_EQ(status.st_mode & 0777u, 0666u & ~mask);
    }
}

INSTANTIATE_TEST_SUITE_P(Tools, Usage, testing::Values("zip", "tar", "ditto"),
    [](const auto& test) { return test.param; });
