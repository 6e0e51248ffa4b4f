#include "platform/desktop/services/DesktopEntry.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr std::string_view header = "[Desktop Entry]";

// The escapes of any string value, beside the letters that stand for them.
constexpr std::pair<char, char> escapes[]
    = {{' ', 's'}, {'\n', 'n'}, {'\t', 't'}, {'\r', 'r'}, {'\\', '\\'}};

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1); // npos + 1 is 0: nothing is left
}

std::string_view keyOf(std::string_view line)
{
    const auto sign = line.find('=');
    return sign == std::string_view::npos || line.starts_with('#') ? std::string_view()
                                                                   : trimmed(line.substr(0, sign));
}

std::string unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto* const escape = text[at] == '\\' && at + 1 < text.size()
            ? std::find_if(std::begin(escapes), std::end(escapes),
                [&](const auto& each) { return each.second == text[at + 1]; })
            : std::end(escapes);
        if (escape == std::end(escapes)) {
            result += text[at];
            continue;
        }
        result += escape->first;
        ++at;
    }
    return result;
}

std::string escaped(std::string_view text)
{
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes),
            [&](const auto& each) { return each.first == text[at]; });
        const bool isAtAnEnd = at == 0 || at + 1 == text.size(); // where a blank would be lost
        if (escape == std::end(escapes) || (text[at] == ' ' && !isAtAnEnd))
            result += text[at];
        else
            (result += '\\') += escape->second;
    }
    return result;
}

// Takes one argument off the value of Exec; false when its quotes do not end.
bool takeArgument(std::string_view& value, std::string& argument, bool& isFieldCode)
{
    bool isQuoted = false;
    for (; !value.empty() && (isQuoted || value.front() != ' '); value.remove_prefix(1)) {
        const char byte = value.front();
        const bool hasNext = value.size() > 1;
        if (byte == '"') {
            isQuoted = !isQuoted;
        } else if (byte == '\\' && isQuoted && hasNext) {
            value.remove_prefix(1);
            argument += value.front();
        } else if (byte == '%' && hasNext) {
            value.remove_prefix(1);
            if (value.front() == '%')
                argument += '%';
            else
                isFieldCode = true;
        } else {
            argument += byte;
        }
    }
    return !isQuoted;
}

} // namespace

DesktopEntry::DesktopEntry()
    : _lines{std::string(header)}
    , _begin(1)
    , _end(1)
{
}

std::optional<DesktopEntry> DesktopEntry::read(std::string_view text)
{
    DesktopEntry entry;
    entry._lines.clear();
    entry._begin = 0;
    entry._end = 0;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::string_view content = trimmed(line);
        entry._lines.emplace_back(line);
        if (content.empty() || content.starts_with('#'))
            continue;
        const std::size_t lineCount = entry._lines.size();
        const bool isHeader = content.starts_with('[') && content.ends_with(']');
        if (entry._begin == 0 ? content != header : !isHeader && keyOf(line).empty())
            return std::nullopt;
        if (entry._begin == 0)
            entry._begin = lineCount;
        else if (isHeader && entry._end == 0)
            entry._end = lineCount - 1;
    }
    if (entry._begin == 0)
        return std::nullopt;
    if (entry._end == 0)
        entry._end = entry._lines.size();
    return entry;
}

std::optional<std::size_t> DesktopEntry::_lineOf(std::string_view key) const
{
    for (std::size_t line = _end; line-- > _begin;)
        if (keyOf(_lines[line]) == key)
            return line;
    return std::nullopt;
}

std::optional<std::string> DesktopEntry::value(std::string_view key) const
{
    const auto line = _lineOf(key);
    if (!line)
        return std::nullopt;
    const std::string_view text = _lines[*line];
    return unescaped(trimmed(text.substr(text.find('=') + 1)));
}

bool DesktopEntry::isTrue(std::string_view key) const
{
    return value(key) == "true";
}

std::vector<std::string> DesktopEntry::list(std::string_view key) const
{
    std::vector<std::string> parts;
    std::string part;
    for (const char byte : value(key).value_or("") + ";") {
        if (byte != ';')
            part += byte;
        else if (!part.empty())
            parts.push_back(std::exchange(part, {}));
    }
    return parts;
}

void DesktopEntry::setValue(std::string_view key, std::string_view value)
{
    const std::string line = std::string(key) + "=" + escaped(value);
    if (const auto present = _lineOf(key)) {
        _lines[*present] = line;
        return;
    }
    std::size_t behind = _end; // the group's last key: blank lines stay before the next group
    while (behind > _begin && trimmed(_lines[behind - 1]).empty())
        --behind;
    _lines.insert(_lines.begin() + static_cast<std::ptrdiff_t>(behind), line);
    ++_end;
}

void DesktopEntry::setBoolean(std::string_view key, bool value)
{
    setValue(key, value ? "true" : "false");
}

std::string DesktopEntry::text() const
{
    std::string text;
    for (const std::string& line : _lines)
        text += line + "\n";
    return text;
}

std::string DesktopEntry::execValue(const std::vector<std::string>& arguments)
{
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`"; // of an unquoted argument
    constexpr std::string_view escapedInQuotes = "\"`$\\";
    std::string value;
    for (const std::string& argument : arguments) {
        const bool isQuoted
            = argument.empty() || argument.find_first_of(reserved) != std::string::npos;
        value += value.empty() ? "" : " ";
        value += isQuoted ? "\"" : "";
        for (const char byte : argument) {
            if (isQuoted && escapedInQuotes.find(byte) != std::string_view::npos)
                value += '\\';
            value.append(byte == '%' ? 2 : 1, byte);
        }
        value += isQuoted ? "\"" : "";
    }
    return value;
}

std::optional<std::vector<std::string>> DesktopEntry::execArguments(std::string_view value)
{
    std::vector<std::string> arguments;
    while (!(value = trimmed(value)).empty()) {
        std::string argument;
        bool isFieldCode = false;
        if (!takeArgument(value, argument, isFieldCode))
            return std::nullopt;
        if (!isFieldCode)
            arguments.push_back(std::move(argument));
    }
    return arguments;
}
