#include "tools/ditto/TreeCopy.h"

#include "tools/common/Compressor.h"
#include "tools/common/Failure.h"
#include "tools/common/Interrupt.h"
#include "tools/common/Messages.h"
#include "tools/common/SourceFile.h"
#include "tools/common/TreeWalk.h"
#include "tools/ditto/ExtendedAttributes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

struct SplitPath {
    std::string folder;
    std::string name;
};

SplitPath split(std::string path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return {".", path};
    return {path.substr(0, slash + 1), path.size() == 1 ? "." : path.substr(slash + 1)};
}

std::array<timespec, 2> timesOf(const struct stat& status)
{
    return {status.st_atim, status.st_mtim};
}

// Those of a file or folder that is complete: writing to it would change them.
bool applyStatus(int target, const struct stat& status)
{
    // Programs that run as their owner do so only as the owner they had.
    const bool isOwners = fchown(target, status.st_uid, status.st_gid) == 0;
    const mode_t mode = status.st_mode & (isOwners ? 07777U : 01777U);
    return fchmod(target, mode) == 0 && futimens(target, timesOf(status).data()) == 0;
}

// A file under a name that is gone with this object, unless it was renamed. One is enough for a
// process, which writes one file at a time.
class HiddenFile
{
public:
    explicit HiddenFile(int folder)
        : _folder(folder)
    {
        unlinkat(_folder, _name.c_str(), 0); // of a process of that number that was killed
        const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
        _file = FileDescriptor(openat(_folder, _name.c_str(), flags, S_IRUSR | S_IWUSR));
        _isThere = static_cast<bool>(_file);
    }
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;
    ~HiddenFile()
    {
        if (_isThere)
            unlinkat(_folder, _name.c_str(), 0);
    }

    [[nodiscard]] int descriptor() const { return _file.number(); }
    [[nodiscard]] bool write(std::span<const std::byte> bytes) const
    {
        while (!bytes.empty()) {
            const ssize_t count = ::write(_file.number(), bytes.data(), bytes.size());
            if (count < 0 && errno != EINTR)
                return false;
            bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return true;
    }
    [[nodiscard]] bool rename(const char* name)
    {
        _isThere = !_file.close() || renameat(_folder, _name.c_str(), _folder, name) != 0;
        return !_isThere;
    }

private:
    const int _folder;
    const std::string _name = ".parcelo-ditto-" + std::to_string(getpid());
    FileDescriptor _file;
    bool _isThere = false;
};

// Keeps one folder of the target open, the one whose content is being visited: the walk gives a
// folder's files right after the folder, so that whatever comes belongs there. A folder gets its
// permissions and times when it is left.
class CopyingVisitor : public TreeVisitor
{
public:
    explicit CopyingVisitor(const std::string& target)
        : _name(split(target).name)
        , _folder(open(split(target).folder.c_str(), folderFlags))
    {
        if (!_folder)
            throw systemFailure(
                FailureKind::CannotCreate, "cannot create " + Messages::readableName(target));
    }

    void visitFile(const TreeItem& item) override
    {
        SourceFile source(item);
        if (!source.isUnreadable())
            copyFile(item, source);
        if (!source.problem().empty())
            warn(item.path, source.problem());
    }

    void visitLink(const TreeItem& item, const struct stat& status) override
    {
        const std::optional<std::string> link = readLink(item, status);
        const char* name = nameOf(item);
        const auto make
            = [&] { return link && symlinkat(link->c_str(), _folder.number(), name) == 0; };
        const auto replace
            = [&] { return errno == EEXIST && unlinkat(_folder.number(), name, 0) == 0 && make(); };
        if (!make() && !replace()) {
            warn(item.path, errorText(errno));
            return;
        }
        ++_copied;
        (void)!fchownat(_folder.number(), name, status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW);
        utimensat(_folder.number(), name, timesOf(status).data(), AT_SYMLINK_NOFOLLOW);
    }

