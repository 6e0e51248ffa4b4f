#include "platform/base/files/FileCopy.h"

#include "platform/base/files/TreeWalk.h"
#include "system/FileBytes.h"
#include "system/FileDescriptor.h"
#include "system/FileStatus.h"
#include "system/LastError.h"
#include "system/ScratchName.h"

#include <algorithm>
#include <array>
#include <climits>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/xattr.h>

namespace fs = std::filesystem;

namespace
{

using TreeWalk::Cursor;
using TreeWalk::Names;

constexpr std::size_t bufferSize = 262144; // large enough that the calls cost nothing
constexpr std::size_t kernelCopySize = 16777216; // small enough to stop soon on a slow disk

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

// A name and the open folder that it is in, as the ...at calls take them.
struct Place {
    int folder;
    const std::string& name;
};

std::error_code copyFile(const Place& from, const Place& to, const std::stop_token& stop)
{
    const FileDescriptor source(
        ::openat(from.folder, from.name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!source)
        return lastError();
    const FileDescriptor target(::openat(
        to.folder, to.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!target)
        return lastError();
    if (const auto failure = FileCopy::copyContents(source.number(), target.number(), stop))
        return failure;
    return FileCopy::copyAttributes(source.number(), target.number());
}

std::error_code copyLink(const Place& from, const Place& to)
{
    std::array<char, PATH_MAX> goal{}; // no link holds more, nor as much
    FileStatus status{};
    if (::readlinkat(from.folder, from.name.c_str(), goal.data(), goal.size() - 1) < 0
        || ::fstatat(from.folder, from.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0
        || ::symlinkat(goal.data(), to.folder, to.name.c_str()) != 0)
        return lastError();
    const std::array<timespec, 2> times{status.st_atim, status.st_mtim};
    ::utimensat(to.folder, to.name.c_str(), times.data(), AT_SYMLINK_NOFOLLOW);
    return {};
}

// A folder is made without its contents or attributes: those come when it is filled.
std::error_code copyOne(
    const Place& from, const Place& to, unsigned char kind, const std::stop_token& stop)
{
    switch (kind) {
    case DT_REG:
        return copyFile(from, to, stop);
    case DT_LNK:
        return copyLink(from, to);
    case DT_DIR:
        return errorOf(::mkdirat(to.folder, to.name.c_str(), S_IRWXU));
    default:
        return std::make_error_code(std::errc::operation_not_supported);
    }
}

using Identity = std::pair<dev_t, ino_t>;

// Of a folder; of nothing, one that no folder has.
Identity identityOf(const Place& place)
{
    FileStatus status{};
    const bool isThere
        = ::fstatat(place.folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    return isThere && S_ISDIR(status.st_mode) ? Identity(status.st_dev, status.st_ino) : Identity();
}

// Copies one item with all that is in it. A second cursor follows the walk on the side of the copy,
// and where it could not, nothing is copied.
class ItemCopy
{
public:
    ItemCopy(const fs::path& from, const fs::path& to, const FileCopy::Options& options)
        : _from(from)
        , _to(to)
        , _options(options)
    {
    }

    std::error_code run();

private:
    void _copyFolder();
    Names _enter(const Cursor& from);
    bool _copyEntry(const Cursor& from, const std::string& name, unsigned char kind);
    void _leave(const Cursor& from);
    void _note(const fs::path& item, std::error_code reason);

    const fs::path& _from;
    const fs::path& _to;
    const FileCopy::Options& _options;
    std::array<Identity, 2> _leftOut;
    Cursor _target;
    std::error_code _failure; // the first
};

std::error_code ItemCopy::run()
{
    const Place from{AT_FDCWD, _from.native()};
    const Place to{AT_FDCWD, _to.native()};
    FileStatus status{};
    const auto missing = errorOf(::lstat(_from.c_str(), &status));
    const unsigned char kind = IFTODT(status.st_mode);
    _note(_from, missing ? missing : copyOne(from, to, kind, _options.stop));
    if (kind == DT_DIR && !_failure)
        _copyFolder();
    return _failure;
}

void ItemCopy::_copyFolder()
{
    _leftOut = {
        identityOf({AT_FDCWD, _to.native()}), identityOf({AT_FDCWD, _options.leavingOut.native()})};
    const TreeWalk::Visitor visitor{.enter = [&](const Cursor& from) { return _enter(from); },
        .leave = [&](const Cursor& from) { _leave(from); },
        .done =
            [&](const Cursor& above, const std::string& name, std::error_code reason) {
                if (reason)
                    _note(above.path() / name, reason);
            }};
    _note(_from, TreeWalk::walk(_from, visitor, TreeWalk::Permissions::respected));
    if (_options.stop.stop_requested())
        _note(_from, std::make_error_code(std::errc::operation_canceled));
}

Names ItemCopy::_enter(const Cursor& from)
{
    if (_options.stop.stop_requested() || _target.depth() + 1 != from.depth())
        return {};
    if (const auto failure = _target.enter(from.depth() == 1 ? _to.native() : from.name())) {
        _note(from.path(), failure);
        return {};
    }
    Names folders;
    const auto failure
        = TreeWalk::forEachEntry(from.folder(), [&](const std::string& name, unsigned char kind) {
              if (_copyEntry(from, name, kind) && kind == DT_DIR)
                  folders.push_back(name);
          });
    if (failure)
        _note(from.path(), failure);
    return folders;
}

bool ItemCopy::_copyEntry(const Cursor& from, const std::string& name, unsigned char kind)
{
    const Place source{from.folder(), name};
    const bool isLeftOut = kind == DT_DIR
        && (std::ranges::count(_leftOut, identityOf(source)) > 0
            || ScratchName::isInUse(source.folder, source.name));
    if (isLeftOut || _options.stop.stop_requested())
        return false;
    const auto failure = copyOne(source, {_target.folder(), name}, kind, _options.stop);
    if (failure)
        _note(from.path() / name, failure);
    return !failure;
}

// Only now, for filling a folder changes its times.
void ItemCopy::_leave(const Cursor& from)
{
    if (_target.depth() != from.depth())
        return;
    if (const auto failure = FileCopy::copyAttributes(from.folder(), _target.folder()))
        _note(from.path(), failure);
    if (const auto failure = _target.leave())
        _note(from.path(), failure);
}

void ItemCopy::_note(const fs::path& item, std::error_code reason)
{
    if (reason && _options.onFailure)
        _options.onFailure(item, reason);
    if (!_failure)
        _failure = reason;
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
            return errorOf(count);
        if (!FileBytes::writeAll(to, {buffer.data(), static_cast<std::size_t>(count)}))
            return lastError();
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
    return ItemCopy(from, to, options).run();
}
