#include "tools/common/TreeWalk.h"

#include "system/FileDescriptor.h"
#include "tools/common/Failure.h"
#include "tools/common/Interrupt.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr std::string_view excludedName = ".DS_Store";

// How much of the names in one folder is sorted at once: some 400,000 of usual length.
constexpr std::size_t sortedBytes = std::size_t{8} << 20;

enum class Kind : char { File, FollowedFile, Folder, FollowedFolder, Link, BadLink, Special, Gone };

// Names and kinds in one block of memory: a folder may hold millions.
class NameList
{
public:
    void add(Kind kind, std::string_view name)
    {
        _text += static_cast<char>(kind);
        _starts.push_back(static_cast<std::uint32_t>(_text.size()));
        _text.append(name);
        _text += '\0';
    }
    void sort()
    {
        std::ranges::sort(_starts, [&](std::uint32_t a, std::uint32_t b) {
            return std::strcmp(_text.data() + a, _text.data() + b) < 0;
        });
    }
    [[nodiscard]] std::size_t size() const { return _starts.size(); }
    [[nodiscard]] std::size_t bytes() const { return _text.size(); }
    [[nodiscard]] const char* name(std::size_t index) const
    {
        return _text.data() + _starts[index];
    }
    [[nodiscard]] Kind kind(std::size_t index) const { return Kind{_text[_starts[index] - 1]}; }

private:
    std::string _text;
    std::vector<std::uint32_t> _starts;
};

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

// Null with errno when it can't be read.
OpenFolder openFolder(int parent, const char* name, bool isFollowed)
{
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (isFollowed ? 0 : O_NOFOLLOW);
    FileDescriptor opened(openat(parent, name, flags));
    if (!opened)
        return nullptr;
    OpenFolder folder(fdopendir(opened.number()));
    if (folder)
        (void)opened.release(); // the folder closes it
    return folder;
}

Kind kindOfMode(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return Kind::File;
    case S_IFDIR:
        return Kind::Folder;
    case S_IFLNK:
        return Kind::Link;
    default:
        return Kind::Special;
    }
}

std::string specialReason(mode_t mode)
{
    return S_ISFIFO(mode) ? "is a FIFO" : S_ISSOCK(mode) ? "is a socket" : "is a device";
}

class Walk
{
public:
    Walk(const std::string& name, const std::string& storedName, const TreeWalkOptions& options,
        TreeVisitor& visitor)
        : _name(name)
        , _path(storedName)
        , _options(options)
        , _visitor(visitor)
    {
    }

    std::uint64_t run()
    {
        visit(AT_FDCWD, _name.c_str(), lookUp(AT_FDCWD, _name.c_str()));
        while (!_frames.empty())
            enterNext();
        return _excludedCount;
    }

private:
    // A folder that has been entered: all but its sub-folders from `next` on is done.
    struct Frame {
        std::size_t pathSize;
        dev_t device;
        ino_t inode;
        bool isFollowed;
        NameList subfolders;
        std::size_t next;
    };

    void enterNext()
    {
        Frame& frame = _frames.back();
        _path.resize(frame.pathSize);
        const bool hasMore = frame.next < frame.subfolders.size();
        if (hasMore && (_folder || reopen())) {
            const std::size_t index = frame.next++;
            visitIn(frame.subfolders, index);
            return;
        }
        if (hasMore)
            _visitor.warn(_path, "was moved while it was read");
        _folder.reset();
        _frames.pop_back();
    }

    // Opens the last frame's folder again, from the top.
    bool reopen()
    {
        std::size_t begin = 0;
        for (const Frame& frame : _frames) {
            const std::string name
                = begin == 0 ? _name : _path.substr(begin, frame.pathSize - begin);
            begin = frame.pathSize + 1;
            _folder = openFolder(
                _folder ? dirfd(_folder.get()) : AT_FDCWD, name.c_str(), frame.isFollowed);
            struct stat status {
            };
            if (!_folder || fstat(dirfd(_folder.get()), &status) != 0
                || status.st_dev != frame.device || status.st_ino != frame.inode) {
                _folder.reset();
                return false;
            }
        }
        return true;
    }

    // The list may move while the folder is visited, so only its index is passed.
    void visitIn(const NameList& list, std::size_t index)
    {
        const std::string name = list.name(index);
        const Kind kind = list.kind(index);
        const std::size_t size = _path.size();
        _path += '/';
        _path += name;
        visit(dirfd(_folder.get()), name.c_str(), kind);
        if (kind != Kind::Folder && kind != Kind::FollowedFolder)
            _path.resize(size);
    }

    void visit(int folder, const char* name, Kind kind)
    {
        const bool isFollowed = kind == Kind::FollowedFile || kind == Kind::FollowedFolder;
        const TreeItem item{_path, folder, name, isFollowed};
        switch (kind) {
        case Kind::File:
        case Kind::FollowedFile:
            _visitor.visitFile(item);
            return;
        case Kind::Folder:
        case Kind::FollowedFolder:
            enter(item);
            return;
        case Kind::Link:
            visitLink(item);
            return;
        case Kind::BadLink:
            visitLink(item);
            _visitor.warn(_path, badLinkReason(item) + "; stored as a link");
            return;
        case Kind::Special:
        case Kind::Gone:
            warnMissing(item);
            return;
        }
    }

