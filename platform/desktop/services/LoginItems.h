// The programs that start with the user's session: desktop entries in the autostart folders
// (freedesktop.org's Autostart specification), the user's in $XDG_CONFIG_HOME/autostart over the
// system's in $XDG_CONFIG_DIRS. Only the user's are written; keys that are not ours stay as they
// are. Any thread, but one at a time.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace LoginItems
{

struct Record {
    std::filesystem::path path; // "Path": the program, absolute where it can be found
    bool hide; // "Hide": wanted without a window, which this desktop has no means to ask for
    bool operator==(const Record&) const = default;
};

// What would start in this desktop, in the order of the entries' file names. Entries that are
// switched off, meant for another desktop, without their program or unreadable do not count.
[[nodiscard]] std::vector<Record> list();

// Makes an entry for the program, or switches on the one that there is with nothing but it as its
// command; where that is a link, what it leads to changes. False when the path is not
// an absolute one of a program, and when the entry cannot be written.
[[nodiscard]] bool add(const std::filesystem::path& path, bool hidden);

// Removes every item that is so named, or whose entry's file or whole command is, extensions left
// out; a system's entry is switched off by one of the user's. False when there was none, or on
// failure.
[[nodiscard]] bool remove(const std::string& name);

} // namespace LoginItems
