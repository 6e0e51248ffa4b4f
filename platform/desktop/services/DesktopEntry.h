// A file of freedesktop.org's Desktop Entry specification: groups of "key=value" lines. Only the
// group [Desktop Entry] is looked at; what is not set stays byte by byte as it was, other groups,
// comments and unknown keys included.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class DesktopEntry
{
public:
    // An empty entry.
    DesktopEntry();

    // Nothing when the text is no such file.
    [[nodiscard]] static std::optional<DesktopEntry> read(std::string_view text);

    // The string with its escapes (\s \n \t \r \\) resolved; nothing when the key is missing.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    // The key is set to "true".
    [[nodiscard]] bool isTrue(std::string_view key) const;
    // The parts of a value "a;b;", without the empty ones.
    [[nodiscard]] std::vector<std::string> list(std::string_view key) const;

    void setValue(std::string_view key, std::string_view value);
    void setBoolean(std::string_view key, bool value);

    [[nodiscard]] std::string text() const;

    // Between the value of Exec and the arguments in it, the program first. Nothing for quotes that
    // do not end; a field code (%f, %U) is an argument of its own kind and left out.
    [[nodiscard]] static std::string execValue(const std::vector<std::string>& arguments);
    [[nodiscard]] static std::optional<std::vector<std::string>> execArguments(
        std::string_view value);

private:
    // The line of the group with this key; the last one, which is the one that others heed.
    [[nodiscard]] std::optional<std::size_t> _lineOf(std::string_view key) const;

    std::vector<std::string> _lines; // of the whole file, without line breaks
    std::size_t _begin = 0; // the group's lines: from behind its header …
    std::size_t _end = 0; // … to the next group
};
