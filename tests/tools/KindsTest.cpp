// Links, hard links, unreadable things, times: what is not simply a file with content.

#include "tests/support/ToolTest.h"

namespace
{

struct Tar : EachTool {
};
INSTANTIATE_TEST_SUITE_P(Tools, Tar, testing::Values("tar"));
INSTANTIATE_TEST_SUITE_P(Tools, EachTool, eachTool, itsParameter);

// A log of packages, of which zlib finds more than a search that gives up early.
const char* const logger = R"(BEGIN { split("unpacked half-configured half-installed installed", to)
    for (line = 0; line < 43000; ++line)
        printf "2026-11-24 1%d:%d:%d status %s libpackage%d:amd64 1.%d-%d\n", line / 30000,
            10 + line / 500 % 50, 10 + line / 10 % 50, to[line % 4 + 1], line / 4 % 600,
            line / 4 % 17, line / 4 % 3 })";

} // namespace

TEST_F(Zip, keepsLinksWhateverTheyLeadTo)
{
    write({"folder/in", "target"});
    shell(R"sh(ln -s target to-file; ln -s folder/ slash; ln -s no-such dangling; ln -s self self
        ln -s loop-b loop-a; ln -s loop-a loop-b; ln -s /etc/hostname absolute
        ln -s ../../../../etc/hostname outside; ln -s "$(printf 'a\nb')" newline
        ln -s target ./-dash; ln -s "$(printf '%02000d' 7)" long
        ln -s "$(printf 'bad\377')" invalid; ln -s ../target folder/up)sh");
    const RunResult result = make();
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(faults(result, tree(), {"7z"}), nothing);
}

TEST_F(Zip, putsFilesAndLinksBeforeFoldersSoThatEveryReaderMayMakeThem)
{
    // 7z refuses a link that leads through a link made before
    write({"Versions/A/Lib", "a-folder/z", "z-file"});
    shell("ln -s A Versions/Current; ln -s Versions/Current/Lib Lib");
    EXPECT_EQ(faults(make(), tree()), nothing);
    EXPECT_EQ(inspectZip(archive).names(),
        (Names{"item/", "item/Lib", "item/z-file", "item/Versions/", "item/Versions/Current",
            "item/Versions/A/", "item/Versions/A/Lib", "item/a-folder/", "item/a-folder/z"}));
}

TEST_P(Tar, followsLinksAndKeepsThoseItCannotFollow)
{
    write({"folder/in", "target", "hard"});
    writeFile(folder / "outside/file", "outside");
    makeFifo(folder / "outside/pipe");
    shell(R"(ln hard folder/hard; ln -s target to-file; ln -s folder to-folder; ln -s hard to-hard
        ln -s ../../outside/file to-outside; ln -s ../../outside/file also-outside
        ln -s /no/such dangling; ln -s self self; ln -s loop-b loop-a; ln -s loop-a loop-b
        ln -s . here; ln -s .. folder/up; ln -s /dev/zero zero; ln -s /dev/tty terminal
        ln -s ../../outside/pipe pipe)");
    TreeSnapshot expected = tree();
    expected["item/to-file"] = expected["item/target"];
    expected["item/to-hard"] = expected["item/hard"];
    expected["item/to-outside"] = snapshot(folder / "outside")["file"];
    expected["item/also-outside"] = expected["item/to-outside"];
    for (const std::string name : {"", "/in", "/hard", "/up"}) // the folder is reached twice
        expected["item/to-folder" + name] = expected["item/folder" + name];
    const Names warned = {"item/dangling", "item/folder/up", "item/here", "item/loop-a",
        "item/loop-b", "item/pipe", "item/self", "item/terminal", "item/to-folder/up", "item/zero"};

    const RunResult result = make();

    EXPECT_EQ(result.status, tool.skipped);
    EXPECT_EQ(warnedNames(result), warned);
    EXPECT_EQ(faults(result, expected, {"7z"}), nothing);
    ASSERT_EQ(run({"tar", "-xf", "a.tar.gz"}, {.folder = folder.path()}).status, 0);
    // Whatever is met again is a hard link.
    const std::pair<const char*, const char*> same[]
        = {{"hard", "to-hard"}, {"hard", "folder/hard"}, {"hard", "to-folder/hard"},
            {"folder/in", "to-folder/in"}, {"target", "to-file"}, {"also-outside", "to-outside"}};
    for (const auto& [first, again] : same)
        EXPECT_TRUE(fs::equivalent(folder / "item" / first, folder / "item" / again)) << again;
}

