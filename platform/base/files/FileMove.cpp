#include "platform/base/files/FileMove.h"

#include "platform/base/files/FileAttributes.h"
#include "platform/base/files/FileCopy.h"
#include "system/FileDescriptor.h"
#include "system/FileName.h"
#include "system/LastError.h"
#include "system/PartFile.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

using FileName::Existing;

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
    const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
    const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        ::fsync(opened.number());
}

std::error_code moveAcrossFileSystems(
    const fs::path& from, const fs::path& to, const std::stop_token& stop)
{
    const FileDescriptor source(::open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!source)
        return lastError();
    PartFile part(to.native(), S_IRUSR | S_IWUSR);
    if (!part)
        return part.failure();
    if (const auto failure = FileCopy::copyContents(source.number(), part.descriptor(), stop))
        return failure;
    // Without them the file is still whole, and its old path soon gone.
    (void)FileAttributes::copy(source.number(), part.descriptor());
    if (const auto failure = part.commitDurably(Existing::keep))
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
    const auto failure = FileName::rename(AT_FDCWD, from, to, Existing::keep);
    if (failure == std::errc::cross_device_link && isFile(from))
        return moveAcrossFileSystems(from, to, stop);
    if (!failure)
        flushFolderOf(to);
    return failure;
}
