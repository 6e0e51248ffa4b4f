// The extended attributes of an open file or folder.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace ExtendedAttributes
{

// What belongs to users; the other name spaces are the system's own.
inline constexpr std::string_view userPrefix = "user.";

// One attribute, with the prefix of its name space. With an error other than 0 (errno's) it could
// not be read; with an empty name, the list of all could not.
using Visit
    = std::function<void(const std::string& name, std::span<const std::byte> value, int error)>;

// In the order of the names. None on a file system that has no attributes.
void forEach(int descriptor, const Visit& visit);

} // namespace ExtendedAttributes
