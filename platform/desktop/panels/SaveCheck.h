// What is to be known of a new file before it is made: what keeps it from being made, what it would
// replace, and whether its name is odd. Folder and name are bytes; looks at the disk, changes
// nothing.
#pragma once

#include "system/FileStatus.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace SaveCheck
{

enum class Obstacle {
    none,
    noFolder, // where it should go
    folderIsReadOnly,
    noName,
    isPath, // a name with a slash
    dots, // "." and "..", which name folders, whatever is appended to them
    tooLong,
    isFolder, // what has the name already
};

// Of a name that can be made here, but may trouble others or its user.
enum class Oddity {
    none,
    hidden, // begins with a dot
    refusedCharacter,
    refusedName, // of a device, for Windows
    spaceAtEdge,
};

struct Finding {
    Obstacle obstacle = Obstacle::none;
    std::optional<FileStatus> former = {}; // of what would be replaced; a link's own
    Oddity oddity = Oddity::none;
    char refused = 0; // the first refused character
};

// Of the file FOLDER/STEM.EXTENSION; the extension begins with its dot.
[[nodiscard]] Finding look(
    const std::filesystem::path& folder, const std::string& stem, std::string_view extension);

// The first of "STEM 2", "STEM 3" … with whose name and the extension there is nothing yet.
[[nodiscard]] std::string nextFreeStem(
    const std::filesystem::path& folder, const std::string& stem, std::string_view extension);

} // namespace SaveCheck
