#include "platform/desktop/services/UriList.h"
#include "tests/fuzz/Fuzzing.h"

#include <algorithm>

using Fuzzing::require;

namespace
{

constexpr std::string_view hostName = "here";

// What a path is when it has been a URI.
std::filesystem::path withoutSlashAtEnd(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

void requireWayBack(const std::string& path)
{
    const auto back = UriList::filePaths(UriList::fileUri(path), hostName);
    require(back.refused.empty() && back.paths.size() == 1, "a path of ours is one URI");
    require(back.paths.front().native() == withoutSlashAtEnd(path).native(), "and the same bytes");
}

void requireSame(const UriList::FilePaths& one, const UriList::FilePaths& other)
{
    const auto isSame = [](const UriList::RefusedLine& left, const UriList::RefusedLine& right) {
        return left.line == right.line && left.reason == right.reason;
    };
    require(std::ranges::equal(one.paths, other.paths)
            && std::ranges::equal(one.refused, other.refused, isSame),
        "a verb in front changes nothing");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view list = Fuzzing::textOf(data, size);
    const auto result = UriList::filePaths(list, hostName);
    const auto lines = static_cast<std::size_t>(std::ranges::count(list, '\n')) + 1;
    require(result.paths.size() + result.refused.size() <= lines, "a line is one file at most");
    for (const auto& refused : result.refused)
        require(list.find(refused.line) != list.npos, "what is refused stands in the list");
    for (const auto& path : result.paths) {
        require(path.is_absolute(), "paths are absolute");
        requireWayBack(path);
    }
    requireSame(UriList::copiedFilePaths("cut\r\n" + std::string(list), hostName), result);
    (void)UriList::copiedFilePaths(list, hostName);

    std::string path = "/" + std::string(list);
    std::erase(path, '\0');
    requireWayBack(path);
    return 0;
}
