// What the tests of the tools begin with: a tool, an item and the place of its archive.
#pragma once

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"
#include "tests/support/ZipInspector.h"

#include <gtest/gtest.h>

using namespace support;
namespace fs = std::filesystem;

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
    Names faults(const RunResult& result, const TreeSnapshot& expected,
        const std::set<std::string>& exceptReaders = {}) const
    {
        return faultsOf(tool, result, archive, expected, exceptReaders);
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
    const fs::path archive = folder / tool.archiveName;
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
