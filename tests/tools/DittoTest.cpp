// What only the resource-preserving tool does: extended attributes, and copies of trees.

#include "tests/tools/ToolTest.h"

#include <algorithm>
#include <csignal>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace
{

struct Ditto : ToolTest {
    Ditto()
        : ToolTest("ditto")
    {
    }
    void SetUp() override
    {
        writeFile(item / "a", "a");
        if (!setAttribute("a", "user.probe", "") && errno == ENOTSUP)
            GTEST_SKIP() << "no extended attributes here";
        removexattr((item / "a").c_str(), "user.probe");
    }
    bool setAttribute(const std::string& name, const char* attribute, const std::string& value)
    {
        return setxattr((item / name).c_str(), attribute, value.data(), value.size(), 0) == 0;
    }
    RunResult copy(const fs::path& source, const fs::path& target) const
    {
        return run({PARCELO_TOOLS_DIR "/ditto", "-rsrcFork", source, target});
    }
};

std::string attributeOf(const fs::path& file, const char* name)
{
    std::string value(65536, '\0');
    const ssize_t size = getxattr(file.c_str(), name, value.data(), value.size());
    return size < 0 ? "none" : value.substr(0, static_cast<std::size_t>(size));
}

} // namespace

TEST_F(Ditto, attributesStandInAppleDoubleFilesBesideTheItem)
{
    writeFile(item / "pieces", someText(3 << 20));
    writeFile(item / "._a", "came with it");
    writeFile(item / "sub/plain", "plain");
    writeFile(item / "sub/\u00e9", "");
    link("link", "a");
    const struct {
        const char* file;
        const char* attribute;
        std::string value;
    } attributes[] = {
        {"", "user.top", "of the top"},
        {"a", "user.com.apple.FinderInfo", "TEXTttxt" + std::string(24, '\0')},
        {"a", "user.com.apple.ResourceFork", "the fork"},
        {"a", "user.c", ""},
        {"a", "user.z", "last"},
        {"a", "user.b", "first by name"},
        {"pieces", "user.com.apple.ResourceFork", "fork alone"},
        {"sub", "user.longest-name-that-readers-take-", "s"},
        {"sub/\u00e9", "user.com.apple.FinderInfo", "not 32 bytes"},
    };
    for (const auto& each : attributes)
        ASSERT_TRUE(setAttribute(each.file, each.attribute, each.value)) << each.attribute;
    const TreeSnapshot expected = tree();

    const RunResult result = make();

    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(std::ranges::count(result.out, '\n'), static_cast<std::ptrdiff_t>(expected.size()));
    EXPECT_EQ(
        run({"python3", PARCELO_SOURCE_DIR "/tests/support/read_apple_double.py", archive}).out,
        "__MACOSX/._item||top=of the top|\n"
        "__MACOSX/item/._a|TEXTttxt|b=first by name,c=,z=last|the fork\n"
        "__MACOSX/item/._pieces|||fork alone\n"
        "__MACOSX/item/._sub||longest-name-that-readers-take-=s|\n"
        "__MACOSX/item/sub/._\u00e9||com.apple.FinderInfo=not 32 bytes|\n");
    for (const ForeignReader& reader : zipReaders()) {
        Names found = extractionFaults(reader, archive, expected);
        std::erase_if(found, [](const std::string& fault) { return contains(fault, "__MACOSX"); });
        EXPECT_EQ(found, nothing);
    }
}

TEST_F(Ditto, attributesThatCannotBeKeptAreNamed)
{
    const std::string longName = "user." + std::string(128, 'n');
    ASSERT_TRUE(setAttribute("a", longName.c_str(), "x"));
    ASSERT_TRUE(setAttribute("a", "user.kept", "x"));
    const RunResult tooLong = make();
    EXPECT_EQ(tooLong.status, tool.skipped);
    EXPECT_EQ(tooLong.err,
        "warning: item/a: extended attribute " + longName + " is too long to be stored\n");
    EXPECT_TRUE(contains(run({"unzip", "-l", archive}).out, "__MACOSX/item/._a"));

    // In a folder of the name that the side files have, they could meet files.
    fs::rename(item, folder / "in/__MACOSX");
    const RunResult taken = run(tool, archive, folder / "in/__MACOSX");
    EXPECT_EQ(warnedNames(taken).back(), "__MACOSX/a");
    EXPECT_EQ(taken.status, tool.skipped);
    fs::rename(folder / "in/__MACOSX", item);

    if (run({"strace", "-qq", "true"}).status != 0 || isSanitized)
        return;
    for (const char* call : {"flistxattr", "fgetxattr"}) {
        const Names tracer = {"strace", "-f", "-qq", "-o", "/dev/null", "-e",
            std::string("inject=") + call + ":error=EIO"};
        const RunResult failed = make({.prefix = tracer});
        EXPECT_EQ(failed.status, tool.skipped);
        EXPECT_EQ(warnedNames(failed).back(), "item/a") << call;
    }
}

