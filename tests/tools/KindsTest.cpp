// Links, hard links, unreadable things, times: what is not simply a file with content.

#include "tests/support/ZipInspector.h"
#include "tests/tools/ToolTest.h"

#include <algorithm>
#include <map>

#include <sys/stat.h>

struct Tar : ToolTest {
    Tar()
        : ToolTest("tar")
    {
    }
};

TEST_F(Zip, keepsLinksWhateverTheyLeadTo)
{
    writeFile(item / "folder/in", "in");
    writeFile(item / "target", "target");
    const std::map<std::string, std::string> links = {{"to-file", "target"},
        {"to-folder", "folder"}, {"slash", "folder/"}, {"dangling", "no-such"}, {"self", "self"},
        {"loop-a", "loop-b"}, {"loop-b", "loop-a"}, {"absolute", "/etc/hostname"},
        {"outside", "../../../../etc/hostname"}, {"newline", "a\nb"}, {"-dash", "target"},
        {"long", std::string(2000, 'x')}, {"invalid", "bad\xff"}, {"folder/up", "../target"}};
    for (const auto& [name, target] : links)
        link(name, target);

    const RunResult result = make();

    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(faults(result, tree(), {"7z"}), nothing);
}

TEST_F(Zip, putsFilesAndLinksBeforeFoldersSoThatEveryReaderMayMakeThem)
{
    // 7z refuses a link that leads through a link made before
    writeFile(item / "Versions/A/Lib", "library");
    writeFile(item / "a-folder/z", "z");
    writeFile(item / "z-file", "z");
    link("Versions/Current", "A");
    link("Lib", "Versions/Current/Lib");

    const RunResult result = make();

    EXPECT_EQ(inspectZip(archive).names(),
        (Names{"item/", "item/Lib", "item/z-file", "item/Versions/", "item/Versions/Current",
            "item/Versions/A/", "item/Versions/A/Lib", "item/a-folder/", "item/a-folder/z"}));
    EXPECT_EQ(faults(result, tree()), nothing);
}

TEST_F(Tar, followsLinksAndKeepsThoseItCannotFollow)
{
    writeFile(item / "folder/in", "in");
    writeFile(item / "target", "target");
    writeFile(folder / "outside/file", "outside");
    makeFifo(folder / "outside/pipe");
    link("to-file", "target");
    link("to-folder", "folder");
    link("to-outside", folder / "outside/file");
    writeFile(item / "hard", "hard");
    fs::create_hard_link(item / "hard", item / "folder/hard");
    TreeSnapshot expected = tree();
    expected["item/to-file"] = expected["item/target"];
    expected["item/to-folder"] = expected["item/folder"];
    for (const std::string name : {"in", "hard"})
        expected["item/to-folder/" + name] = expected["item/folder/" + name];
    expected["item/to-outside"] = snapshot(folder / "outside")["file"];
    const std::map<std::string, std::string> unfollowed
        = {{"dangling", "no-such"}, {"self", "self"}, {"loop-a", "loop-b"}, {"loop-b", "loop-a"},
            {"here", "."}, {"folder/up", ".."}, {"zero", "/dev/zero"}, {"terminal", "/dev/tty"},
            {"pipe", "../../outside/pipe"}, {"dangling-absolute", "/no/such"}};
    Names warned;
    for (const auto& [name, target] : unfollowed) {
        link(name, target);
        warned.push_back("item/" + name);
        expected["item/" + name] = {.kind = 'l', .target = target};
    }
    // The folder is reached twice, and so is the link in it.
    warned.push_back("item/to-folder/up");
    expected["item/to-folder/up"] = {.kind = 'l', .target = ".."};
    for (const std::string name : {"item", "item/folder", "item/to-folder"})
        expected[name].time = tree()[name == "item" ? name : "item/folder"].time;
    std::sort(warned.begin(), warned.end());

    const RunResult result = make();

    EXPECT_EQ(result.status, tool.skipped);
    EXPECT_EQ(warnedNames(result), warned);
    EXPECT_EQ(faults(result, expected, {"7z"}), nothing);
    ASSERT_EQ(run({"tar", "-xf", "a.tar.gz"}, {.folder = folder.path()}).status, 0);
    EXPECT_TRUE(fs::equivalent(folder / "item/hard", folder / "item/folder/hard"));
}

INSTANTIATE_TEST_SUITE_P(Tools, EachTool, eachTool, [](const auto& test) { return test.param; });

TEST_P(EachTool, storeWhatCanBeReadAndNameWhatCannot)
{
    for (const std::string name : {"a", "secret", "z", "no-rights/x", "no-entry/x", "no-list/x"})
        writeFile(item / name, name);
    const std::pair<const char*, mode_t> modes[]
        = {{"secret", 0}, {"no-rights", 0}, {"no-entry", 0444}, {"no-list", 0111}};
    for (const auto& [name, mode] : modes)
        ::chmod((item / name).c_str(), mode);
    TreeSnapshot expected = tree();
    for (const std::string name : {"secret", "no-rights/x", "no-entry/x", "no-list/x"})
        expected.erase("item/" + name);

    const ToolCall call = asOrdinaryUser(callOf(tool, archive, item), folder.path());
    const RunResult result = run(call.arguments, call.options);

    EXPECT_EQ(result.status, tool.skipped);
    EXPECT_EQ(warnedNames(result),
        (Names{"item/no-entry/x", "item/no-list", "item/no-rights", "item/secret"}));
    EXPECT_EQ(faults(result, expected), nothing);
}

