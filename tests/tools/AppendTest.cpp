// Adding to an archive that is already there, made by this program or another.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"
#include "tests/support/ZipInspector.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

using Names = std::vector<std::string>;
constexpr int refused = 3;

RunResult add(const fs::path& archive, const fs::path& item)
{
    return run(zipTool(), archive, item);
}

// Archives of `old`, made in the folder it is in.
struct Maker {
    std::string name;
    std::string command;
};
const Maker makers[] = {
    {"zip", "zip -q -r a.zip old"},
    {"zipWithComment", "zip -q -r a.zip old; echo 'a comment PK' | zip -q -z a.zip"},
    {"zipToAPipe", "zip -q -r - old | cat > a.zip"},
    {"7z", "7z a -tzip -bso0 -bsp0 a.zip old"},
    {"bsdtar", "bsdtar --format zip -cf a.zip old"},
    {"python", "python3 -m zipfile -c a.zip old"},
    {"pythonZip64",
        "python3 -c \"import zipfile\nwith zipfile.ZipFile('a.zip', 'w') as z:\n"
        "  for n in ('old/', 'old/file'):\n"
        "    with z.open(n, 'w', force_zip64=True) as f: f.write(b'old' if n[-1] != '/' else b'')\n"
        "  z.comment = b'commented'\""},
    {"pythonEmpty",
        "python3 -c \"import zipfile; zipfile.ZipFile('a.zip', 'w').close()\"; rm -r old"},
    {"emptyFile", ": > a.zip; rm -r old"},
};
void PrintTo(const Maker& maker, std::ostream* stream)
{
    *stream << maker.name;
}

class Append : public testing::Test
{
protected:
    void writeItem(const std::string& name, const std::string& content)
    {
        item = folder / ("in/" + name);
        writeFile(item, content);
    }
    const TestFolder folder;
    const fs::path archive = folder / "a.zip";
    fs::path item;
};
class AppendTo : public Append, public testing::WithParamInterface<Maker>
{
};

} // namespace

TEST_P(AppendTo, keepsWhatAnotherProgramStored)
{
    writeFile(folder / "in/old/file", "old");
    chmod((folder / "in/old").c_str(), 0755);
    ASSERT_EQ(run({"sh", "-c", GetParam().command}, {.folder = folder / "in"}).status, 0);
    fs::rename(folder / "in/a.zip", archive);
    const ZipReport before = fs::file_size(archive) > 0 ? inspectZip(archive, 100) : ZipReport();
    ASSERT_EQ(before.complaints, nothing);
    writeFile(folder / "in/new/file", someText(2'500'000));

    const RunResult result = add(archive, folder / "in/new");

    EXPECT_EQ(result.status, 0) << result.err;
    const ZipReport after = inspectZip(archive, before.entries.size());
    EXPECT_EQ(after.complaints, nothing);
    EXPECT_EQ(after.comment, before.comment);
    const TreeSnapshot expected = snapshot(folder / "in");
    for (const ForeignReader& reader : zipReaders()) {
        const Tolerance tolerance = {.modeMask = 0, .seconds = -1};
        EXPECT_EQ(extractionFaults({reader.name, {}, reader.extract, tolerance}, archive, expected),
            nothing);
    }
}
INSTANTIATE_TEST_SUITE_P(
    Tools, AppendTo, testing::ValuesIn(makers), [](const auto& test) { return test.param.name; });

