#include "platform/desktop/services/ScriptReader.h"

#include <initializer_list>

namespace
{

using ScriptReader::Command;

constexpr std::string_view blanks = " \t";
constexpr std::string_view lineBreaks = "\r\n";

// A place in the source. What does not match leaves it where it was.
class Cursor
{
public:
    explicit Cursor(std::string_view source)
        : _rest(source)
    {
        _skip({blanks, lineBreaks});
    }

    bool isAtEnd() const { return _rest.empty(); }

    // A line of this text alone.
    bool line(std::string_view text) { return _line(text, nullptr, {}); }

    // A line of `before`, a text in quotes and `after`.
    bool line(std::string_view before, std::string& quoted, std::string_view after = {})
    {
        return _line(before, &quoted, after);
    }

private:
    bool _line(std::string_view before, std::string* quoted, std::string_view after)
    {
        Cursor next = *this;
        if (!next._take(before) || (quoted && !next._takeQuoted(*quoted)) || !next._take(after))
            return false;
        next._skip({blanks});
        if (!next.isAtEnd() && lineBreaks.find(next._rest.front()) == std::string_view::npos)
            return false;
        next._skip({blanks, lineBreaks});
        *this = next;
        return true;
    }

    bool _take(std::string_view text)
    {
        if (!_rest.starts_with(text))
            return false;
        _rest.remove_prefix(text.size());
        return true;
    }

    bool _takeQuoted(std::string& text)
    {
        const auto end = _rest.starts_with('"') ? _rest.find('"', 1) : std::string_view::npos;
        if (end == std::string_view::npos || _rest.find('\0') < end)
            return false; // neither a path nor a name can hold a NUL
        text = _rest.substr(1, end - 1);
        _rest.remove_prefix(end + 1);
        return true;
    }

    void _skip(std::initializer_list<std::string_view> kinds)
    {
        const auto isSkipped = [&](char byte) {
            for (const std::string_view kind : kinds)
                if (kind.find(byte) != std::string_view::npos)
                    return true;
            return false;
        };
        while (!_rest.empty() && isSkipped(_rest.front()))
            _rest.remove_prefix(1);
    }

    std::string_view _rest;
};

bool readMailTell(Cursor& cursor, std::vector<Command>& commands)
{
    ScriptReader::ComposeMessage message;
    const bool isRead = cursor.line("tell application \"Mail\"")
        && cursor.line("set _m to make outgoing message") && cursor.line("tell _m")
        && cursor.line("set visible to true") && cursor.line("tell content")
        && cursor.line("set _f to ", message.attachment)
        && cursor.line("make new attachment with properties {file name:_f} at after the last "
                       "character")
        && cursor.line("end tell") && cursor.line("end tell") && cursor.line("activate")
        && cursor.line("end tell");
    if (isRead)
        commands.emplace_back(std::move(message));
    return isRead;
}

bool readLoginItemCommand(Cursor& cursor, std::vector<Command>& commands)
{
    constexpr std::string_view make = "make new login item at end with properties {path:";
    std::string text;
    if (cursor.line(make, text, ",hidden:true}"))
        commands.emplace_back(ScriptReader::MakeLoginItem{text, true});
    else if (cursor.line(make, text, ",hidden:false}"))
        commands.emplace_back(ScriptReader::MakeLoginItem{text, false});
    else if (cursor.line("delete login item ", text))
        commands.emplace_back(ScriptReader::DeleteLoginItem{text});
    else
        return false;
    return true;
}

bool readSystemEventsTell(Cursor& cursor, std::vector<Command>& commands)
{
    if (!cursor.line("tell application \"System Events\""))
        return false;
    while (!cursor.line("end tell"))
        if (!readLoginItemCommand(cursor, commands))
            return false;
    return true;
}

} // namespace

std::optional<std::vector<ScriptReader::Command>> ScriptReader::read(std::string_view source)
{
    Cursor cursor(source);
    std::vector<Command> commands;
    while (!cursor.isAtEnd())
        if (!readMailTell(cursor, commands) && !readSystemEventsTell(cursor, commands))
            return std::nullopt;
    return commands;
}
