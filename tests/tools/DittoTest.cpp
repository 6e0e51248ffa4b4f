// What only the resource-preserving tool does: extended attributes, and copies of trees.

#include "tests/support/ToolTest.h"

namespace
{

struct Ditto : EachTool {
    void SetUp() override
    {
        write({"a"});
        if (::setxattr(folder.path().c_str(), "user.probe", "", 0, 0) != 0)
            GTEST_SKIP() << "no extended attributes here";
    }
    void setAttribute(
        const std::string& name, const std::string& attribute, const std::string& value = "x") const
    {
        const std::string file = item / name;
        checked(::setxattr(file.c_str(), attribute.c_str(), value.data(), value.size(), 0), file);
    }
    RunResult copy(const fs::path& source, const fs::path& target) const
    {
        return run({PARCELO_TOOLS_DIR "/ditto", "-rsrcFork", source, target});
    }
    // A line for each: NAME|FINDER INFORMATION|ATTRIBUTE=VALUE,...|RESOURCE FORK
    std::string sideFiles() const
    {
        const std::string reader = PARCELO_SOURCE_DIR "/tests/support/read_apple_double.py";
        return run({"python3", reader, archive}).out;
    }
};

INSTANTIATE_TEST_SUITE_P(Tools, Ditto, testing::Values("ditto"));

std::string attributeOf(const fs::path& file, const char* name)
{
    std::string value(100, '\0');
    const ssize_t size = ::getxattr(file.c_str(), name, value.data(), value.size());
    return size < 0 ? "none" : value.substr(0, static_cast<std::size_t>(size));
}

} // namespace

TEST_P(Ditto, attributesStandInAppleDoubleFilesBesideTheItem)
{
    writeFile(item / "pieces", someText(3 << 20));
    write({"._a", "sub/plain", "sub/\u00e9"});
    fs::create_symlink("a", item / "link");
    setAttribute("", "user.top", "of the top");
    setAttribute("a", "user.com.apple.FinderInfo", "TEXTttxt" + std::string(24, '\0'));
    setAttribute("a", "user.com.apple.ResourceFork", "the fork");
    setAttribute("a", "user.c", "");
    setAttribute("a", "user.z", "last");
    setAttribute("a", "user.b", "first by name");
    setAttribute("pieces", "user.com.apple.ResourceFork", "fork alone");
    setAttribute("sub", "user.longest-name-that-readers-take-", "s");
    const TreeSnapshot expected = tree();

    const RunResult result = make();

    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(linesOf(result.out).size(), expected.size());
    EXPECT_EQ(sideFiles(),
        "__MACOSX/._item||top=of the top|\n"
        "__MACOSX/item/._a|TEXTttxt|b=first by name,c=,z=last|the fork\n"
        "__MACOSX/item/._pieces|||fork alone\n"
        "__MACOSX/item/._sub||longest-name-that-readers-take-=s|\n");
    for (const ForeignReader& reader : zipReaders()) {
        Names found = extractionFaults(reader, archive, expected);
        std::erase_if(found, [](const std::string& fault) { return contains(fault, "__MACOSX"); });
        EXPECT_EQ(found, nothing);
    }
}

