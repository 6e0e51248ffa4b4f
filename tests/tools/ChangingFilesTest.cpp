// Files that change while they are read: the tool is stopped in the middle of one.

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"

#include <csignal>
#include <fstream>
#include <functional>

#include <gtest/gtest.h>

using namespace support;
namespace fs = std::filesystem;

namespace
{

using Names = std::vector<std::string>;

constexpr std::size_t fileSize = 12 << 20;

struct Change {
    std::string name;
    std::function<void(const fs::path& item)> make;
    Names warned; // none: the run ends as if nothing had happened
    Names absent = {};
};

const std::vector<Change>& changes()
{
    static const std::vector<Change> table = {
        {"shrinksToHalf",
            [](const fs::path& item) { fs::resize_file(item / "m-large", fileSize / 2); },
            {"item/m-large"}},
        {"shrinksToNothing", [](const fs::path& item) { fs::resize_file(item / "m-large", 0); },
            {"item/m-large"}},
        {"grows",
            [](const fs::path& item) { fs::resize_file(item / "m-large", fileSize + 4'000'000); },
            {"item/m-large"}},
        {"isRewritten",
            [](const fs::path& item) {
                std::fstream(item / "m-large", std::ios::in | std::ios::out) << "other";
            },
            {"item/m-large"}},
        {"isDeleted", [](const fs::path& item) { fs::remove(item / "m-large"); }, {}},
        {"nextVanishes", [](const fs::path& item) { fs::remove(item / "z-next"); }, {"item/z-next"},
            {"item/z-next"}},
        {"nextBecomesAFolder",
            [](const fs::path& item) {
                fs::remove(item / "z-next");
                writeFile(item / "z-next/in", "in");
            },
            {"item/z-next"}, {"item/z-next"}},
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
        return bytesRead > fileSize * 3 / 10;
    });
}

class ChangingFiles : public testing::TestWithParam<std::tuple<std::string, Change>>
{
protected:
    void SetUp() override
    {
        writeFile(item / "a-first", "first");
        writeFile(item / "m-large", someText(fileSize));
        writeFile(item / "z-next", "next");
    }
    RunResult runWithChange(const std::function<void(const fs::path&)>& change)
    {
        // The strongest compression with one thread: reading has to wait for it.
        const ToolCall call = callOf(tool, archive, item, {.level = "-9", .threads = 1});
        RunningProgram program(call.arguments, call.options);
        EXPECT_TRUE(comesToTheMiddle(program));
        program.signal(SIGSTOP);
        change(item);
        program.signal(SIGCONT);
        return program.wait();
    }

    const Tool& tool = toolNamed(std::get<0>(GetParam()));
    const TestFolder folder;
    const fs::path item = folder / "in/item";
    const fs::path archive = folder / tool.archiveName;
};

} // namespace

TEST_P(ChangingFiles, areStoredAsReadAndNamed)
{
    const Change& change = std::get<1>(GetParam());
    TreeSnapshot expected = snapshot(folder / "in");
    for (const std::string& name : change.absent)
        expected.erase(name);

    const RunResult result = runWithChange(change.make);

    EXPECT_EQ(result.status, change.warned.empty() ? 0 : tool.skipped);
    EXPECT_EQ(warnedNames(result), change.warned);
    Names faults = faultsOf(tool, result, archive, expected);
    // The changed file itself is what was read of it.
    if (!change.warned.empty())
        std::erase_if(faults, [](const std::string& fault) {
            return fault.find("item/m-large has ") != std::string::npos;
        });
    EXPECT_EQ(faults, nothing);
}

INSTANTIATE_TEST_SUITE_P(Tools, ChangingFiles,
    testing::Combine(testing::Values("zip", "tar", "ditto"), testing::ValuesIn(changes())),
    [](const auto& test) { return std::get<0>(test.param) + "_" + std::get<1>(test.param).name; });

TEST(Zip, neverFollowsAFileThatBecameALink)
{
    const TestFolder folder;
    writeFile(folder / "secret", "the secret");
    const fs::path item = folder / "in/item";
    writeFile(item / "m-large", someText(fileSize));
    writeFile(item / "z-next", "next");
    const ToolCall call = callOf(zipTool(), folder / "a.zip", item, {.level = "-9", .threads = 1});
    RunningProgram program(call.arguments, call.options);
    ASSERT_TRUE(comesToTheMiddle(program));
    program.signal(SIGSTOP);
    fs::remove(item / "z-next");
    fs::create_symlink(folder / "secret", item / "z-next");
    program.signal(SIGCONT);
    EXPECT_EQ(program.wait().status, zipTool().skipped);
    EXPECT_EQ(run({"python3", "-m", "zipfile", "-e", folder / "a.zip", folder / "out"}).status, 0);
    EXPECT_TRUE(fs::exists(folder / "out/item/m-large"));
    EXPECT_FALSE(fs::exists(folder / "out/item/z-next"));
}

TEST(Tools, leaveTheirOwnArchiveOut)
{
    for (const Tool* tool : {&zipTool(), &tarTool(), &dittoTool()}) {
        const TestFolder folder;
        const fs::path item = folder / "in/item";
        writeFile(item / "a", "a");
        writeFile(item / "z", randomBytes(3'000'000, 1));
        const TreeSnapshot expected = snapshot(folder / "in");
        const fs::path archive = item / tool->archiveName;
        const RunResult result = run(*tool, archive, item);
        EXPECT_EQ(result.status, 0) << result.err;
        Names faults = faultsOf(*tool, result, archive, expected);
        std::erase_if(faults, [](const std::string& fault) {
            return fault.find(": item has time") != std::string::npos;
        });
        EXPECT_EQ(faults, nothing);
    }
}
