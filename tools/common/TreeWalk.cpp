#include "tools/common/TreeWalk.h"

#include "system/FileDescriptor.h"
#include "tools/common/Failure.h"
#include "tools/common/Interrupt.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr std::string_view excludedName = ".DS_Store";

// How much of the names in one folder is sorted at once: some 400,000 of usual length.
constexpr std::size_t sortedBytes = std::size_t{8} << 20;

// Folders above the one that is read stay open, so that most are opened once; but not all of a very
// deep tree, as there may not be so many descriptors.
constexpr std::size_t mostOpenFolders = 16;

enum class Kind : char { file, followedFile, folder, followedFolder, link, badLink, special, gone };

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

// None, with errno, when it can't be read.
FileDescriptor openFolder(int parent, const char* name, bool isFollowed)
{
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (isFollowed ? 0 : O_NOFOLLOW);
    return FileDescriptor(retryOnInterrupt([&] { return ::openat(parent, name, flags); }));
}

Kind kindOfMode(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return Kind::file;
    case S_IFDIR:
        return Kind::folder;
    case S_IFLNK:
        return Kind::link;
    default:
        return Kind::special;
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
        _visit(AT_FDCWD, _name.c_str(), _lookUp(AT_FDCWD, _name.c_str()));
        while (!_frames.empty())
            _enterNext();
        return _excludedCount;
    }

