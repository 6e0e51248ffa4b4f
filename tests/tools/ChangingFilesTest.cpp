// Files that change while they are read: the tool is stopped in the middle of one.

#include "tests/tools/ToolTest.h"

#include <csignal>
#include <fstream>
#include <functional>

namespace
{

constexpr std::size_t fileSize = 10 << 20;
constexpr std::size_t notYetRead = fileSize * 9 / 10 + 1000; // within a piece

struct Change {
    std::string name;
    std::function<void(const fs::path& item)> make;
    Names warned; // none: the run ends as if nothing had happened
    std::size_t stored = fileSize; // how much of the large file
};

void removeNext(const fs::path& item)
{
    fs::remove(item / "z-next");
}

const std::vector<Change>& changes()
{
    static const std::vector<Change> table = {
        {"shrinks", [](const fs::path& item) { fs::resize_file(item / "m-large", notYetRead); },
            {"item/m-large"}, notYetRead},
        {"grows",
            [](const fs::path& item) { fs::resize_file(item / "m-large", fileSize + 4'000'000); },
            {"item/m-large"}},
        {"isRewritten",
            [](const fs::path& item) {
                std::fstream(item / "m-large", std::ios::in | std::ios::out) << "other";
            },
            {"item/m-large"}},
        {"isDeleted", [](const fs::path& item) { fs::remove(item / "m-large"); }, {}},
        {"nextVanishes", removeNext, {"item/z-next"}},
        {"nextBecomesAFolder",
            [](const fs::path& item) {
                removeNext(item);
                writeFile(item / "z-next/in", "in");
            },
            {"item/z-next"}},
        {"nextBecomesALink",
            [](const fs::path& item) {
                removeNext(item);
                fs::create_symlink("/etc/hostname", item / "z-next");
            },
            {"item/z-next"}},
    };
    return table;
}
void PrintTo(const Change& change, std::ostream* stream)
{
    *stream << change.name;
}

// Waits until it has read so much that it is within the large file.
bool comesToTheMiddle(const RunningProgram& program)
{
    const std::string counters = "/proc/" + std::to_string(program.pid()) + "/io";
    return waitUntil([&] {
        std::ifstream input(counters);
        std::string label;
        std::size_t bytesRead = 0;
        input >> label >> bytesRead;
        return bytesRead > fileSize / 8;
    });
}

using ChangingFiles = EachToolAnd<Change>;
INSTANTIATE_TEST_SUITE_P(Tools, ChangingFiles,
    testing::Combine(eachTool, testing::ValuesIn(changes())),
    [](const auto& test) { return std::get<0>(test.param) + "_" + std::get<1>(test.param).name; });

} // namespace

TEST_P(ChangingFiles, areStoredAsReadAndNamed)
{
    std::string content;
    while (content.size() < fileSize)
        content += someText(1 << 20);
    writeFile(item / "a-first", "first");
    writeFile(item / "z-next", "next");
    // Only tar has said how long a file is by the time when the rest is gone: that becomes zeros.
    std::string stored = content.substr(0, theCase.stored);
    stored.resize(tool.name == "tar" ? fileSize : theCase.stored);
    writeFile(item / "m-large", stored);
    setTime(item / "m-large", 1'000'000'000);
    TreeSnapshot expected = tree();
    if (theCase.warned == Names{"item/z-next"})
        expected.erase("item/z-next");
    writeFile(item / "m-large", content);
    setTime(item / "m-large", 1'000'000'000);

    // With strong compression by one thread, for which reading has to wait.
    const ToolCall call = callOf(tool, archive, item, {.level = "-7", .threads = 1});
    RunningProgram program(call.arguments, call.options);
    ASSERT_TRUE(comesToTheMiddle(program));
    program.signal(SIGSTOP);
    theCase.make(item);
    program.signal(SIGCONT);
    const RunResult result = program.wait();

    EXPECT_EQ(result.status, theCase.warned.empty() ? 0 : tool.skipped);
    EXPECT_EQ(warnedNames(result), theCase.warned);
    EXPECT_EQ(faults(result, expected), nothing);
}
