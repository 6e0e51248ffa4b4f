// How the platform reads numbers in texts: white space in front is skipped, then comes a sign and
// as many digits as there are; what follows does not matter, and a text without digits is 0.
#pragma once

#include <cstdint>
#include <string_view>

namespace TextNumber
{

// Numbers out of range become the nearest there is.
[[nodiscard]] std::int32_t intValue(std::string_view text);
[[nodiscard]] std::int64_t integerValue(std::string_view text);

// With fraction and exponent; a point in every language.
[[nodiscard]] double doubleValue(std::string_view text);

// True when the first character is one of "YyTt" or, after zeros, one of 1 to 9.
[[nodiscard]] bool boolValue(std::string_view text);

// A real number without its fraction; the nearest integer that there is.
[[nodiscard]] std::int64_t truncated(double number);

} // namespace TextNumber
