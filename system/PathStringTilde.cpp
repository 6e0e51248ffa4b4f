// In a file of its own: what is linked statically, as the tools are, cannot look up users.

#include "system/PathString.h"

#include <algorithm>
#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

namespace
{

// The home folder of a user, of the present one for an empty name; empty when not known.
std::string homeFolder(const std::string& user)
{
    const char* home = user.empty() ? std::getenv("HOME") : nullptr;
    if (home != nullptr && *home != '\0')
        return home;
    const passwd* entry = user.empty() ? ::getpwuid(::geteuid()) : ::getpwnam(user.c_str());
    return entry != nullptr ? entry->pw_dir : "";
}

} // namespace

std::string PathString::stringByExpandingTildeInPath(std::string_view path)
{
    if (path.empty() || path.front() != '~')
        return std::string(path);
    const auto slash = std::min(path.find('/'), path.size());
    const std::string home = homeFolder(std::string(path.substr(1, slash - 1)));
    if (home.empty())
        return std::string(path);
    return stringByAppendingPathComponent(home, path.substr(slash));
}
