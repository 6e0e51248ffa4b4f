// Conveniences on files and folders. "Something exists" means that a path leads to something: a
// link that leads nowhere counts as nothing. An error is stored only where a failure says so.
#pragma once

#include "platform/base/files/SearchPaths.h"

#include <QDateTime>
#include <QUrl>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace FileManagerExtras
{

// The user's folder of that kind, or the one named inside it, made with all that is missing above
// it. A file that stands in its place is removed for it, which is intended. Nothing when there is
// no such kind of folder, or with an error when the folder cannot be made.
[[nodiscard]] std::optional<std::filesystem::path> findOrCreateDirectory(
    SearchPaths::Directory directory, SearchPaths::DomainMask inDomain,
    const std::optional<std::string>& appendPathComponent, std::error_code* error = nullptr);

// Also for a link to a folder.
[[nodiscard]] bool isDirectory(const std::filesystem::path& path);

// Follows a chain of links to what is no link. A relative outcome is taken from the folder of the
// path first given, whatever folder the last link stands in. A chain that bites its own tail is
// followed once round.
[[nodiscard]] std::filesystem::path resolveSymbolicLinkAtPath(const std::filesystem::path& path);

// The path, with a leading "~" expanded, or the first free one of "Report 2.pdf", "Report 3.pdf" …
[[nodiscard]] std::filesystem::path firstNonExistPathForPath(const std::filesystem::path& path);

// The path or the nearest folder above it; nothing for a relative path without any.
[[nodiscard]] std::optional<std::filesystem::path> firstExistDirectoryForPath(
    const std::filesystem::path& path);

// Copies a file, a link or a folder to a free path and tells it before it starts. With a number
// appended, a path that is taken becomes the first free one of "Report.pdf 2", "Report.pdf 3" …:
// the number follows the whole name, unlike above. False when the path is taken or the copy is not
// complete, and for a folder that would be copied into itself.
bool copyPath(const std::filesystem::path& path, const std::filesystem::path& toPath,
    bool appendNumber, std::filesystem::path* finalPath = nullptr);

// False for anything but a folder, and for one that holds any entry, hidden ones included. Of a
// link to an empty folder the link goes.
bool removeEmptyFolderAtPath(const std::filesystem::path& path);

// True also when nothing is there. Folders are refused, on purpose and without an error.
bool removeItemIfExistsAtPath(const std::filesystem::path& path, std::error_code* error = nullptr);

[[nodiscard]] std::optional<QUrl> desktopDirectoryURL();
[[nodiscard]] std::optional<QUrl> applicationSupportDirectoryURL();

// Notes on the item whether its extension is to be hidden, in the extended attribute
// "user.org.parcelo.extension-hidden" as "1" or "0": no Linux desktop hides extensions, so that
// what is kept is the wish. False where the item or its file system does not take the attribute.
bool hideFileExtensionAtPath(const std::filesystem::path& path);
bool unhideFileExtensionAtPath(const std::filesystem::path& path);

// Of a link to something, the link's own date. On a file system that does not record when a file
// was made, the modification date stands for it.
[[nodiscard]] std::optional<QDateTime> modificationDateOfItemAtPath(
    const std::filesystem::path& path);
[[nodiscard]] std::optional<QDateTime> creationDateOfItemAtPath(const std::filesystem::path& path);

// In bytes. For a folder, or a link to one, the sum of what is in it, the folders themselves not
// counted; for any other link the length of its text. A folder met again inside itself, by way of
// a link, counts nothing, and neither does what cannot be read.
[[nodiscard]] std::int64_t fileSizeAtPath(const std::filesystem::path& path);
[[nodiscard]] std::int64_t fileSizeAtPaths(const std::vector<std::filesystem::path>& paths);

} // namespace FileManagerExtras
