// A job's progress by what its tools read, with stand-ins for the tools.

#include "app/job/ArchiveJob.h"
#include "tests/engine/EngineTest.h"

struct JobProgressTest : EngineTest {
};

TEST_F(JobProgressTest, goesByWhatToolsAndTheirChildrenRead)
{
    constexpr std::uint64_t megabyte = 1'000'000;
    writeFile(folder / "one", std::string(megabyte / 2, '1'));
    writeFile(folder / "two", std::string(3 * megabyte, '2'));
    // A third of the second item is read, and the file is open for a while, in each run of a tool.
    plan("head -c 1000000 '" + (folder / "two").native() + "' >\"$4\"\nsleep 0.3 <'"
        + (folder / "two").native() + "'");
    // Of the first item a zip's first run cannot have read more than there is.
    const std::tuple<int, const char*, std::uint64_t> cases[] = {
        {ArchiveTypePlainZip, "a.zip", 3 * megabyte / 2}, {ArchiveTypeTarGz, "a.tar.gz", megabyte}};
    for (const auto& [type, name, read] : cases) {
        SCOPED_TRACE(name);
        std::vector<JobProgress> events;
        ArchiveJob job(*archiver,
            {.items = {folder / "one", folder / "two"},
                .archive = folder / "out" / name,
                .type = type},
            {.progressed = [&](const JobProgress& progress) { events.push_back(progress); }});
        EXPECT_TRUE(job.run().isMade);
        ASSERT_GE(events.size(), 3U);
        for (std::size_t index = 1; index < events.size(); ++index) {
            EXPECT_GE(events[index].bytesDone, events[index - 1].bytesDone);
            EXPECT_TRUE(events[index].name != "one" || events[index].bytesDone <= megabyte / 2);
            EXPECT_GE(events[index].fraction, events[index - 1].fraction);
        }
        const JobProgress& last = events[events.size() - 2]; // of a tool
        EXPECT_EQ(last.name, "two");
        EXPECT_NEAR(
            static_cast<double>(last.bytesDone), static_cast<double>(read), 0.05 * megabyte);
        EXPECT_EQ(last.bytesInAll, 7 * megabyte / 2);
        EXPECT_EQ(events.back().bytesDone, 7 * megabyte / 2);
        EXPECT_EQ(events.back().fraction, 1);
    }
}
