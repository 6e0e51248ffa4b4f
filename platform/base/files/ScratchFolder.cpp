#include "platform/base/files/ScratchFolder.h"

#include "platform/base/files/FileTree.h"
#include "platform/base/files/SearchPaths.h"
#include "system/FileStatus.h"
#include "system/LastError.h"
#include "system/ScratchName.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>

namespace fs = std::filesystem;

namespace
{

constexpr std::string_view randomLetters = "XXXXXX";

FileDescriptor openFolder(const fs::path& path)
{
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool lock(const FileDescriptor& folder)
{
    return ::flock(folder.number(), LOCK_EX | LOCK_NB) == 0;
}

bool isOurs(const FileDescriptor& folder)
{
    FileStatus status{};
    return ::fstat(folder.number(), &status) == 0 && status.st_uid == ::geteuid();
}

// As we make them, and as hardly anybody makes a folder of the same name. The set-group-ID bit
// comes from the folder that it is in.
bool isPrivate(const FileDescriptor& folder)
{
    FileStatus status{};
    return ::fstat(folder.number(), &status) == 0 && status.st_uid == ::geteuid()
        && (status.st_mode & 07777 & ~S_ISGID) == S_IRWXU;
}

// Whether another folder, or none, is under the path of the locked one.
bool isGone(const fs::path& path, const FileDescriptor& locked)
{
    FileStatus there{};
    FileStatus ours{};
    if (::lstat(path.c_str(), &there) != 0)
        return errno == ENOENT;
    return ::fstat(locked.number(), &ours) == 0 && !isSameFile(there, ours);
}

// Those that are called like ours and that nobody holds.
void removeStale(const fs::path& parent, bool (*isOne)(std::string_view name))
{
    std::error_code unreadable; // then there is nothing to tidy up
    fs::directory_iterator entry(parent, unreadable);
    while (!unreadable && entry != fs::directory_iterator()) {
        const fs::path path = entry->path();
        entry.increment(unreadable);
        if (!isOne(path.filename().native()))
            continue;
        const FileDescriptor folder = openFolder(path);
        if (folder && isPrivate(folder) && lock(folder))
            (void)FileTree::remove(path, FileTree::Permissions::overridden);
    }
}

} // namespace

ScratchFolder::ScratchFolder()
{
    _make(SearchPaths::temporaryDirectory(), "", ScratchName::isTemporary);
}

ScratchFolder::ScratchFolder(const fs::path& inFolder)
{
    _make(inFolder, ".", ScratchName::isPrivate);
}

void ScratchFolder::_make(
    const fs::path& parent, const std::string& beginning, bool (*isOne)(std::string_view))
{
    removeStale(parent, isOne);

    // Between the making and the locking another process may take the folder for a stale one and
    // remove it: then a new one is made. Where nothing can be locked, nothing is removed either.
    do {
        std::string name = parent / beginning;
        name += ScratchName::prefix;
        name += "-" + std::to_string(::getpid()) + "-";
        name += randomLetters;
        const bool made = ::mkdtemp(name.data()) != nullptr;
        _lock = made ? openFolder(name) : FileDescriptor();
        if (const int reason = errno; made && !_lock) {
            ::rmdir(name.c_str());
            errno = reason;
        }
        if (!_lock && (!made || errno != ENOENT))
            throw ScratchFolderFailure(
                lastError(), "cannot make a working folder in " + parent.native());
        _path = name;
    } while (!_lock || (!lock(_lock) && errno == EWOULDBLOCK) || isGone(_path, _lock));
}

void ScratchFolder::removeStaleFolders(const fs::path& parent)
{
    removeStale(parent, ScratchName::isTemporary);
}

FileDescriptor ScratchFolder::hold(const fs::path& folder)
{
    FileDescriptor held = openFolder(folder);
    if (held && (!isOurs(held) || !lock(held) || isGone(folder, held)))
        held = FileDescriptor();
    return held;
}

void ScratchFolder::empty(const fs::path& folder)
{
    std::error_code unreadable; // then its next user meets that, too
    fs::directory_iterator entry(folder, unreadable);
    while (!unreadable && entry != fs::directory_iterator()) {
        const fs::path path = entry->path();
        entry.increment(unreadable);
        (void)FileTree::remove(path, FileTree::Permissions::overridden);
    }
}

ScratchFolder::~ScratchFolder()
{
    (void)FileTree::remove(_path, FileTree::Permissions::overridden);
}
