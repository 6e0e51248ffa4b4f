// Every include goes down the floors of docs/architecture.md, compared by folder alone.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{

struct Floor {
    std::string folder;
    std::vector<std::string> mayInclude; // folders, besides its own; "Qt/": that library
};

// The first row whose folder a path begins with is its floor; its rooms are one.
const std::vector<Floor> floors = {
    {"system/", {}},
    {"tools/common/", {"system/"}},
    {"tools/zip/", {"system/", "tools/common/"}},
    {"tools/tar/", {"system/", "tools/common/"}},
    {"tools/ditto/", {"system/", "tools/common/", "tools/zip/"}},
    {"platform/base/", {"system/"}},
    {"shared/Library/Archiver/", {"system/", "platform/base/"}},
    {"platform/desktop/", {"system/", "platform/base/", "Qt/"}},
    {"shared/Library/Extras/",
        {"system/", "platform/base/", "shared/Library/Archiver/", "platform/desktop/", "Qt/"}},
    {"app/job/", {"system/", "platform/base/", "shared/Library/Archiver/"}},
    {"app/commandline/", {"system/", "platform/base/", "shared/Library/Archiver/", "app/job/"}},
    {"app/window/",
        {"system/", "platform/base/", "shared/Library/Archiver/", "platform/desktop/",
            "shared/Library/Extras/", "app/job/", "Qt/"}},
    {"app/", {"system/", "platform/base/", "app/commandline/"}},
};

const Floor* floorOf(const std::string& path)
{
    const auto found = std::find_if(floors.begin(), floors.end(),
        [&](const Floor& floor) { return path.starts_with(floor.folder); });
    return found == floors.end() ? nullptr : &*found;
}

// The header that a line includes, empty for other lines; headers of Qt's get a folder.
std::string includedBy(const std::string& line)
{
    const auto start = line.find_first_of("<\"");
    if (!line.starts_with("#include") || start == std::string::npos)
        return {};
    const std::string header
        = line.substr(start + 1, line.find_first_of(">\"", start + 1) - start - 1);
    const bool isOurs = line[start] == '"' && header.find('/') != std::string::npos;
    const bool isQt = header.starts_with('Q') || header.starts_with("ui_");
    return isQt ? "Qt/" + header : isOurs ? header : "";
}

std::string faultOf(const std::string& file, const std::string& included)
{
    const Floor* own = floorOf(file);
    if (own == nullptr)
        return "is on no floor";
    if (included.empty() || included.starts_with(own->folder))
        return {};
    const bool isBelow = std::any_of(own->mayInclude.begin(), own->mayInclude.end(),
        [&](const std::string& folder) { return included.starts_with(folder); });
    return isBelow ? "" : "includes " + included + ", which is not below";
}

} // namespace

TEST(Floors, noFileIncludesUpwards)
{
    std::vector<std::string> faults;
    std::size_t count = 0;
    for (const std::string top : {"system", "tools", "platform", "shared", "app"}) {
        for (const auto& found :
            fs::recursive_directory_iterator(fs::path(PARCELO_SOURCE_DIR) / top)) {
            const std::string extension = found.path().extension();
            if (extension != ".h" && extension != ".cpp")
                continue;
            const std::string file = fs::relative(found.path(), PARCELO_SOURCE_DIR);
            std::ifstream source(found.path());
            for (std::string line; std::getline(source, line); ++count)
                if (const std::string fault = faultOf(file, includedBy(line)); !fault.empty())
                    faults.push_back(std::string(file).append(" ").append(fault));
        }
    }
    EXPECT_EQ(faults, std::vector<std::string>());
    EXPECT_GT(count, 10000u) << "the sources were not found";
}
