// Reads the few sentences of AppleScript that this program and its library say. They are matched
// word by word, not by a grammar: blanks around a line, empty lines and the kind of line break are
// free, everything else has to be as it is written here. A text between quotes is the bytes up to
// the next quote; nothing is escaped in it, so a quote in a path makes a script that is wrong.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ScriptReader
{

// tell application "Mail" … make new attachment with properties {file name:_f} … end tell
struct ComposeMessage {
    std::string attachment;
    bool operator==(const ComposeMessage&) const = default;
};

// make new login item at end with properties {path:"…",hidden:true}
struct MakeLoginItem {
    std::string path;
    bool hidden;
    bool operator==(const MakeLoginItem&) const = default;
};

// delete login item "…"
struct DeleteLoginItem {
    std::string name;
    bool operator==(const DeleteLoginItem&) const = default;
};

using Command = std::variant<ComposeMessage, MakeLoginItem, DeleteLoginItem>;

// The commands in their order; nothing when there is any other sentence among them.
[[nodiscard]] std::optional<std::vector<Command>> read(std::string_view source);

} // namespace ScriptReader
