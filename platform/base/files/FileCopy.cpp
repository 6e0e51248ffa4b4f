#include "platform/base/files/FileCopy.h"

#include "system/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;

namespace
{

using FileStatus = struct stat; // a name of its own, beside the function

constexpr std::size_t bufferSize = 262144; // large enough that the calls cost nothing
constexpr std::size_t kernelCopySize = 16777216; // small enough to stop soon on a slow disk

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

std::error_code writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written
            = retryOnInterrupt([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written < 0)
            return lastError();
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

// Attributes that the other side does not take are left out: what matters are the contents.
void copyExtendedAttributes(int from, int to)
{
    const ssize_t needed = ::flistxattr(from, nullptr, 0);
    if (needed <= 0)
        return;
    std::string names(static_cast<std::size_t>(needed), '\0');
    std::string value(65536, '\0'); // as long as the kernel lets one be
    const ssize_t size = ::flistxattr(from, names.data(), names.size());
    for (ssize_t offset = 0; offset < size;) {
        const std::string name = names.c_str() + offset;
        const ssize_t length = ::fgetxattr(from, name.c_str(), value.data(), value.size());
        if (length >= 0)
            ::fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(length), 0);
        offset += static_cast<ssize_t>(name.size()) + 1;
    }
}

std::error_code copyFile(const fs::path& from, const fs::path& to, const std::stop_token& stop)
{
    const FileDescriptor source(::open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!source)
        return lastError();
    const FileDescriptor target(
        ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!target)
        return lastError();
    if (const auto failure = FileCopy::copyContents(source.number(), target.number(), stop))
        return failure;
    return FileCopy::copyAttributes(source.number(), target.number());
}

std::error_code copyLink(const fs::path& from, const fs::path& to)
{
    std::error_code failure;
    FileStatus status{};
    fs::copy_symlink(from, to, failure);
    if (failure || ::lstat(from.c_str(), &status) != 0)
        return failure ? failure : lastError();
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    ::utimensat(AT_FDCWD, to.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
    return {};
}

// A folder is made without its contents or attributes: those come when it is filled.
std::error_code copyOne(
    const fs::path& from, const fs::path& to, fs::file_type type, const std::stop_token& stop)
{
    switch (type) {
    case fs::file_type::regular:
        return copyFile(from, to, stop);
    case fs::file_type::symlink:
        return copyLink(from, to);
    case fs::file_type::directory:
        return ::mkdir(to.c_str(), S_IRWXU) == 0 ? std::error_code() : lastError();
    default:
        return std::make_error_code(std::errc::operation_not_supported);
    }
}

using Identity = std::pair<dev_t, ino_t>;

// Of a folder; of nothing, one that no folder has.
Identity identityOf(const fs::path& folder)
{
    FileStatus status{};
    const bool isThere = ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return isThere ? Identity(status.st_dev, status.st_ino) : Identity();
}

std::error_code copyFolderAttributes(const fs::path& from, const fs::path& to)
{
    const FileDescriptor source(::open(from.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const FileDescriptor target(::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!source || !target)
        return lastError();
    return FileCopy::copyAttributes(source.number(), target.number());
}

} // namespace

std::error_code FileCopy::copyContents(int from, int to, const std::stop_token& stop)
{
    // The fast way, until the end or until it fails; why it fails need not be known, since the
    // ordinary way goes on from there and meets every lasting error again.
    while (!stop.stop_requested()
        && ::copy_file_range(from, nullptr, to, nullptr, kernelCopySize, 0) > 0) { }

    std::string buffer(bufferSize, '\0');
    while (!stop.stop_requested()) {
        const ssize_t count
            = retryOnInterrupt([&] { return ::read(from, buffer.data(), buffer.size()); });
        if (count <= 0)
            return count < 0 ? lastError() : std::error_code();
        if (const auto failure = writeAll(to, {buffer.data(), static_cast<std::size_t>(count)}))
            return failure;
    }
    return std::make_error_code(std::errc::operation_canceled);
}

std::error_code FileCopy::copyAttributes(int from, int to)
{
    FileStatus status{};
    if (::fstat(from, &status) != 0)
        return lastError();
    copyExtendedAttributes(from, to);
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    if (::fchmod(to, status.st_mode & 07777) != 0 || ::futimens(to, times.data()) != 0)
        return lastError();
    return {};
}

std::error_code FileCopy::copyItem(const fs::path& from, const fs::path& to, const Options& options)
{
    std::error_code failure;
    const auto note = [&](const fs::path& item, std::error_code result) {
        if (result && options.onFailure)
            options.onFailure(item, result);
        if (result && !failure)
            failure = result;
        return !result;
    };
    std::error_code missing; // is told by copyOne
    const auto type = fs::symlink_status(from, missing).type();
    if (!note(from, copyOne(from, to, type, options.stop)) || type != fs::file_type::directory)
        return failure;

    const Identity leftOut[] = {identityOf(to), identityOf(options.leavingOut)};
    std::vector<std::pair<fs::path, fs::path>> folders{{from, to}};
    std::error_code unreadable;
    constexpr auto iteration = fs::directory_options::skip_permission_denied; // noted further down
    fs::recursive_directory_iterator entry(from, iteration, unreadable);
    while (!unreadable && !options.stop.stop_requested()
        && entry != fs::recursive_directory_iterator()) {
        const fs::path target = to / entry->path().lexically_relative(from);
        const auto kind = entry->symlink_status(unreadable).type();
        const bool isFolder = kind == fs::file_type::directory;
        const bool isLeftOut
            = isFolder && std::ranges::count(leftOut, identityOf(entry->path())) > 0;
        const bool isCopied
            = !isLeftOut && note(entry->path(), copyOne(entry->path(), target, kind, options.stop));
        if (isFolder && isCopied)
            folders.emplace_back(entry->path(), target);
        else
            entry.disable_recursion_pending();
        entry.increment(unreadable);
    }
    note(from,
        options.stop.stop_requested() ? std::make_error_code(std::errc::operation_canceled)
                                      : unreadable);

    // From the inside out, for filling a folder changes its times.
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder)
        note(folder->first, copyFolderAttributes(folder->first, folder->second));
    return failure;
}
