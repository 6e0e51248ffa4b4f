#include "platform/desktop/services/UriList.h"
#include "tests/fuzz/Fuzzing.h"

#include <algorithm>

using Fuzzing::require;

namespace
{

constexpr std::string_view hostName = "here";

void requireWayBack(std::string path)
{
    const auto back = UriList::filePaths(UriList::fileUri(path), hostName);
    require(back.refused.empty() && back.paths.size() == 1, "a path of ours is one URI");
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    require(back.paths.front().native() == path, "and the same bytes but for slashes at the end");
}

} // namespace

void Fuzzing::test(std::string_view list)
{
    const auto result = UriList::filePaths(list, hostName);
    const auto lines = static_cast<std::size_t>(std::ranges::count(list, '\n')) + 1;
    require(result.paths.size() + result.refused.size() <= lines, "a line is one file at most");
    for (const auto& refused : result.refused)
        require(list.find(refused.line) != list.npos, "what is refused stands in the list");
    for (const auto& path : result.paths) {
        require(path.is_absolute(), "paths are absolute");
        requireWayBack(path.native());
    }
    const auto cut = UriList::copiedFilePaths("cut\r\n" + std::string(list), hostName);
    require(cut.paths == result.paths && cut.refused.size() == result.refused.size(),
        "a verb in front changes nothing");
    (void)UriList::copiedFilePaths(list, hostName);

    std::string path = "/" + std::string(list);
    std::erase(path, '\0');
    requireWayBack(path);
}
