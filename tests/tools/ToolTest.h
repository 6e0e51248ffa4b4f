// What the tests of the tools begin with: a tool, an item and the place of its archive.
#pragma once

#include "tests/support/Test.h"
#include "tests/support/Tools.h"
#include "tests/support/ZipInspector.h"

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
        const std::set<std::string>& exceptReaders = {}) const
    {
        const std::regex form(tool.name == "ditto" ? R"(copying (file|symlink) \./[ -~]+ \.\.\. )"
                : tool.name == "zip" ? R"(  adding: [ -~]+ \((deflated \d+%|stored 0%)\))"
                                     : "  adding: [ -~]+");
        Names found = tool.makesZips ? inspectZip(archive).complaints : nothing;
        const Names progress = linesOf(result.out);
        if (progress.size() != expected.size())
            found.push_back(std::to_string(progress.size()) + " lines of progress: " + result.out);
        std::ranges::copy_if(progress, std::back_inserter(found),
            [&](const std::string& line) { return !std::regex_match(line, form); });
        for (const ForeignReader& reader : tool.readers)
            if (!exceptReaders.contains(reader.name))
                std::ranges::copy(
                    extractionFaults(reader, archive, expected), std::back_inserter(found));
        return found;
    }
    TreeSnapshot tree() const { return snapshot(item.parent_path()); }
    void write(const Names& names) const
    {
        for (const std::string& name : names)
            writeFile(item / name, "content of " + name);
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
