// What the tests of the tools begin with: a tool, an item and the place of its archive.
#pragma once

#include "tests/support/TestFolder.h"
#include "tests/support/Tools.h"

#include <string>
#include <tuple>

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
    RunResult make(const ToolOptions& options = {}) const
    {
        return run(tool, archive, item, options);
    }
    Names faults(const RunResult& result, const TreeSnapshot& expected,
        const std::set<std::string>& exceptReaders = {}) const
    {
        return faultsOf(tool, result, archive, expected, exceptReaders);
    }
    TreeSnapshot tree() const { return snapshot(item.parent_path()); }
    void link(const std::string& name, const std::string& target) const
    {
        fs::create_directories((item / name).parent_path());
        fs::create_symlink(target, item / name);
    }

    const Tool& tool;
    const TestFolder folder = {};
    const fs::path item = folder / "in/item";
    const fs::path archive = folder / tool.archiveName;
};

using Zip = ToolTest;

class EachTool : public ToolTest, public testing::WithParamInterface<std::string>
{
protected:
    EachTool()
        : ToolTest(GetParam())
    {
    }
};

// Each tool in each of several cases.
template <typename Case>
class EachToolAnd : public ToolTest,
                    public testing::WithParamInterface<std::tuple<std::string, Case>>
{
protected:
    EachToolAnd()
        : ToolTest(std::get<0>(this->GetParam()))
    {
    }
    const Case& theCase = std::get<1>(this->GetParam());
};

inline const auto eachTool = testing::Values("zip", "tar", "ditto");
