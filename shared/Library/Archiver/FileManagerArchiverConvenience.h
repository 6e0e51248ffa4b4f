// What the engine asks of the file system.
#pragma once

#include <filesystem>
#include <stop_token>
#include <vector>

namespace FileManagerArchiverConvenience
{

// Removes a file, or a folder with all that is in it. False when that fails, and when nothing is
// there: a link counts as what it leads to, so one that leads nowhere is nothing, and stays.
bool removeItemAtPath(const std::filesystem::path& path);

// The path itself and, for a folder, all that is below it; links are not followed.
// Asked to stop, both give what they have counted.
[[nodiscard]] int numberOfFilesAtPath(
    const std::filesystem::path& path, const std::stop_token& stop = {});

[[nodiscard]] int numberOfFilesAtPaths(
    const std::vector<std::filesystem::path>& paths, const std::stop_token& stop = {});

} // namespace FileManagerArchiverConvenience
