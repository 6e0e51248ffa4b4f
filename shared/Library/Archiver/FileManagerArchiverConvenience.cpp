#include "shared/Library/Archiver/FileManagerArchiverConvenience.h"

#include "platform/base/files/FileTree.h"

#include <cstdint>

bool FileManagerArchiverConvenience::removeItemAtPath(const std::filesystem::path& path)
{
    std::error_code missing;
    return std::filesystem::exists(path, missing) && !FileTree::remove(path);
}

int FileManagerArchiverConvenience::numberOfFilesAtPath(
    const std::filesystem::path& path, const std::stop_token& stop)
{
    return static_cast<std::int32_t>(FileTree::countEntries(path, stop) + 1);
}

int FileManagerArchiverConvenience::numberOfFilesAtPaths(
    const std::vector<std::filesystem::path>& paths, const std::stop_token& stop)
{
    std::uint32_t sum = 0; // wraps as 32 bits do, where int must not
    for (const auto& path : paths)
        sum += static_cast<std::uint32_t>(numberOfFilesAtPath(path, stop));
    return static_cast<std::int32_t>(sum);
}