TEST_P(Tar, findsWhatIsMetAgainInATreeThatIsTooLargeToRemember)
{
    shell(R"(a=a$(printf '/%0200d' $(seq 17)); mkdir -p $a w x y z; (cd $a; touch $(seq 1250))
        touch w/in x/in y/in; ln w/in z/w; ln -s ../x/in z/x; ln -s ../y z/y)");
    ASSERT_EQ(make().status, 0);
    run({"tar", "-xf", archive, "item/w", "item/x", "item/y", "item/z"}, {.folder = folder.path()});
    for (const auto& [first, again] :
        {std::pair("w/in", "z/w"), {"x/in", "z/x"}, {"y/in", "z/y/in"}})
        EXPECT_TRUE(fs::equivalent(folder / "item" / first, folder / "item" / again)) << again;
}

TEST_P(Tar, keepsTimesToTheNanosecond)
{
    shell(R"(for time in 1000000000.123456789 1000000000.0005 0.000000001 -100 8589934592.0000001
        do echo >./$time; touch -d @$time ./$time; done; touch -d @-1 .)");
    ASSERT_EQ(make().status, 0);
    const auto timesIn = [&](const fs::path& place) {
        return run({"sh", "-c", "stat -c '%n %.9Y' item item/*"}, {.folder = place}).out;
    };
    for (const std::string reader : {"tar", "bsdtar"}) {
        ASSERT_EQ(run({reader, "-xf", archive}, {.folder = folder.path()}).status, 0);
        EXPECT_EQ(timesIn(folder.path()), timesIn(folder / "in")) << reader;
        fs::remove_all(folder / "item");
    }
    // Archive::Tar takes an extended header that ends in a slash, as a folder does, for one.
    EXPECT_EQ(run({"gzip", "-dc", archive}).out.substr(0, 10), "PaxHeader\0"s);
}

TEST_P(EachTool, storeWhatCanBeReadAndNameWhatCannot)
{
    write({"a", "secret", "z", "no-rights/x", "no-entry/x", "no-list/x"});
    shell("chmod 0 secret no-rights; chmod 444 no-entry; chmod 111 no-list");
    TreeSnapshot expected = tree();
    for (const std::string name : {"secret", "no-rights/x", "no-entry/x", "no-list/x"})
        expected.erase("item/" + name);

    const RunResult result = make({.prefix = asOwner});

    EXPECT_EQ(result.status, tool.skipped);
    EXPECT_EQ(warnedNames(result),
        (Names{"item/no-entry/x", "item/no-list", "item/no-rights", "item/secret"}));
    EXPECT_EQ(faults(result, expected), nothing);
}

TEST_P(EachTool, leaveOutFinderFilesWhenToldToAndNothingThatOnlyLooksLikeThem)
{
    write({".DS_Store", "sub/deeper/.DS_Store", "x.DS_Store", ".DS_Store.txt", ".ds_store",
        "folder/.DS_Store/in", "._keep"});
    TreeSnapshot expected = tree();
    EXPECT_EQ(faults(make(), expected), nothing);
    if (tool.name == "ditto")
        return; // has no such option
    for (const std::string name : {".DS_Store", "sub/deeper/.DS_Store"})
        expected.erase("item/" + name);
    EXPECT_EQ(faults(make({.leaveOutDsStore = true}), expected), nothing);
}

