// Adding to an archive that is already there, made by this program or another.

#include "tests/support/ToolTest.h"

namespace
{

struct Append : Zip {
    RunResult add(const fs::path& path) const { return run(tool, archive, folder.path() / path); }
    // By a shell, in the folder of the items.
    void makeWith(const std::string& command) const
    {
        fs::create_directories(folder / "in");
        ASSERT_EQ(run({"sh", "-c", command}, {.folder = folder / "in"}).status, 0);
        fs::rename(folder / "in/a.zip", archive);
    }
    RunResult addNew(const std::string& name, const std::string& content) const
    {
        writeFile(folder / "in" / name, content);
        return add("in/" + name);
    }
};

// A command that makes an archive, which `code` writes to `z`.
std::string python(const std::string& code)
{
    return "python3 -c \"import zipfile\nz = zipfile.ZipFile('a.zip', 'w')\n" + code + "\"";
}

} // namespace

TEST_F(Append, keepsWhatAnotherProgramStored)
{
    for (const std::string& command :
        {"zip -q -r a.zip old; echo 'a comment PK' | zip -q -z a.zip"s,
            "zip -q -r - old | cat > a.zip"s, // with descriptors
            "7z a -tzip -bso0 -bsp0 a.zip old"s,
            python("with z.open('old/file', 'w', force_zip64=True) as f: f.write(b'old')"),
            python("zipfile.ZIP_FILECOUNT_LIMIT = 0; z.write('old/file')"), // with a zip64 end
            ": > a.zip; rm -r old"s}) {
        SCOPED_TRACE(command);
        writeFile(folder / "in/old/file", "old");
        makeWith(command);
        const ZipReport before = fs::is_empty(archive) ? ZipReport() : inspectZip(archive, 100);
        ASSERT_EQ(before.complaints, nothing);

        const RunResult result = addNew("new", someText(1'500'000));

        EXPECT_EQ(result.status, 0) << result.err;
        const ZipReport after = inspectZip(archive, before.entries.size());
        EXPECT_EQ(after.complaints, nothing);
        EXPECT_EQ(after.comment, before.comment);
        EXPECT_EQ(after.hasZip64End, before.hasZip64End);
        for (ForeignReader reader : zipReaders()) {
            reader.tolerance = {.modeMask = 0, .seconds = INT64_MAX};
            EXPECT_EQ(extractionFaults(reader, archive, tree()), nothing);
        }
    }
}

