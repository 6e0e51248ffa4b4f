// The bundled tools, runs of them as the program starts them, and what their tests begin with: a
// tool, an item and the place of its archive.
#pragma once

#include "tests/support/ForeignReaders.h"
#include "tests/support/Test.h"
#include "tests/support/ZipInspector.h"

// What the runs of a tool end with, and who reads its archives.
struct Tool {
    std::string name; // zip, tar, ditto
    std::string archiveName;
    int skipped; // made, but something was left out or changed
    int nothingToDo;
    int writeError;
    int cannotCreate;
    int usage;
    int interrupted;
    const std::vector<ForeignReader>& readers;
    const bool makesZips = name != "tar";
};
const Tool& toolNamed(const std::string& name);

struct ToolOptions {
    std::string level = "-6"; // of zip
    unsigned threads = 0; // 0: one per core
    bool leaveOutDsStore = false;
    Names prefix = {}; // the program that starts the tool, with its arguments
    Names environment = {}; // all that the tool gets
    std::string toolsFolder = PARCELO_TOOLS_DIR;
    std::chrono::seconds timeout{60};
    std::string itemFolder = "./"; // how the item's name begins
};

// A run of a tool on one item, from the item's folder: beside the test, or to its end.
RunningProgram start(const Tool& tool, const std::filesystem::path& archive,
    const std::filesystem::path& item, const ToolOptions& options = {});
inline RunResult run(const Tool& tool, const std::filesystem::path& archive,
    const std::filesystem::path& item, const ToolOptions& options = {})
{
    return start(tool, archive, item, options).wait();
}

// The names in `warning: NAME: reason` lines, sorted; any other line as it stands.
Names warnedNames(const RunResult& result);

// How a command begins that has no more rights than a file's owner.
inline const Names asOwner = {"sh", "-c", R"sh([ "$(id -u)" != 0 ] || exec setpriv \
    --bounding-set=-dac_override,-dac_read_search "$0" "$@"; exec "$0" "$@")sh"};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true; // slower, and with an address space of its own
#else
inline constexpr bool isSanitized = false;
#endif

class ToolTest : public testing::Test
{
protected:
    explicit ToolTest(const std::string& name = "zip")
        : tool(toolNamed(name))
    {
    }
    // Again, if it was made before.
    RunResult make(const ToolOptions& options = {}) const
    {
        fs::remove(archive);
        return run(tool, archive, item, options);
    }
    static bool canTrace() { return !isSanitized && run({"strace", "-qq", "true"}).status == 0; }
    // How a command begins that strace writes down to `log`, or meddles with.
    Names strace(const std::string& expression) const
    {
        return {"strace", "-f", "-qq", "-y", "-o", folder / "log", "-e", expression};
    }
    // Everything that is not as it should be about a run that made an archive of `expected`: an
    // entry without its one line of progress, a fault in the structure of a zip, a reader that does
    // not bring the tree back.
    Names faults(const RunResult& result, const TreeSnapshot& expected,
        const std::set<std::string>& exceptReaders = {}) const;
    TreeSnapshot tree() const { return snapshot(item.parent_path()); }
    void write(const Names& names) const
    {
        for (const std::string& name : names)
            writeFile(item / name, "content of " + name);
    }
    // In the item, which is a folder.
    void shell(const std::string& script) const
    {
        fs::create_directories(item);
        EXPECT_EQ(run({"sh", "-ec", script}, {.folder = item}).status, 0);
    }

    const Tool& tool;
    const TestFolder folder = {};
    const fs::path item = folder / "in/item";
    fs::path archive = folder / tool.archiveName;
};

using Zip = ToolTest;

// The parameter is the tool, or begins with it and a '_'.
class EachTool : public ToolTest, public testing::WithParamInterface<std::string>
{
protected:
    EachTool()
        : ToolTest(GetParam().substr(0, GetParam().find('_')))
    {
    }
};

inline const auto eachTool = testing::Values("zip", "tar", "ditto");
inline const auto itsParameter = [](const auto& test) { return test.param; };
