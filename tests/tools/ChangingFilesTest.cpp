// Files that change while they are read: the tool is stopped in the middle of one.

#include "tests/support/ToolTest.h"

namespace
{

constexpr std::size_t fileSize = 10 << 20;
constexpr std::size_t notYetRead = fileSize * 9 / 10 + 1000; // within a piece

struct ChangingFiles : EachTool {
};
INSTANTIATE_TEST_SUITE_P(Tools, ChangingFiles, eachTool, itsParameter);

} // namespace

TEST_P(ChangingFiles, areStoredAsReadAndNamed)
{
    // What happens in the folder, which file is warned of, and how much of the large one is stored.
    const std::tuple<std::string, Names, std::size_t> cases[]
        = {{"truncate -s " + std::to_string(notYetRead) + " m-large", {"item/m-large"}, notYetRead},
            {"printf more >>m-large", {"item/m-large"}, fileSize},
            {"printf other 1<>m-large", {"item/m-large"}, fileSize},
            {"rm m-large", {}, fileSize}, // as if nothing had happened
            // The next file gets the inode of the first.
            {"cp -p z-next ../t; rm a-first z-next; cp -p ../t z-next; rm ../t", {}, fileSize},
            {"rm z-next", {"item/z-next"}, fileSize},
            {"ln -sf /etc/hostname z-next", {"item/z-next"}, fileSize}};
    const std::string content = someText(fileSize);
    for (const auto& [script, warned, size] : cases) {
        SCOPED_TRACE(script);
        fs::remove_all(item);
        fs::remove(archive);
        write({"a-first", "z-next"});
        // Only tar has said how long a file is by the time when the rest is gone: it becomes zeros.
        std::string stored = content.substr(0, size);
        stored.resize(tool.name == "tar" ? fileSize : size);
        writeFile(item / "m-large", stored);
        setTime(item / "m-large", 1'000'000'000);
        TreeSnapshot expected = tree();
        if (warned == Names{"item/z-next"})
            expected.erase("item/z-next");
        writeFile(item / "m-large", content);
        setTime(item / "m-large", 1'000'000'000);

        // With strong compression by one thread, for which reading has to wait.
        RunningProgram program = start(tool, archive, item, {.level = "-7", .threads = 1});
        const std::string counters = "/proc/" + std::to_string(program.pid()) + "/io";
        ASSERT_TRUE(waitUntil([&] { // it has read so much that it is within the large file
            return std::stoul(linesOf(readFile(counters)).at(0).substr(7)) > fileSize / 8;
        }));
        program.signal(SIGSTOP);
        run({"sh", "-c", script}, {.folder = item});
        program.signal(SIGCONT);
        const RunResult result = program.wait();

        EXPECT_EQ(result.status, warned.empty() ? 0 : tool.skipped);
        EXPECT_EQ(warnedNames(result), warned);
        EXPECT_EQ(faults(result, expected), nothing);
    }
}
