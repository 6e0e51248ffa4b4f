#include "app/job/InputSizes.h"

#include "platform/base/files/TreeWalk.h"
#include "system/FileStatus.h"

#include <algorithm>
#include <exception>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace
{

using Identity = std::pair<dev_t, ino_t>;

Identity identityOf(const FileStatus& status)
{
    return {status.st_dev, status.st_ino};
}

// Adds up what is read of trees.
class Sum
{
public:
    Sum(InputSizes::Reading reading, std::stop_token stop)
        : _reading(reading)
        , _stop(std::move(stop))
    {
    }

    void add(const fs::path& item)
    {
        std::error_code missing;
        const bool isFollowed
            = _reading.followsItems && fs::is_symlink(fs::symlink_status(item, missing));
        _addTree(isFollowed ? fs::canonical(item, missing) : item);
        while (!_folders.empty()) {
            const fs::path folder = std::move(_folders.back());
            _folders.pop_back();
            _addTree(folder);
        }
        for (const LinkedFile& file : std::exchange(_files, {}))
            if (!_entered.contains(file.folder))
                _addFile(file.status, true);
    }

    [[nodiscard]] std::uint64_t bytes() const { return _bytes; }

private:
    struct LinkedFile {
        FileStatus status;
        Identity folder; // where it is itself
    };

    void _addTree(const fs::path& top)
    {
        FileStatus status{};
        if (::lstat(top.c_str(), &status) != 0)
            return;
        if (S_ISREG(status.st_mode))
            _addFile(status, false);
        else if (S_ISDIR(status.st_mode))
            (void)TreeWalk::walk(top,
                {.enter = [this](const TreeWalk::Cursor& at) { return _enter(at); }},
                TreeWalk::Permissions::respected);
    }

    TreeWalk::Names _enter(const TreeWalk::Cursor& at)
    {
        FileStatus status{};
        const bool isNew = !_reading.followsLinks
            || (::fstat(at.folder(), &status) == 0 && _entered.insert(identityOf(status)).second);
        TreeWalk::Names folders;
        if (!isNew || _stop.stop_requested())
            return folders;
        (void)TreeWalk::forEachEntry(at.folder(), [&](const std::string& name, unsigned char kind) {
            if (_stop.stop_requested())
                return;
            if (kind == DT_DIR)
                folders.push_back(name);
            else if (kind == DT_REG && !(_reading.excludesDSStore && name == ".DS_Store")
                && ::fstatat(at.folder(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
                _addFile(status, false);
            else if (kind == DT_LNK && _reading.followsLinks
                && ::fstatat(at.folder(), name.c_str(), &status, 0) == 0)
                _addLinked(at.path() / name, status);
        });
        return folders;
    }

    // Once all folders have been entered it shows whether the walk comes to the file itself.
    void _addLinked(const fs::path& link, const FileStatus& status)
    {
        std::error_code missing;
        const fs::path target = fs::canonical(link, missing);
        FileStatus folder{};
        if (missing || ::stat(target.parent_path().c_str(), &folder) != 0)
            return;
        if (S_ISDIR(status.st_mode))
            _folders.push_back(target);
        else if (S_ISREG(status.st_mode))
            _files.push_back({status, identityOf(folder)});
    }

    void _addFile(const FileStatus& status, bool isLinked)
    {
        const bool mayComeAgain = _reading.followsLinks && (isLinked || status.st_nlink > 1);
        if (!mayComeAgain || _read.insert(identityOf(status)).second)
            _bytes += static_cast<std::uint64_t>(status.st_size);
    }

    const InputSizes::Reading _reading;
    const std::stop_token _stop;
    std::uint64_t _bytes = 0;
    // With links followed:
    std::set<Identity> _entered; // folders
    std::set<Identity> _read; // files of several names
    std::vector<fs::path> _folders; // that links lead to
    std::vector<LinkedFile> _files;
};

} // namespace

InputSizes::InputSizes(std::vector<Path> items, Reading reading)
    : _items(std::move(items))
    , _reading(reading)
    , _ofFirst(_items.size() + 1)
    , _thread([this](const std::stop_token& stop) { _measure(stop); })
{
}

std::optional<std::uint64_t> InputSizes::ofFirst(std::size_t count) const
{
    return count <= _known ? std::optional(_ofFirst[count]) : std::nullopt;
}

// What there is no memory to measure stays unknown.
void InputSizes::_measure(const std::stop_token& stop)
try {
    Sum sum(_reading, stop);
    for (std::size_t index = 0; index < _items.size() && !stop.stop_requested(); ++index) {
        sum.add(_items[index]);
        _ofFirst[index + 1] = sum.bytes();
        _known = index + 1;
    }
} catch (const std::exception&) {
}
