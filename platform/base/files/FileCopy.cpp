#include "platform/base/files/FileCopy.h"

#include "platform/base/files/FileAttributes.h"
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

namespace fs = std::filesystem;

namespace
{

using TreeWalk::Cursor;
using TreeWalk::Names;

constexpr std::size_t bufferSize = 262144; // large enough that the calls cost nothing
constexpr std::size_t kernelCopySize = 16777216; // small enough to stop soon on a slow disk

class ChangeCategory : public std::error_category
{
public:
    [[nodiscard]] const char* name() const noexcept override { return "copy"; }
    [[nodiscard]] std::string message(int /*value*/) const override
    {
        return "changed while it was read";
    }
};

// A name and the open folder that it is in, as the ...at calls take them.
struct Place {
    int folder;
    const std::string& name;
};

// No part of a file may be taken for the whole; one that changed is kept as it was read.
std::error_code copyFile(const Place& from, const Place& to, const std::stop_token& stop)
{
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const FileDescriptor source(::openat(from.folder, from.name.c_str(), flags));
    FileStatus before{};
    if (!source || ::fstat(source.number(), &before) != 0)
        return lastError();
    if (!S_ISREG(before.st_mode)) // any more
        return std::make_error_code(std::errc::operation_not_supported);
    const FileDescriptor target(::openat(
        to.folder, to.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!target)
        return lastError();
    auto failure = FileCopy::copyContents(source.number(), target.number(), stop);
    FileStatus after{};
    if (!failure && (!FileBytes::flush(target.number()) || ::fstat(source.number(), &after) != 0))
        failure = lastError();
    if (failure) {
        ::unlinkat(to.folder, to.name.c_str(), 0);
        return failure;
    }
    failure = FileAttributes::copy(source.number(), target.number());
    return !failure && hasChanged(before, after) ? FileCopy::changedWhileRead() : failure;
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

// A folder is made without its contents or attributes: those come when it is filled. What cannot be
// linked is copied, whatever the reason.
std::error_code copyOne(
    const Place& from, const Place& to, unsigned char kind, const FileCopy::Options& options)
{
    const bool canBeLinked = options.linking && (kind == DT_REG || kind == DT_LNK);
    if (canBeLinked && ::linkat(from.folder, from.name.c_str(), to.folder, to.name.c_str(), 0) == 0)
        return {};
    switch (kind) {
    case DT_REG:
        return copyFile(from, to, options.stop);
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
    _note(_from, missing ? missing : copyOne(from, to, kind, _options));
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
    const auto failure = copyOne(source, {_target.folder(), name}, kind, _options);
    if (failure)
        _note(from.path() / name, failure);
    return !failure;
}

// Only now, for filling a folder changes its times.
void ItemCopy::_leave(const Cursor& from)
{
    if (_target.depth() != from.depth())
        return;
    if (const auto failure = FileAttributes::copy(from.folder(), _target.folder()))
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

std::error_code FileCopy::changedWhileRead()
{
    static const ChangeCategory category;
    return {1, category};
}

std::error_code FileCopy::copyItem(const fs::path& from, const fs::path& to, const Options& options)
{
    return ItemCopy(from, to, options).run();
}
