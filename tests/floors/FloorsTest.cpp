// Every include goes down the floors of docs/architecture.md, compared by folder alone.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

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
    {"shared/Library/Extras/", {"system/", "platform/", "shared/", "Qt/"}},
    {"app/job/", {"system/", "platform/base/", "shared/Library/Archiver/"}},
    {"app/commandline/", {"system/", "platform/base/", "shared/Library/Archiver/", "app/job/"}},
    {"app/window/", {"system/", "platform/", "shared/", "app/job/", "Qt/"}},
    {"app/main.cpp", {"system/", "platform/base/", "app/commandline/"}},
};

// Whether the line includes nothing of ours or Qt's, or what the file's floor stands on.
bool isAllowed(const std::string& file, const std::string& line)
{
    static const std::regex include("#include (?:[<\"](?:Q|ui_).*|\"(.+/.+)\".*)");
    const auto own = std::ranges::find_if(
        floors, [&](const Floor& floor) { return file.starts_with(floor.folder); });
    std::smatch match;
    if (own == floors.end() || !line.starts_with('#') || !std::regex_match(line, match, include))
        return own != floors.end();
    const std::string header = match[1].matched ? match[1].str() : "Qt/";
    return header.starts_with(own->folder)
        || std::ranges::any_of(
            own->mayInclude, [&](const std::string& folder) { return header.starts_with(folder); });
}

} // namespace

TEST(Floors, noFileIncludesUpwards)
{
    std::size_t count = 0;
    for (const char* top : {"system", "tools", "platform", "shared", "app"}) {
        for (const auto& found :
            fs::recursive_directory_iterator(fs::path(PARCELO_SOURCE_DIR) / top)) {
            const fs::path extension = found.path().extension();
            const std::string file = fs::relative(found, PARCELO_SOURCE_DIR);
            std::ifstream source(extension == ".h" || extension == ".cpp" ? found.path() : "");
            for (std::string line; std::getline(source, line); ++count)
                EXPECT_TRUE(isAllowed(file, line)) << file << ": " << line;
        }
    }
    EXPECT_GT(count, 10000U) << "the sources were not found";
}
