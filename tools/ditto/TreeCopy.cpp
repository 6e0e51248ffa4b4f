#include "tools/ditto/TreeCopy.h"

#include "system/FileBytes.h"
#include "system/PartFile.h"
#include "system/PathString.h"
#include "tools/common/Compressor.h"
#include "tools/common/Interrupt.h"
#include "tools/common/Messages.h"
#include "tools/common/TreeReader.h"
#include "tools/ditto/ExtendedAttributes.h"

#include <array>
#include <cerrno>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace
{

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

std::array<timespec, 2> timesOf(const FileStatus& status)
{
    return {status.st_atim, status.st_mtim};
}

// Those of a file or folder that is complete: writing to it would change them.
bool applyStatus(int target, const FileStatus& status)
{
    // Programs that run as their owner do so only as the owner they had.
    const bool isOwners = ::fchown(target, status.st_uid, status.st_gid) == 0;
    const mode_t mode = status.st_mode & (isOwners ? 07777U : 01777U);
    return ::fchmod(target, mode) == 0 && ::futimens(target, timesOf(status).data()) == 0;
}

std::string incomplete()
{
    return "has not got its permissions or times: " + errorText(errno);
}

// Keeps one folder of the target open, the one whose content is being visited: the walk gives a
// folder's files right after the folder, so that whatever comes belongs there. A folder gets its
// permissions and times when it is left.
class TreeCopier : public TreeReader
{
public:
    explicit TreeCopier(const std::string& target)
        : TreeReader(OwnFiles())
        , _name(PathString::lastPathComponent(target))
        , _folder(::open(PathString::folderOf(target).c_str(), folderFlags))
    {
        if (!_folder)
            throw systemFailure(
                FailureKind::cannotCreate, "cannot create " + Messages::readableName(target));
    }

    [[nodiscard]] ToolResult finish()
    {
        while (!_levels.empty())
            _leaveFolder();
        if (entryCount() == 0)
            throw Failure(FailureKind::nothingToDo, "nothing was copied");
        return warningCount() == 0 ? ToolResult::complete : ToolResult::withWarnings;
    }

protected:
    void addFile(const TreeItem& item, SourceFile& source) override
    {
        constexpr mode_t mode = S_IRUSR | S_IWUSR; // until it is complete
        PartFile target(_nameOf(item), mode, _folder.number(), PartFile::Place::own);
        if (!target) {
            warn(item.path, target.failure().message());
            return;
        }
        _copyContent(item, source, target.descriptor());
        if (source.isUnreadable())
            return;
        _copyAttributes(item, source.descriptor(), target.descriptor());
        if (!applyStatus(target.descriptor(), source.status()))
            warn(item.path, incomplete());
        if (const std::error_code failure = target.commit(PartFile::Existing::replace))
            warn(item.path, failure.message());
        else
            countEntry();
    }

    void addLink(const TreeItem& item, const FileStatus& status, const std::string& target) override
    {
        const char* name = _nameOf(item);
        const auto make = [&] { return ::symlinkat(target.c_str(), _folder.number(), name) == 0; };
        const auto replace = [&] {
            return errno == EEXIST && ::unlinkat(_folder.number(), name, 0) == 0 && make();
        };
        if (!make() && !replace()) {
            warn(item.path, errorText(errno));
            return;
        }
        countEntry();
        (void)!::fchownat(
            _folder.number(), name, status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW);
        ::utimensat(_folder.number(), name, timesOf(status).data(), AT_SYMLINK_NOFOLLOW);
    }

    bool addFolder(const TreeItem& item, const FileStatus& status) override
    {
        while (!_levels.empty() && _levels.back().path.size() > item.path.rfind('/'))
            _leaveFolder();
        const char* name = _nameOf(item);
        if (isSameFile(_target, status)) {
            warn(item.path, "is the folder that is being copied to");
            return false;
        }
        if (::mkdirat(_folder.number(), name, S_IRWXU) != 0 && errno != EEXIST) {
            warn(item.path, errorText(errno));
            return false;
        }
        const int flags = _levels.empty() ? folderFlags : folderFlags | O_NOFOLLOW;
        FileDescriptor entered(::openat(_folder.number(), name, flags));
        if (!entered || (_levels.empty() && ::fstat(entered.number(), &_target) != 0)) {
            warn(item.path, "cannot be copied to what is there: " + errorText(errno));
            return false;
        }
        if (_levels.empty() && isSameFile(_target, status))
            throw Failure(FailureKind::cannotCreate, "the source and the target are one folder");
        const FileDescriptor source(::openat(item.folder, item.name, folderFlags | O_NOFOLLOW));
        if (source) // else the walk tells
            _copyAttributes(item, source.number(), entered.number());
        _folder = std::move(entered);
        _levels.push_back({std::string(item.path), status});
        countEntry();
        return true;
    }

private:
    struct Level {
        std::string path;
        FileStatus status;
    };

    // The top gets the target's name.
    [[nodiscard]] const char* _nameOf(const TreeItem& item) const
    {
        return _levels.empty() ? _name.c_str() : item.name;
    }

    void _leaveFolder()
    {
        // Opened first: without its permissions there might be no way up.
        FileDescriptor above(::openat(_folder.number(), "..", folderFlags));
        if (!above)
            throw systemFailure(FailureKind::write, "cannot complete a folder");
        if (!applyStatus(_folder.number(), _levels.back().status))
            warn(_levels.back().path, incomplete());
        _folder = std::move(above);
        _levels.pop_back();
    }

    void _copyContent(const TreeItem& item, SourceFile& source, int target)
    {
        const std::span<std::byte> buffer(_buffer.get(), pieceSize);
        while (source.remaining() > 0 && source.problem().empty()) {
            Interrupt::check();
            const std::size_t size = source.read(buffer);
            if (!FileBytes::writeAll(target, buffer.first(size)))
                throw systemFailure(
                    FailureKind::write, "cannot write " + Messages::readableName(item.path));
        }
        source.finish();
    }

    void _copyAttributes(const TreeItem& item, int source, int target)
    {
        ExtendedAttributes::forEach(source, [&](const auto& name, auto value, int error) {
            if (error == 0 && ::fsetxattr(target, name.c_str(), value.data(), value.size(), 0) != 0)
                error = errno;
            // The system's own may be left to it.
            if (error != 0 && (name.empty() || name.starts_with(ExtendedAttributes::userPrefix)))
                warn(item.path, "extended attribute " + name + ": " + errorText(error));
        });
    }

    const std::string _name;
    FileDescriptor _folder;
    std::vector<Level> _levels; // from the top to the folder that is open; none: it is above
    FileStatus _target{}; // the top, when it is a folder
    std::unique_ptr<std::byte[]> _buffer = std::make_unique_for_overwrite<std::byte[]>(pieceSize);
};

// A file or link that is copied to a folder goes into it.
std::string placeFor(const std::string& source, const std::string& target)
{
    FileStatus from{};
    FileStatus to{};
    const bool isFile = ::lstat(source.c_str(), &from) == 0 && !S_ISDIR(from.st_mode);
    const bool isToFolder = ::stat(target.c_str(), &to) == 0 && S_ISDIR(to.st_mode);
    return isFile && isToFolder ? target + "/" + PathString::lastPathComponent(source) : target;
}

} // namespace

ToolResult copyTree(const std::string& source, const std::string& target)
{
    TreeCopier copier(placeFor(source, target));
    walkTree(source, source, {}, copier);
    return copier.finish();
}
