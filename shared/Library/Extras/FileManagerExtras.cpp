#include "shared/Library/Extras/FileManagerExtras.h"

#include "platform/base/files/FileCopy.h"
#include "platform/base/files/FileTree.h"
#include "platform/base/files/TreeWalk.h"
#include "platform/desktop/services/UriList.h"
#include "system/FileStatus.h"
#include "system/PathString.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;

namespace
{

constexpr const char* extensionHiddenAttribute = "user.org.parcelo.extension-hidden";

bool somethingExists(const fs::path& path)
{
    std::error_code unreachable;
    return fs::exists(path, unreachable);
}

void store(std::error_code* error, std::error_code failure)
{
    if (error != nullptr)
        *error = failure;
}

// The first of "BEFORE 2AFTER", "BEFORE 3AFTER" … at which nothing exists.
fs::path firstFreePath(const std::string& before, const std::string& after)
{
    for (int number = 2;; ++number) {
        std::string candidate = before;
        candidate.append(" ").append(std::to_string(number)).append(after);
        if (!somethingExists(candidate))
            return candidate;
    }
}

bool isInside(const fs::path& path, const fs::path& folder)
{
    std::error_code missing;
    const fs::path inner = fs::weakly_canonical(path, missing);
    const fs::path outer = fs::weakly_canonical(folder, missing);
    return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first
        == outer.end();
}

// Qt decodes names as UTF-8, which not all are; escaped bytes stay what they are.
std::optional<QUrl> firstURL(SearchPaths::Directory directory)
{
    const auto found = SearchPaths::directories(directory, SearchPaths::DomainMask::user);
    if (found.empty())
        return std::nullopt;
    return QUrl::fromEncoded(
        QByteArray::fromStdString(UriList::fileUri(found.front())), QUrl::StrictMode);
}

bool setExtensionHidden(const fs::path& path, const char* value)
{
    return ::setxattr(path.c_str(), extensionHiddenAttribute, value, 1, 0) == 0;
}

// Of the path itself, if it leads to something.
std::optional<struct statx> attributesOfItem(const fs::path& path)
{
    struct statx attributes = {};
    constexpr unsigned wanted = STATX_MTIME | STATX_BTIME;
    if (!somethingExists(path)
        || ::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, wanted, &attributes) != 0)
        return std::nullopt;
    return attributes;
}

QDateTime dateOf(const statx_timestamp& time)
{
    return QDateTime::fromMSecsSinceEpoch(time.tv_sec * 1000 + time.tv_nsec / 1000000);
}

using Identity = std::pair<dev_t, ino_t>;

Identity identityOf(int folder)
{
    FileStatus status{};
    return ::fstat(folder, &status) == 0 ? Identity(status.st_dev, status.st_ino) : Identity();
}

