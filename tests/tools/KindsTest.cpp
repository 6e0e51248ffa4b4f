// Links, hard links, unreadable things, times: what is not simply a file with content.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"
#include "tests/support/ZipInspector.h"

#include <algorithm>
#include <map>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

using Names = std::vector<std::string>;

struct World {
    const TestFolder folder = {};
    const fs::path item = folder / "in/item";

    void link(const std::string& name, const std::string& target) const
    {
        fs::create_directories((item / name).parent_path());
        fs::create_symlink(target, item / name);
    }
    TreeSnapshot tree() const { return snapshot(folder / "in"); }
};

} // namespace

TEST(Zip, keepsLinksWhateverTheyLeadTo)
{
    const World world;
    writeFile(world.item / "folder/in", "in");
    writeFile(world.item / "target", "target");
    const std::map<std::string, std::string> links = {{"to-file", "target"},
        {"to-folder", "folder"}, {"slash", "folder/"}, {"dangling", "no-such"}, {"self", "self"},
        {"loop-a", "loop-b"}, {"loop-b", "loop-a"}, {"absolute", "/etc/hostname"},
        {"outside", "../../../../etc/hostname"}, {"newline", "a\nb"}, {"-dash", "target"},
        {"long", std::string(2000, 'x')}, {"invalid", "bad\xff"}, {"folder/up", "../target"}};
    for (const auto& [name, target] : links)
        world.link(name, target);

    const RunResult result = run(zipTool(), world.folder / "a.zip", world.item);

    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(faultsOf(zipTool(), result, world.folder / "a.zip", world.tree(), {"7z"}), nothing);
}

TEST(Zip, compressesWhatOnlyBeginsLikeACompressedFile)
{
    const World world;
    const std::string gzip = "\x1f\x8b\x08";
    writeFile(world.item / "text.gz", gzip + someText(5000));
    writeFile(world.item / "half.gz", gzip + randomBytes(2500, 1) + someText(9500));
    writeFile(world.item / "real.gz", gzip + randomBytes(5000, 1));
    const RunResult result = run(zipTool(), world.folder / "a.zip", world.item);
    for (const auto& [name, method] :
        {std::pair("text.gz", "deflated"), {"half.gz", "deflated"}, {"real.gz", "stored"}})
        EXPECT_NE(result.out.find(std::string(name) + " (" + method), std::string::npos)
            << result.out;
    EXPECT_EQ(faultsOf(zipTool(), result, world.folder / "a.zip", world.tree()), nothing);
}

TEST(Zip, putsFilesAndLinksBeforeFoldersSoThatEveryReaderMayMakeThem)
{
    const World world; // 7z refuses a link that leads through a link made before
    writeFile(world.item / "Versions/A/Lib", "library");
    writeFile(world.item / "a-folder/z", "z");
    writeFile(world.item / "z-file", "z");
    world.link("Versions/Current", "A");
    world.link("Lib", "Versions/Current/Lib");

    const RunResult result = run(zipTool(), world.folder / "a.zip", world.item);

    EXPECT_EQ(inspectZip(world.folder / "a.zip").names(),
        (Names{"item/", "item/Lib", "item/z-file", "item/Versions/", "item/Versions/Current",
            "item/Versions/A/", "item/Versions/A/Lib", "item/a-folder/", "item/a-folder/z"}));
    EXPECT_EQ(faultsOf(zipTool(), result, world.folder / "a.zip", world.tree()), nothing);
}

TEST(Tar, followsLinksAndKeepsThoseItCannotFollow)
{
    const World world;
    writeFile(world.item / "folder/in", "in");
    writeFile(world.item / "target", "target");
    writeFile(world.folder / "outside/file", "outside");
    makeFifo(world.folder / "outside/pipe");
    world.link("to-file", "target");
    world.link("to-folder", "folder");
    world.link("to-outside", world.folder / "outside/file");
    TreeSnapshot expected = world.tree();
    expected["item/to-file"] = expected["item/target"];
    expected["item/to-folder"] = expected["item/folder"];
    expected["item/to-folder/in"] = expected["item/folder/in"];
    expected["item/to-outside"] = snapshot(world.folder / "outside")["file"];
    const std::map<std::string, std::string> unfollowed
        = {{"dangling", "no-such"}, {"self", "self"}, {"loop-a", "loop-b"}, {"loop-b", "loop-a"},
            {"here", "."}, {"folder/up", ".."}, {"zero", "/dev/zero"}, {"terminal", "/dev/tty"},
            {"pipe", "../../outside/pipe"}, {"dangling-absolute", "/no/such"}};
    Names warned;
    for (const auto& [name, target] : unfollowed) {
        world.link(name, target);
        warned.push_back("item/" + name);
        expected["item/" + name] = {.kind = 'l', .target = target};
    }
    // The folder is reached twice, and so is the link in it.
    warned.push_back("item/to-folder/up");
    expected["item/to-folder/up"] = {.kind = 'l', .target = ".."};
    for (const std::string name : {"item", "item/folder", "item/to-folder"})
        expected[name].time = world.tree()[name == "item" ? name : "item/folder"].time;
    std::sort(warned.begin(), warned.end());

    const RunResult result = run(tarTool(), world.folder / "a.tar.gz", world.item);

    EXPECT_EQ(result.status, tarTool().skipped);
    EXPECT_EQ(warnedNames(result), warned);
    EXPECT_EQ(faultsOf(tarTool(), result, world.folder / "a.tar.gz", expected, {"7z"}), nothing);
}

