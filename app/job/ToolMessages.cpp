#include "app/job/ToolMessages.h"

#include <algorithm>
#include <array>
#include <utility>

namespace
{

constexpr std::size_t mostLines = 200; // more than anybody reads
constexpr std::size_t longestLine = 8192; // holds two paths of the longest kind

// What the tools begin a line of progress with.
constexpr std::array<std::string_view, 3> progress{
    "  adding: ", "copying file ", "copying symlink "};

constexpr std::string_view warning = "warning: ";

bool isProgress(std::string_view line)
{
    return std::ranges::any_of(
        progress, [&](std::string_view start) { return line.starts_with(start); });
}

// Names may have colons, too; the reasons that do are no worse for a shorter end.
LeftOut::Item warningIn(std::string_view text)
{
    constexpr std::string_view colon = ": ";
    const auto end = text.rfind(colon);
    if (end == std::string_view::npos)
        return {.name = std::string(text), .reason = {}};
    return {.name = std::string(text.substr(0, end)),
        .reason = std::string(text.substr(end + colon.size()))};
}

} // namespace

std::string ToolMessages::printable(std::string text)
{
    std::ranges::replace_if(
        text, [](char byte) { return (byte >= 0 && byte < 0x20) || byte == 0x7f; }, '?');
    for (auto at = text.find('\xc2'); at != text.npos; at = text.find('\xc2', at + 1))
        if (at + 1 < text.size() && (text[at + 1] & 0xe0) == 0x80)
            text.replace(at, 2, "?");
    return text;
}

ToolMessages::ToolMessages(std::string tool)
    : _tool(std::move(tool))
{
}

void ToolMessages::addOutput(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto end = bytes.find('\n');
        const auto piece = bytes.substr(0, end);
        _line += piece.substr(0, longestLine - std::min(longestLine, _line.size()));
        if (end == std::string_view::npos)
            return;
        _endLine();
        bytes.remove_prefix(end + 1);
    }
}

void ToolMessages::_endLine()
{
    std::string line = printable(std::exchange(_line, {}));
    if (line.empty() || isProgress(line))
        return;
    if (line.starts_with(_tool + ": "))
        line.erase(0, _tool.size() + 2); // it is put before every line
    if (line.starts_with(warning))
        _warnings.add(warningIn(line.substr(warning.size())));
    _lastWord = line;
    if (_words.size() < mostLines)
        _words.push_back(std::move(line));
    else
        ++_left;
}

ToolMessages::LastWords ToolMessages::taskCompleted(int status)
{
    _endLine();
    std::string start = _tool;
    if (status != 0)
        start += " ended with status " + std::to_string(status);
    LastWords last{.text = start, .warnings = std::exchange(_warnings, {})};
    if (!_lastWord.empty())
        last.text += ": " + std::exchange(_lastWord, {});
    if (last.warnings.items.empty() && _words.empty())
        last.warnings.add({.name = start, .reason = {}});
    else if (last.warnings.items.empty())
        for (const std::string& word : _words)
            last.warnings.add({.name = _tool, .reason = word});
    if (status != 0 && _words.empty())
        add(start);
    for (const std::string& word : std::exchange(_words, {})) {
        add(start.append(": ").append(word));
        start = _tool;
    }
    return last;
}

void ToolMessages::add(const std::string& line)
{
    if (_kept.size() < mostLines)
        _kept.push_back(line);
    else
        ++_left;
}

std::vector<std::string> ToolMessages::lines() const
{
    std::vector<std::string> lines = _kept;
    if (_left > 0)
        lines.push_back("… and " + std::to_string(_left) + " more");
    return lines;
}
