// A tree of files as it is at one moment, to be compared with what an archive brings back.
#pragma once

#include <filesystem>
#include <map>
#include <vector>

namespace support
{

struct TreeEntry {
    char kind = '?'; // 'f' file, 'd' folder, 'l' link, 'p' pipe, '?' anything else
    mode_t mode = 0; // the twelve permission bits
    std::int64_t time = 0; // seconds
    std::string content = {}; // of a file its hash, of a link where it leads
};

// Everything below a folder by its path in it. Made by descriptors, so any depth will do.
using TreeSnapshot = std::map<std::string, TreeEntry>;
TreeSnapshot snapshot(const std::filesystem::path& folder);

// What a program is known not to bring back.
struct Tolerance {
    mode_t modeMask = 07777;
    std::int64_t seconds = 0; // by how much times may differ
};

// One readable line per difference; none when the trees are equal.
std::vector<std::string> differences(
    const TreeSnapshot& expected, const TreeSnapshot& actual, const Tolerance& tolerance = {});

} // namespace support
