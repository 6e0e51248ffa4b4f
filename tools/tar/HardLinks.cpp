#include "tools/tar/HardLinks.h"

namespace
{

constexpr std::size_t mostBytes = std::size_t{128} << 20; // some 700,000 files
constexpr std::size_t bytesPerFile = 100; // besides the name

} // namespace

const std::string* HardLinks::find(const FileStatus& status) const
{
    const auto first = _names.find({status.st_dev, status.st_ino});
    return first == _names.end() ? nullptr : &first->second;
}

void HardLinks::add(const FileStatus& status, const std::string& name)
{
    const bool mayComeAgain = _isEnteredAgain || status.st_nlink > 1 || _linked.contains(status);
    if (!mayComeAgain || _size > mostBytes)
        return;
    _names.try_emplace({status.st_dev, status.st_ino}, name);
    _size += name.size() + bytesPerFile;
}
