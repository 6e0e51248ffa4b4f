// Whole folder trees, walked by descriptor and without recursion: neither the depth nor the length
// of a path is limited, and links are never followed. Paths that cannot be opened in one piece can
// therefore be below the top, but not be the top.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <system_error>

namespace FileTree
{

// All that is below a folder. 0 for what is not a folder or cannot be read; a folder below that
// cannot be read counts as one. Asked to stop, it gives what it has counted.
[[nodiscard]] std::uint64_t countEntries(
    const std::filesystem::path& top, const std::stop_token& stop = {});

enum class Permissions {
    respected,
    overridden, // folders that deny their owner something are opened up first
};

// Removes a file, a link or a folder with all that is in it. Goes on after a failure and gives the
// first one.
[[nodiscard]] std::error_code remove(
    const std::filesystem::path& top, Permissions permissions = Permissions::respected);

} // namespace FileTree
