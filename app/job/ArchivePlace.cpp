#include "app/job/ArchivePlace.h"

#include "system/FileName.h"
#include "system/FileStatus.h"
#include "system/LastError.h"

#include <cstdio>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// The contents alone: that costs nothing where the tool has seen to it, while all of a file that
// was renamed since would be one more turn of the disk.
std::error_code flushContents(const std::filesystem::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    return file ? errorOf(retryOnInterrupt([&] { return ::fdatasync(file.number()); }))
                : lastError();
}

// Without a result: the archive has its name already, and "failed" would be the wrong word for it.
void flushFolder(const std::filesystem::path& path)
{
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        ::fsync(folder.number());
}

std::error_code swap(const std::filesystem::path& one, const std::filesystem::path& other)
{
    return errorOf(::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE));
}

} // namespace

ArchivePlace::ArchivePlace(Path path)
    : _path(std::move(path))
    , _former(::open(_path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC))
{
}

bool ArchivePlace::isTakenByFolder() const
{
    FileStatus status{};
    return _former && ::fstat(_former.number(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool ArchivePlace::_isFormer(const Path& path) const
{
    FileStatus former{};
    FileStatus now{};
    return ::fstat(_former.number(), &former) == 0 && ::lstat(path.c_str(), &now) == 0
        && isSameFile(former, now);
}

std::error_code ArchivePlace::put(const Path& made)
{
    if (const auto failure = flushContents(made))
        return failure;
    std::error_code failure = _former ? _exchange(made) : _takeFreeName(made);
    if (!failure)
        flushFolder(_path.parent_path());
    return failure;
}

// Looking first and renaming then would leave a moment in between.
std::error_code ArchivePlace::_exchange(const Path& made)
{
    const auto failure = swap(made, _path);
    if (!failure && _isFormer(made))
        return {};
    if (!failure) // it was another file by now: back with it
        if (const auto stuck = swap(made, _path))
            return stuck;
    const bool canSwap
        = failure != std::errc::invalid_argument && failure != std::errc::function_not_supported;
    if (!canSwap && _isFormer(_path))
        return errorOf(::rename(made.c_str(), _path.c_str()));
    if (failure && canSwap && failure != std::errc::no_such_file_or_directory)
        return failure;
    return _takeFreeName(made);
}

std::error_code ArchivePlace::_takeFreeName(const Path& made)
{
    std::error_code failure;
    const std::string wanted = _path.filename();
    const auto take = [&](const std::string& name) {
        _path.replace_filename(name);
        failure = FileName::rename(AT_FDCWD, made, _path, FileName::Existing::keep);
        return failure == std::errc::file_exists;
    };
    if (take(wanted))
        (void)FileName::nextFree(wanted, false, take);
    return failure;
}