TEST_F(Append, refusesWhatIsNotAWholeZipAndLeavesItAlone)
{
    ASSERT_EQ(addNew("old", "old").status, 0);
    const std::string whole = readFile(archive);
    Names damaged = {"no zip", std::string(1000, '\0'), "prefix" + whole, whole + "x",
        whole + whole, randomBytes(5000, 3)};
    for (std::size_t size = 1; size < whole.size(); size += whole.size() / 12)
        damaged.push_back(whole.substr(0, size));
    for (const std::string& bytes : damaged) {
        writeFile(archive, bytes);
        setTime(archive, 1'000'000'000);
        const RunResult result = addNew("new", "new");
        EXPECT_EQ(result.status, 3) << bytes.size() << " bytes";
        EXPECT_NE(result.err, "");
        EXPECT_TRUE(readFile(archive) == bytes);
        EXPECT_EQ(snapshot(folder.path())["a.zip"].time, 1'000'000'000);
    }
    EXPECT_EQ(namesIn(folder.path()), (Names{"a.zip", "in"}));
}

TEST_F(Append, findsTheNextFreeNameForAnItemWhoseNameIsTakenAndTellsIt)
{
    const std::vector<std::pair<Names, Names>> table = {
        {{"same 2.txt", "same.txt", "same.txt"}, {"same 2.txt", "same.txt", "same 3.txt"}},
        {{"Folder/x", "Folder/x"}, {"Folder/", "Folder/x", "Folder 2/", "Folder 2/x"}},
        {{"Folder/x", "Folder"}, {"Folder/", "Folder/x", "Folder 2"}},
        {{".hidden", ".hidden"}, {".hidden", ".hidden 2"}},
        {{"A", "a", "e\u0301", "\u00e9"}, {"A", "a", "e\u0301", "\u00e9"}},
    };
    for (const auto& [items, expected] : table) {
        fs::remove(archive);
        RunResult last;
        for (const std::string& name : items) {
            fs::remove_all(folder / "in");
            writeFile(folder / "in" / name, name);
            last = add("in" / *fs::path(name).begin());
        }
        const ZipReport report = inspectZip(archive);
        EXPECT_EQ(report.names(), expected);
        EXPECT_EQ(report.complaints, nothing);
        EXPECT_EQ(complaintsOf(zipReaders(), archive), nothing);
        const std::string stored = *fs::path(expected.back()).begin();
        EXPECT_EQ(contains(last.err, "stored as " + stored), items.back() != expected.back())
            << last.err;
    }
    // However it is written.
    makeWith(python("for n in './item', '/item 2', './/item 3/in': z.writestr(n, 'x')"));
    EXPECT_TRUE(addNew("item", "content").out.starts_with("  adding: item 4 "));
}

TEST_F(Append, keepsTheArchivesPlaceModeAndLinks)
{
    ASSERT_EQ(addNew("one", "one").status, 0);
    fs::permissions(archive, fs::perms(0600));
    fs::create_symlink("a.zip", folder / "link.zip");
    fs::create_symlink("nowhere", folder / "dangling.zip");
    fs::create_hard_link(archive, folder / "hard.zip");
    writeFile(folder / "in/two", "two");
    ASSERT_EQ(run(tool, folder / "link.zip", folder / "in/two").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.zip"));
    EXPECT_EQ(snapshot(folder.path())["a.zip"].mode, 0600u);
    EXPECT_EQ(inspectZip(folder / "hard.zip").names(), (Names{"one", "two"}));
    EXPECT_EQ(run(tool, folder / "dangling.zip", folder / "in/two").status, tool.cannotCreate);
    EXPECT_TRUE(fs::is_symlink(folder / "dangling.zip"));
}

TEST_F(Append, twoAtOnceLoseNothing)
{
    for (const std::string name : {"first", "one", "two"})
        writeFile(folder / "in" / name, randomBytes(300'000, 5));
    for (int round = 0; round < 12; ++round) {
        fs::remove(archive);
        ASSERT_EQ(add("in/first").status, 0);
        RunningProgram one = start(tool, archive, folder / "in/one");
        EXPECT_EQ(add("in/two").status, 0);
        EXPECT_EQ(one.wait().status, 0);
        Names names = inspectZip(archive).names();
        std::ranges::sort(names);
        EXPECT_EQ(names, (Names{"first", "one", "two"}));
    }
}

TEST_F(Append, whatFitsOnlyInPartLeavesTheArchiveAsItWas)
{
    makeWith(python("for n in range(300): z.writestr(str(n) + 200 * 'n', '')"));
    const std::string old = readFile(archive);
    writeFile(folder / "in/new", "new");
    for (std::size_t limit = old.size(); limit < old.size() + 120; limit += 40) {
        const Names prefix = {"prlimit", "--fsize=" + std::to_string(limit)};
        const RunResult result = run(tool, archive, folder / "in/new", {.prefix = prefix});
        EXPECT_EQ(result.status, tool.writeError) << limit;
        EXPECT_TRUE(readFile(archive) == old) << limit;
    }
}

TEST_F(Append, writesTheNewItemAndNotTheArchiveAgain)
{
    if (!canTrace())
        GTEST_SKIP() << "no tracing here";
    constexpr std::size_t itemSize = 1 << 20;
    for (unsigned i = 0; i < 6; ++i)
        ASSERT_EQ(addNew(std::to_string(i), randomBytes(itemSize, i)).status, 0);
    writeFile(folder / "in/last", randomBytes(itemSize, 100));
    const Names prefix
        = strace("trace=write,pwrite64,writev,pwritev,pwritev2,copy_file_range,sendfile");
    ASSERT_EQ(run(tool, archive, folder / "in/last", {.prefix = prefix}).status, 0);
    std::size_t written = 0;
    for (const std::string& line : linesOf(readFile(folder / "log"))) {
        if (const std::size_t at = line.rfind("= "); at != std::string::npos && line[at + 2] != '-')
            written += std::stoul(line.substr(at + 2));
    }
    EXPECT_GE(written, itemSize);
    EXPECT_LT(written, itemSize * 2);
}

TEST_F(Append, keepsAnArchiveBeyondTheZip64Limit)
{
    // 65,534 entries need no zip64 end, one more does, and so do all after it.
    makeWith(python("for i in range(65533): z.writestr('f%d' % i, b'')"));
    for (std::size_t count = 65534; count <= 65536; ++count) {
        ASSERT_EQ(addNew("item" + std::to_string(count), "item").status, 0);
        const ZipReport report = inspectZip(archive, 65533);
        EXPECT_EQ(report.complaints, nothing);
        EXPECT_EQ(report.entries.size(), count);
        EXPECT_EQ(report.hasZip64End, count >= 65535);
    }
    EXPECT_EQ(complaintsOf(zipReaders(), archive), nothing);
}
