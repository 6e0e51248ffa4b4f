// More entries and larger files than old fields can count, in bounded memory.

#include "tests/support/ToolTest.h"

namespace
{

constexpr std::uintmax_t gigabyte = std::uintmax_t{1} << 30;
const long memoryLimit = (64L + 8L * std::thread::hardware_concurrency()) << 20;

struct Big : EachTool {
    RunResult makeInBoundedMemory(const std::string& level = "-1") const
    {
        RunResult result = make({.level = level, .timeout = std::chrono::minutes(4)});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_LT(result.peakMemoryInBytes, memoryLimit);
        return result;
    }
};
INSTANTIATE_TEST_SUITE_P(Tools, Big, testing::Values("zip", "tar"), itsParameter);

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

TEST_P(Big, filesAndArchivesBeyondFourGigabytesComeBack)
{
    // Of zip the size that old fields cannot tell from a mark, and an archive as large as its file.
    std::vector<std::pair<std::uintmax_t, std::string>> cases = {{5 * gigabyte + 3, "-1"}};
    if (tool.makesZips)
        cases = {{4 * gigabyte - 1, "-1"}, {4 * gigabyte + 3, "-0"}};
    for (const auto& [size, level] : cases) {
        const bool isStored = level == "-0";
        if (isStored && fs::space(folder.path()).available < 8 * gigabyte)
            GTEST_SKIP() << "not enough room here";
        writeFile(item / "a-large", "head");
        fs::resize_file(item / "a-large", size - 4);
        std::ofstream(item / "a-large", std::ios::app) << "tail";
        writeFile(item / "z-after", "after");
        makeInBoundedMemory(level);
        EXPECT_EQ(fs::file_size(archive) > 4 * gigabyte, isStored);
        if (tool.makesZips) {
            const ZipReport report = inspectZip(archive);
            EXPECT_EQ(report.complaints, nothing);
            EXPECT_TRUE(report.hasZip64End); // first for the member's size alone
            EXPECT_EQ(report.names().back(), "item/z-after");
        }
        EXPECT_EQ(
            complaintsOf(isStored ? tool.readers : std::vector{tool.readers.front()}, archive),
            nothing);
    }
}
