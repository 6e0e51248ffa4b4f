// Moves that never overwrite and leave nothing half done.
#pragma once

#include <filesystem>
#include <stop_token>
#include <system_error>

namespace FileMove
{

// Gives a file, link or folder a new path, which must be free (else EEXIST). The file is flushed to
// the disk before it gets its name, the folder after it. To another file system it is copied under
// a hidden name beside the new path, which it gets when it is complete; folders are not (EXDEV).
// Only that copy can be asked to stop (ECANCELED).
[[nodiscard]] std::error_code moveItem(const std::filesystem::path& from,
    const std::filesystem::path& to, const std::stop_token& stop = {});

} // namespace FileMove
