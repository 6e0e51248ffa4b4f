// Whole folder trees of any depth, links never followed.
#pragma once

#include "platform/base/files/TreeWalk.h"

#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <system_error>

namespace FileTree
{

using TreeWalk::Permissions;

// All that is below a folder. 0 for what is not a folder or cannot be read; a folder below that
// cannot be read counts as one. Asked to stop, it gives what it has counted.
[[nodiscard]] std::uint64_t countEntries(
    const std::filesystem::path& top, const std::stop_token& stop = {});

// Removes a file, a link or a folder with all that is in it. Goes on after a failure and gives the
// first one.
[[nodiscard]] std::error_code remove(
    const std::filesystem::path& top, Permissions permissions = Permissions::respected);

} // namespace FileTree
