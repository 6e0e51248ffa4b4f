#pragma once

#include <cstddef>
#include <string_view>

namespace Utf8
{

// The length of the well-formed sequence (RFC 3629) that `text` begins with, in bytes; 0 if it
// begins with none.
std::size_t sequenceLength(std::string_view text);

[[nodiscard]] bool isAscii(std::string_view text);
[[nodiscard]] bool isValid(std::string_view text);

// The longest beginning of `text` of at most `size` bytes that cuts no well-formed sequence.
std::string_view shortened(std::string_view text, std::size_t size);

} // namespace Utf8