TEST_P(Ditto, forksThatServersKeepGoWhereAMacTakesThemFrom)
{
    const auto zeros = [](std::size_t count) { return std::string(count, '\0'); };
    const std::string finder = "TEXTttxt" + zeros(24);
    const std::string afpInfo = "AFP\0\0\0\1\0\0\0\0\0\x80\0\0\0"s + finder + zeros(12);
    const auto metadata = [&](char count, char offset) {
        return "\0\5\x16\7\0\2\0\0"s + zeros(17) + count + "\0\0\0\4\0\0\0\x32\0\0\0\0"s
            + "\0\0\0\x9\0\0\0"s + offset + "\0\0\0 "s + finder;
    };
    const std::string resource = "DosStream.AFP_Resource:$DATA";
    const std::string information = "DosStream.AFP_AfpInfo:$DATA";
    const std::string theirs = "org.netatalk.Metadata";
    const struct {
        std::vector<std::pair<std::string, std::string>> attributes;
        std::string expected;
    } files[] = {
        {{{resource, "fork\0"s}, {information, afpInfo + '\0'}}, "TEXTttxt||fork"},
        {{{"org.netatalk.ResourceFork", "fork"}, {theirs, metadata(2, 50)}},
            "TEXTttxt|org.netatalk.Metadata=82 bytes|fork"},
        {{{"com.apple.ResourceFork", "fork"}, {resource, "fork\0"s}}, "||fork"},
        {{{"com.apple.ResourceFork", "fork"}, {resource, "other\0"s}},
            "|DosStream.AFP_Resource:$DATA=other\\0|fork"},
        // Not of their forms: without the end, the mark, so many entries, an entry's bytes.
        {{{resource, "begin\1"}}, "|DosStream.AFP_Resource:$DATA=begin\1|"},
        {{{information, zeros(61)}}, "|DosStream.AFP_AfpInfo:$DATA=61 bytes|"},
        {{{information, "AFP"}}, "|DosStream.AFP_AfpInfo:$DATA=AFP|"},
        {{{theirs, metadata(5, 50)}}, "|org.netatalk.Metadata=82 bytes|"},
        {{{theirs, metadata(2, 51)}}, "|org.netatalk.Metadata=82 bytes|"},
        {{{theirs, "\5"}}, "|org.netatalk.Metadata=\5|"},
    };
    std::string expected;
    for (const auto& file : files) {
        const std::string name = "file" + std::to_string(&file - files);
        write({name});
        for (const auto& [attribute, value] : file.attributes)
            setAttribute(name, "user." + attribute, value);
        expected += "__MACOSX/item/._" + name + "|" + file.expected + "\n";
    }
    const RunResult result = make();
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(sideFiles(), expected);
}

TEST_P(Ditto, attributesThatCannotBeKeptAreNamed)
{
    // One of another size would take those with it that follow.
    setAttribute("a", "user.com.apple.FinderInfo", "not 32 bytes");
    const RunResult noInformation = make();
    EXPECT_EQ(noInformation.status, tool.skipped);
    EXPECT_EQ(warnedNames(noInformation), Names{"item/a"});
    EXPECT_EQ(sideFiles(), "");
    ::removexattr((item / "a").c_str(), "user.com.apple.FinderInfo");

    const std::string longName = "user." + std::string(128, 'n');
    setAttribute("a", longName);
    setAttribute("a", "user.kept");
    const RunResult tooLong = make();
    EXPECT_EQ(tooLong.status, tool.skipped);
    EXPECT_EQ(tooLong.err,
        "warning: item/a: extended attribute " + longName + " is too long to be stored\n");
    EXPECT_TRUE(contains(run({"unzip", "-l", archive}).out, "__MACOSX/item/._a"));

    // In a folder of the name that the side files have, they could meet files.
    fs::rename(item, folder / "in/__MACOSX");
    const RunResult taken = run(tool, archive, folder / "in/__MACOSX");
    EXPECT_TRUE(contains(taken.err, "warning: __MACOSX/a: "));
    EXPECT_EQ(taken.status, tool.skipped);
    fs::rename(folder / "in/__MACOSX", item);

    for (const std::string call : {"flistxattr", "fgetxattr"}) {
        if (!canTrace())
            continue;
        const RunResult failed = make({.prefix = strace("inject=" + call + ":error=EIO")});
        EXPECT_EQ(failed.status, tool.skipped);
        EXPECT_TRUE(contains(failed.err, "warning: item/a: ")) << call;
    }
}

TEST_P(Ditto, copiesKeepEverything)
{
    writeFile(item / "large", randomBytes(2'500'000, 1));
    writeFile(item / "sub/\xff", "bytes");
    fs::create_symlink("/no/where", item / "sub/link");
    makeNestedFolders(item / "deep", std::string(200, 'y'), 25); // no path of that length opens
    setAttribute("a", "user.file", "of a file");
    setAttribute("sub", "user.folder", "of a folder");
    shell("chmod 4751 a; touch -hd @1000000000 sub/link sub deep .; chmod 510 sub");

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

    // A file or a link alone: into a folder, or by another name.
    for (const char* target : {"out", "out/renamed"})
        EXPECT_EQ(copy(item / "sub/link", folder / target).status, 0);
    for (const char* made : {"out/link", "out/renamed"})
        EXPECT_EQ(fs::read_symlink(folder / made), "/no/where");
}

TEST_P(Ditto, copiesNameWhatTheyCannotCopy)
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
