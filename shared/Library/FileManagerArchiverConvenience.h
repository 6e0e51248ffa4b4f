#pragma once

#include <filesystem>
#include <vector>

// What the engine asks of the file system.
namespace FileManagerArchiverConvenience
{

// Removes a file, or a folder with all that is in it. False when that fails, and when nothing is
// there: a link counts as what it leads to, so one that leads nowhere is nothing, and stays.
bool removeItemAtPath(const std::filesystem::path& path);

// The path itself and, for a folder, all that is below it; links are not followed.
[[nodiscard]] int numberOfFilesAtPath(const std::filesystem::path& path);

[[nodiscard]] int numberOfFilesAtPaths(const std::vector<std::filesystem::path>& paths);

} // namespace FileManagerArchiverConvenience