    void visitLink(const TreeItem& item)
    {
        struct stat status {
        };
        if (fstatat(item.folder, item.name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            _visitor.visitLink(item, status);
        else
            _visitor.warn(_path, errorText(errno));
    }

    static std::string badLinkReason(const TreeItem& item)
    {
        struct stat status {
        };
        if (fstatat(item.folder, item.name, &status, 0) == 0)
            return "links to what " + specialReason(status.st_mode);
        return errno == ENOENT ? "links to nothing"
            : errno == ELOOP   ? "links in a circle"
                               : "can't be followed (" + errorText(errno) + ")";
    }

    void warnMissing(const TreeItem& item)
    {
        struct stat status {
        };
        if (fstatat(item.folder, item.name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            _visitor.warn(_path, specialReason(status.st_mode));
        else
            _visitor.warn(_path, errorText(errno));
    }

    void enter(const TreeItem& item)
    {
        Interrupt::check();
        OpenFolder folder = openFolder(item.folder, item.name, item.isFollowed);
        if (!folder) {
            visitUnreadable(item, errno);
            return;
        }
        struct stat status {
        };
        if (fstat(dirfd(folder.get()), &status) != 0)
            _visitor.warn(_path, errorText(errno));
        else if (isAncestor(status))
            visitLoop(item);
        else if (_visitor.visitFolder(item, status))
            visitContent(std::move(folder), status, item.isFollowed);
    }

    // Stores the folder itself, at least.
    void visitUnreadable(const TreeItem& item, int error)
    {
        struct stat status {
        };
        const int flags = item.isFollowed ? 0 : AT_SYMLINK_NOFOLLOW;
        const bool isFolder
            = fstatat(item.folder, item.name, &status, flags) == 0 && S_ISDIR(status.st_mode);
        if (!isFolder || _visitor.visitFolder(item, status))
            _visitor.warn(_path, errorText(error));
    }

    [[nodiscard]] bool isAncestor(const struct stat& status) const
    {
        return std::ranges::any_of(_frames, [&](const Frame& frame) {
            return frame.device == status.st_dev && frame.inode == status.st_ino;
        });
    }

    void visitLoop(const TreeItem& item)
    {
        if (item.isFollowed)
            visitLink(item);
        _visitor.warn(_path,
            item.isFollowed ? "links to a folder it lies in; stored as a link"
                            : "is a folder it lies in");
    }

    // Visits all but the sub-folders, which are left for the new frame.
    void visitContent(OpenFolder folder, const struct stat& status, bool isFollowed)
    {
        _folder = std::move(folder);
        NameList subfolders;
        for (bool hasMore = true; hasMore;) {
            NameList files;
            hasMore = readNames(files, subfolders);
            files.sort();
            for (std::size_t index = 0; index < files.size(); ++index)
                visitIn(files, index);
        }
        subfolders.sort();
        _frames.push_back(
            {_path.size(), status.st_dev, status.st_ino, isFollowed, std::move(subfolders), 0});
    }

    // False when the folder has been read to its end.
    bool readNames(NameList& files, NameList& subfolders)
    {
        while (files.bytes() < sortedBytes) {
            errno = 0;
            // Each folder is read by the one thread that has opened it.
            const dirent* entry = readdir(_folder.get()); // NOLINT(concurrency-mt-unsafe)
            if (entry == nullptr) {
                if (errno != 0)
                    _visitor.warn(_path, errorText(errno));
                return false;
            }
            const std::string_view name(entry->d_name);
            if (name == "." || name == "..")
                continue;
            const Kind kind = kindOf(*entry);
            const bool isFile = kind == Kind::File || kind == Kind::FollowedFile;
            const bool isFolder = kind == Kind::Folder || kind == Kind::FollowedFolder;
            if (isFile && _options.excludesDSStore && name == excludedName)
                ++_excludedCount;
            else
                (isFolder ? subfolders : files).add(kind, name);
        }
        return true;
    }

    // The folder usually tells the kind; what it doesn't is asked for.
    [[nodiscard]] Kind kindOf(const dirent& entry) const
    {
        if (entry.d_type == DT_REG)
            return Kind::File;
        if (entry.d_type == DT_DIR)
            return Kind::Folder;
        if (entry.d_type == DT_LNK && !_options.followsLinks)
            return Kind::Link;
        return lookUp(dirfd(_folder.get()), entry.d_name);
    }

    [[nodiscard]] Kind lookUp(int folder, const char* name) const
    {
        struct stat status {
        };
        if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return Kind::Gone;
        const Kind kind = kindOfMode(status.st_mode);
        if (kind != Kind::Link || !_options.followsLinks)
            return kind;
        if (fstatat(folder, name, &status, 0) != 0)
            return Kind::BadLink;
        switch (kindOfMode(status.st_mode)) {
        case Kind::File:
            return Kind::FollowedFile;
        case Kind::Folder:
            return Kind::FollowedFolder;
        default:
            return Kind::BadLink;
        }
    }

    const std::string& _name;
    std::string _path;
    const TreeWalkOptions& _options;
    TreeVisitor& _visitor;
    std::vector<Frame> _frames;
    OpenFolder _folder; // the last frame's, or none yet
    std::uint64_t _excludedCount = 0;
};

} // namespace

std::uint64_t walkTree(const std::string& name, const std::string& storedName,
    const TreeWalkOptions& options, TreeVisitor& visitor)
{
    return Walk(name, storedName, options, visitor).run();
}
