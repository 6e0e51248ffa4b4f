#include "app/job/StagingPlace.h"

#include "system/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{

// Whether a file can have a name in both. Two mounts of one file system do not count as that one.
// Of links, they themselves and not what they lead to: so they are staged.
bool areOnOneFileSystem(const fs::path& one, const fs::path& other)
{
    using Status = struct statx;
    const auto look = [](const fs::path& path, Status& status) {
        return ::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_MNT_ID, &status) == 0;
    };
    Status first{};
    Status second{};
    return look(one, first) && look(other, second) && first.stx_dev_major == second.stx_dev_major
        && first.stx_dev_minor == second.stx_dev_minor && first.stx_mnt_id == second.stx_mnt_id;
}

// Not on FAT and its like, which also cannot hold every name: copies are better made elsewhere.
bool canHoldLinks(const fs::path& folder)
{
    const fs::path file = folder / "a";
    const fs::path another = folder / "b";
    const FileDescriptor made(
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    const bool canHold = made && ::link(file.c_str(), another.c_str()) == 0;
    ::unlink(another.c_str());
    ::unlink(file.c_str());
    return canHold;
}

} // namespace

StagingPlace::StagingPlace(
    const Path& firstItem, const Path& privateFolder, const Path& workingFolder)
    : _path(workingFolder)
{
    const auto isFit = [&](const Path& folder) {
        return areOnOneFileSystem(firstItem, folder) && canHoldLinks(folder);
    };
    if (isFit(privateFolder)) {
        _path = privateFolder;
        return;
    }
    const Path folder = firstItem.parent_path();
    if (!areOnOneFileSystem(firstItem, folder) || areOnOneFileSystem(firstItem, workingFolder))
        return;
    try {
        _beside.emplace(folder);
    } catch (const ScratchFolderFailure&) { // it may not be written to
        return;
    }
    if (isFit(_beside->path()))
        _path = _beside->path();
    else
        _beside.reset();
}