TEST_P(EachTool, leaveOutFinderFilesWhenToldToAndNothingThatOnlyLooksLikeThem)
{
    for (const std::string name : {".DS_Store", "sub/.DS_Store", "sub/deeper/.DS_Store",
             "x.DS_Store", ".DS_Store.txt", ".ds_store", "folder/.DS_Store/in", "._keep"})
        writeFile(item / name, name);
    TreeSnapshot expected = tree();
    EXPECT_EQ(faults(make(), expected), nothing);
    if (tool.name == "ditto")
        return; // has no such option
    fs::remove(archive);
    for (const std::string name : {".DS_Store", "sub/.DS_Store", "sub/deeper/.DS_Store"})
        expected.erase("item/" + name);
    const RunResult result = make({.leaveOutDsStore = true});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(faults(result, expected), nothing);
}

TEST_P(EachTool, keepTimesThatOldFieldsCannotHold)
{
    const std::map<std::string, std::int64_t> times
        = {{"1901", -2147483648}, {"1969", -86400}, {"1970", 0}, {"1979", 315532799},
            {"1980", 315532800}, {"odd", 1000000001}, {"2038", 2147483648}, {"2106", 4294967296},
            {"2107", 4354819198}, {"2108", 4354819200}, {"2446", 15032385535}};
    for (const auto& [name, time] : times) {
        writeFile(item / name, name);
        setTime(item / name, time);
    }
    const RunResult result = make();
    EXPECT_EQ(result.status, 0) << result.err;
    // unzip and bsdtar do not read the field that holds times after 2038 in a zip.
    const std::set<std::string> unfit
        = tool.makesZips ? std::set<std::string>{"unzip", "bsdtar"} : std::set<std::string>{};
    EXPECT_EQ(faults(result, tree(), unfit), nothing);
}

TEST_P(EachTool, giveTheSameBytesForAnyNumberOfThreads)
{
    constexpr std::size_t piece = 1 << 20;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{65535},
             std::size_t{65536}, piece, piece + 1, 2 * piece + 7}) {
        writeFile(item / ("noise" + std::to_string(size)), randomBytes(size, 7));
        writeFile(item / ("zeros" + std::to_string(size)), std::string(size, '\0'));
        writeFile(item / ("text" + std::to_string(size)), someText(size));
    }
    // Random data after text: what was begun as compressed has to go on as it can.
    writeFile(item / "mixed", someText(piece / 2) + randomBytes(2 * piece, 9));
    Names levels = {"-6"};
    if (tool.name == "zip") // each way in which the library works
        levels = isFullSweep() ? Names{"-0", "-1", "-4", "-6", "-9"} : Names{"-0", "-1", "-6"};
    for (const std::string& level : levels) {
        std::string expected;
        for (const unsigned threads : {1u, 2u, 8u}) {
            fs::remove(archive);
            const RunResult result = make({.level = level, .threads = threads});
            ASSERT_EQ(result.status, 0) << level << result.err;
            const std::string bytes = readFile(archive);
            EXPECT_TRUE(expected.empty() || bytes == expected) << threads << " threads, " << level;
            expected = bytes;
        }
        EXPECT_EQ(extractionFaults(tool.readers.front(), archive, tree()), nothing) << level;
    }
    EXPECT_EQ(complaintsOf(tool.readers, archive), nothing);
}

TEST_F(Zip, putsTheSystemsLocalTimeIntoTheOldFields)
{
    writeFile(item, "item");
    setTime(item, 1'000'000'001);
    const std::string script
        = R"(mount --bind /usr/share/zoneinfo/Asia/Kathmandu /etc/localtime && exec "$0" "$@")";
    const RunResult result
        = make({.prefix = {"unshare", "-m", "sh", "-c", script}, .environment = {"TZ=UTC"}});
    if (contains(result.err, "unshare: ") || contains(result.err, "mount: "))
        GTEST_SKIP() << "no mounting here";
    EXPECT_EQ(run({"python3", "-c",
                      "import sys, zipfile\n"
                      "print(*zipfile.ZipFile(sys.argv[1]).infolist()[0].date_time)",
                      archive})
                  .out,
        "2001 9 9 7 31 40\n");
}

TEST_F(Zip, findsWhatCompressesAmongWhatDoesNot)
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
    const std::string gzip = "\x1f\x8b\x08"; // at the beginning of what is not all compressed
    std::vector<Case> cases = {{betweenEightLooks, 80'000}, {inTurn, 20'000},
        {gzip + someText(5000), 200}, {gzip + randomBytes(2500, 1) + someText(9500), 500}};
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
    for (const auto& [data, slack] : cases) {
        writeFile(item, data);
        fs::remove(archive);
        fs::remove(folder / "theirs.zip");
        EXPECT_EQ(faults(make(), tree()), nothing);
        ASSERT_EQ(run({"zip", "-q", "-6", folder / "theirs.zip", item}).status, 0);
        EXPECT_LE(fs::file_size(archive), fs::file_size(folder / "theirs.zip") + slack);
    }
}