TEST_P(EachTool, giveTheSameBytesForAnyNumberOfThreads)
{
    constexpr std::size_t piece = 1 << 20;
    for (const std::size_t size :
        {std::size_t{0}, std::size_t{1}, std::size_t{65536}, piece, piece + 1, 2 * piece + 7}) {
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
            ASSERT_EQ(make({.level = level, .threads = threads}).status, 0);
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
    EXPECT_EQ(readFile(archive).substr(10, 4), "\xf4\x3b\x29\x2b"); // 7:31:40, 9 September 2001
}

TEST_F(Zip, tellsTimesAsFarAsItsFieldsReachAndThenTheNearest)
{
    const EnvironmentVariable onMemory("TMPDIR", "/dev/shm"); // no disk has files of such times
    const TestFolder place;
    const std::tuple<std::int64_t, long, std::string> cases[]
        = {{-11'644'473'601, 999'999'999, "1980-01-01 00:00:00"}, // 1600
            {-11'644'473'600, 123'456'700, "1601-01-01 00:00:00.1234567"},
            {-1, 999'999'999, "1969-12-31 23:59:59.9999999"},
            {4'294'967'296, 5'000, "2106-02-07 06:28:16.0000050"},
            {910'692'730'084, 999'999'999, "30828-09-14 02:48:04.9999999"},
            {910'692'730'085, 0, "2107-12-31 23:59:58"}};
    for (const auto& [seconds, nanoseconds, expected] : cases) {
        writeFile(place / "item", "x");
        setTime(place / "item", seconds, nanoseconds);
        fs::remove(archive);
        EXPECT_EQ(run(tool, archive, place / "item").status, 0);
        EXPECT_EQ(inspectZip(archive).complaints, nothing);
        EXPECT_TRUE(contains(run({"env", "TZ=UTC", "7z", "l", "-slt", archive}).out,
            "Modified = " + expected + "\n"))
            << expected;
    }
}

TEST_F(Zip, findsWhatCompressesAmongWhatDoesNot)
{
    std::string betweenEightLooks = randomBytes(16 << 20, 1);
    for (std::size_t part = 0; part < 7; ++part)
        betweenEightLooks.replace(part * (16 << 20) / 7 + 600'000, 400'000, someText(400'000));
    std::string inTurn, repeats, fewRepeats; // within the 32 KiB that a match reaches back
    for (unsigned turn = 0; inTurn.size() < 4'000'000; ++turn)
        inTurn += someText(40'000 + 1900 * turn, turn) + randomBytes(90'000 - 1900 * turn, turn);
    while (repeats.size() < 4'000'000)
        repeats += randomBytes(31'000, 3);
    while (fewRepeats.size() < 60'000)
        fewRepeats += randomBytes(15'000, 3);
    const std::string gzip // at the beginning of what is not all compressed
        = "\x1f\x8b\x08" + randomBytes(2500, 1) + someText(9500);
    // And by how much another program may be better, for what repeats in another piece.
    // Noise that would grow is stored, also behind something that compresses, but to less avail.
    const std::string noise = randomBytes(2'500'000, 4), loss = std::string(200, ' ') + noise;
    const std::pair<std::string, std::size_t> cases[]
        = {{betweenEightLooks, 80'000}, {inTurn, 20'000}, {gzip, 500}, {repeats, 125'000},
            {fewRepeats, 1'000}, {noise, 0}, {loss, 0}, {run({"awk", logger}).out, 0}};
    for (const auto& [data, slack] : cases) {
        writeFile(item, data);
        fs::remove(folder / "theirs.zip");
        EXPECT_EQ(faults(make(), tree()), nothing);
        ASSERT_EQ(run({"zip", "-q", "-6", folder / "theirs.zip", item}).status, 0);
        EXPECT_LE(fs::file_size(archive), fs::file_size(folder / "theirs.zip") + slack);
        EXPECT_LE(fs::file_size(archive), data.size() + 160); // for the records
    }
}

// What a tool reads is the measure of how far it is.
TEST_F(Zip, readsNothingTwiceThatOnlyInOnePlaceLooksAsIfItCompressed)
{
    if (!canTrace())
        GTEST_SKIP() << "no tracing here";
    writeFile(item, randomBytes(598'020, 1) + std::string(40, ' ') + randomBytes(900'000, 2));
    ASSERT_EQ(make({.prefix = strace("trace=pread64")}).status, 0);
    EXPECT_FALSE(contains(readFile(folder / "log"), ".part-"));
}