    bool visitFolder(const TreeItem& item, const struct stat& status) override
    {
        while (!_levels.empty() && _levels.back().path.size() > item.path.rfind('/'))
            leaveFolder();
        const char* name = nameOf(item);
        if (isTarget(status)) {
            warn(item.path, "is the folder that is being copied to");
            return false;
        }
        if (mkdirat(_folder.number(), name, S_IRWXU) != 0 && errno != EEXIST) {
            warn(item.path, errorText(errno));
            return false;
        }
        const int flags = _levels.empty() ? folderFlags : folderFlags | O_NOFOLLOW;
        FileDescriptor entered(openat(_folder.number(), name, flags));
        if (!entered || (_levels.empty() && fstat(entered.number(), &_target) != 0)) {
            warn(item.path, "cannot be copied to what is there: " + errorText(errno));
            return false;
        }
        if (_levels.empty() && isTarget(status))
            throw Failure(FailureKind::CannotCreate, "the source and the target are one folder");
        const FileDescriptor source(openat(item.folder, item.name, folderFlags | O_NOFOLLOW));
        if (source) // else the walk tells
            copyAttributes(item, source.number(), entered.number());
        _folder = std::move(entered);
        _levels.push_back({std::string(item.path), status});
        ++_copied;
        return true;
    }

    void warn(std::string_view path, const std::string& reason) override
    {
        ++_warned;
        Messages::warn(path, reason);
    }

    // Whether all has been copied.
    [[nodiscard]] bool finish()
    {
        while (!_levels.empty())
            leaveFolder();
        if (_copied == 0)
            throw Failure(FailureKind::NothingToDo, "nothing was copied");
        return _warned == 0;
    }

private:
    struct Level {
        std::string path;
        struct stat status;
    };

    static std::string incomplete()
    {
        return "has not got its permissions or times: " + errorText(errno);
    }

    // The top gets the target's name.
    [[nodiscard]] const char* nameOf(const TreeItem& item) const
    {
        return _levels.empty() ? _name.c_str() : item.name;
    }

    [[nodiscard]] bool isTarget(const struct stat& status) const
    {
        return _target.st_ino == status.st_ino && _target.st_dev == status.st_dev;
    }

    void leaveFolder()
    {
        // Opened first: without its permissions there might be no way up.
        FileDescriptor above(openat(_folder.number(), "..", folderFlags));
        if (!above)
            throw systemFailure(FailureKind::Write, "cannot complete a folder");
        if (!applyStatus(_folder.number(), _levels.back().status))
            warn(_levels.back().path, incomplete());
        _folder = std::move(above);
        _levels.pop_back();
    }

    void copyFile(const TreeItem& item, SourceFile& source)
    {
        HiddenFile target(_folder.number());
        if (target.descriptor() < 0) {
            warn(item.path, errorText(errno));
            return;
        }
        while (source.remaining() > 0 && source.problem().empty()) {
            Interrupt::check();
            const std::size_t size = source.read(_buffer);
            if (!target.write(std::span(_buffer).first(size)))
                throw systemFailure(
                    FailureKind::Write, "cannot write " + Messages::readableName(item.path));
        }
        source.finish();
        if (source.isUnreadable())
            return;
        copyAttributes(item, source.descriptor(), target.descriptor());
        if (!applyStatus(target.descriptor(), source.status()))
            warn(item.path, incomplete());
        if (target.rename(nameOf(item)))
            ++_copied;
        else
            warn(item.path, errorText(errno));
    }

    void copyAttributes(const TreeItem& item, int source, int target)
    {
        ExtendedAttributes::forEach(source, [&](const auto& name, auto value, int error) {
            if (error == 0 && fsetxattr(target, name.c_str(), value.data(), value.size(), 0) != 0)
                error = errno;
            // The system's own may be left to it.
            if (error != 0 && (name.empty() || name.starts_with(ExtendedAttributes::userPrefix)))
                warn(item.path, "extended attribute " + name + ": " + errorText(error));
        });
    }

    const std::string _name;
    FileDescriptor _folder;
    std::vector<Level> _levels; // from the top to the folder that is open; none: it is above
    struct stat _target {
    }; // the top, when it is a folder
    std::vector<std::byte> _buffer = std::vector<std::byte>(pieceSize);
    std::uint64_t _copied = 0;
    std::uint64_t _warned = 0;
};

// A file or link that is copied to a folder goes into it.
std::string placeFor(const std::string& source, const std::string& target)
{
    struct stat from {
    };
    struct stat to {
    };
    const bool isFile = lstat(source.c_str(), &from) == 0 && !S_ISDIR(from.st_mode);
    const bool isToFolder = stat(target.c_str(), &to) == 0 && S_ISDIR(to.st_mode);
    return isFile && isToFolder ? target + "/" + split(source).name : target;
}

} // namespace

bool copyTree(const std::string& source, const std::string& target)
{
    CopyingVisitor visitor(placeFor(source, target));
    walkTree(source, source, {}, visitor);
    return visitor.finish();
}
