#include "platform/desktop/panels/SaveCheck.h"

#include "system/FileName.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include <unistd.h>

namespace
{

using SaveCheck::Finding;
using SaveCheck::Obstacle;
using SaveCheck::Oddity;

bool isControl(char character)
{
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char del = 0x7F;
    const auto byte = static_cast<unsigned char>(character);
    return byte < firstPrintable || byte == del;
}

// By Windows, which is the strictest; the slash is no character of a name anywhere.
bool isRefused(char character)
{
    return isControl(character) || std::strchr("\\:*?\"<>|", character) != nullptr;
}

// CON, and COM1 to LPT9 by their first three letters, whatever follows a dot.
bool isDevice(std::string_view stem)
{
    constexpr std::string_view devices[] = {"CON", "PRN", "AUX", "NUL"};
    constexpr std::string_view ports[] = {"COM", "LPT"};
    constexpr std::size_t lettersOfPort = 3;
    std::string name(stem.substr(0, stem.find('.')));
    std::ranges::transform(name, name.begin(),
        [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    if (name.size() == lettersOfPort + 1 && name.back() >= '1' && name.back() <= '9')
        return std::ranges::count(ports, name.substr(0, lettersOfPort)) > 0;
    return std::ranges::count(devices, name) > 0;
}

Obstacle obstacleOf(const std::filesystem::path& folder)
{
    std::error_code failure;
    if (!std::filesystem::is_directory(folder, failure))
        return failure == std::errc::permission_denied ? Obstacle::folderIsReadOnly
                                                       : Obstacle::noFolder;
    return ::access(folder.c_str(), W_OK | X_OK) == 0 ? Obstacle::none : Obstacle::folderIsReadOnly;
}

Obstacle obstacleOf(const std::string& stem, std::string_view extension)
{
    if (stem.empty())
        return Obstacle::noName;
    if (stem.find('/') != std::string::npos)
        return Obstacle::isPath;
    if (stem == "." || stem == "..")
        return Obstacle::dots;
    if (stem.size() + extension.size() > FileName::longestInBytes)
        return Obstacle::tooLong;
    return Obstacle::none;
}

} // namespace

Finding SaveCheck::look(
    const std::filesystem::path& folder, const std::string& stem, std::string_view extension)
{
    Finding finding{.obstacle = obstacleOf(folder)};
    if (finding.obstacle == Obstacle::none)
        finding.obstacle = obstacleOf(stem, extension);
    if (finding.obstacle != Obstacle::none)
        return finding;

    FileStatus status{};
    const std::filesystem::path file = folder / (stem + std::string(extension));
    if (::lstat(file.c_str(), &status) == 0) {
        finding.former = status;
        if (S_ISDIR(status.st_mode))
            finding.obstacle = Obstacle::isFolder;
    }
    const auto refused = std::ranges::find_if(stem, isRefused);
    if (refused != stem.end()) {
        finding.oddity = Oddity::refusedCharacter;
        finding.refused = *refused;
    } else if (isDevice(stem)) {
        finding.oddity = Oddity::refusedName;
    } else if (stem.front() == ' ' || stem.back() == ' ') {
        finding.oddity = Oddity::spaceAtEdge;
    } else if (stem.front() == '.') {
        finding.oddity = Oddity::hidden;
    }
    return finding;
}

std::string SaveCheck::nextFreeStem(
    const std::filesystem::path& folder, const std::string& stem, std::string_view extension)
{
    return FileName::nextFree(stem, true, [&](const std::string& name) {
        FileStatus status{};
        const std::filesystem::path file = folder / (name + std::string(extension));
        return ::lstat(file.c_str(), &status) == 0;
    });
}