TEST_F(Append, refusesWhatIsNotAWholeZipAndLeavesItAlone)
{
    writeItem("old", "old");
    ASSERT_EQ(add(archive, item).status, 0);
    const std::string whole = readFile(archive);
    std::vector<std::string> damaged = {"no zip", std::string(1000, '\0'), "prefix" + whole,
        whole + "x", whole + whole, randomBytes(5000, 3)};
    for (std::size_t size = 1; size < whole.size(); ++size)
        damaged.push_back(whole.substr(0, size));
    writeItem("new", "new");
    for (const std::string& bytes : damaged) {
        writeFile(archive, bytes);
        setTime(archive, 1'000'000'000);
        const RunResult result = add(archive, item);
        EXPECT_EQ(result.status, refused) << bytes.size() << " bytes";
        EXPECT_NE(result.err, "");
        EXPECT_EQ(readFile(archive) == bytes, true);
        EXPECT_EQ(snapshot(folder.path())["a.zip"].time, 1'000'000'000);
    }
    EXPECT_EQ(namesIn(folder.path()), (Names{"a.zip", "in"}));
}

TEST_F(Append, survivesEveryDamagedByteOfTheDirectory)
{
    writeItem("old", "old");
    ASSERT_EQ(add(archive, item).status, 0);
    const std::string whole = readFile(archive);
    writeItem("new", "new");
    for (std::size_t i = whole.find("PK\1\2"); i < whole.size(); ++i) {
        for (const char value : {'\0', '\1', '\x7f', '\xff'}) {
            std::string bytes = whole;
            bytes[i] = value;
            writeFile(archive, bytes);
            const int status = add(archive, item).status;
            EXPECT_TRUE(status == 0 || status == refused) << status << " for byte " << i;
            EXPECT_TRUE(status == 0 || readFile(archive) == bytes) << "byte " << i;
        }
    }
}

TEST_F(Append, findsTheNextFreeNameForAnItemWhoseNameIsTaken)
{
    const std::vector<std::pair<Names, Names>> table = {
        {{"same.txt", "same.txt", "same.txt"}, {"same.txt", "same 2.txt", "same 3.txt"}},
        {{"same 2.txt", "same.txt", "same.txt"}, {"same 2.txt", "same.txt", "same 3.txt"}},
        {{"Folder/x", "Folder/x"}, {"Folder/", "Folder/x", "Folder 2/", "Folder 2/x"}},
        {{"Folder/x", "Folder"}, {"Folder/", "Folder/x", "Folder 2"}},
        {{"Folder", "Folder/x"}, {"Folder", "Folder 2/", "Folder 2/x"}},
        {{"plain", "plain"}, {"plain", "plain 2"}},
        {{".hidden", ".hidden"}, {".hidden", ".hidden 2"}},
        {{"A", "a", "e\u0301", "\u00e9"}, {"A", "a", "e\u0301", "\u00e9"}},
    };
    for (const auto& [items, expected] : table) {
        fs::remove(archive);
        for (std::size_t i = 0; i < items.size(); ++i) {
            const fs::path place = folder / ("in" + std::to_string(i));
            fs::remove_all(place);
            writeFile(place / items[i], items[i] + std::to_string(i));
            const RunResult result = add(archive, place / *fs::path(items[i]).begin());
            EXPECT_EQ(result.status, 0);
        }
        const ZipReport report = inspectZip(archive);
        EXPECT_EQ(report.names(), expected);
        EXPECT_EQ(report.complaints, nothing);
        EXPECT_EQ(complaintsOf(zipReaders(), archive), nothing);
    }
}

TEST_F(Append, saysUnderWhichNameAnItemWasStored)
{
    writeItem("same.txt", "same");
    EXPECT_EQ(add(archive, item).err, "");
    const RunResult second = add(archive, item);
    EXPECT_NE(second.err.find("same 2.txt"), std::string::npos) << second.err;
    EXPECT_NE(second.out.find("same 2.txt"), std::string::npos) << second.out;
}

TEST_F(Append, keepsTheArchivesPlaceModeAndLinks)
{
    writeItem("one", "one");
    ASSERT_EQ(add(archive, item).status, 0);
    chmod(archive.c_str(), 0600);
    fs::create_symlink("a.zip", folder / "link.zip");
    fs::create_hard_link(archive, folder / "hard.zip");
    writeItem("two", "two");
    ASSERT_EQ(add(folder / "link.zip", item).status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.zip"));
    EXPECT_EQ(snapshot(folder.path())["a.zip"].mode, 0600u);
    EXPECT_EQ(inspectZip(folder / "hard.zip").names(), (Names{"one", "two"}));
}

TEST_F(Append, twoAtOnceLoseNothing)
{
    for (const std::string name : {"first", "one", "two"})
        writeFile(folder / ("in/" + name), randomBytes(300'000, 5));
    for (int round = 0; round < 20; ++round) {
        fs::remove(archive);
        ASSERT_EQ(add(archive, folder / "in/first").status, 0);
        const ToolCall first = callOf(zipTool(), archive, folder / "in/one");
        const ToolCall second = callOf(zipTool(), archive, folder / "in/two");
        RunningProgram one(first.arguments, first.options);
        RunningProgram two(second.arguments, second.options);
        EXPECT_EQ(one.wait().status, 0);
        EXPECT_EQ(two.wait().status, 0);
        Names names = inspectZip(archive).names();
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, (Names{"first", "one", "two"}));
    }
}

TEST_F(Append, writesTheNewItemAndNotTheArchiveAgain)
{
    if (isSanitized)
        GTEST_SKIP() << "sanitizers refuse tracers";
    constexpr std::size_t itemSize = 1 << 20;
    for (int i = 0; i < 12; ++i) {
        writeItem("item" + std::to_string(i), randomBytes(itemSize, static_cast<unsigned>(i)));
        ASSERT_EQ(add(archive, item).status, 0);
    }
    writeItem("last", randomBytes(itemSize, 100));
    const RunResult traced = run(zipTool(), archive, item,
        {.prefix = {"strace", "-f", "-qq", "-o", folder / "log", "-e",
             "trace=write,pwrite64,writev,pwritev,pwritev2,copy_file_range,sendfile"}});
    if (traced.status != 0)
        GTEST_SKIP() << "no tracing here: " << traced.err;
    std::istringstream log(readFile(folder / "log"));
    std::size_t written = 0;
    for (std::string line; std::getline(log, line);) {
        if (const std::size_t at = line.rfind("= "); at != std::string::npos && line[at + 2] != '-')
            written += std::stoul(line.substr(at + 2));
    }
    EXPECT_GE(written, itemSize);
    EXPECT_LT(written, itemSize * 3 / 2);
}

TEST_F(Append, keepsAnArchiveBeyondTheZip64Limit)
{
    // 65,534 entries need no zip64 end, one more does, and so do all after it.
    ASSERT_EQ(run({"python3", "-c",
                      "import sys, zipfile\n"
                      "with zipfile.ZipFile(sys.argv[1], 'w') as z:\n"
                      "  for i in range(65533): z.writestr('f%d' % i, b'')",
                      archive})
                  .status,
        0);
    for (std::size_t count = 65534; count <= 65537; ++count) {
        writeItem("item" + std::to_string(count), "item");
        ASSERT_EQ(add(archive, item).status, 0);
        const ZipReport report = inspectZip(archive, 65533);
        EXPECT_EQ(report.complaints, nothing);
        EXPECT_EQ(report.entries.size(), count);
        EXPECT_EQ(report.hasZip64End, count >= 65535);
    }
    EXPECT_EQ(complaintsOf(zipReaders(), archive), nothing);
}

TEST_F(Append, aLinkThatLeadsNowhereIsRefused)
{
    fs::create_symlink("nowhere", archive);
    writeItem("item", "content");
    EXPECT_EQ(add(archive, item).status, 15);
    EXPECT_TRUE(fs::is_symlink(archive));
}

TEST_F(Append, aNameIsTakenHoweverItIsWritten)
{
    ASSERT_EQ(
        run({"python3", "-c",
                "import sys, zipfile\n"
                "with zipfile.ZipFile(sys.argv[1], 'w') as z:\n"
                "    for name in ('./item', '/item 2', './/item 3/in'): z.writestr(name, 'x')\n",
                archive.native()})
            .status,
        0);
    writeItem("item", "content");
    const RunResult result = add(archive, item);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.substr(0, 17), "  adding: item 4 ");
}
