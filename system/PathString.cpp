#include "system/PathString.h"

#include <algorithm>

namespace
{

// The root keeps its one slash.
std::string_view withoutSlashesAtEnd(std::string_view path)
{
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

} // namespace

std::string PathString::lastPathComponent(std::string_view path)
{
    path = withoutSlashesAtEnd(path);
    if (path == "/")
        return "/";
    return std::string(path.substr(path.rfind('/') + 1)); // npos + 1 is 0: the whole
}

std::string PathString::stringByDeletingLastPathComponent(std::string_view path)
{
    path = withoutSlashesAtEnd(path);
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return std::string(withoutSlashesAtEnd(path.substr(0, slash + 1)));
}

std::string PathString::folderOf(std::string_view path)
{
    std::string folder = stringByDeletingLastPathComponent(path);
    return folder.empty() ? "." : folder;
}

std::string PathString::stringByDeletingPathExtension(std::string_view path)
{
    path = withoutSlashesAtEnd(path);
    const auto name = path.rfind('/') + 1;
    const auto dot = path.rfind('.');
    if (dot == std::string_view::npos || dot <= name || dot + 1 == path.size())
        return std::string(path);
    return std::string(path.substr(0, dot));
}

std::string PathString::dottedExtension(std::string_view path)
{
    path = withoutSlashesAtEnd(path);
    return std::string(path.substr(stringByDeletingPathExtension(path).size()));
}

std::string PathString::stringByAppendingPathComponent(
    std::string_view path, std::string_view component)
{
    path = withoutSlashesAtEnd(path);
    component.remove_prefix(std::min(component.find_first_not_of('/'), component.size()));
    std::string joined(path);
    if (!path.empty() && path != "/")
        joined += '/';
    return std::string(withoutSlashesAtEnd(joined.append(component)));
}
