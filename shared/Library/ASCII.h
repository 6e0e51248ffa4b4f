#pragma once

#include <algorithm>
#include <string_view>

// Strict 7-bit ASCII: whether the bytes can be decoded as text.
inline bool isASCII(std::string_view bytes)
{
    return std::ranges::none_of(bytes, [](char byte) { return (byte & 0x80) != 0; });
}
