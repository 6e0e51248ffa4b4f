// Property lists: values in files, as XML or in the binary form. A file is read whole or not at
// all, whatever is in it: one that is too large, too deep, no regular file or no property list
// gives nothing.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace PropertyList
{

struct Value;

struct Data {
    std::string bytes;
    bool operator==(const Data&) const = default;
};

using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value>;
using Date = std::chrono::sys_time<std::chrono::microseconds>;

// Integers above the signed range come out negative. Texts are UTF-8.
struct Value
    : std::variant<bool, std::int64_t, double, std::string, Data, Date, Array, Dictionary> {
    using variant::variant;
};

constexpr std::size_t mostBytes = 1 << 20; // a settings file has a hundredth of that

[[nodiscard]] std::optional<Value> valueOf(std::string_view bytes);

// Nothing also when the file holds something else than a dictionary.
[[nodiscard]] std::optional<Dictionary> dictionaryWithContentsOfFile(
    const std::filesystem::path& path);

// XML; nothing when it could not be read back the same: a text that is not UTF-8 or has control
// characters, a date outside of 1933 to 2068, lists within each other deeper than can be read.
[[nodiscard]] std::optional<std::string> xmlOf(const Dictionary& dictionary);

// Writes XML under a hidden name beside the file, then gives it the name. A link stays a link, and
// the permissions of a file that was there are kept. False: nothing has changed.
[[nodiscard]] bool writeToFile(const Dictionary& dictionary, const std::filesystem::path& path);

// The platform's reading of a value as a number: texts as TextNumber has it, numbers cut to an
// integer, true as 1, anything else as 0.
[[nodiscard]] int intValue(const Value& value);

} // namespace PropertyList
