// Files that change while they are read: the tool is stopped in the middle of one.

#include "tests/tools/ToolTest.h"

namespace
{

constexpr std::size_t fileSize = 10 << 20;
constexpr std::size_t notYetRead = fileSize * 9 / 10 + 1000; // within a piece

struct Change {
    std::function<void(const fs::path& large, const fs::path& next)> make;
    Names warned; // none: the run ends as if nothing had happened
    std::size_t stored = fileSize; // how much of the large file
};
using Path = const fs::path&;

const std::vector<Change> changes = {
    {[](Path large, Path) { fs::resize_file(large, notYetRead); }, {"item/m-large"}, notYetRead},
    {[](Path large, Path) { fs::resize_file(large, fileSize + 4'000'000); }, {"item/m-large"}},
    {[](Path large, Path) { std::fstream(large, std::ios::in | std::ios::out) << "other"; },
        {"item/m-large"}},
    {[](Path large, Path) { fs::remove(large); }, {}},
    {[](Path, Path next) { fs::remove(next); }, {"item/z-next"}},
    {[](Path, Path next) {
         fs::remove(next);
         fs::create_symlink("/etc/hostname", next);
     },
        {"item/z-next"}},
};

struct ChangingFiles : EachTool {
    // Waits until it has read so much that it is within the large file.
    static bool comesToTheMiddle(const RunningProgram& program)
    {
        return waitUntil([&] {
            const Names counters
                = linesOf(readFile("/proc/" + std::to_string(program.pid()) + "/io"));
            return std::stoul(counters.at(0).substr(7)) > fileSize / 8; // rchar: …
        });
    }
};
INSTANTIATE_TEST_SUITE_P(Tools, ChangingFiles, eachTool, itsParameter);

} // namespace

TEST_P(ChangingFiles, areStoredAsReadAndNamed)
{
    const std::string content = someText(fileSize);
    for (const Change& change : changes) {
        SCOPED_TRACE(&change - changes.data());
        fs::remove_all(item);
        fs::remove(archive);
        write({"a-first", "z-next"});
        // Only tar has said how long a file is by the time when the rest is gone: it becomes zeros.
        std::string stored = content.substr(0, change.stored);
        stored.resize(tool.name == "tar" ? fileSize : change.stored);
        writeFile(item / "m-large", stored);
        setTime(item / "m-large", 1'000'000'000);
        TreeSnapshot expected = tree();
        if (change.warned == Names{"item/z-next"})
            expected.erase("item/z-next");
        writeFile(item / "m-large", content);
        setTime(item / "m-large", 1'000'000'000);

        // With strong compression by one thread, for which reading has to wait.
        RunningProgram program = start(tool, archive, item, {.level = "-7", .threads = 1});
        ASSERT_TRUE(comesToTheMiddle(program));
        program.signal(SIGSTOP);
        change.make(item / "m-large", item / "z-next");
        program.signal(SIGCONT);
        const RunResult result = program.wait();

        EXPECT_EQ(result.status, change.warned.empty() ? 0 : tool.skipped);
        EXPECT_EQ(warnedNames(result), change.warned);
        EXPECT_EQ(faults(result, expected), nothing);
    }
}