TEST(Tar, restoresHardLinksAsHardLinks)
{
    const World world;
    writeFile(world.item / "one", randomBytes(100'000, 1));
    fs::create_directory(world.item / "folder");
    fs::create_hard_link(world.item / "one", world.item / "two");
    fs::create_hard_link(world.item / "one", world.item / "folder/three");
    ASSERT_EQ(run(tarTool(), world.folder / "a.tar.gz", world.item).status, 0);
    EXPECT_LT(fs::file_size(world.folder / "a.tar.gz"), 110'000);
    for (const std::string reader : {"tar", "bsdtar"}) {
        const fs::path out = world.folder / reader;
        fs::create_directory(out);
        ASSERT_EQ(run({reader, "-xf", world.folder / "a.tar.gz", "-C", out}).status, 0);
        TreeSnapshot tree = snapshot(out);
        EXPECT_EQ(tree["item/one"].inode, tree["item/two"].inode);
        EXPECT_EQ(tree["item/one"].inode, tree["item/folder/three"].inode);
    }
}

class EachTool : public testing::TestWithParam<std::string>
{
protected:
    const Tool& tool = toolNamed(GetParam());
    const World world = {};
    const fs::path archive = world.folder / tool.archiveName;
};
INSTANTIATE_TEST_SUITE_P(Tools, EachTool, testing::Values("zip", "tar", "ditto"),
    [](const auto& test) { return test.param; });

TEST_P(EachTool, storeWhatCanBeReadAndNameWhatCannot)
{
    for (const std::string name : {"a", "secret", "z", "no-rights/x", "no-entry/x", "no-list/x"})
        writeFile(world.item / name, name);
    const TreeSnapshot all = world.tree();
    chmod((world.item / "secret").c_str(), 0);
    chmod((world.item / "no-rights").c_str(), 0);
    chmod((world.item / "no-entry").c_str(), 0444);
    chmod((world.item / "no-list").c_str(), 0111);
    TreeSnapshot expected = world.tree();
    for (const std::string name : {"secret", "no-rights/x", "no-entry/x", "no-list/x"})
        expected.erase("item/" + name);

    const ToolCall call = asOrdinaryUser(callOf(tool, archive, world.item), world.folder.path());
    const RunResult result = run(call.arguments, call.options);

    EXPECT_EQ(result.status, tool.skipped);
    EXPECT_EQ(warnedNames(result),
        (Names{"item/no-entry/x", "item/no-list", "item/no-rights", "item/secret"}));
    EXPECT_EQ(faultsOf(tool, result, archive, expected), nothing);
}

TEST_P(EachTool, neverWaitForAPipeAndMakeNoArchiveOfOne)
{
    fs::create_directories(world.item.parent_path());
    makeFifo(world.item);
    const RunResult result = run(tool, archive, world.item);
    EXPECT_EQ(result.status, tool.nothingToDo);
    EXPECT_EQ(result.err.find("warning: item: is a FIFO\n"), 0U) << result.err;
    EXPECT_FALSE(fs::exists(archive));
}

TEST_P(EachTool, leaveOutFinderFilesAndNothingThatOnlyLooksLikeThem)
{
    if (tool.name == "ditto")
        return; // has no such option
    for (const std::string name : {".DS_Store", "sub/.DS_Store", "sub/deeper/.DS_Store",
             "x.DS_Store", ".DS_Store.txt", ".ds_store", "folder/.DS_Store/in", "._keep"})
        writeFile(world.item / name, name);
    TreeSnapshot expected = world.tree();
    for (const std::string name : {".DS_Store", "sub/.DS_Store", "sub/deeper/.DS_Store"})
        expected.erase("item/" + name);
    const RunResult result = run(tool, archive, world.item, {.leaveOutDsStore = true});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(faultsOf(tool, result, archive, expected), nothing);
}

TEST_P(EachTool, keepTimesThatOldFieldsCannotHold)
{
    const std::map<std::string, std::int64_t> times = {{"1901", -2147483648}, {"1969", -86400},
        {"1970", 0}, {"1979", 315532799}, {"1980", 315532800}, {"odd", 1000000001},
        {"2038", 2147483648}, {"2106", 4294967296}, {"2107", 4354819198}, {"2446", 15032385535}};
    for (const auto& [name, time] : times) {
        writeFile(world.item / name, name);
        setTime(world.item / name, time);
    }
    const RunResult result = run(tool, archive, world.item);
    EXPECT_EQ(result.status, 0) << result.err;
    // unzip, bsdtar and python do not read the field that holds times after 2038 in a zip.
    const std::set<std::string> unfit
        = tool.makesZips ? std::set<std::string>{"unzip", "bsdtar"} : std::set<std::string>{};
    EXPECT_EQ(faultsOf(tool, result, archive, world.tree(), unfit), nothing);
    if (!tool.makesZips)
        return;
    constexpr unsigned firstDate = 1u << 5 | 1; // 1980-01-01
    constexpr unsigned lastDate = 127u << 9 | 12u << 5 | 31; // 2107-12-31
    for (const ZipEntry& entry : inspectZip(archive).entries) {
        const auto found = times.find(entry.name.substr(5));
        if (found == times.end())
            continue;
        EXPECT_EQ(entry.time, found->second) << entry.name;
        EXPECT_TRUE(found->second >= times.at("1980") || entry.dosDate == firstDate) << entry.name;
        EXPECT_TRUE(found->second <= times.at("2107") || entry.dosDate == lastDate) << entry.name;
    }
}

TEST_P(EachTool, giveTheSameBytesForAnyNumberOfThreads)
{
    constexpr std::size_t piece = 1 << 20;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{65535},
             std::size_t{65536}, piece - 1, piece, piece + 1, 2 * piece, 3 * piece + 7}) {
        writeFile(world.item / ("noise" + std::to_string(size)), randomBytes(size, 7));
        writeFile(world.item / ("zeros" + std::to_string(size)), std::string(size, '\0'));
        writeFile(world.item / ("text" + std::to_string(size)), someText(size));
    }
    // Random data after text: what was begun as compressed has to go on as it can.
    writeFile(world.item / "mixed", someText(piece) + randomBytes(2 * piece, 9) + someText(piece));
    Names levels = {"-6"};
    if (tool.name == "zip" && !isSanitized)
        levels = {"-0", "-1", "-4", "-6", "-9"}; // each way in which libdeflate works
    for (const std::string& level : levels) {
        std::string expected;
        for (const unsigned threads : {1u, 2u, 3u, 8u}) {
            fs::remove(archive);
            const RunResult result
                = run(tool, archive, world.item, {.level = level, .threads = threads});
            ASSERT_EQ(result.status, 0) << level << result.err;
            const std::string bytes = readFile(archive);
            EXPECT_TRUE(expected.empty() || bytes == expected) << threads << " threads, " << level;
            expected = bytes;
        }
        EXPECT_EQ(extractionFaults(tool.readers.front(), archive, world.tree()), nothing) << level;
    }
    EXPECT_EQ(complaintsOf(tool.readers, archive), nothing);
}

TEST(Zip, findsWhatCompressesAmongWhatDoesNot)
{
    std::string betweenEightLooks = randomBytes(16 << 20, 1);
    for (std::size_t part = 0; part < 7; ++part)
        betweenEightLooks.replace(
            part * (betweenEightLooks.size() / 7) + 600'000, 400'000, someText(400'000));
    std::string inTurn;
    for (unsigned turn = 0; inTurn.size() < 4'000'000; ++turn)
        inTurn += someText(40'000 + 1900 * turn, turn) + randomBytes(90'000 - 1900 * turn, turn);
    struct Case {
        std::string data;
        std::size_t slack; // for what repeats in another piece
    };
    std::vector<Case> cases = {{betweenEightLooks, 80'000}, {inTurn, 20'000}};
    struct Repeats {
        std::size_t period; // a match reaches 32 KiB back
        std::size_t size;
    };
    for (const auto& [period, size] : {Repeats{5'000, 4'000'000}, {12'000, 4'000'000},
             {31'000, 4'000'000}, {31'000, 2'000'000}, {15'000, 60'000}}) {
        std::string repeats;
        while (repeats.size() < size)
            repeats += randomBytes(period, 3);
        cases.push_back({repeats, size / 1'000'000 * period + 1'000});
    }
    const TestFolder folder;
    for (const auto& [data, slack] : cases) {
        writeFile(folder / "in/data", data);
        fs::remove(folder / "ours.zip");
        fs::remove(folder / "theirs.zip");
        const RunResult result = run(zipTool(), folder / "ours.zip", folder / "in/data");
        EXPECT_EQ(
            faultsOf(zipTool(), result, folder / "ours.zip", snapshot(folder / "in")), nothing);
        ASSERT_EQ(run({"zip", "-q", "-6", folder / "theirs.zip", folder / "in/data"}).status, 0);
        EXPECT_LE(fs::file_size(folder / "ours.zip"), fs::file_size(folder / "theirs.zip") + slack);
    }
}
