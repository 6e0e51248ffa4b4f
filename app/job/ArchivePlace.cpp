#include "app/job/ArchivePlace.h"

#include "system/FileName.h"
#include "system/FileStatus.h"
#include "system/LastError.h"

#include <cstdio>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// The contents alone: that costs nothing where the tool has seen to it, while all of a file that
// was renamed since would be one more turn of the disk.
std::error_code flushContents(const std::filesystem::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file)
        return {}; // what may not be read is left to the renaming to complain about
    const auto failure = errorOf(retryOnInterrupt([&] { return ::fdatasync(file.number()); }));
    return failure == std::errc::invalid_argument ? std::error_code() : failure;
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

ArchivePlace::ArchivePlace(Path path, std::string_view extension, bool mayReplace)
    : _path(std::move(path))
    , _extension(extension)
    , _former(mayReplace ? ::open(_path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC) : -1)
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

// An archive that only some may read is not opened to all by being made anew. Where the permissions
// cannot be set, those that the tool gave have to do.
void ArchivePlace::_keepPermissions(const Path& made) const
{
    FileStatus former{};
    if (_former && ::fstat(_former.number(), &former) == 0 && S_ISREG(former.st_mode))
        ::chmod(made.c_str(), former.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO));
}

std::error_code ArchivePlace::put(const Path& made)
{
    if (const auto failure = flushContents(made))
        return failure;
    _keepPermissions(made);
    std::error_code failure = _former ? _exchange(made) : _takeFreeName(made, _path);
    if (!failure)
        flushFolder(_path.parent_path());
    return failure;
}

// A file that came while the archive was made is left where it is, so that nothing that may happen
// to this process harms it. Looking first and renaming then would still leave a moment in between.
std::error_code ArchivePlace::_exchange(const Path& made)
{
    if (!_isFormer(_path))
        return _takeFreeName(made, _path);
    const auto failure = swap(made, _path);
    if (!failure && _isFormer(made))
        return {};
    if (!failure) { // it was another file by now: back with it
        if (swap(made, _path))
            return _keepBoth(made);
        return _takeFreeName(made, _path);
    }
    const bool canSwap = failure != std::errc::invalid_argument
        && failure != std::errc::function_not_supported
        && failure != std::errc::operation_not_supported;
    if (!canSwap)
        return errorOf(::rename(made.c_str(), _path.c_str()));
    return failure == std::errc::no_such_file_or_directory ? _takeFreeName(made, _path) : failure;
}

// The place has changed once more before the other file was back: it gets a name beside its own,
// and the archive stays where it is, if it still is there.
std::error_code ArchivePlace::_keepBoth(const Path& other)
{
    Path aside = _path;
    if (const auto failure = _takeFreeName(other, aside))
        return failure;
    if (aside == _path)
        return std::make_error_code(std::errc::no_such_file_or_directory);
    _movedAside = aside;
    return {};
}

// The wanted one, or that with the first free number before its extension.
std::error_code ArchivePlace::_takeFreeName(const Path& file, Path& path)
{
    std::error_code failure;
    const auto take = [&](const std::string& name) {
        path.replace_filename(name);
        failure = FileName::rename(AT_FDCWD, file, path, FileName::Existing::keep);
        return failure == std::errc::file_exists;
    };
    std::string stem = path.filename();
    if (!take(stem))
        return failure;
    const bool hasExtension = !_extension.empty() && stem.ends_with(_extension);
    if (hasExtension)
        stem.resize(stem.size() - _extension.size());
    (void)FileName::nextFree(stem, hasExtension,
        [&](const std::string& name) { return take(hasExtension ? name + _extension : name); });
    return failure;
}
