#include "platform/base/files/SearchPaths.h"

#include "system/PathString.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace
{

struct Place {
    SearchPaths::Directory directory;
    const char* variable; // of the environment, or in user-dirs.dirs
    bool isUserDirectory; // it is in user-dirs.dirs
    const char* usual; // below the home folder
};

constexpr auto places = std::to_array<Place>({
    {SearchPaths::Directory::documents, "XDG_DOCUMENTS_DIR", true, "Documents"},
    {SearchPaths::Directory::desktop, "XDG_DESKTOP_DIR", true, "Desktop"},
    {SearchPaths::Directory::caches, "XDG_CACHE_HOME", false, ".cache"},
    {SearchPaths::Directory::applicationSupport, "XDG_DATA_HOME", false, ".local/share"},
    {SearchPaths::Directory::downloads, "XDG_DOWNLOAD_DIR", true, "Downloads"},
    {SearchPaths::Directory::movies, "XDG_VIDEOS_DIR", true, "Videos"},
    {SearchPaths::Directory::music, "XDG_MUSIC_DIR", true, "Music"},
    {SearchPaths::Directory::pictures, "XDG_PICTURES_DIR", true, "Pictures"},
});

// Empty when it is not known.
std::string homeFolder()
{
    std::string home = PathString::stringByExpandingTildeInPath("~");
    return home.starts_with('/') ? home : std::string();
}

// Relative paths do not count there.
std::filesystem::path fromEnvironment(const char* variable, const std::filesystem::path& usual)
{
    const char* folder = std::getenv(variable);
    return folder != nullptr && *folder == '/' ? folder : usual;
}

// The value of a line like XDG_DESKTOP_DIR="$HOME/Desktop", which is a shell's, but of this form
// only: an absolute path or one that begins with $HOME, in double quotes with backslashes.
std::optional<std::string> valueInLine(
    std::string_view line, std::string_view variable, const std::string& home)
{
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    const std::string assignment = std::string(variable) + "=\"";
    if (!line.starts_with(assignment))
        return std::nullopt;
    line.remove_prefix(assignment.size());

    std::string value;
    constexpr std::string_view variableOfHome = "$HOME";
    if (line.starts_with(variableOfHome)) {
        value = home;
        line.remove_prefix(variableOfHome.size());
    }
    for (std::size_t index = 0; index < line.size() && line[index] != '"'; ++index) {
        if (line[index] == '\\' && index + 1 < line.size())
            ++index;
        value += line[index];
    }
    return value.starts_with('/') ? std::optional(value) : std::nullopt;
}

std::filesystem::path userDirectory(const Place& place, const std::string& home)
{
    const auto configuration
        = fromEnvironment("XDG_CONFIG_HOME", std::filesystem::path(home) / ".config");
    std::ifstream file(configuration / "user-dirs.dirs");
    std::optional<std::string> found; // the last one counts, as in a shell
    for (std::string line; std::getline(file, line);)
        if (auto value = valueInLine(line, place.variable, home))
            found = std::move(value);
    return found ? std::filesystem::path(*found) : std::filesystem::path(home) / place.usual;
}

} // namespace

std::optional<std::filesystem::path> SearchPaths::userTemporaryDirectory()
{
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder == '/' ? std::optional<std::filesystem::path>(folder)
                                               : std::nullopt;
}

std::filesystem::path SearchPaths::temporaryDirectory()
{
    return userTemporaryDirectory().value_or("/tmp");
}

std::vector<std::filesystem::path> SearchPaths::directories(
    Directory directory, DomainMask inDomain)
{
    const auto bits = static_cast<unsigned>(inDomain);
    const auto* const place = std::find_if(places.begin(), places.end(),
        [&](const Place& each) { return each.directory == directory; });
    const std::string home = homeFolder();
    if ((bits & static_cast<unsigned>(DomainMask::user)) == 0 || place == places.end()
        || home.empty())
        return {};
    if (place->isUserDirectory)
        return {userDirectory(*place, home)};
    return {fromEnvironment(place->variable, std::filesystem::path(home) / place->usual)};
}
