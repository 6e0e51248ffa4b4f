// How far a job is, how fast and how long still: what is told of it, and how much there is to do.

#include "app/commandline/TerminalProgress.h"
#include "app/job/InputSizes.h"
#include "app/job/Pace.h"
#include "tests/support/Test.h"

#include <cmath>

using namespace support;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

TEST(Pace, tellsATimeThatNeverGrowsAndNothingWhenThatWouldBeWrong)
{
    struct Case {
        std::function<double(int second)> speed; // the part that is done in that second
        std::map<int, int> told; // after so many seconds: how many are left, 0 for nothing
    };
    const Case cases[] = {
        {[](int) { return 0.01; }, {{1, 0}, {2, 120}, {39, 120}, {42, 60}, {50, 50}, {97, 5}}},
        {[](int second) { return second % 2 == 0 ? 0.02 : 0.0; }, {{2, 120}, {60, 40}, {96, 5}}},
        {[](int second) { return second < 4 ? 0.1 : 0.005; }, {{4, 10}, {13, 0}, {122, 5}}},
        {[](int second) { return second < 10 ? 0.0 : 0.1; }, {{9, 0}, {11, 120}, {18, 5}}},
    };
    for (const auto& [speed, told] : cases) {
        Pace pace;
        double done = 0;
        std::optional<std::chrono::seconds> shortest;
        for (int tenths = 0; tenths < 1300 && done < 1; ++tenths) {
            pace.add(tenths * 0.1s, 1000 * done, done);
            if (const auto left = pace.timeLeft()) {
                EXPECT_LE(*left, shortest.value_or(*left));
                shortest = left;
            }
            const auto expected = told.find(tenths / 10);
            if (tenths % 10 == 0 && expected != told.end()) {
                EXPECT_EQ(pace.timeLeft().value_or(0s).count(), expected->second) << tenths / 10;
            }
            done += speed(tenths / 10) / 10;
        }
    }
    Pace pace;
    for (int tenths = 0; tenths < 50; ++tenths)
        pace.add(tenths * 0.1s, tenths * 5, std::nullopt);
    EXPECT_NEAR(pace.rate().value_or(0), 50, 0.01);
    EXPECT_FALSE(pace.timeLeft()) << "of what nobody knows";
}

TEST(InputSizes, areWhatAToolReads)
{
    const TestFolder folder;
    const fs::path item = folder / "item";
    for (const auto& [name, size] : std::map<std::string, int>{{"item/a", 1}, {"item/in/b", 10},
             {"outside/c", 100}, {"outside/more/d", 1000}, {"item/.DS_Store", 10'000}})
        writeFile(folder / name, std::string(static_cast<std::size_t>(size), 'x'));
    fs::resize_file(item / "a", 100'000); // of which nothing is on the disk
    fs::create_hard_link(item / "in/b", item / "another b");
    fs::create_symlink("a", item / "link to a");
    fs::create_symlink("../outside/c", item / "link to c");
    fs::create_directory_symlink("../outside/more", item / "more");
    fs::create_directory_symlink("..", item / "in/up");
    fs::create_symlink("nowhere", item / "broken");
    fs::create_symlink("item", folder / "alias");
    const std::tuple<const char*, InputSizes::Reading, std::uint64_t> cases[] = {
        {"item", {.excludesDSStore = true}, 100'020},
        {"item", {}, 110'020},
        {"item/a", {}, 100'000},
        {"alias", {}, 0},
        {"alias", {.followsItems = true}, 110'020},
        {"alias", {.followsItems = true, .followsLinks = true, .excludesDSStore = true}, 101'110},
        {"gone", {.followsItems = true, .followsLinks = true}, 0},
    };
    for (const auto& [name, reading, size] : cases) {
        const InputSizes sizes({folder / name, item / "in/b"}, reading);
        EXPECT_TRUE(waitUntil([&] { return sizes.ofAll().has_value(); }));
        EXPECT_EQ(sizes.ofFirst(1), size) << name;
        const bool isMetAgain = reading.followsLinks && size > 0;
        EXPECT_EQ(sizes.ofAll(), size + (isMetAgain ? 0 : 10)) << name;
    }
}

TEST(TerminalProgress, showsWhatFits)
{
    const JobProgress read{.bytesDone = 312'400'000,
        .bytesInAll = 1'999'960'000,
        .fraction = 0.156,
        .name = "a long name \u00e9\u00e9\u00e9\u00e9 of\x1b a film.mp4",
        .bytesPerSecond = 48'000'000,
        .timeLeft = 35s};
    const std::pair<int, std::string> cases[] = {
        {110,
            "[#       ]  15% 6 of 12, 312 MB of 2.0 GB, 35 s left, 48 MB/s  "
            "a long name \u00e9\u00e9\u00e9\u00e9 of? a film.mp4"},
        {82, "[#       ]  15% 6 of 12, 312 MB of 2.0 GB, 35 s left, 48 MB/s  a long n...film.mp4"},
        {60, "[#      ]  15% 6 of 12, 312 MB of 2.0 GB, 35 s left, 48 MB/s"},
        {40, "[#      ]  15% 6 of 12, 312 MB of 2.0 GB"},
        {20, "[     ]  15% 6 of 12"},
        {15, " 15% 6 of 12"},
        {3, "15%"},
        {2, ""},
    };
    for (const auto& [columns, text] : cases)
        EXPECT_EQ(TerminalProgress::text({.done = 6, .total = 12, .read = read}, columns), text);
    EXPECT_EQ(TerminalProgress::text({.done = 6, .total = 12}, 20), "[##   ]  50% 6 of 12");
}
