// libplist follows every level of a property list by recursion, and copies a value of the binary
// form as often as it is referred to: a small hostile file could take all of the stack or of the
// memory. Version 2.2 aborts the program for a zero in a dictionary's key. So what libplist is to
// see is looked at before.
#pragma once

#include <string_view>

namespace PropertyListGuard
{

// At most so many lists and dictionaries, which is also the deepest they can be.
constexpr std::size_t mostContainers = 4096;

[[nodiscard]] bool isBinary(std::string_view bytes);

// Whether XML has that few, counted in a way that no comment or odd syntax can hide one, and no
// zeros.
[[nodiscard]] bool isHarmlessXML(std::string_view bytes);

// Whether a binary list is a tree of that few, its values fit into a few tens of megabytes when
// each is copied for each reference, and no key has a zero. Says nothing of what libplist checks:
// most broken files are harmless.
[[nodiscard]] bool isHarmlessBinary(std::string_view bytes);

} // namespace PropertyListGuard
