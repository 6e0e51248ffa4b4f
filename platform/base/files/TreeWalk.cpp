#include "platform/base/files/TreeWalk.h"

#include "system/FileStatus.h"
#include "system/LastError.h"

#include <array>

#include <dirent.h>

namespace
{

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Some file systems do not tell the kind with the name.
unsigned char kindOf(int folder, const dirent64& entry)
{
    FileStatus status{};
    if (entry.d_type != DT_UNKNOWN
        || ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return entry.d_type;
    return IFTODT(status.st_mode);
}

} // namespace

namespace TreeWalk
{

std::filesystem::path Cursor::path() const
{
    std::filesystem::path path;
    for (const Level& level : _levels)
        path /= level.name;
    return path;
}

std::error_code Cursor::enter(const std::string& name)
{
    if (_permissions == Permissions::overridden)
        _openUp(name);
    FileDescriptor entered(::openat(folder(), name.c_str(), folderFlags));
    FileStatus status{};
    if (!entered || ::fstat(entered.number(), &status) != 0)
        return lastError();
    if (_levels.empty()) {
        _top = FileDescriptor(::fcntl(entered.number(), F_DUPFD_CLOEXEC, 0));
        if (!_top)
            return lastError();
    }
    _folder = std::move(entered);
    _levels.push_back({.name = name, .device = status.st_dev, .inode = status.st_ino});
    return {};
}

std::error_code Cursor::leave()
{
    _levels.pop_back();
    if (_levels.empty())
        return {};
    FileDescriptor above(::openat(_folder.number(), "..", folderFlags));
    if (_isAt(above.number(), _levels.back())) {
        _folder = std::move(above);
        return {};
    }
    const auto failure = _comeDownAgain();
    if (failure)
        _levels.clear();
    return failure;
}

std::error_code Cursor::_comeDownAgain()
{
    _folder = FileDescriptor(::fcntl(_top.number(), F_DUPFD_CLOEXEC, 0));
    for (std::size_t index = 1; _folder && index < _levels.size(); ++index) {
        const Level& level = _levels[index];
        _folder = FileDescriptor(::openat(_folder.number(), level.name.c_str(), folderFlags));
        if (_folder && !_isAt(_folder.number(), level))
            return std::make_error_code(std::errc::no_such_file_or_directory); // any more
    }
    return _folder ? std::error_code() : lastError();
}

bool Cursor::_isAt(int descriptor, const Level& level)
{
    FileStatus status{};
    return descriptor >= 0 && ::fstat(descriptor, &status) == 0 && status.st_dev == level.device
        && status.st_ino == level.inode;
}

// chmod follows links, except by way of a descriptor.
void Cursor::_openUp(const std::string& name) const
{
    const FileDescriptor closed(::openat(folder(), name.c_str(), folderFlags | O_PATH));
    FileStatus status{};
    if (!closed || ::fstat(closed.number(), &status) != 0)
        return;
    if ((status.st_mode & S_IRWXU) != S_IRWXU)
        ::chmod(("/proc/self/fd/" + std::to_string(closed.number())).c_str(), S_IRWXU);
}

std::error_code walk(
    const std::filesystem::path& top, const Visitor& visitor, Permissions permissions)
{
    Cursor cursor(permissions);
    const auto tellDone = [&](const std::string& name, std::error_code reason) {
        if (visitor.done)
            visitor.done(cursor, name, reason);
    };
    std::vector<Names> pending{Names{top.native()}}; // still to be visited, a list per level
    while (true) {
        if (!pending.back().empty()) {
            const std::string name = std::move(pending.back().back());
            pending.back().pop_back();
            if (const auto failure = cursor.enter(name))
                tellDone(name, failure);
            else
                pending.push_back(visitor.enter(cursor));
            continue;
        }
        pending.pop_back();
        if (pending.empty())
            return {};
        if (visitor.leave)
            visitor.leave(cursor);
        const std::string name = cursor.name();
        if (const auto failure = cursor.leave())
            return failure;
        tellDone(name, {});
    }
}

std::error_code forEachEntry(
    int folder, const std::function<void(const std::string& name, unsigned char kind)>& visit)
{
    alignas(dirent64) std::array<char, 32768> buffer{};
    while (true) {
        const ssize_t size = ::getdents64(folder, buffer.data(), buffer.size());
        if (size <= 0)
            return errorOf(size);
        for (ssize_t offset = 0; offset < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + offset);
            const std::string name = entry->d_name;
            if (name != "." && name != "..")
                visit(name, kindOf(folder, *entry));
            offset += entry->d_reclen;
        }
    }
}

} // namespace TreeWalk
