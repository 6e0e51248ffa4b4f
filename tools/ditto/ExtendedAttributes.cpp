#include "tools/ditto/ExtendedAttributes.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <sys/xattr.h>

namespace
{

constexpr std::size_t mostBytes = 65536; // of a value, and of all names: the kernel's own limits

std::vector<std::string> split(std::string_view list)
{
    std::vector<std::string> names;
    while (!list.empty()) {
        names.emplace_back(list.substr(0, list.find('\0')));
        list.remove_prefix(std::min(list.size(), names.back().size() + 1));
    }
    std::ranges::sort(names); // their own order differs between file systems
    return names;
}

} // namespace

void ExtendedAttributes::forEach(int descriptor, const Visit& visit)
{
    if (::flistxattr(descriptor, nullptr, 0) == 0)
        return; // as nearly always
    std::string list(mostBytes, '\0');
    const ssize_t listSize = ::flistxattr(descriptor, list.data(), list.size());
    if (listSize < 0) {
        if (errno != ENOTSUP)
            visit("", {}, errno);
        return;
    }
    list.resize(static_cast<std::size_t>(listSize));
    std::vector<std::byte> value(mostBytes);
    for (const std::string& name : split(list)) {
        const ssize_t size = ::fgetxattr(descriptor, name.c_str(), value.data(), value.size());
        if (size >= 0)
            visit(name, std::span(value).first(static_cast<std::size_t>(size)), 0);
        else if (errno != ENODATA) // removed meanwhile
            visit(name, {}, errno);
    }
}
