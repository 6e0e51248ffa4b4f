// More entries and larger files than old fields can count, in bounded memory.

#include "tests/tools/ToolTest.h"

#include <fstream>
#include <thread>

namespace
{

constexpr std::uintmax_t gigabyte = std::uintmax_t{1} << 30;
const long memoryLimit = (64L + 8L * std::thread::hardware_concurrency()) << 20;

struct Big : EachTool {
    RunResult makeInBoundedMemory(const std::string& level = "-1") const
    {
        ToolCall call = callOf(tool, archive, item, {.level = level});
        call.options.timeout = std::chrono::minutes(4);
        RunResult result = run(call.arguments, call.options);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_LT(result.peakMemoryInBytes, memoryLimit);
        return result;
    }
    // A hole with a little at its ends.
    void writeHole(const std::string& name, std::uintmax_t size) const
    {
        writeFile(item / name, "head");
        fs::resize_file(item / name, size - 4);
        std::ofstream(item / name, std::ios::app) << "tail";
    }
};
INSTANTIATE_TEST_SUITE_P(Tools, Big, testing::Values("zip", "tar"), itsParameter);

struct BigZip : Big {
};
INSTANTIATE_TEST_SUITE_P(Tools, BigZip, testing::Values("zip"));

} // namespace

TEST_P(Big, seventyThousandEntriesAreAllThere)
{
    constexpr std::size_t folders = 20;
    constexpr std::size_t files = 70'000;
    constexpr std::size_t filesInOne = 50'000; // with names of more bytes than are sorted at once
    for (std::size_t i = 0; i < files; ++i) {
        const bool isInOne = i < filesInOne;
        writeFile(item / (isInOne ? "one" : std::to_string(i % folders))
                / std::to_string(i).append(isInOne ? 200 : 0, 'n'),
            std::to_string(i));
    }
    const RunResult result = makeInBoundedMemory();
    EXPECT_EQ(linesOf(result.out).size(), 1 + 1 + folders + files);
    EXPECT_EQ(tool.makesZips ? inspectZip(archive).complaints : nothing, nothing);
    EXPECT_EQ(extractionFaults(tool.readers.front(), archive, tree()), nothing);
    EXPECT_EQ(complaintsOf(tool.readers, archive), nothing);
}

TEST_P(Big, filesBeyondFourGigabytesComeBack)
{
    if (tool.name == "tar") {
        writeHole("a-large", 5 * gigabyte + 3);
        writeFile(item / "z-after", "after");
        makeInBoundedMemory();
    } else {
        writeHole("a-large", 4 * gigabyte - 1); // the size that old fields cannot tell from a mark
        makeInBoundedMemory();
        const ZipReport report = inspectZip(archive);
        EXPECT_EQ(report.complaints, nothing);
        EXPECT_TRUE(report.hasZip64End); // for the member's size alone
    }
    EXPECT_EQ(complaintsOf({tool.readers.front()}, archive), nothing);
}

TEST_P(BigZip, entriesBeyondFourGigabytesOfArchiveAreFound)
{
    if (fs::space(folder.path()).available < 8 * gigabyte)
        GTEST_SKIP() << "not enough room here";
    writeHole("a-large", 4 * gigabyte + 3);
    writeFile(item / "z-after", "after");
    makeInBoundedMemory("-0");
    const ZipReport report = inspectZip(archive);
    EXPECT_EQ(report.complaints, nothing);
    EXPECT_TRUE(report.hasZip64End);
    EXPECT_EQ(report.names().back(), "item/z-after");
    EXPECT_GT(fs::file_size(archive), 4 * gigabyte);
    EXPECT_EQ(complaintsOf(tool.readers, archive), nothing);
}