// `above` are the folders that this one was reached through. Its path may end in a link.
std::int64_t sizeOfFolder(const fs::path& folder, std::multiset<Identity> above)
{
    std::int64_t sum = 0;
    const auto enter = [&](const TreeWalk::Cursor& at) {
        TreeWalk::Names folders;
        const bool isMetAgain = above.contains(identityOf(at.folder()));
        above.insert(identityOf(at.folder()));
        if (isMetAgain)
            return folders;
        (void)TreeWalk::forEachEntry(at.folder(), [&](const std::string& name, unsigned char kind) {
            FileStatus status{};
            if (kind == DT_DIR)
                folders.push_back(name);
            else if (kind == DT_LNK && ::fstatat(at.folder(), name.c_str(), &status, 0) == 0
                && S_ISDIR(status.st_mode))
                sum += sizeOfFolder(
                    fs::path("/proc/self/fd") / std::to_string(at.folder()) / name, above);
            else if (::fstatat(at.folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
                sum += status.st_size;
        });
        return folders;
    };
    const auto leave = [&](const TreeWalk::Cursor& at) { above.extract(identityOf(at.folder())); };
    // With the dot the link is followed. Where the walk breaks off, there is nothing to be read.
    (void)TreeWalk::walk(
        folder / ".", {.enter = enter, .leave = leave}, TreeWalk::Permissions::respected);
    return sum;
}

} // namespace

std::optional<fs::path> FileManagerExtras::findOrCreateDirectory(SearchPaths::Directory directory,
    SearchPaths::DomainMask inDomain, const std::optional<std::string>& appendPathComponent,
    std::error_code* error)
{
    store(error, {});
    const auto found = SearchPaths::directories(directory, inDomain);
    if (found.empty())
        return std::nullopt;
    fs::path path = found.front();
    if (appendPathComponent)
        path = PathString::stringByAppendingPathComponent(path.native(), *appendPathComponent);

    if (isDirectory(path))
        return path;
    std::error_code failure = somethingExists(path) ? FileTree::remove(path) : std::error_code();
    if (!failure)
        fs::create_directories(path, failure);
    store(error, failure);
    return failure ? std::nullopt : std::optional(path);
}

bool FileManagerExtras::isDirectory(const fs::path& path)
{
    std::error_code unreachable;
    return fs::is_directory(path, unreachable);
}

fs::path FileManagerExtras::resolveSymbolicLinkAtPath(const fs::path& path)
{
    fs::path current = path;
    std::set<fs::path> passed;
    std::error_code noLink;
    while (passed.insert(current).second) {
        fs::path next = fs::read_symlink(current, noLink);
        if (noLink)
            break;
        current = std::move(next);
    }
    if (current.is_absolute())
        return current;
    return PathString::stringByAppendingPathComponent(
        PathString::stringByDeletingLastPathComponent(path.native()), current.native());
}

fs::path FileManagerExtras::firstNonExistPathForPath(const fs::path& path)
{
    const std::string expanded = PathString::stringByExpandingTildeInPath(path.native());
    if (!somethingExists(expanded))
        return expanded;
    return firstFreePath(
        PathString::stringByDeletingPathExtension(expanded), PathString::dottedExtension(expanded));
}

std::optional<fs::path> FileManagerExtras::firstExistDirectoryForPath(const fs::path& path)
{
    if (path.empty())
        return std::nullopt;
    if (isDirectory(path))
        return path;
    return firstExistDirectoryForPath(PathString::stringByDeletingLastPathComponent(path.native()));
}

bool FileManagerExtras::copyPath(
    const fs::path& path, const fs::path& toPath, bool appendNumber, fs::path* finalPath)
{
    const fs::path destination
        = appendNumber && somethingExists(toPath) ? firstFreePath(toPath.native(), {}) : toPath;
    if (finalPath != nullptr)
        *finalPath = destination;
    std::error_code missing;
    const bool isFolder = fs::is_directory(fs::symlink_status(path, missing));
    // A link that leads nowhere is nothing to be numbered, but it is somebody's.
    if (fs::exists(fs::symlink_status(destination, missing))
        || (isFolder && isInside(destination, path)))
        return false;
    bool isOurs = true;
    bool isCopied = true; // also where the place cannot hold all of the attributes
    const auto note = [&](const fs::path& item, std::error_code reason) {
        if (item == path && reason == std::errc::file_exists)
            isOurs = false; // somebody was quicker
        isCopied = isCopied && reason == FileCopy::attributesLost();
    };
    (void)FileCopy::copyItem(path, destination, {.onFailure = note});
    if (!isCopied && isOurs)
        (void)FileTree::remove(destination, FileTree::Permissions::overridden); // half a copy
    return isCopied;
}

bool FileManagerExtras::removeEmptyFolderAtPath(const fs::path& path)
{
    std::error_code failure;
    if (!isDirectory(path) || fs::directory_iterator(path, failure) != fs::directory_iterator())
        return false;
    return fs::remove(path, failure); // not with what came in meanwhile
}

bool FileManagerExtras::removeItemIfExistsAtPath(const fs::path& path, std::error_code* error)
{
    if (!somethingExists(path))
        return true;
    if (isDirectory(path))
        return false;
    const std::error_code failure = FileTree::remove(path);
    if (failure)
        store(error, failure);
    return !failure;
}

std::optional<QUrl> FileManagerExtras::desktopDirectoryURL()
{
    return firstURL(SearchPaths::Directory::desktop);
}

std::optional<QUrl> FileManagerExtras::applicationSupportDirectoryURL()
{
    return firstURL(SearchPaths::Directory::applicationSupport);
}

bool FileManagerExtras::hideFileExtensionAtPath(const fs::path& path)
{
    return setExtensionHidden(path, "1");
}

bool FileManagerExtras::unhideFileExtensionAtPath(const fs::path& path)
{
    return setExtensionHidden(path, "0");
}

std::optional<QDateTime> FileManagerExtras::modificationDateOfItemAtPath(const fs::path& path)
{
    const auto attributes = attributesOfItem(path);
    return attributes ? std::optional(dateOf(attributes->stx_mtime)) : std::nullopt;
}

std::optional<QDateTime> FileManagerExtras::creationDateOfItemAtPath(const fs::path& path)
{
    const auto attributes = attributesOfItem(path);
    if (!attributes)
        return std::nullopt;
    const bool isRecorded = (attributes->stx_mask & STATX_BTIME) != 0;
    return dateOf(isRecorded ? attributes->stx_btime : attributes->stx_mtime);
}

std::int64_t FileManagerExtras::fileSizeAtPath(const fs::path& path)
{
    if (isDirectory(path))
        return sizeOfFolder(path, {});
    FileStatus status{};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_size : 0;
}

std::int64_t FileManagerExtras::fileSizeAtPaths(const std::vector<fs::path>& paths)
{
    return std::transform_reduce(
        paths.begin(), paths.end(), std::int64_t{0}, std::plus(), fileSizeAtPath);
}