TEST_F(Ditto, copiesKeepEverything)
{
    writeFile(item / "large", randomBytes(2'500'000, 1));
    writeFile(item / "sub/\xff", "bytes");
    fs::create_symlink("/no/where", item / "sub/link");
    fs::create_directory(item / "empty");
    makeNestedFolders(item / "deep", std::string(200, 'y'), 25); // no path of that length opens
    ASSERT_TRUE(setAttribute("a", "user.file", "of a file"));
    ASSERT_TRUE(setAttribute("sub", "user.folder", "of a folder"));
    chmod((item / "a").c_str(), 04751);
    for (const char* name : {"sub/link", "sub", "empty", "deep", ""})
        setTime(item / name, 1'000'000'000);
    chmod((item / "sub").c_str(), 0510);

    const RunResult whole = copy(item, folder / "out");
    EXPECT_EQ(whole.status, 0) << whole.err;
    EXPECT_EQ(whole.out, "");
    EXPECT_EQ(differences(snapshot(item), snapshot(folder / "out")), nothing);
    EXPECT_EQ(attributeOf(folder / "out/a", "user.file"), "of a file");
    EXPECT_EQ(attributeOf(folder / "out/sub", "user.folder"), "of a folder");

    // Into a folder that is there: merged, with files and links replaced.
    chmod((folder / "out/sub").c_str(), 0700);
    writeFile(folder / "out/a", "an older and longer one");
    writeFile(folder / "out/other", "stays");
    EXPECT_EQ(copy(item, folder / "out").status, 0);
    EXPECT_EQ(readFile(folder / "out/other"), "stays");
    fs::remove(folder / "out/other");
    setTime(folder / "out", 1'000'000'000);
    EXPECT_EQ(differences(snapshot(item), snapshot(folder / "out")), nothing);

    fs::create_directory(folder / "into");
    EXPECT_EQ(copy(item / "a", folder / "into").status, 0);
    EXPECT_EQ(copy(item / "sub/link", folder / "into/renamed").status, 0);
    EXPECT_EQ(namesIn(folder / "into"), (Names{"a", "renamed"}));
    EXPECT_EQ(fs::read_symlink(folder / "into/renamed"), "/no/where");
}

TEST_F(Ditto, copiesNameWhatTheyCannotCopy)
{
    makeFifo(item / "pipe");
    writeFile(item / "taken/in", "x");
    writeFile(folder / "out/taken", "a file");
    const RunResult result = copy(item, folder / "out");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(warnedNames(result), (Names{(item / "pipe"), (item / "taken")}));
    EXPECT_EQ(readFile(folder / "out/taken"), "a file");

    fs::remove(item / "pipe");
    const RunResult inside = copy(item, item / "copy");
    EXPECT_EQ(inside.status, 1);
    EXPECT_EQ(warnedNames(inside), Names{item / "copy"});
    EXPECT_EQ(namesIn(item / "copy"), (Names{"a", "taken"}));

    EXPECT_EQ(copy(item, item).status, 2);
    EXPECT_EQ(copy(folder / "none", folder / "new").status, 2);
    EXPECT_EQ(copy(item, folder / "none/new").status, 2);
    EXPECT_EQ(namesIn(folder.path()), (Names{"in", "out"}));
}

TEST_F(Ditto, anInterruptedCopyLeavesNoHalfFile)
{
    fs::resize_file(item / "a", std::uintmax_t{1} << 40);
    if (fs::space(folder.path()).available < std::uintmax_t{4} << 30)
        GTEST_SKIP() << "too little room";
    RunningProgram program({PARCELO_TOOLS_DIR "/ditto", "-rsrcFork", item, folder / "out"});
    ASSERT_TRUE(
        waitUntil([&] { return fs::exists(folder / "out") && !fs::is_empty(folder / "out"); }));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().status, 130);
    EXPECT_TRUE(fs::is_empty(folder / "out"));
}