private:
    // A folder that has been entered: all but its sub-folders from `next` on is done.
    struct Frame {
        FileDescriptor folder; // none if too many others have been opened since
        std::size_t pathSize;
        dev_t device;
        ino_t inode;
        bool isFollowed;
        NameList subfolders = {};
        std::size_t next = 0;
    };

    void _enterNext()
    {
        Frame& frame = _frames.back();
        _path.resize(frame.pathSize);
        const bool hasMore = frame.next < frame.subfolders.size();
        if (hasMore && (frame.folder || _reopen())) {
            const std::size_t index = frame.next++;
            _visitIn(frame, frame.subfolders, index);
            return;
        }
        if (hasMore)
            _visitor.warn(_path, "was moved while it was read");
        _frames.pop_back();
    }

    // None if it is not the frame's folder, or cannot be opened.
    static FileDescriptor _open(const Frame& frame, int parent, const char* name)
    {
        FileDescriptor folder = openFolder(parent, name, frame.isFollowed);
        FileStatus status{};
        if (!folder || ::fstat(folder.number(), &status) != 0 || status.st_dev != frame.device
            || status.st_ino != frame.inode)
            return {};
        return folder;
    }

    // Opens the last frame's folder again, from the top.
    bool _reopen()
    {
        int parent = AT_FDCWD;
        std::size_t begin = 0;
        for (std::size_t depth = 0; depth < _frames.size(); ++depth) {
            Frame& frame = _frames[depth];
            const std::string name
                = begin == 0 ? _name : _path.substr(begin, frame.pathSize - begin);
            begin = frame.pathSize + 1;
            frame.folder = _open(frame, parent, name.c_str());
            if (!frame.folder)
                return false;
            parent = frame.folder.number();
            _closeAbove(depth);
        }
        return true;
    }

    // What is more than so many folders above one at that depth.
    void _closeAbove(std::size_t depth)
    {
        if (depth >= mostOpenFolders)
            _frames[depth - mostOpenFolders].folder.close();
    }

    // The list may move while the folder is visited, so only its index is passed.
    void _visitIn(const Frame& frame, const NameList& list, std::size_t index)
    {
        const std::string name = list.name(index);
        const Kind kind = list.kind(index);
        const std::size_t size = _path.size();
        _path += '/';
        _path += name;
        _visit(frame.folder.number(), name.c_str(), kind);
        if (kind != Kind::folder && kind != Kind::followedFolder)
            _path.resize(size);
    }

    void _visit(int folder, const char* name, Kind kind)
    {
        const bool isFollowed = kind == Kind::followedFile || kind == Kind::followedFolder;
        const TreeItem item{_path, folder, name, isFollowed};
        switch (kind) {
        case Kind::file:
        case Kind::followedFile:
            _visitor.visitFile(item);
            return;
        case Kind::folder:
        case Kind::followedFolder:
            _enter(item);
            return;
        case Kind::link:
            _visitLink(item);
            return;
        case Kind::badLink:
            _visitLink(item);
            _visitor.warn(_path, _badLinkReason(item) + "; stored as a link");
            return;
        case Kind::special:
        case Kind::gone:
            _warnMissing(item);
            return;
        }
    }

    void _visitLink(const TreeItem& item)
    {
        FileStatus status{};
        if (::fstatat(item.folder, item.name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            _visitor.visitLink(item, status);
        else
            _visitor.warn(_path, errorText(errno));
    }

    static std::string _badLinkReason(const TreeItem& item)
    {
        FileStatus status{};
        if (::fstatat(item.folder, item.name, &status, 0) == 0)
            return "links to what " + specialReason(status.st_mode);
        return errno == ENOENT ? "links to nothing"
            : errno == ELOOP   ? "links in a circle"
                               : "can't be followed (" + errorText(errno) + ")";
    }

    void _warnMissing(const TreeItem& item)
    {
        FileStatus status{};
        if (::fstatat(item.folder, item.name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            _visitor.warn(_path, specialReason(status.st_mode));
        else
            _visitor.warn(_path, errorText(errno));
    }

    void _enter(const TreeItem& item)
    {
        Interrupt::check();
        FileDescriptor folder = openFolder(item.folder, item.name, item.isFollowed);
        if (!folder) {
            _visitUnreadable(item, errno);
            return;
        }
        FileStatus status{};
        if (::fstat(folder.number(), &status) != 0)
            _visitor.warn(_path, errorText(errno));
        else if (_isAncestor(status))
            _visitLoop(item);
        else if (_visitor.visitFolder(item, status))
            _visitContent(std::move(folder), status, item.isFollowed);
    }

    // Stores the folder itself, at least.
    void _visitUnreadable(const TreeItem& item, int error)
    {
        FileStatus status{};
        const int flags = item.isFollowed ? 0 : AT_SYMLINK_NOFOLLOW;
        const bool isFolder
            = ::fstatat(item.folder, item.name, &status, flags) == 0 && S_ISDIR(status.st_mode);
        if (!isFolder || _visitor.visitFolder(item, status))
            _visitor.warn(_path, errorText(error));
    }

    [[nodiscard]] bool _isAncestor(const FileStatus& status) const
    {
        return std::ranges::any_of(_frames, [&](const Frame& frame) {
            return frame.device == status.st_dev && frame.inode == status.st_ino;
        });
    }

    void _visitLoop(const TreeItem& item)
    {
        if (item.isFollowed)
            _visitLink(item);
        _visitor.warn(_path,
            item.isFollowed ? "links to a folder it lies in; stored as a link"
                            : "is a folder it lies in");
    }

    // Visits all but the sub-folders, which are left for later.
    void _visitContent(FileDescriptor folder, const FileStatus& status, bool isFollowed)
    {
        _closeAbove(_frames.size());
        _frames.push_back({.folder = std::move(folder),
            .pathSize = _path.size(),
            .device = status.st_dev,
            .inode = status.st_ino,
            .isFollowed = isFollowed});
        Frame& frame = _frames.back();
        for (bool hasMore = true; hasMore;) {
            NameList files;
            hasMore = _readNames(frame, files);
            files.sort();
            for (std::size_t index = 0; index < files.size(); ++index)
                _visitIn(frame, files, index);
        }
        frame.subfolders.sort();
    }

    // False when the folder has been read to its end.
    bool _readNames(Frame& frame, NameList& files)
    {
        while (files.bytes() < sortedBytes) {
            const ssize_t size = retryOnInterrupt([&] {
                return ::getdents64(frame.folder.number(), _entries.data(), sizeof _entries);
            });
            if (size < 0)
                _visitor.warn(_path, errorText(errno));
            if (size <= 0)
                return false;
            for (ssize_t at = 0; at < size;) {
                const auto* const entry = reinterpret_cast<const dirent64*>(_entries.data() + at);
                at += entry->d_reclen;
                _addName(frame, files, *entry);
            }
        }
        return true;
    }

    void _addName(Frame& frame, NameList& files, const dirent64& entry)
    {
        const std::string_view name(entry.d_name);
        if (name == "." || name == "..")
            return;
        const Kind kind = _kindOf(frame.folder.number(), entry);
        const bool isFile = kind == Kind::file || kind == Kind::followedFile;
        const bool isFolder = kind == Kind::folder || kind == Kind::followedFolder;
        if (isFile && _options.excludesDSStore && name == excludedName)
            ++_excludedCount;
        else
            (isFolder ? frame.subfolders : files).add(kind, name);
    }

    // The folder usually tells the kind; what it doesn't is asked for.
    [[nodiscard]] Kind _kindOf(int folder, const dirent64& entry) const
    {
        if (entry.d_type == DT_REG)
            return Kind::file;
        if (entry.d_type == DT_DIR)
            return Kind::folder;
        if (entry.d_type == DT_LNK && !_options.followsLinks)
            return Kind::link;
        return _lookUp(folder, entry.d_name);
    }

    [[nodiscard]] Kind _lookUp(int folder, const char* name) const
    {
        FileStatus status{};
        if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return Kind::gone;
        const Kind kind = kindOfMode(status.st_mode);
        if (kind != Kind::link || !_options.followsLinks)
            return kind;
        if (::fstatat(folder, name, &status, 0) != 0)
            return Kind::badLink;
        switch (kindOfMode(status.st_mode)) {
        case Kind::file:
            return Kind::followedFile;
        case Kind::folder:
            return Kind::followedFolder;
        default:
            return Kind::badLink;
        }
    }

    const std::string& _name;
    std::string _path;
    const TreeWalkOptions& _options;
    TreeVisitor& _visitor;
    std::vector<Frame> _frames;
    alignas(dirent64) std::array<char, std::size_t{32} << 10> _entries; // as the system gives them
    std::uint64_t _excludedCount = 0;
};

} // namespace

std::uint64_t walkTree(const std::string& name, const std::string& storedName,
    const TreeWalkOptions& options, TreeVisitor& visitor)
{
    return Walk(name, storedName, options, visitor).run();
}
