// A walk keeps one folder open, whatever the depth. It goes down by name and back up by "..", and
// makes sure that this is the folder it came from; where it is not (the folder was moved, or may
// not be searched) it comes down again from the top. What is still to be visited are the names in
// `pending`, a list per level.

#include "platform/base/files/FileTree.h"

#include "system/FileDescriptor.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace
{

using FileStatus = struct stat; // a name of its own, beside the function

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// A place in a tree: an open folder and the names that lead to it.
class Cursor
{
public:
    explicit Cursor(FileTree::Permissions permissions)
        : _permissions(permissions)
    {
    }

    // For the ...at calls; before the top is entered, the working folder.
    [[nodiscard]] int folder() const { return _levels.empty() ? AT_FDCWD : _folder.number(); }
    [[nodiscard]] const std::string& name() const { return _levels.back().name; }

    // Stays where it is, with errno set, if that fails.
    [[nodiscard]] bool enter(const std::string& name)
    {
        if (_permissions == FileTree::Permissions::overridden)
            _openUp(name);
        FileDescriptor entered(::openat(folder(), name.c_str(), folderFlags));
        FileStatus status{};
        if (!entered || ::fstat(entered.number(), &status) != 0)
            return false;
        _folder = std::move(entered);
        _levels.push_back({.name = name, .device = status.st_dev, .inode = status.st_ino});
        return true;
    }

    [[nodiscard]] bool leave()
    {
        _levels.pop_back();
        if (_levels.empty())
            return true;
        FileDescriptor above(::openat(_folder.number(), "..", folderFlags));
        if (_isLast(above.number())) {
            _folder = std::move(above);
            return true;
        }
        const std::vector<Level> way = std::exchange(_levels, {});
        for (const Level& level : way)
            if (!enter(level.name))
                return false;
        return true;
    }

private:
    struct Level {
        std::string name;
        dev_t device;
        ino_t inode;
    };

    [[nodiscard]] bool _isLast(int descriptor) const
    {
        FileStatus status{};
        return descriptor >= 0 && ::fstat(descriptor, &status) == 0
            && status.st_dev == _levels.back().device && status.st_ino == _levels.back().inode;
    }

    // chmod follows links, except by way of a descriptor.
    void _openUp(const std::string& name) const
    {
        const FileDescriptor closed(::openat(folder(), name.c_str(), folderFlags | O_PATH));
        FileStatus status{};
        if (!closed || ::fstat(closed.number(), &status) != 0)
            return;
        if ((status.st_mode & S_IRWXU) != S_IRWXU)
            ::chmod(("/proc/self/fd/" + std::to_string(closed.number())).c_str(), S_IRWXU);
    }

    FileTree::Permissions _permissions;
    FileDescriptor _folder;
    std::vector<Level> _levels;
};

bool isFolder(int folder, const dirent64& entry)
{
    FileStatus status{};
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    return ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
        && S_ISDIR(status.st_mode);
}

template <typename Visit> void forEachEntry(int folder, Visit visit)
{
    alignas(dirent64) std::array<char, 32768> buffer{};
    ssize_t size = 0;
    while ((size = ::getdents64(folder, buffer.data(), buffer.size())) > 0) {
        for (ssize_t offset = 0; offset < size;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + offset);
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..")
                visit(name, isFolder(folder, *entry));
            offset += entry->d_reclen;
        }
    }
}

using Names = std::vector<std::string>;

// `open` works in a folder and gives the sub-folders to go on with; `close` gets each folder, from
// the one above it, when all below it is done or it could not be entered.
void walk(Cursor& cursor, const std::string& top, const std::function<Names(int folder)>& open,
    const std::function<void(int above, const std::string& name)>& close)
{
    std::vector<Names> pending{{top}};
    while (true) {
        if (!pending.back().empty()) {
            const std::string name = std::move(pending.back().back());
            pending.back().pop_back();
            if (cursor.enter(name))
                pending.push_back(open(cursor.folder()));
            else
                close(cursor.folder(), name);
            continue;
        }
        pending.pop_back();
        if (pending.empty())
            return;
        const std::string name = cursor.name();
        if (!cursor.leave())
            return;
        close(cursor.folder(), name);
    }
}

} // namespace

std::uint64_t FileTree::countEntries(const std::filesystem::path& top, const std::stop_token& stop)
{
    std::uint64_t count = 0;
    const auto open = [&](int folder) {
        Names folders;
        forEachEntry(folder, [&](std::string_view name, bool isFolder) {
            ++count;
            if (isFolder && !stop.stop_requested())
                folders.emplace_back(name);
        });
        return stop.stop_requested() ? Names() : folders;
    };
    Cursor cursor(Permissions::respected);
    walk(cursor, top, open, [](int, const std::string&) {});
    return count;
}

std::error_code FileTree::remove(const std::filesystem::path& top, Permissions permissions)
{
    std::error_code failure;
    const auto removeOne = [&](int folder, const std::string& name, int flags) {
        if (::unlinkat(folder, name.c_str(), flags) != 0 && !failure)
            failure.assign(errno, std::generic_category());
    };
    const auto open = [&](int folder) {
        Names folders;
        Names others; // removed when the list is complete, for their folder may not change before
        forEachEntry(folder, [&](std::string_view name, bool isFolder) {
            (isFolder ? folders : others).emplace_back(name);
        });
        for (const std::string& name : others)
            removeOne(folder, name, 0);
        return folders;
    };
    removeOne(AT_FDCWD, top, 0);
    if (failure != std::errc::is_a_directory)
        return failure;
    failure.clear();
    Cursor cursor(permissions);
    walk(cursor, top, open,
        [&](int above, const std::string& name) { removeOne(above, name, AT_REMOVEDIR); });
    return failure;
}
