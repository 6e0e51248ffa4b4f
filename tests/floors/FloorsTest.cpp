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
    std::string prefix; // of the paths on it
    std::set<std::string> mayInclude; // prefixes, besides its own
    std::string libraries; // headers in angle brackets besides those of C++, C and the system
};

const std::string engine = "shared/Library/engine"; // of what the files below have in common
const std::string qt = "Q[A-Za-z]+";

// The first row whose prefix a path begins with is its floor.
const std::vector<Floor> floors = {
    {"tools/common/", {}, "libdeflate\\.h"},
    {"tools/zip/", {"tools/common/"}, "libdeflate\\.h"},
    {"tools/tar/", {"tools/common/"}, "libdeflate\\.h"},
    {"tools/ditto/", {"tools/common/", "tools/zip/"}, "libdeflate\\.h"},
    {"platform/base/", {}, "plist/plist\\.h"},
    {engine, {"platform/base/"}, ""},
    {"platform/desktop/", {"platform/base/"}, qt},
    {"shared/Library/", {"platform/base/", engine, "platform/desktop/"}, qt},
    {"app/", {"platform/base/", engine, "platform/desktop/", "shared/Library/"}, qt},
};

// The engine shares its folder with the rest of the library, which stands above it.
bool isEngine(const std::string& path)
{
    static const std::regex names("shared/Library/([A-Za-z]*Archiver[A-Za-z]*\\.(h|cpp)|ASCII\\.h"
                                  "|QKUtility\\.h|QKUtilityAfterDelay\\.cpp)");
    return std::regex_match(path, names);
}

const Floor* floorOf(const std::string& path)
{
    const std::string place = isEngine(path) ? engine : path;
    const auto found = std::find_if(floors.begin(), floors.end(),
        [&](const Floor& floor) { return place.starts_with(floor.prefix); });
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
    static const std::regex generated("ui_[A-Za-z]+\\.h");
    if (file.starts_with("app/") && std::regex_match(included, generated))
        return "";
    if (!fs::exists(fs::path(PARCELO_SOURCE_DIR) / included))
        return "is not written from the repository's root";
    const Floor* other = floorOf(included);
    if (!other)
        return "is on no floor";
    return other == &own || own.mayInclude.contains(other->prefix) ? "" : "is not below";
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
            const std::string file = fs::relative(found.path(), PARCELO_SOURCE_DIR);
            if (extension != ".h" && extension != ".cpp")
                continue;
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
