#include "tools/tar/HardLinks.h"

namespace
{

// Some 25,000 files. Before fewer, the walk ahead would show in the time that an archive takes.
constexpr std::size_t mostBytesOfAny = std::size_t{4} << 20;
constexpr std::size_t mostBytes = std::size_t{128} << 20; // some 700,000 files
constexpr std::size_t bytesPerFile = 100; // besides the name

} // namespace

const std::string* HardLinks::find(const FileStatus& status) const
{
    const auto found = _files.find({status.st_dev, status.st_ino});
    const bool isSame = found != _files.end() && isSameTime(found->second.changed, status.st_ctim);
    return isSame ? &found->second.name : nullptr;
}

void HardLinks::add(const FileStatus& status, const std::string& name)
{
    if (_size > mostBytesOfAny && !_linked)
        _linked.emplace(_walkAhead());
    const bool mayComeAgain = !_linked || status.st_nlink > 1 || _linked->contains(status)
        || _linked->contains(_folder);
    if (!mayComeAgain || _size > mostBytes)
        return;
    _files.insert_or_assign({status.st_dev, status.st_ino}, First{name, status.st_ctim});
    _size += name.size() + bytesPerFile;
}
