// Every include goes down the floors of docs/architecture.md.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{

struct Floor {
    std::string folder;
    std::set<std::string> mayInclude; // besides itself
    std::string libraries; // headers in angle brackets besides those of C++, C and the system
};

// The first row whose folder a path begins with is its floor.
const std::vector<Floor> floors = {
    {"tools/common", {}, "libdeflate\\.h"},
    {"tools/zip", {"tools/common"}, "libdeflate\\.h"},
    {"tools/tar", {"tools/common"}, "libdeflate\\.h"},
    {"platform/base", {}, ""},
    {"platform/desktop", {"platform/base"}, "Q[A-Za-z]+"},
    {"shared/Library", {"platform/base"}, ""},
    {"app", {"platform/base", "platform/desktop", "shared/Library"}, "Q[A-Za-z]+"},
};

const Floor* floorOf(const std::string& path)
{
    const auto found = std::find_if(floors.begin(), floors.end(),
        [&](const Floor& floor) { return path.starts_with(floor.folder + "/"); });
    return found == floors.end() ? nullptr : &*found;
}

// What is wrong with one include; empty when nothing is.
std::string faultOf(const std::string& file, char bracket, const std::string& included)
{
    static const std::regex systemHeader("[a-z_0-9]+(\\.h)?|(sys|linux|netinet)/[a-z_0-9]+\\.h");
    const Floor& own = *floorOf(file);
    if (bracket == '<') {
        const bool allowed = std::regex_match(included, systemHeader) && included != "libdeflate.h";
        return allowed || std::regex_match(included, std::regex(own.libraries))
            ? ""
            : "belongs to another floor";
    }
    if (!fs::exists(fs::path(PARCELO_SOURCE_DIR) / included))
        return "is not written from the repository's root";
    const Floor* other = floorOf(included);
    if (!other)
        return "is on no floor";
    return other == &own || own.mayInclude.contains(other->folder) ? "" : "is not below";
}

} // namespace

TEST(Floors, noFileIncludesUpwards)
{
    static const std::regex include("\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"].*");
    std::vector<std::string> faults;
    std::size_t count = 0;
    for (const std::string top : {"tools", "platform", "shared", "app"}) {
        for (const auto& found :
            fs::recursive_directory_iterator(fs::path(PARCELO_SOURCE_DIR) / top)) {
            const std::string extension = found.path().extension();
            if (extension != ".h" && extension != ".cpp")
                continue;
            const std::string file = fs::relative(found.path(), PARCELO_SOURCE_DIR);
            if (!floorOf(file)) {
                faults.push_back(file + " is on no floor");
                continue;
            }
            std::ifstream source(found.path());
            for (std::string line; std::getline(source, line);) {
                std::smatch match;
                if (!std::regex_match(line, match, include))
                    continue;
                ++count;
                const std::string fault = faultOf(file, match[1].str()[0], match[2]);
                if (!fault.empty())
                    faults.emplace_back(file).append(": ").append(match[2]).append(" " + fault);
            }
        }
    }
    EXPECT_EQ(faults, std::vector<std::string>());
    EXPECT_GT(count, 100u) << "the sources were not found";
}
