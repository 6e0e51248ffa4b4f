#include "platform/base/files/FileMove.h"

#include "platform/base/files/FileCopy.h"
#include "system/FileDescriptor.h"
#include "system/PathString.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

std::error_code result(int ofCall)
{
    return ofCall == 0 ? std::error_code() : lastError();
}

fs::path folderOf(const fs::path& path)
{
    const std::string folder = PathString::stringByDeletingLastPathComponent(path.native());
    return folder.empty() ? "." : folder;
}

// What cannot be opened is left to the move to complain about, and what is no file has nothing that
// could be flushed (EINVAL).
std::error_code flushFile(const fs::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file || ::fsync(file.number()) == 0 || errno == EINVAL)
        return {};
    return lastError();
}

// Without a result: the item already has its name, and "failed" would be the wrong word for it.
void flushFolderOf(const fs::path& path)
{
    const FileDescriptor folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        ::fsync(folder.number());
}

// For file systems without hard links (FAT): the name is taken by an empty file, which the item
// then replaces.
std::error_code renameOverReservation(const fs::path& from, const fs::path& to)
{
    const FileDescriptor reservation(
        ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!reservation)
        return lastError();
    const auto failure = result(::rename(from.c_str(), to.c_str()));
    if (failure)
        ::unlink(to.c_str());
    return failure;
}

std::error_code renameWithoutReplacing(const fs::path& from, const fs::path& to)
{
    const auto renamed
        = result(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
    if (renamed != std::errc::invalid_argument && renamed != std::errc::function_not_supported)
        return renamed;

    // A file system or kernel that does not know the flag.
    const auto linked = result(::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), 0));
    if (linked == std::errc::operation_not_permitted)
        return renameOverReservation(from, to);
    return linked ? linked : result(::unlink(from.c_str()));
}

constexpr std::string_view randomLetters = "XXXXXX";

// What the hidden names for a path begin with.
std::string hiddenPrefixFor(const fs::path& to)
{
    const std::string tail = ".part-";
    const long limit = ::pathconf(folderOf(to).c_str(), _PC_NAME_MAX);
    const auto longest = static_cast<std::size_t>(limit > 0 ? limit : 255);
    return ("." + PathString::lastPathComponent(to.native()))
               .substr(0, longest - tail.size() - randomLetters.size())
        + tail;
}

// Removes what a process that was killed has left on the way to the same name: nobody holds a lock
// on it.
void removeAbandoned(const fs::path& to)
{
    const std::string prefix = hiddenPrefixFor(to);
    std::error_code unreadable; // then there is nothing to tidy up
    for (fs::directory_iterator entry(folderOf(to), unreadable);
         !unreadable && entry != fs::directory_iterator(); entry.increment(unreadable)) {
        const std::string name = entry->path().filename().native();
        if (!name.starts_with(prefix) || name.size() != prefix.size() + randomLetters.size())
            continue;
        const FileDescriptor file(
            ::open(entry->path().c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file && ::flock(file.number(), LOCK_EX | LOCK_NB) == 0)
            ::unlink(entry->path().c_str());
    }
}

// A hidden file beside the path that it is to have, locked; removed unless it gets it.
class PartFile
{
public:
    explicit PartFile(const fs::path& to)
        : _path(folderOf(to) / hiddenPrefixFor(to).append(randomLetters))
        , _descriptor(::mkostemp(_path.data(), O_CLOEXEC)) // exclusive and 0600
    {
        if (_descriptor)
            ::flock(_descriptor.number(), LOCK_EX | LOCK_NB);
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    ~PartFile()
    {
        if (_descriptor)
            ::unlink(_path.c_str()); // after the renaming there is nothing there
    }

    [[nodiscard]] int descriptor() const { return _descriptor.number(); }
    [[nodiscard]] const std::string& path() const { return _path; }

private:
    std::string _path;
    FileDescriptor _descriptor;
};

std::error_code moveAcrossFileSystems(
    const fs::path& from, const fs::path& to, const std::stop_token& stop)
{
    const FileDescriptor source(::open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!source)
        return lastError();
    removeAbandoned(to);
    const PartFile part(to);
    if (part.descriptor() < 0)
        return lastError();
    if (const auto failure = FileCopy::copyContents(source.number(), part.descriptor(), stop))
        return failure;
    if (const auto failure = FileCopy::copyAttributes(source.number(), part.descriptor()))
        return failure;
    if (const auto failure = result(::fsync(part.descriptor())))
        return failure;
    if (const auto failure = renameWithoutReplacing(part.path(), to))
        return failure;
    ::unlink(from.c_str()); // should the source stay, the move was still made
    return {};
}

bool isFile(const fs::path& path)
{
    std::error_code missing;
    return fs::symlink_status(path, missing).type() == fs::file_type::regular;
}

} // namespace

std::error_code FileMove::moveItem(
    const fs::path& from, const fs::path& to, const std::stop_token& stop)
{
    if (const auto failure = flushFile(from))
        return failure;
    auto failure = renameWithoutReplacing(from, to);
    if (failure == std::errc::cross_device_link && isFile(from))
        failure = moveAcrossFileSystems(from, to, stop);
    if (!failure)
        flushFolderOf(to);
    return failure;
}
